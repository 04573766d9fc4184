#include <cubes/routestorage/TLastError.h>

#include <mutex>

namespace VL::InterfaceUtilities {

TLastError::TLastError() : DynamiclinkLibraryT(VL::Interface::VLINTERFACEUTILITIES_DLL_NAME) {}

TLastError::~TLastError() = default;

TLastError* TLastError::getInstance() {
    static std::mutex mutex;
    // Never deleted: whoever ends last may still ask it.
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
