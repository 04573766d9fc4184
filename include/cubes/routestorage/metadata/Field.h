#pragma once

#include <cubes/Export.h>
#include <cubes/routestorage/Reference.h>
#include <cubes/routestorage/metadata/BasicType.h>
#include <cubes/routestorage/metadata/MetadataFieldInterface.h>
#include <cubes/routestorage/metadata/String.h>

namespace Metadata {

/// A field of route data. A new one has empty texts, precision 0 and size 0.
class CUBES_API Field final : public Counted<MetadataFieldInterface> {
public:
    Field();
    ~Field() override;

    Field* dup() const override;
    char const* getClassName() const override;
    MetadataStringInterface* getName() const override;
    MetadataStringInterface* getType() const override;
    MetadataLongInterface* getPrecision() const override;
    MetadataUnsignedLongInterface* getSize() const override;
    void setName(char const* name) override;
    void setType(char const* type) override;
    void setPrecision(long precision) override;
    void setSize(unsigned long size) override;

private:
    using Long = BasicType<long, MetadataLongInterface>;
    using UnsignedLong = BasicType<unsigned long, MetadataUnsignedLongInterface>;

    cubes::Reference<String> name_;
    cubes::Reference<String> type_;
    cubes::Reference<Long> precision_;
    cubes::Reference<UnsignedLong> size_;
};

}
