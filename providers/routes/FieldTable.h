#pragma once

#include <cubes/routestorage/RouteStorageInterface.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace cubes::routes {

/// A field with its values one after the other.
struct Field {
    std::string name;
    VL::Interface::RouteFieldType type;
    std::vector<std::byte> values;
    std::size_t count;

    VL::Interface::RouteField view() const;
    double value(std::size_t route) const;
};

/// The size of one value in bytes; 0 for an unknown type.
std::size_t valueSize(VL::Interface::RouteFieldType type);

/// The fields of route data, in the order in which they were added.
class FieldTable {
public:
    std::vector<Field> const& fields() const noexcept { return fields_; }
    /// The number of values of each field.
    std::size_t routes() const noexcept { return fields_.empty() ? 0 : fields_.front().count; }
    /// Null when there is no field of that name.
    Field const* find(std::string_view name) const;
    /// Both throw std::invalid_argument for an invalid field or one that does not fit the others.
    void add(VL::Interface::RouteField const& field);
    void add(Field field);

private:
    std::vector<Field> fields_;
};

}
