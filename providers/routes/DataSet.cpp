#include "DataSet.h"

#include "AdditionalDataHeader.h"

#include <algorithm>

namespace cubes::routes {

using namespace VL::Interface;

AdditionalDataHeaderInterface* DataSet::getAdditionalDataHeader() {
    AdditionalDataHeaderInterface* const none = nullptr;
    return answer("read the fields of", fileName(), none,
        [&]() -> AdditionalDataHeaderInterface* { return new AdditionalDataHeader(content().table.fields()); });
}

RouteResult DataSet::addField(RouteField const& field) {
    return answering("add a field to", [&] {
        changing().table.add(field);
        return rrDone;
    });
}

std::int64_t DataSet::countRoutes() const {
    return counting([&] { return static_cast<std::int64_t>(content().table.routes()); });
}

std::int64_t DataSet::countFields() const {
    return counting([&] { return static_cast<std::int64_t>(content().table.fields().size()); });
}

RouteResult DataSet::getField(std::int64_t place, RouteField* field) const {
    return answering("read a field of", [&] {
        auto const& fields = content().table.fields();
        if (place < 0 || static_cast<std::uint64_t>(place) >= fields.size()) return rrAbsent;
        *field = fields[static_cast<std::size_t>(place)].view();
        return rrDone;
    });
}

RouteResult DataSet::findField(char const* name, RouteField* field) const {
    return answering("read a field of", [&] {
        Field const* const found = content().table.find(name ? name : "");
        if (!found) return rrAbsent;
        *field = found->view();
        return rrDone;
    });
}

RouteResult DataSet::getRouteValues(std::int64_t route, double* values) const {
    return answering("read a route of", [&] {
        FieldTable const& table = content().table;
        if (route < 0 || static_cast<std::uint64_t>(route) >= table.routes()) return rrAbsent;
        auto const valueOf = [route](Field const& field) { return field.value(static_cast<std::size_t>(route)); };
        std::ranges::transform(table.fields(), values, valueOf);
        return rrDone;
    });
}

}
