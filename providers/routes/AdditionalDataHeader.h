#pragma once

#include "Counted.h"
#include "FieldTable.h"

namespace cubes::routes {

/// The names and types of fields, apart from the data set that they come from.
class AdditionalDataHeader final : public Counted<VL::Interface::AdditionalDataHeaderInterface> {
public:
    explicit AdditionalDataHeader(std::vector<Field> const& fields);

    int getFieldType(char const* name) const override;
    char const* getFieldNames() const override { return names_.c_str(); }

private:
    struct Entry {
        std::string name;
        VL::Interface::RouteFieldType type;
    };

    std::vector<Entry> entries_;
    std::string names_;
};

}
