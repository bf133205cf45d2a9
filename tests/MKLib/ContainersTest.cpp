#include "MKLib/FastPtrHashMap.h"
#include "MKLib/MemoryPool.h"
#include "MKLib/MultiLinkedList.h"
#include "MKLib/Vector.h"

#include "MKLib/MKString.h"
#include "common/Reports.h"

#include <gmock/gmock.h>

#include <map>
#include <memory>
#include <optional>
#include <random>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

template <typename V>
class VectorTest : public testing::Test
{
public:
    std::vector<int> Active() const { return {Vector.begin(), Vector.end()}; }
    V Vector;
};
using VectorKinds =
    testing::Types<DynamicVectorClass<int, VECTOR_STORAGE_OBJECTS>, DynamicVectorClass<int, VECTOR_STORAGE_PLAIN>>;
TYPED_TEST_SUITE(VectorTest, VectorKinds);

TYPED_TEST(VectorTest, ResizesAsToldAndCarriesTheFlag)
{
    auto &vector = this->Vector;
    vector.Set_Flag(true);
    vector.Resize(8);
    for (int i = 0; i < 5; ++i) vector.Add(i * 10);
    vector.Remove(1);
    EXPECT_EQ(vector.Find(40), 3);
    EXPECT_EQ(vector.Find(10), -1);
    vector.Resize(3);
    EXPECT_THAT(this->Active(), ElementsAre(0, 20, 30));
    vector.Resize(0, true);
    EXPECT_EQ(vector.Get_Capacity(), 0);
    vector.Add(7);
    EXPECT_THAT(this->Active(), ElementsAre(7));
    EXPECT_TRUE(vector.Get_Flag());
}

TYPED_TEST(VectorTest, TakesAnElementOfItsOwnAndReportsAnIndexOutOfTheActiveOnes)
{
    auto &vector = this->Vector;
    vector.Add(42);
    for (int i = 0; i < 1000; ++i) vector.Add(vector[0]);
    vector.Resize(2000);
    MKTest::Reports reports;
    EXPECT_EQ(vector[1000], 42);
    EXPECT_THAT(reports.Get_Asserts(), IsEmpty());
    static_cast<void>(vector[1001]);
    EXPECT_THAT(reports.Get_Asserts(), ElementsAre("index < ActiveCount"));
    vector.Remove(-1);
    vector.Resize(-1);
    EXPECT_EQ(vector.Get_Count(), 1001);
    EXPECT_EQ(vector.Get_Capacity(), 2000);
}

TEST(Vector, ObjectsAreConstructedAndEnd)
{
    const auto shared = std::make_shared<int>(1);
    {
        DynamicVectorClass<std::shared_ptr<int>> vector;
        for (int i = 0; i < 5; ++i) vector.Add(shared);
        vector.Remove(0);
        EXPECT_EQ(shared.use_count(), 5);
        vector.Resize(2);
        EXPECT_EQ(shared.use_count(), 3);
        vector.Resize(3, true);
        EXPECT_EQ(vector[2], nullptr);
    }
    EXPECT_EQ(shared.use_count(), 1);
}

// Keys of the map are addresses, which these tests choose: nothing reads what they point at.
struct Thing;
Thing *Key(uintptr_t address)
{
    return reinterpret_cast<Thing *>(address);
}
using ThingMap = FastPtrHashMap<Thing, int>;

TEST(FastPtrHashMap, AgreesWithAnOrderedMapThroughRandomUse)
{
    std::mt19937 random(5);
    ThingMap map;
    std::map<Thing *, int> model;
    for (int round = 0; round < 20000; ++round) {
        Thing *key = Key(0x1000 + random() % 48 * 8); // pairs of keys share each home slot
        if (random() % 2) {
            EXPECT_EQ(map.Insert({key, round}), model.emplace(key, round).second);
        } else {
            EXPECT_EQ(map.Remove(key), model.erase(key) == 1);
        }
    }
    ASSERT_EQ(map.Get_Count(), model.size());
    map.For_Each([&](Thing *key, int value) { EXPECT_EQ(model.at(key), value); });
    for (const auto &[key, value] : model) EXPECT_EQ(*map.Find(key), value);
    const MKTest::Reports reports;
    EXPECT_FALSE(map.Insert({nullptr, 3}) || map.Find(nullptr));
}

struct Member : MultiLinkedListMember
{
    explicit Member(char name) : Name(name) {}
    char Name;
};
using MemberList = MultiLinkedListClass<Member>;

/// Forwards and, checked against it, backwards by index.
std::string Names(MemberList &list)
{
    std::string names;
    for (MultiLinkedListIterator<Member> i(list); !i.Is_Done(); i.Next()) names += i.Get_Current()->Name;
    for (int i = 0; i < list.Get_Count(); ++i) EXPECT_EQ(list[i]->Name, names[static_cast<size_t>(i)]);
    EXPECT_EQ(static_cast<int>(names.size()), list.Get_Count());
    return names;
}

