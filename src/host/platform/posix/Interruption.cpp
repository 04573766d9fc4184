#include "host/platform/Interruption.h"

#include <atomic>
#include <csignal>

namespace cubes::platform {

namespace {

std::atomic<int> noted = 0;
static_assert(std::atomic<int>::is_always_lock_free);

// The second request, of whichever kind, comes back as the system's own when this function returns.
extern "C" void note(int signal) {
    int none = 0;
    if (noted.compare_exchange_strong(none, signal)) return;
    ::signal(signal, SIG_DFL);
    ::raise(signal);
}

bool isIgnored(int signal) {
    struct sigaction present {};
    return ::sigaction(signal, nullptr, &present) == 0 && present.sa_handler == SIG_IGN;
}

}

void noteInterruptions() {
    // Calls that wait, as for input from a pipe, fail with EINTR.
    struct sigaction action {};
    action.sa_handler = note;
    for (int const signal : {SIGINT, SIGTERM, SIGHUP})
        if (!isIgnored(signal)) ::sigaction(signal, &action, nullptr);
}

int interruption() noexcept {
    return noted;
}

}
