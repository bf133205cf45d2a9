#include "MKLib/Singleton.h"

#include <gmock/gmock.h>

#include <atomic>
#include <thread>
#include <vector>

namespace
{

std::atomic<int> Made{0};

struct Service
{
    Service() { ++Made; }
};

TEST(Singleton, ThreadsThatRaceForTheFirstUseGetOneObject)
{
    using Instance = SingletonInstance<Service>;
    Made = 0;
    std::atomic<bool> start{false};
    std::vector<void *> seen(8);
    std::vector<std::jthread> threads;
    for (size_t i = 0; i < seen.size(); ++i)
        threads.emplace_back([&, i] {
            while (!start) std::this_thread::yield();
            seen[i] = &Instance::Get();
        });
    start = true;
    threads.clear();
    EXPECT_EQ(Made, 1);
    EXPECT_THAT(seen, testing::Each(&Instance::Get()));
    Instance::Destroy();
}

} // namespace
