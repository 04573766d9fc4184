#include "host/platform/CallStack.h"

#include "host/platform/Demangled.h"

#include <algorithm>
#include <dlfcn.h>
#include <iterator>
#if __has_include(<execinfo.h>)
#include <execinfo.h>
#endif

namespace cubes::platform {

namespace {

constexpr std::size_t deepest = 1024;

std::vector<void*> returnAddresses() {
#if __has_include(<execinfo.h>)
    std::vector<void*> addresses(deepest);
    addresses.resize(static_cast<std::size_t>(::backtrace(addresses.data(), static_cast<int>(deepest))));
    return addresses;
#else
    return {};
#endif
}

StackFrame frameAt(void* address) {
    StackFrame frame;
    frame.address = reinterpret_cast<std::uintptr_t>(address);
    // A call may be the last instruction of its function; one back we are inside it for certain.
    Dl_info info{};
    if (::dladdr(static_cast<char*>(address) - 1, &info) == 0) return frame;
    if (info.dli_fname) frame.module = info.dli_fname;
    if (info.dli_sname) frame.function = demangled(info.dli_sname);
    return frame;
}

}

std::vector<StackFrame> callStack(void const* returnAddress) {
    std::vector<void*> const addresses = returnAddresses();
    auto const caller = std::find(addresses.begin(), addresses.end(), returnAddress);
    std::vector<StackFrame> frames;
    std::transform(
        caller == addresses.end() ? addresses.begin() : caller, addresses.end(), std::back_inserter(frames), frameAt);
    return frames;
}

}
