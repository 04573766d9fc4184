#pragma once

#include <cubes/Export.h>
#include <cubes/routestorage/metadata/Counted.h>
#include <cubes/routestorage/metadata/MetadataStringInterface.h>

#include <string>

namespace Metadata {

/// A text in the platform's narrow encoding.
class CUBES_API String final : public Counted<MetadataStringInterface> {
public:
    /// Null is the empty text.
    explicit String(char const* text = nullptr);
    ~String() override;

    String* dup() const override;
    char const* getClassName() const override;
    char const* get() const override;
    void set(char const* text) override;

private:
    std::string text_;
};

}
