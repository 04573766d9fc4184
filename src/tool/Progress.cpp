#include "tool/Progress.h"

#include "tool/Terminal.h"

#include <cstdio>

namespace cubes::tool {

Progress::Progress(std::string what, std::size_t steps)
    : what_(std::move(what)), steps_(steps), watched_(messagesAreWatched()) {
    if (watched_) show();
}

Progress::~Progress() {
    if (watched_) std::fputs("\r\x1b[K", stderr);
}

void Progress::step() {
    ++done_;
    if (watched_) show();
}

void Progress::show() {
    int const percent = steps_ == 0 ? 100 : static_cast<int>(done_ * 100 / steps_);
    if (percent == shown_) return;
    shown_ = percent;
    std::fprintf(stderr, "\r%s: %d %%", what_.c_str(), percent);
    std::fflush(stderr);
}

}
