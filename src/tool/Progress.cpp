#include "tool/Progress.h"

#include "tool/Terminal.h"

#include <cstdio>

namespace cubes::tool {

Progress::Progress(std::string what) : what_(std::move(what)), watched_(messagesAreWatched()) {
    reached(0);
}

Progress::~Progress() {
    if (watched_) std::fputs("\r\x1b[K", stderr);
}

void Progress::reached(double share) {
    int const percent = static_cast<int>(share * 100);
    if (!watched_ || percent == shown_) return;
    shown_ = percent;
    std::fprintf(stderr, "\r%s: %d %%", what_.c_str(), percent);
    std::fflush(stderr);
}

}
