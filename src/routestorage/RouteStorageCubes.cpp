#include <cubes/routestorage/RouteStorageCube.h>
#include <cubes/routestorage/RouteStorageDataCube.h>
#include <cubes/routestorage/RouteStorageWrappers.h>

#include "catalogue/ProjectCall.h"
#include "host/platform/Files.h"
#include "routestorage/FieldNames.h"
#include "routestorage/RouteNames.h"

#include <array>
#include <iterator>

using namespace cubes::routestorage;
using namespace VL::Interface;
using cubes::catalogue::ProjectCall;

namespace {

// By RouteFieldType. Callers rely on the spelling of the third.
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

RkCubeTypes const RouteStorageCube::CubeType = ctRouteSet;
RkMatrixType const RouteStorageCube::MatrixType = mtMatrixCube;
char const* const RouteStorageCube::Ext = "FDB";

RouteStorageCube::RouteStorageCube(TRkGlobalSettings* settings) : RouteStorageCube(settings, nullptr) {}

RouteStorageCube::RouteStorageCube(TRkGlobalSettings* settings, char const* directory)
    : RouteStorageBaseCube(settings, directory, Ext, CubeType, MatrixType) {}

RouteStorageCube::RouteStorageCube(RouteStorageCube const&) = default;
RouteStorageCube& RouteStorageCube::operator=(RouteStorageCube const&) = default;
RouteStorageCube::~RouteStorageCube() = default;

bool RouteStorageCube::GetChilds(short p, short m, short t, short u, short r, short i, TRkAutoListT<TKey>& list) const {
    ProjectCall const call(settings_);
    list.Clear();
    return isCorrect(p, m, t, u, r, i) && GetChildsAll(p, m, t, u, r, i, list);
}

TRkString RouteStorageCube::MakeFilename(short p, short m, short t, short u, short r, short i) {
    return routeFileStem(routeSetDirectory, {p, m, t, u, r, i});
}

bool RouteStorageCube::MakeFilename(char const* text, int& p, int& m, int& t, int& u, int& r, int& i) {
    constexpr std::array directories = {routeSetDirectory};
    return readRouteFileName(text, directories, {&p, &m, &t, &u, &r, &i});
}

RkCubeTypes const RouteStorageDataCube::CubeType = ctRouteData;
RkMatrixType const RouteStorageDataCube::MatrixType = mtMatrixCube;
char const* const RouteStorageDataCube::Ext = "FDB";

RouteStorageDataCube::RouteStorageDataCube(TRkGlobalSettings* settings) : RouteStorageDataCube(settings, nullptr) {}

RouteStorageDataCube::RouteStorageDataCube(TRkGlobalSettings* settings, char const* directory)
    : RouteStorageBaseCube(settings, directory, Ext, CubeType, MatrixType) {}

RouteStorageDataCube::RouteStorageDataCube(RouteStorageDataCube const&) = default;
RouteStorageDataCube& RouteStorageDataCube::operator=(RouteStorageDataCube const&) = default;
RouteStorageDataCube::~RouteStorageDataCube() = default;

TRkString RouteStorageDataCube::MakeFilename(short p, short m, short t, short u, short r, short i) {
    return routeFileStem(routeDataDirectory, {p, m, t, u, r, i});
}

bool RouteStorageDataCube::MakeFilename(char const* text, int& p, int& m, int& t, int& u, int& r, int& i) {
    constexpr std::array directories = {routeSetDirectory, routeDataDirectory};
    return readRouteFileName(text, directories, {&p, &m, &t, &u, &r, &i});
}

Metadata::Vector<Metadata::Field*>* RouteStorageDataCube::getFieldMetadata(
    short p, short m, short t, short u, short r, short i) const {
    ProjectCall const call(settings_);
    cubes::Reference<Metadata::Vector<Metadata::Field*>> fields(new Metadata::Vector<Metadata::Field*>);
    std::string const file = FileName(p, m, t, u, r, i, false).str();
    if (!cubes::platform::exists(file)) return fields.release();
    TVlRouteStorageDataSet const storage(file.c_str());
    TVlAdditionalDataHeader const wrapper(readHeader(storage.getInterface()));
    auto const* const header = wrapper.getInterface();
    char const* const names = header ? header->getFieldNames() : nullptr;
    for (std::string const& name : splitFieldNames(names ? names : "")) fields->append(fieldOf(*header, name).get());
    return fields.release();
}
