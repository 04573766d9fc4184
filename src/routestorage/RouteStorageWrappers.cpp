#include <cubes/routestorage/RouteStorageWrappers.h>

#include <mutex>

namespace VL::Interface {

namespace {

constexpr int noObject = -1;

bool createsFile(long mode) {
    constexpr long lowByte = 0xFF;
    return (mode & lowByte) == romCreate;
}

void openWithOwnSettings(RouteStorageInterface& storage, long mode) {
    TVlSettings const settings(storage.getFileName());
    storage.open(mode, settings.getInterface());
}

bool isError(char const* text) {
    return text && *text;
}

int openStorage(RouteStorageInterface* storage, long mode, SettingsInterface* settings) {
    if (!storage) return noObject;
    if (createsFile(mode) && !settings)
        openWithOwnSettings(*storage, mode);
    else
        storage->open(mode, settings);
    return isError(InterfaceUtilities::TLastError::getInstance()->VlGetLastError()) ? 0 : 1;
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

namespace VL::InterfaceUtilities {

TLastError::TLastError() : DynamiclinkLibraryT(VL::Interface::VLINTERFACEUTILITIES_DLL_NAME) {}

TLastError::~TLastError() = default;

TLastError* TLastError::getInstance() {
    static std::mutex mutex;
    // Never deleted: objects that are destroyed last may still use it.
    static TLastError* instance = nullptr;
    std::lock_guard const lock(mutex);
    if (!instance) instance = new TLastError;
    return instance;
}

char const* TLastError::VlGetLastError() {
    VL::Interface::LastErrorGetter* ask = getLastError_;
    if (!ask && getProcedure("VlInterfaceGetLastError", ask)) getLastError_ = ask;
    return ask ? ask() : nullptr;
}

}
