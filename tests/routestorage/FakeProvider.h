#pragma once

#include <cubes/routestorage/DynamiclinkLibraryT.h>

#include "support/Variable.h"

#include <string>

namespace cubes::test {

using Library = Pattern::DynamiclinkLibraryT<Pattern::DllNoUnloadpolicyA>;

/// Sets the search path for providers until it is destroyed; an empty one leaves the default search.
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

    /// The calls of the provider since the last request, one per line.
    std::string calls();
    /// The number of its existing objects.
    int living() const;
    /// The header's text; null: there is no header, "null": the text is null.
    void setFields(char const* names);
    void setLastError(char const* text);

private:
    ProviderPath path_;
    Library library_;
    Library utilities_;
};

}