TEST(MultiLinkedList, AddsAtBothEndsAndBesideAMemberAndEachOnce)
{
    MKTest::Reports reports;
    MemberList list;
    Member a('a'), b('b'), c('c'), d('d'), stranger('s');
    EXPECT_FALSE(list.Add_After(&b, &stranger));
    EXPECT_TRUE(list.Add_Tail(&b)) << "it can be tried again";
    EXPECT_TRUE(list.Add_Head(&a));
    EXPECT_TRUE(list.Add_Tail(&d));
    EXPECT_TRUE(list.Add_Before(&c, &d));
    EXPECT_EQ(Names(list), "abcd");
    EXPECT_FALSE(list.Add_Tail(&a, true) || list.Add_Before(&b, &a, true));
    EXPECT_EQ(reports.Get_Text(), "");
    EXPECT_FALSE(list.Add_Tail(&a, false));
    EXPECT_THAT(reports.Get_Asserts(), ElementsAre("!member->Is_In_List(this)"));
    EXPECT_TRUE(list.Remove(&b));
    EXPECT_TRUE(list.Add_After(&b, &d));
    EXPECT_EQ(Names(list), "acdb");
    for (MultiLinkedListIterator<Member> i(list); !i.Is_Done();) {
        if (i.Get_Current()->Name % 2 == 0)
            i.Remove_Current();
        else
            i.Next();
    }
    EXPECT_EQ(Names(list), "ac");
    while (!list.Is_Empty()) list.Remove(list[0]);
}

TEST(MultiLinkedList, AMemberSitsInManyListsAndLeavesThemAtItsEnd)
{
    MemberList lists[9];
    Member a('a');
    {
        Member b('b');
        for (MemberList &list : lists) {
            EXPECT_TRUE(list.Add_Tail(&a));
            EXPECT_TRUE(list.Add_Head(&b));
        }
        EXPECT_TRUE(lists[4].Remove(&a) && !lists[4].Remove(&a));
        for (size_t i = 0; i < 9; ++i) EXPECT_EQ(Names(lists[i]), i == 4 ? "b" : "ba");
    }
    for (size_t i = 0; i < 9; ++i) {
        EXPECT_EQ(Names(lists[i]), i == 4 ? "" : "a");
        lists[i].Remove(&a);
    }
}

TEST(MultiLinkedList, AListThatEndsWithMembersAssertsAndLetsThemGo)
{
    MKTest::Reports reports;
    Member a('a');
    std::optional<MemberList> list;
    for (int round = 1; round <= 2; ++round) {
        list.emplace(); // at the address of the one that ended
        EXPECT_TRUE(list->Add_Tail(&a));
        EXPECT_EQ((*list)[1], nullptr);
        list.reset();
        EXPECT_EQ(reports.Count_Asserts("Is_Empty()"), round);
    }
}

TEST(MemoryPool, GivesOutAlignedMemoryAndTakesItBack)
{
    MemoryPool pool(12, 8, 3);
    std::vector<void *> taken;
    for (int i = 0; i < 4; ++i) {
        taken.push_back(pool.Allocate());
        EXPECT_EQ(reinterpret_cast<uintptr_t>(taken.back()) % 8, 0u);
    }
    pool.Free(taken[1]);
    pool.Free(nullptr);
    EXPECT_EQ(pool.Allocate(), taken[1]);
    EXPECT_EQ(pool.Get_Block_Count(), 2u);

    MKTest::Reports reports;
    EXPECT_NE(MemoryPool(16, 8, 0).Allocate(), nullptr);
    EXPECT_EQ(MemoryPool(SIZE_MAX / 2, 8, 4).Allocate(), nullptr); // its block doesn't even have a size
    EXPECT_THAT(reports.Get_Asserts(), ElementsAre("PoolSize != 0", "FreeObjectHead != NULL"));
}

struct CountingLock
{
    explicit CountingLock(bool inForce) : InForce(inForce) {}
    void lock() { Taken += InForce; }
    void unlock() {}
    bool InForce;
    static inline int Taken = 0;
};

TEST(MemoryPool, TakesItsLockOnlyWhenInForce)
{
    MemoryPoolClass<MK::String, 2, CountingLock> locked(true);
    locked.Delete(locked.New("a text that is too long to stand in the string itself"));
    EXPECT_EQ(CountingLock::Taken, 2);
    MemoryPoolClass<MK::String, 2, CountingLock> open(false);
    open.Delete(open.New("x"));
    EXPECT_EQ(CountingLock::Taken, 2);
}

} // namespace
