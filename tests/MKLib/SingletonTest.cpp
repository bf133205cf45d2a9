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
};

TEST(Singleton, AllEndWithTheLastMadeFirst)
{
    SingletonManager::Destroy_All();
    Endings.clear();
    SingletonInstance<Service<'x'>>::Get();
    SingletonInstance<Service<'y'>>::Get();
    SingletonInstance<Service<'z'>>::Get();
    SingletonManager::Destroy_All();
    EXPECT_EQ(Endings, "zyx");
    EXPECT_FALSE(SingletonInstance<Service<'x'>>::IsInstantiated());
    SingletonInstance<Service<'x'>>::Get(); // once more
    SingletonInstance<Service<'x'>>::Destroy();
    EXPECT_EQ(Endings, "zyxx");
}

TEST(Singleton, ThreadsThatRaceForTheFirstUseGetOneObject)
{
    using Instance = SingletonInstance<Service<'t'>>;
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
