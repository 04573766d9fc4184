#include "host/platform/CallStack.h"

#include <algorithm>
#include <array>
#include <dlfcn.h>
#include <execinfo.h>
#include <iterator>

namespace cubes::platform {

namespace {

StackFrame frameAt(void* address) {
    StackFrame frame;
    frame.address = reinterpret_cast<std::uintptr_t>(address);
    // A call may be the last instruction of its function; the byte before the return address is certainly inside it.
    Dl_info info{};
    if (::dladdr(static_cast<char*>(address) - 1, &info) == 0) return frame;
    if (info.dli_fname) frame.module = info.dli_fname;
    if (info.dli_sname) frame.function = demangled(info.dli_sname);
    return frame;
}

}

std::vector<StackFrame> callStack() {
    std::array<void*, 1024> addresses{};
    int const depth = ::backtrace(addresses.data(), static_cast<int>(addresses.size()));
    std::vector<StackFrame> frames;
    std::transform(addresses.begin(), addresses.begin() + depth, std::back_inserter(frames), frameAt);
    return frames;
}

}
