#pragma once

#include <cubes/Export.h>
#include <cubes/routestorage/DynamiclinkLibraryT.h>
#include <cubes/routestorage/RouteStorageInterface.h>

#include <atomic>

namespace VL::InterfaceUtilities {

/// The last error that an object of the route-storage provider left, asked of the library
/// "vlinterfaceutilities64.dll".
class CUBES_API TLastError final : public Pattern::DynamiclinkLibraryT<Pattern::DllNoUnloadpolicyA> {
public:
    ~TLastError() override;

    /// The one object of the process, made at the first call; it lives until the process ends.
    /// Throws DllNotLoaded when the library cannot be loaded; the next call tries again.
    static TLastError* getInstance();

    /// What went wrong in the calling thread's last operation on a provider's object: "" when
    /// nothing did, null when the library cannot tell. The text holds until the next operation.
    char const* VlGetLastError();

private:
    TLastError();

    // Threads share the object.
    std::atomic<VL::Interface::LastErrorGetter*> getLastError_ = nullptr;
};

}
