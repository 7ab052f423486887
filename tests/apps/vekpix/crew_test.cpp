#include "work/crew.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <vector>

using vekpix::Crew;

TEST(Crew, DoesEveryItemOnceAndThenReturns)
{
    for (const int threads : {1, 2, 5}) {
        Crew crew(threads);
        for (int items = 0; items < 200; items += 1 + items / 3) {
            std::vector<int> done(static_cast<size_t>(items));  // not atomic: an item is one thread's
            crew.run(items, [&](int item) { ++done[static_cast<size_t>(item)]; });
            EXPECT_EQ(std::vector<int>(static_cast<size_t>(items), 1), done);
        }
    }
}

TEST(Crew, OneThreadKeepsTheOrder)
{
    Crew crew(1);
    std::vector<int> order;
    crew.run(4, [&](int item) { order.push_back(item); });
    EXPECT_EQ((std::vector<int>{0, 1, 2, 3}), order);
}

TEST(Crew, AnExceptionEndsTheWorkAndTheCrewIsAsBefore)
{
    for (const int threads : {1, 2, 5}) {
        Crew crew(threads);
        for (int round = 0; round < 20; ++round) {
            std::atomic<int> begun = 0;
            EXPECT_THROW(crew.run(10000,
                                  [&](int item) {
                                      ++begun;
                                      if (item >= 3)
                                          throw std::runtime_error("item");
                                  }),
                         std::runtime_error);
            EXPECT_GE(begun, 4);
            EXPECT_LE(begun, 3 + threads);
            begun = 0;
            crew.run(50, [&](int) { ++begun; });
            EXPECT_EQ(50, begun);
        }
    }
}
