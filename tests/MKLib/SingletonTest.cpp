#include "MKLib/Singleton.h"

#include "common/Reports.h"

#include <gmock/gmock.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace
{

std::string Endings;
std::atomic<int> Made{0};

template <char NAME>
struct Service
{
    Service() { ++Made; }
    ~Service() { Endings += NAME; }
    int Value = 0;
};

TEST(Singleton, IsMadeOnFirstUseAndAgainAfterItsEnd)
{
    using Instance = SingletonInstance<Service<'a'>>;
    EXPECT_FALSE(Instance::IsInstantiated());
    Instance::Get().Value = 5;
    EXPECT_EQ(Instance::Get().Value, 5);
    Instance::Destroy();
    EXPECT_FALSE(Instance::IsInstantiated());
    EXPECT_EQ(Instance::Get().Value, 0);
    Instance::Destroy();
    MKTest::Reports reports;
    Instance::Destroy();
    EXPECT_TRUE(reports.Has_Assert("mPtr != NULL"));
}

TEST(Singleton, AllEndWithTheLastMadeFirst)
{
    SingletonManager::Destroy_All();
    Endings.clear();
    SingletonInstance<Service<'x'>>::Get();
    SingletonInstance<Service<'y'>>::Get();
    SingletonInstance<Service<'z'>>::Get();
    SingletonManager::Destroy_All();
    EXPECT_EQ(Endings, "zyx");
    EXPECT_EQ(SingletonManager::Get_Singleton_Count(), 0);
}

TEST(Singleton, ThreadsThatRaceForTheFirstUseGetOneObject)
{
    using Instance = SingletonInstance<Service<'t'>>;
    Made = 0;
    std::atomic<bool> start{false};
    std::vector<void *> seen(8);
    std::vector<std::thread> threads;
    for (size_t i = 0; i < seen.size(); ++i)
        threads.emplace_back([&, i] {
            while (!start) std::this_thread::yield();
            seen[i] = &Instance::Get();
        });
    start = true;
    for (std::thread &thread : threads) thread.join();
    EXPECT_EQ(Made, 1);
    EXPECT_THAT(seen, testing::Each(&Instance::Get()));
    Instance::Destroy();
}

} // namespace
