#pragma once

#include <cubes/routestorage/DynamiclinkLibraryT.h>

#include "support/Variable.h"

#include <string>

namespace cubes::test {

using Library = Pattern::DynamiclinkLibraryT<Pattern::DllNoUnloadpolicyA>;

/// Sets where providers are looked for, until the end of the object; empty: nowhere in particular.
class ProviderPath : public Variable {
public:
    explicit ProviderPath(std::string const& directories) : Variable("CUBES_PROVIDER_PATH", directories) {}
};

/// The directory of a fake provider: "full", "leading", "trailing", "without".
std::string fakeDirectory(std::string const& variant);

/// A fake provider, which is found as long as this object lives.
class FakeProvider {
public:
    explicit FakeProvider(std::string const& variant = "full");
    ~FakeProvider();

    /// What was asked of the provider since the last call, a line each.
    std::string calls();
    /// How many of its objects there are.
    int living() const;
    /// What the header says; null: there is none, "null": the text is null.
    void setFields(char const* names);
    void setLastError(char const* text);

private:
    ProviderPath path_;
    Library library_;
    Library utilities_;
};

}
