#pragma once

#include <cubes/routestorage/metadata/MetadataInterface.h>

namespace Metadata {

/// A whole number that is not negative.
class MetadataUnsignedLongInterface : public MetadataInterface {
public:
    static constexpr char const* InterfaceName = "MetadataUnsignedLongInterface";

    MetadataUnsignedLongInterface* dup() const override = 0;
    virtual unsigned long get() const = 0;
    virtual void set(unsigned long const& value) = 0;

protected:
    ~MetadataUnsignedLongInterface() = default;
};

}
