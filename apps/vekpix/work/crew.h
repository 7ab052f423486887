// Threads that share the items of a piece of work. Those that have nothing to do sleep: waiting costs no processor
// time, so that a crew loses little on a machine that is busy with other things.
#ifndef VEKPIX_WORK_CREW_H
#define VEKPIX_WORK_CREW_H

#include <condition_variable>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace vekpix {

class Crew {
public:
    // The thread that calls run() counts as one.
    explicit Crew(int threads);
    ~Crew();
    Crew(const Crew&) = delete;
    Crew& operator=(const Crew&) = delete;

    // Calls work(0) to work(items - 1), begun in this order, and returns when all have ended. The first exception is
    // thrown from here, and items that had not begun then do not begin.
    void run(int items, const std::function<void(int item)>& work);

private:
    void help();
    void doNextItem(std::unique_lock<std::mutex>& lock);

    std::mutex mutex_;
    std::condition_variable workThere_;
    std::condition_variable allDone_;
    const std::function<void(int)>* work_ = nullptr;
    int items_ = 0;
    int begun_ = 0;
    int ended_ = 0;
    bool dismissed_ = false;
    std::exception_ptr failure_;
    std::vector<std::jthread> helpers_;
};

}  // namespace vekpix

#endif
