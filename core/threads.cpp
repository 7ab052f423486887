#include <omp.h>
#include <sched.h>

#include <algorithm>

#include "vekcore.h"

namespace {

// Processors that the calling thread may run on. A machine with more of them than a cpu_set_t holds counts as
// unlimited.
int availableProcessors()
{
    cpu_set_t set;
    if (sched_getaffinity(0, sizeof set, &set) != 0)
        return INT32_MAX;
    return CPU_COUNT(&set);
}

}  // namespace

// Asks the system only if OpenMP would take more than one thread: most calls of a program that wants one are short.
int32_t ownGetNumThreads()
{
    const int wanted = omp_get_max_threads();
    return wanted <= 1 ? 1 : std::max(1, std::min(wanted, availableProcessors()));
}
