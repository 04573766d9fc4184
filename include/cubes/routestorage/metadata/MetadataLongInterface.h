#pragma once

#include <cubes/routestorage/metadata/MetadataInterface.h>

namespace Metadata {

/// A whole number.
class MetadataLongInterface : public MetadataInterface {
public:
    static constexpr char const* InterfaceName = "MetadataLongInterface";

    MetadataLongInterface* dup() const override = 0;
    virtual long get() const = 0;
    virtual void set(long const& value) = 0;

protected:
    ~MetadataLongInterface() = default;
};

}
