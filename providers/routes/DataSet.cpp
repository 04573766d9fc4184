#include "DataSet.h"

#include "Numbers.h"
#include "host/platform/NarrowText.h"

#include <algorithm>
#include <cstring>

namespace cubes::routes {

using namespace VL::Interface;

namespace {

// By RouteFieldType.
constexpr NumberType numberTypes[] = {NumberType::uint8, NumberType::uint8, NumberType::int16, NumberType::int32,
    NumberType::float32, NumberType::float64};

// Names of fields may contain anything, so datasets are named by numbers: "0000", "0001".
std::string datasetName(std::size_t place) {
    constexpr std::size_t length = 4;
    std::string const digits = std::to_string(place);
    return std::string(length - std::min(length, digits.size()), '0') + digits;
}

void writeField(hid_t group, std::string const& name, Field const& field) {
    hdf5::Handle const dataset = writeDataset(group, name, numberTypes[field.type], field.values.data(), field.count);
    std::int32_t const type = field.type;
    hdf5::writeText(dataset.get(), "name", platform::toUtf8(field.name));
    writeAttribute(dataset.get(), "type", typeOf<std::int32_t>(), &type, 1);
}

RouteFieldType readType(hdf5::GuardedFile const& file, std::string const& path) {
    auto const number = readAttribute(file, path, "type", 1)[0];
    if (number < rftBoolean || number >= rftUnknown)
        throw std::runtime_error("unknown field type " + std::to_string(number));
    return static_cast<RouteFieldType>(number);
}

Field readField(hdf5::GuardedFile const& file, std::string const& path) {
    RouteFieldType const type = readType(file, path);
    StoredNumbers const numbers(file, path, numberTypes[type]);
    Field field{platform::fromUtf8(textAttribute(file, path, "name")), type, {}, numbers.count()};
    field.values.resize(field.count * valueSize(type));
    numbers.read(field.values.data());
    return field;
}

std::string quotedWhereNeeded(std::string const& name) {
    if (name.find_first_of(" ,\"") == std::string::npos) return name;
    std::string quoted = "\"";
    for (char const letter : name) quoted += letter == '"' ? std::string("\"\"") : std::string(1, letter);
    return quoted + '"';
}

// The names and types of fields, independent of the data set from which they come.
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

AdditionalDataHeader::AdditionalDataHeader(std::vector<Field> const& fields) {
    for (Field const& field : fields) {
        entries_.push_back({field.name, field.type});
        names_ += (names_.empty() ? "" : ",") + quotedWhereNeeded(field.name);
    }
}

int AdditionalDataHeader::getFieldType(char const* name) const {
    for (Entry const& entry : entries_)
        if (name && entry.name == name) return entry.type;
    return VL::Interface::rftUnknown;
}

hdf5::Id128 contentId(FieldTable const& table) {
    hdf5::ContentHash hash;
    for (Field const& field : table.fields()) {
        std::string const name = platform::toUtf8(field.name);
        std::int32_t const type = field.type;
        std::uint64_t const count = field.count;
        hash.add(std::as_bytes(std::span(name.c_str(), name.size() + 1)));
        hash.add(std::as_bytes(std::span(&type, 1)));
        hash.add(std::as_bytes(std::span(&count, 1)));
        hash.add(field.values);
    }
    return hash.id();
}

}

StoredFields StoredFields::read(hdf5::GuardedFile const& file, hdf5::IndexRecord const& record) {
    StoredFields fields;
    auto const path = [](std::size_t place) { return "fields/" + datasetName(place); };
    for (std::size_t place = 0; file.exists(path(place)); ++place) fields.table.add(readField(file, path(place)));
    std::memcpy(fields.routes.bytes.data(), record.details.data(), fields.routes.bytes.size());
    return fields;
}

void StoredFields::write(hid_t file) const {
    hdf5::Handle const group = hdf5::createGroup(file, "fields");
    for (std::size_t place = 0; place < table.fields().size(); ++place)
        writeField(group.get(), datasetName(place), table.fields()[place]);
}

void StoredFields::describe(hdf5::IndexRecord& record) const {
    record.content = contentId(table);
    std::memcpy(record.details.data(), routes.bytes.data(), routes.bytes.size());
}

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
