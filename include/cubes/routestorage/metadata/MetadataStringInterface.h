#pragma once

#include <cubes/routestorage/metadata/MetadataInterface.h>

namespace Metadata {

/// A text.
class MetadataStringInterface : public MetadataInterface {
public:
    static constexpr char const* InterfaceName = "MetadataStringInterface";

    MetadataStringInterface* dup() const override = 0;
    /// Holds until the text is set again.
    virtual char const* get() const = 0;
    /// Null is the empty text.
    virtual void set(char const* text) = 0;

protected:
    ~MetadataStringInterface() = default;
};

}
