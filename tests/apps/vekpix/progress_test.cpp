// The progress bar, on a terminal and elsewhere.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <pty.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <thread>

#include "commands/progress.h"

namespace {

// Standard error for the life of the object: one end of `ends`, of which the other one is read.
class ErrorsRedirected {
public:
    explicit ErrorsRedirected(bool terminal)
    {
        EXPECT_EQ(0, terminal ? openpty(&ends_[0], &ends_[1], nullptr, nullptr, nullptr) : pipe(ends_));
        EXPECT_EQ(0, fcntl(ends_[0], F_SETFL, O_NONBLOCK));
        dup2(ends_[1], STDERR_FILENO);
    }
    ~ErrorsRedirected()
    {
        dup2(before_, STDERR_FILENO);
        for (const int end : {ends_[0], ends_[1], before_}) close(end);
    }
    ErrorsRedirected(const ErrorsRedirected&) = delete;
    ErrorsRedirected& operator=(const ErrorsRedirected&) = delete;

    std::string text() const
    {
        char bytes[4096];
        const ssize_t count = read(ends_[0], bytes, sizeof bytes);
        return {bytes, count > 0 ? static_cast<size_t>(count) : 0};
    }

private:
    int before_ = dup(STDERR_FILENO);
    int ends_[2] = {-1, -1};
};

// What long work of 100 steps shows that ends after `steps` of them.
std::string shown(bool terminal, int steps)
{
    const ErrorsRedirected errors(terminal);
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
