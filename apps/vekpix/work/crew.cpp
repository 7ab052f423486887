#include "work/crew.h"

#include <system_error>
#include <utility>

namespace vekpix {

Crew::Crew(int threads)
{
    try {
        for (int i = 1; i < threads; ++i) helpers_.emplace_back([this] { help(); });
    } catch (const std::system_error&) {  // the system gives no more of them: those that there are do the work
    }
}

Crew::~Crew()
{
    const std::lock_guard lock(mutex_);
    dismissed_ = true;
    workThere_.notify_all();
}

void Crew::help()
{
    std::unique_lock lock(mutex_);
    for (;;) {
        workThere_.wait(lock, [this] { return dismissed_ || begun_ < items_; });
        if (dismissed_)
            return;
        doNextItem(lock);
    }
}

void Crew::doNextItem(std::unique_lock<std::mutex>& lock)
{
    const int item = begun_++;
    lock.unlock();
    std::exception_ptr failure;
    try {
        (*work_)(item);
    } catch (...) {
        failure = std::current_exception();
    }
    lock.lock();
    if (failure && !failure_) {
        failure_ = std::move(failure);
        items_ = begun_;
    }
    if (++ended_ == items_)
        allDone_.notify_one();
}

void Crew::run(int items, const std::function<void(int)>& work)
{
    std::unique_lock lock(mutex_);
    work_ = &work;
    items_ = items;
    begun_ = 0;
    ended_ = 0;
    if (items > 1)
        workThere_.notify_all();
    while (begun_ < items_) doNextItem(lock);
    allDone_.wait(lock, [this] { return ended_ == items_; });
    if (failure_)
        std::rethrow_exception(std::exchange(failure_, nullptr));
}

}  // namespace vekpix
