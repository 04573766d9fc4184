#include "tool/Progress.h"

#include "tool/Errors.h"
#include "tool/Terminal.h"
#include "tool/Text.h"

#include <cstdio>

namespace cubes::tool {

Progress::Progress(std::string task) : task_(escaped(task)), isTerminal_(messagesAreWatched()) {
    reached(0);
}

Progress::~Progress() {
    if (isTerminal_) std::fputs("\r\x1b[K", stderr);
}

void Progress::reached(double share) {
    stopIfInterrupted();
    int const percent = static_cast<int>(share * 100);
    if (!isTerminal_ || percent == shown_) return;
    shown_ = percent;
    std::fprintf(stderr, "\r%s: %d %%", task_.c_str(), percent);
    std::fflush(stderr);
}

}
