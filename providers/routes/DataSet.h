#pragma once

#include "FieldFile.h"
#include "StoredObject.h"

namespace cubes::routes {

/// The fields, as the content of a file.
struct StoredFields {
    static constexpr std::string_view kind = fieldFileKind;
    static StoredFields read(hid_t file) { return {readFields(file)}; }
    void write(hid_t file) const { writeFields(file, table); }

    FieldTable table;
};

/// Route data in a file.
class DataSet final : public StoredObject<VL::Interface::VelmoraRouteStorageDataSetInterface, StoredFields> {
public:
    using StoredObject::StoredObject;

    VL::Interface::AdditionalDataHeaderInterface* getAdditionalDataHeader() override;
    VL::Interface::RouteResult addField(VL::Interface::RouteField const& field) override;
    std::int64_t countRoutes() const override;
    std::int64_t countFields() const override;
    VL::Interface::RouteResult getField(std::int64_t place, VL::Interface::RouteField* field) const override;
    VL::Interface::RouteResult findField(char const* name, VL::Interface::RouteField* field) const override;
    VL::Interface::RouteResult getRouteValues(std::int64_t route, double* values) const override;
};

}
