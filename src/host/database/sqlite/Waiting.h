#pragma once

#include <chrono>

namespace cubes::database::sqlite {

/// How long one operation waits for other processes that write.
/// Tests make it shorter.
extern std::chrono::milliseconds longestWait;

/// A busy handler for SQLite: waits a moment and gives 1 to try again, 0 to give up. A commit
/// takes a few hundred microseconds, so the waits are of that size; SQLite's own handler soon
/// sleeps for a tenth of a second.
int waitForOthers(void* context, int attempt) noexcept;

/// Repeats an operation that SQLite refuses while others write without asking the handler.
/// Gives the last result.
template <typename Operation>
int retryWhileBusy(Operation const& operation) {
    constexpr int busy = 5;
    for (int attempt = 0;; ++attempt) {
        int const code = operation();
        if ((code & 0xFF) != busy || !waitForOthers(nullptr, attempt)) return code;
    }
}

}
