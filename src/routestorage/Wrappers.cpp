// What the provider makes, each kind by its own factory.

#include <cubes/routestorage/TLastError.h>
#include <cubes/routestorage/TVlAdditionalDataHeader.h>
#include <cubes/routestorage/TVlRouteStorageDataSet.h>
#include <cubes/routestorage/TVlRouteStorageRouteSet.h>
#include <cubes/routestorage/TVlSettings.h>

namespace VL::Interface {

namespace {

constexpr int notThere = -1;

bool createsFile(long mode) {
    constexpr long lowByte = 0xFF;
    return (mode & lowByte) == romCreate;
}

void openWithOwnSettings(RouteStorageInterface& storage, long mode) {
    TVlSettings const settings(storage.getFileName());
    storage.open(mode, settings.getInterface());
}

bool isTextThere(char const* text) {
    return text && *text;
}

int openStorage(RouteStorageInterface* storage, long mode, SettingsInterface* settings) {
    if (!storage) return notThere;
    if (createsFile(mode) && !settings)
        openWithOwnSettings(*storage, mode);
    else
        storage->open(mode, settings);
    return isTextThere(InterfaceUtilities::TLastError::getInstance()->VlGetLastError()) ? 0 : 1;
}

}

TVlSettings::TVlSettings(char const* fileName) {
    own(CreateInterface(fileName));
}

TVlSettings::~TVlSettings() = default;

SettingsInterface* TVlSettings::CreateInterface(char const* fileName) {
    return make("CreateSettingsInterface", fileName);
}

TVlRouteStorageRouteSet::TVlRouteStorageRouteSet(char const* fileName) {
    own(CreateVelmoraRouteStorageRouteSetInterface(fileName));
}

TVlRouteStorageRouteSet::~TVlRouteStorageRouteSet() = default;

VelmoraRouteStorageRouteSetInterface* TVlRouteStorageRouteSet::CreateVelmoraRouteStorageRouteSetInterface(
    char const* fileName) {
    return make("CreateVelmoraRouteStorageRouteSetInterface", fileName);
}

int TVlRouteStorageRouteSet::open(long mode, SettingsInterface* settings) {
    return openStorage(getInterface(), mode, settings);
}

TVlRouteStorageDataSet::TVlRouteStorageDataSet(char const* fileName) {
    own(CreateVelmoraRouteStorageDataSetInterface(fileName));
}

TVlRouteStorageDataSet::~TVlRouteStorageDataSet() = default;

VelmoraRouteStorageDataSetInterface* TVlRouteStorageDataSet::CreateVelmoraRouteStorageDataSetInterface(
    char const* fileName) {
    return make("CreateVelmoraRouteStorageDataSetInterface", fileName);
}

int TVlRouteStorageDataSet::open(long mode, SettingsInterface* settings) {
    return openStorage(getInterface(), mode, settings);
}

TVlAdditionalDataHeader::TVlAdditionalDataHeader(AdditionalDataHeaderInterface* header) noexcept : header_(header) {}

TVlAdditionalDataHeader::~TVlAdditionalDataHeader() {
    if (header_) header_->release();
}

}
