#pragma once

#include <cubes/Export.h>
#include <cubes/routestorage/DynamiclinkLibraryT.h>
#include <cubes/routestorage/RouteStorageInterface.h>

#include <atomic>

/// Owners of the objects that a route-storage provider creates.
namespace VL::Interface {

/// Owns an object that the route-storage provider created for one route file, and releases it at
/// the end. Loads the library "routeprovider64.dll".
template <typename Provided>
class ProvidedObjectT : public Pattern::DynamiclinkLibraryT<Pattern::DllNoUnloadpolicyA> {
public:
    ~ProvidedObjectT() override {
        if (object_) object_->release();
    }

    /// The object, without adding a reference; null when the provider has no such objects.
    Provided* getInterface() const noexcept { return object_; }

protected:
    using Factory = Provided*(char const* fileName);

    /// Throws DllNotLoaded.
    ProvidedObjectT() : DynamiclinkLibraryT("routeprovider64.dll") {}

    void own(Provided* object) noexcept { object_ = object; }
    /// Returns a new object of the exported factory, which the caller releases; null without a factory.
    Provided* make(char const* factory, char const* fileName) {
        if (!factory_) getProcedure(factory, factory_);
        return factory_ ? factory_(fileName) : nullptr;
    }

private:
    Factory* factory_ = nullptr;
    Provided* object_ = nullptr;
};

/// Settings for opening a route file.
class CUBES_API TVlSettings final : public ProvidedObjectT<SettingsInterface> {
public:
    /// Throws DllNotLoaded without a provider.
    explicit TVlSettings(char const* fileName);
    ~TVlSettings() override;

    /// Creates further settings, which the caller releases once; null when the provider has none.
    SettingsInterface* CreateInterface(char const* fileName);
};

/// A route set stored in a file.
class CUBES_API TVlRouteStorageRouteSet final : public ProvidedObjectT<VelmoraRouteStorageRouteSetInterface> {
public:
    /// Reads and writes nothing before open. Throws DllNotLoaded without a provider.
    explicit TVlRouteStorageRouteSet(char const* fileName);
    ~TVlRouteStorageRouteSet() override;

    /// Creates a further object, which the caller releases once; null when the provider has no
    /// route sets.
    VelmoraRouteStorageRouteSetInterface* CreateVelmoraRouteStorageRouteSetInterface(char const* fileName);

    /// Opens the file and returns 1, or 0 on failure (TLastError reports why), or -1 without an
    /// object. `mode`: see RouteOpenMode; with a low byte of 1 and null settings, settings are
    /// created for the file. Throws DllNotLoaded when the utilities library cannot be loaded.
    int open(long mode, SettingsInterface* settings);
};

/// Route data stored in a file.
class CUBES_API TVlRouteStorageDataSet final : public ProvidedObjectT<VelmoraRouteStorageDataSetInterface> {
public:
    /// Reads and writes nothing before open. Throws DllNotLoaded without a provider.
    explicit TVlRouteStorageDataSet(char const* fileName);
    ~TVlRouteStorageDataSet() override;

    /// Creates a further object, which the caller releases once; null when the provider has no
    /// route data.
    VelmoraRouteStorageDataSetInterface* CreateVelmoraRouteStorageDataSetInterface(char const* fileName);

    /// As TVlRouteStorageRouteSet::open.
    int open(long mode, SettingsInterface* settings);
};

/// Owns the header of route data and releases it at the end. Not copyable.
class CUBES_API TVlAdditionalDataHeader final {
public:
    /// Takes over the caller's reference; null means that there is no header.
    explicit TVlAdditionalDataHeader(AdditionalDataHeaderInterface* header) noexcept;
    ~TVlAdditionalDataHeader();
    TVlAdditionalDataHeader(TVlAdditionalDataHeader const&) = delete;
    TVlAdditionalDataHeader& operator=(TVlAdditionalDataHeader const&) = delete;

    /// The header, without adding a reference; null when there is none.
    AdditionalDataHeaderInterface* getInterface() const noexcept { return header_; }

private:
    AdditionalDataHeaderInterface* header_;
};

}

namespace VL::InterfaceUtilities {

/// Reports the last error of the route-storage provider's objects. Loads the library
/// "vlinterfaceutilities64.dll".
class CUBES_API TLastError final : public Pattern::DynamiclinkLibraryT<Pattern::DllNoUnloadpolicyA> {
public:
    ~TLastError() override;

    /// The one object of the process, created by the first call; it lives until the process ends.
    /// Throws DllNotLoaded when the library cannot be loaded; the next call tries again.
    static TLastError* getInstance();

    /// The error of the calling thread's last operation on a provider's object: "" for success,
    /// null when the library does not export it. Valid until the next operation.
    char const* VlGetLastError();

private:
    TLastError();

    // Threads share the object.
    std::atomic<VL::Interface::LastErrorGetter*> getLastError_ = nullptr;
};

}
