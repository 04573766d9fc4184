#include "host/platform/Interruption.h"

#include <atomic>
#include <csignal>

#include <windows.h>

namespace cubes::platform {

namespace {

std::atomic<int> noted = 0;

// Runs in a thread of its own.
BOOL WINAPI note(DWORD event) {
    int none = 0;
    if (!noted.compare_exchange_strong(none, event == CTRL_C_EVENT ? SIGINT : SIGTERM)) return FALSE;
    // When the session ends, the system ends the process as soon as this function returns.
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) ::Sleep(INFINITE);
    return TRUE;
}

}

void noteInterruptions() {
    ::SetConsoleCtrlHandler(note, TRUE);
}

int interruption() noexcept {
    return noted;
}

}
