#include "host/platform/CallStack.h"

#include "host/platform/SharedLibrary.h"

#include <windows.h>

#include <dbghelp.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <mutex>

namespace cubes::platform {

namespace {

constexpr std::size_t longestName = 1024;

// The process for the debug-help functions, with the modules that are loaded by now.
HANDLE symbols() {
    HANDLE const process = ::GetCurrentProcess();
    static bool const known = [process] {
        ::SymSetOptions(::SymGetOptions() | SYMOPT_UNDNAME | SYMOPT_LOAD_LINES | SYMOPT_DEFERRED_LOADS);
        return ::SymInitialize(process, nullptr, FALSE) != FALSE;
    }();
    if (known) ::SymRefreshModuleList(process);
    return process;
}

std::string functionAt(HANDLE process, DWORD64 place) {
    // The name follows the structure, whose last member is its first character.
    alignas(SYMBOL_INFO) char memory[sizeof(SYMBOL_INFO) + longestName] = {};
    auto* const symbol = reinterpret_cast<SYMBOL_INFO*>(memory);
    symbol->SizeOfStruct = sizeof(SYMBOL_INFO);
    symbol->MaxNameLen = longestName;
    if (!::SymFromAddr(process, place, nullptr, symbol)) return {};
    return demangled(symbol->Name);
}

std::optional<unsigned long> lineAt(HANDLE process, DWORD64 place) {
    IMAGEHLP_LINE64 line{};
    line.SizeOfStruct = sizeof line;
    DWORD ignored = 0;
    if (!::SymGetLineFromAddr64(process, place, &ignored, &line)) return std::nullopt;
    return line.LineNumber;
}

StackFrame frameAt(HANDLE process, void* address) {
    // A call may be the last instruction of its function; the byte before the return address is certainly inside it.
    char* const call = static_cast<char*>(address) - 1;
    auto const place = static_cast<DWORD64>(reinterpret_cast<std::uintptr_t>(call));
    return {reinterpret_cast<std::uintptr_t>(address), moduleFile(call), functionAt(process, place),
        lineAt(process, place)};
}

}

std::vector<StackFrame> callStack() {
    // The debug-help functions may be called by one thread at a time.
    static std::mutex mutex;
    std::array<void*, 1024> addresses{};
    USHORT const depth = ::RtlCaptureStackBackTrace(0, static_cast<DWORD>(addresses.size()), addresses.data(), nullptr);
    std::lock_guard const lock(mutex);
    HANDLE const process = symbols();
    std::vector<StackFrame> frames;
    std::transform(addresses.begin(), addresses.begin() + depth, std::back_inserter(frames),
        [process](void* address) { return frameAt(process, address); });
    return frames;
}

}
