#include "host/database/sqlite/Waiting.h"

#include <algorithm>
#include <thread>

namespace cubes::database::sqlite {

std::chrono::milliseconds longestWait{10000};

namespace {

using Clock = std::chrono::steady_clock;

// A thread waits in one operation at a time, whose first attempt starts the clock: the session's
// lock keeps other threads off the connection meanwhile.
thread_local Clock::time_point waitingSince;

}

int waitForOthers(void* /*context*/, int attempt) noexcept {
    if (attempt == 0) waitingSince = Clock::now();
    if (Clock::now() - waitingSince > longestWait) return 0;
    // 20 microseconds at first, up to 1 ms for a writer that takes its time.
    std::this_thread::sleep_for(std::chrono::microseconds(std::min(20 * (attempt + 1), 1000)));
    return 1;
}

}
