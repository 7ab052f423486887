// The progress bar, on a terminal and elsewhere.
#include <gtest/gtest.h>

#include <pty.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <thread>

#include "commands/progress.h"

namespace {

// Takes what goes to standard error, at a terminal or a pipe.
class ErrorsRedirected {
public:
    explicit ErrorsRedirected(bool terminal)
    {
        EXPECT_EQ(0, terminal ? openpty(&ends_[0], &ends_[1], nullptr, nullptr, nullptr) : pipe(ends_));
        dup2(ends_[1], STDERR_FILENO);
    }
    ~ErrorsRedirected() { close(ends_[0]); }
    ErrorsRedirected(const ErrorsRedirected&) = delete;
    ErrorsRedirected& operator=(const ErrorsRedirected&) = delete;

    // All that was written. Standard error is the former one again: only a closed end lets the other be read to its
    // end.
    std::string text()
    {
        dup2(before_, STDERR_FILENO);
        close(before_);
        close(ends_[1]);
        std::string all;
        char bytes[4096];
        for (ssize_t count = 0; (count = read(ends_[0], bytes, sizeof bytes)) > 0;)
            all.append(bytes, static_cast<size_t>(count));
        return all;
    }

private:
    int before_ = dup(STDERR_FILENO);
    int ends_[2] = {-1, -1};
};

// What long work of 100 steps shows that ends after `steps` of them.
std::string shown(bool terminal, int steps)
{
    ErrorsRedirected errors(terminal);
    {
        vekpix::Progress progress(100);
        std::this_thread::sleep_for(std::chrono::milliseconds(510));
        progress.advance(steps);
    }
    return errors.text();
}

}  // namespace

TEST(Progress, IsShownOnTerminalsOnly)
{
    EXPECT_NE(std::string::npos, shown(true, 100).find("100%"));
    EXPECT_EQ("", shown(false, 100));
}

TEST(Progress, WorkThatStopsEarlyEndsItsLineToo)
{
    for (const int steps : {100, 50}) {
        const std::string bar = shown(true, steps);
        EXPECT_TRUE(bar.ends_with("*\r\n")) << bar;
    }
}
