#include <cubes/routestorage/RouteStorageDataCube.h>

#include <cubes/routestorage/TVlAdditionalDataHeader.h>
#include <cubes/routestorage/TVlRouteStorageDataSet.h>

#include "host/platform/Files.h"
#include "routestorage/FieldNames.h"

#include <iterator>

using namespace VL::Interface;

namespace {

// By RouteFieldType. Readers know the third as it is spelled here.
constexpr char const* typeNames[] = {"boolean", "bytes", "smalint", "integer", "float", "double"};

char const* typeName(int type) {
    bool const isKnown = type >= rftBoolean && type < static_cast<int>(std::size(typeNames));
    return isKnown ? typeNames[type] : "unknown";
}

cubes::Reference<Metadata::Field> fieldOf(AdditionalDataHeaderInterface const& header, std::string const& name) {
    cubes::Reference<Metadata::Field> field(new Metadata::Field);
    int const type = header.getFieldType(name.c_str());
    field->setName(name.c_str());
    field->setType(typeName(type));
    field->setSize(type == rftBytes ? 1 : 0);
    return field;
}

AdditionalDataHeaderInterface* readHeader(VelmoraRouteStorageDataSetInterface* storage) {
    if (!storage) return nullptr;
    storage->open(romRead, nullptr);
    return storage->getAdditionalDataHeader();
}

}

Metadata::Vector<Metadata::Field*>* RouteStorageDataCube::getFieldMetadata(
    short p, short m, short t, short u, short r, short i) const {
    cubes::Reference<Metadata::Vector<Metadata::Field*>> fields(new Metadata::Vector<Metadata::Field*>);
    std::string const file = FileName(p, m, t, u, r, i, false).str();
    if (!cubes::platform::exists(file)) return fields.release();
    TVlRouteStorageDataSet const storage(file.c_str());
    TVlAdditionalDataHeader const wrapper(readHeader(storage.getInterface()));
    auto const* const header = wrapper.getInterface();
    char const* const names = header ? header->getFieldNames() : nullptr;
    for (std::string const& name : cubes::routestorage::splitFieldNames(names ? names : ""))
        fields->append(fieldOf(*header, name).get());
    return fields.release();
}
