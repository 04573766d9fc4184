#pragma once

#include "FieldTable.h"
#include "StoredObject.h"

namespace cubes::routes {

/// The fields, as the content of a file. docs/route-file.md describes how they are stored.
struct StoredFields {
    static constexpr FileKind kind = {"cubes route data", hdf5::IndexRecord::Holds::routeData};
    /// Throws when the file's content is not valid.
    static StoredFields read(hdf5::GuardedFile const& file, hdf5::IndexRecord const& record);
    void write(hid_t file) const;
    void describe(hdf5::IndexRecord& record) const;

    FieldTable table;
    /// The content id of the route set that the fields belong to; unknown unless it was recorded.
    hdf5::Id128 routes;
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
