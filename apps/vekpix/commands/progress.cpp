#include "commands/progress.h"

#include <unistd.h>

#include <boost/timer/progress_display.hpp>
#include <iostream>

namespace vekpix {

struct Progress::Bar {
    explicit Bar(int64_t steps) : display(static_cast<unsigned long>(steps), std::cerr) {}
    boost::timer::progress_display display;
};

Progress::Progress(int64_t steps) : steps_(steps), watched_(isatty(STDERR_FILENO) == 1) {}

Progress::~Progress()
{
    if (bar_ && bar_->display.count() < bar_->display.expected_count())
        std::cerr << std::endl;  // what stopped the work is told in a line of its own
}

void Progress::advance(int64_t steps)
{
    done_ += steps;
    if (!watched_)
        return;
    if (!bar_ && std::chrono::steady_clock::now() - began_ > std::chrono::milliseconds(500))
        bar_ = std::make_unique<Bar>(steps_);
    if (bar_)
        bar_->display += static_cast<unsigned long>(done_) - bar_->display.count();
}

}  // namespace vekpix
