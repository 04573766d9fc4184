#pragma once

#include <cubes/routestorage/metadata/MetadataInterface.h>
#include <cubes/routestorage/metadata/MetadataLongInterface.h>
#include <cubes/routestorage/metadata/MetadataStringInterface.h>
#include <cubes/routestorage/metadata/MetadataUnsignedLongInterface.h>

namespace Metadata {

/// A field of stored data. What it hands out is its own part, with one more reference, which the
/// caller has to give up; the part may live longer than the field.
class MetadataFieldInterface : public MetadataInterface {
public:
    static constexpr char const* InterfaceName = "MetadataFieldInterface";

    MetadataFieldInterface* dup() const override = 0;
    virtual MetadataStringInterface* getName() const = 0;
    virtual MetadataStringInterface* getType() const = 0;
    virtual MetadataLongInterface* getPrecision() const = 0;
    virtual MetadataUnsignedLongInterface* getSize() const = 0;
    virtual void setName(char const* name) = 0;
    virtual void setType(char const* type) = 0;
    virtual void setPrecision(long precision) = 0;
    virtual void setSize(unsigned long size) = 0;

protected:
    ~MetadataFieldInterface() = default;
};

}
