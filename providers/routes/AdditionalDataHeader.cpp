#include "AdditionalDataHeader.h"

namespace cubes::routes {

namespace {

std::string quotedWhereNeeded(std::string const& name) {
    if (name.find_first_of(" ,\"") == std::string::npos) return name;
    std::string quoted = "\"";
    for (char const letter : name) quoted += letter == '"' ? std::string("\"\"") : std::string(1, letter);
    return quoted + '"';
}

}

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

}
