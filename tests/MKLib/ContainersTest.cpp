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
    EXPECT_EQ(vector.Get_Count(), 0);
    EXPECT_EQ(vector.Get_Capacity(), 8);
    for (int i = 0; i < 5; ++i) vector.Add(i * 10);
    vector.Remove(1);
    EXPECT_EQ(vector.Find(40), 3);
    EXPECT_EQ(vector.Find(10), -1);
    vector.Resize(3);
    EXPECT_THAT(this->Active(), ElementsAre(0, 20, 30));
    vector.Resize(6, true);
    EXPECT_EQ(vector.Get_Count(), 6);
    EXPECT_EQ(vector[2], 30);
    vector.Resize(0, true);
    EXPECT_EQ(vector.Get_Capacity(), 0);
    vector.Add(7);
    EXPECT_THAT(this->Active(), ElementsAre(7));
    EXPECT_TRUE(vector.Get_Flag());
}

TYPED_TEST(VectorTest, GrowsByAddingEvenAnElementOfItsOwn)
{
    auto &vector = this->Vector;
    vector.Add(42);
    for (int i = 0; i < 1000; ++i) vector.Add(vector[0]);
    EXPECT_EQ(vector[1000], 42);
}

TYPED_TEST(VectorTest, ReportsAnIndexOutOfTheActiveOnes)
{
    auto &vector = this->Vector;
    vector.Resize(4, true);
    vector.Resize(8);
    MKTest::Reports reports;
    static_cast<void>(vector[3]);
    EXPECT_THAT(reports.Get_Asserts(), IsEmpty());
    static_cast<void>(vector[4]);
    EXPECT_THAT(reports.Get_Asserts(), ElementsAre("index < ActiveCount"));
    vector.Remove(-1);
    EXPECT_EQ(reports.Count_Asserts("index >= 0"), 1);
    EXPECT_EQ(vector.Get_Count(), 4);
    vector.Resize(-1);
    EXPECT_EQ(vector.Get_Capacity(), 8);
}

