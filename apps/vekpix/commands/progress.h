// A progress bar on standard error, for work of which a user sees nothing else; silent where nobody watches.
#ifndef VEKPIX_COMMANDS_PROGRESS_H
#define VEKPIX_COMMANDS_PROGRESS_H

#include <chrono>
#include <cstdint>
#include <memory>

namespace vekpix {

class Progress {
public:
    // Shows `steps` steps of work, once it has lasted long enough to be noticed and if standard error is a terminal.
    explicit Progress(int64_t steps);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void advance(int64_t steps);

private:
    struct Bar;
    int64_t steps_;
    int64_t done_ = 0;
    bool watched_;
    std::chrono::steady_clock::time_point began_ = std::chrono::steady_clock::now();
    std::unique_ptr<Bar> bar_;
};

}  // namespace vekpix

#endif
