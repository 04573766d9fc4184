#include "host/platform/Debugger.h"

#include <windows.h>

namespace cubes::platform {

bool isDebuggerAttached() {
    return ::IsDebuggerPresent() != FALSE;
}

void breakIntoDebugger() {
    ::DebugBreak();
}

void writeToDebugger(char const* text) {
    ::OutputDebugStringA(text);
}

void writeToDebugger(wchar_t const* text) {
    ::OutputDebugStringW(text);
}

}