TEST(Vector, ObjectsAreConstructedAndEnd)
{
    const auto shared = std::make_shared<int>(1);
    {
        DynamicVectorClass<std::shared_ptr<int>> vector;
        for (int i = 0; i < 5; ++i) vector.Add(shared);
        EXPECT_EQ(shared.use_count(), 6);
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

std::vector<int> Values_In_Slot_Order(const ThingMap &map)
{
    std::vector<int> values;
    map.For_Each([&](Thing *, int value) { values.push_back(value); });
    return values;
}

TEST(FastPtrHashMap, StaysInTheObjectUpToThreePairs)
{
    ThingMap map;
    EXPECT_EQ(map.Get_Capacity(), 0u);
    EXPECT_EQ(map.Find(Key(0x10)), nullptr);
    // 8 - 8 / 3 = 6 pairs fit before the next doubling.
    const uint32_t capacities[] = {4, 4, 4, 8, 8, 8, 16};
    for (uintptr_t i = 1; i <= 7; ++i) {
        EXPECT_TRUE(map.Insert({Key(i * 16), static_cast<int>(i)}));
        EXPECT_EQ(map.Get_Capacity(), capacities[i - 1]) << i;
        EXPECT_EQ(map.Is_On_Heap(), i > 3) << i;
    }
}

TEST(FastPtrHashMap, ProbesUpwardsFromBitFourAndWraps)
{
    // Home slots in a table of 4: (0x30 >> 4) & 3 = 3, 0x70 as well, 0x33 the same slot as 0x30.
    ThingMap map;
    map.Insert({Key(0x30), 1});
    map.Insert({Key(0x70), 2}); // wraps to slot 0
    map.Insert({Key(0x33), 3}); // slot 1
    EXPECT_THAT(Values_In_Slot_Order(map), ElementsAre(2, 3, 1));
    EXPECT_TRUE(map.Remove(Key(0x70)));
    EXPECT_THAT(Values_In_Slot_Order(map), ElementsAre(3, 1)) << "the pair behind the gap moves up to slot 0";
    const MKTest::Reports reports;
    EXPECT_FALSE(map.Insert({nullptr, 3}));
    EXPECT_EQ(map.Find(nullptr), nullptr);
}

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
    for (const auto &[key, value] : model) {
        ASSERT_NE(map.Find(key), nullptr);
        EXPECT_EQ(*map.Find(key), value);
    }
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

TEST(MultiLinkedList, AddsAtBothEndsAndBesideAMember)
{
    MemberList list;
    Member a('a'), b('b'), c('c'), d('d');
    EXPECT_TRUE(list.Add_Tail(&b));
    EXPECT_TRUE(list.Add_Head(&a));
    EXPECT_TRUE(list.Add_Tail(&d));
    EXPECT_TRUE(list.Add_Before(&c, &d));
    EXPECT_EQ(Names(list), "abcd");
    EXPECT_TRUE(list.Remove(&b));
    EXPECT_TRUE(list.Add_After(&b, &d));
    EXPECT_EQ(Names(list), "acdb");
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
        EXPECT_TRUE(lists[4].Remove(&a));
        EXPECT_FALSE(lists[4].Remove(&a));
        for (size_t i = 0; i < 9; ++i) EXPECT_EQ(Names(lists[i]), i == 4 ? "b" : "ba");
    }
    for (size_t i = 0; i < 9; ++i) {
        EXPECT_EQ(Names(lists[i]), i == 4 ? "" : "a");
        lists[i].Remove(&a);
    }
}

TEST(MultiLinkedList, RefusesASecondPlaceAndOneBesideAStranger)
{
    MKTest::Reports reports;
    MemberList list;
    Member a('a'), b('b'), stranger('s');
    EXPECT_FALSE(list.Add_After(&a, &stranger));
    EXPECT_TRUE(list.Add_Tail(&a)) << "it can be tried again";
    list.Add_Tail(&b);
    EXPECT_FALSE(list.Add_Tail(&a, true));
    EXPECT_FALSE(list.Add_Before(&b, &a, true));
    EXPECT_EQ(reports.Get_Text(), "");
    EXPECT_FALSE(list.Add_Tail(&a, false));
    EXPECT_THAT(reports.Get_Asserts(), ElementsAre("!member->Is_In_List(this)"));
    EXPECT_EQ(Names(list), "ab");
    list.Remove(&a);
    list.Remove(&b);
}

TEST(MultiLinkedList, AListThatEndsWithMembersAssertsAndLetsThemGo)
{
    MKTest::Reports reports;
    std::optional<MemberList> list(std::in_place);
    Member a('a');
    list->Add_Tail(&a);
    EXPECT_EQ((*list)[1], nullptr);
    EXPECT_EQ((*list)[-1], nullptr);
    list.reset();
    EXPECT_THAT(reports.Get_Asserts(),
                ElementsAre("index >=0 && index < Count", "index >=0 && index < Count", "Is_Empty()"));
    list.emplace(); // at the address of the one that ended
    EXPECT_FALSE(a.Is_In_List(*list));
    EXPECT_TRUE(list->Add_Tail(&a));
    list->Remove(&a);
}

TEST(MultiLinkedList, AWalkMayTakeMembersOut)
{
    MemberList list;
    Member members[] = {Member('a'), Member('b'), Member('c'), Member('d')};
    for (Member &member : members) list.Add_Tail(&member);
    for (MultiLinkedListIterator<Member> i(list); !i.Is_Done();) {
        if (i.Get_Current()->Name % 2 == 0)
            i.Remove_Current();
        else
            i.Next();
    }
    EXPECT_EQ(Names(list), "ac");
    list.Remove(&members[0]);
    list.Remove(&members[2]);
}

TEST(MemoryPool, GivesOutAlignedMemoryAndTakesItBack)
{
    MemoryPool pool(12, 8, 3);
    std::vector<void *> taken;
    for (int i = 0; i < 4; ++i) {
        taken.push_back(pool.Allocate());
        EXPECT_EQ(reinterpret_cast<uintptr_t>(taken.back()) % 8, 0u);
    }
    EXPECT_EQ(static_cast<char *>(taken[1]) - static_cast<char *>(taken[0]), 16);
    EXPECT_EQ(pool.Get_Used_Count(), 4u);
    pool.Free(taken[1]);
    pool.Free(nullptr);
    EXPECT_EQ(pool.Allocate(), taken[1]);
    EXPECT_EQ(pool.Get_Block_Count(), 2u);
}

TEST(MemoryPool, ReportsAPoolOfNothingAndMemoryThatIsNotThere)
{
    MKTest::Reports reports;
    MemoryPool empty(16, 8, 0);
    EXPECT_THAT(reports.Get_Asserts(), ElementsAre("PoolSize != 0"));
    EXPECT_NE(empty.Allocate(), nullptr);
    reports.Clear();
    MemoryPool huge(SIZE_MAX / 2, 8, 4); // its block doesn't even have a size
    EXPECT_EQ(huge.Allocate(), nullptr);
    EXPECT_THAT(reports.Get_Asserts(), ElementsAre("FreeObjectHead != NULL"));
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
    MK::String *text = locked.New("a text that is too long to stand in the string itself");
    EXPECT_EQ(text->substr(0, 6), "a text");
    locked.Delete(text);
    EXPECT_EQ(CountingLock::Taken, 2);
    MemoryPoolClass<MK::String, 2, CountingLock> open(false);
    open.Delete(open.New("x"));
    EXPECT_EQ(CountingLock::Taken, 2);
}

} // namespace
