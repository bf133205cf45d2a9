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
    vector.Resize(3);
    EXPECT_THAT(this->Active(), ElementsAre(0, 10, 20));
    EXPECT_EQ(vector.Get_Capacity(), 3);
    vector.Resize(6, true);
    EXPECT_EQ(vector.Get_Count(), 6);
    EXPECT_EQ(vector[2], 20);
    EXPECT_TRUE(vector.Get_Flag());
    vector.Resize(0, true);
    EXPECT_EQ(vector.Get_Count(), 0);
    EXPECT_EQ(vector.Get_Capacity(), 0);
    EXPECT_TRUE(vector.Get_Flag());
    vector.Add(7);
    EXPECT_THAT(this->Active(), ElementsAre(7));
    EXPECT_TRUE(vector.Get_Flag());
}

TYPED_TEST(VectorTest, GrowsByAddingEvenAnElementOfItsOwn)
{
    auto &vector = this->Vector;
    vector.Add(42);
    for (int i = 0; i < 1000; ++i) vector.Add(vector[0]);
    EXPECT_EQ(vector.Get_Count(), 1001);
    EXPECT_EQ(vector[1000], 42);
}

TYPED_TEST(VectorTest, RemovesAndFinds)
{
    auto &vector = this->Vector;
    for (const int value : {3, 1, 4, 1, 5}) vector.Add(value);
    EXPECT_EQ(vector.Find(1), 1);
    EXPECT_EQ(vector.Find(9), -1);
    vector.Remove(1);
    EXPECT_THAT(this->Active(), ElementsAre(3, 4, 1, 5));
    vector.Remove(3);
    EXPECT_THAT(this->Active(), ElementsAre(3, 4, 1));
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
    for (uintptr_t i = 1; i <= 3; ++i) EXPECT_TRUE(map.Insert({Key(i * 16), static_cast<int>(i)}));
    EXPECT_EQ(map.Get_Capacity(), 4u);
    EXPECT_FALSE(map.Is_On_Heap());
    EXPECT_TRUE(map.Insert({Key(0x40), 4}));
    EXPECT_EQ(map.Get_Capacity(), 8u);
    EXPECT_TRUE(map.Is_On_Heap());
    // 8 - 8 / 3 = 6 pairs fit before the next doubling.
    EXPECT_TRUE(map.Insert({Key(0x50), 5}) && map.Insert({Key(0x60), 6}));
    EXPECT_EQ(map.Get_Capacity(), 8u);
    EXPECT_TRUE(map.Insert({Key(0x70), 7}));
    EXPECT_EQ(map.Get_Capacity(), 16u);
    for (uintptr_t i = 1; i <= 7; ++i) EXPECT_EQ(*map.Find(Key(i * 16)), static_cast<int>(i));
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
    EXPECT_EQ(*map.Find(Key(0x33)), 3);
    EXPECT_EQ(map.Find(Key(0x70)), nullptr);
    EXPECT_FALSE(map.Remove(Key(0x70)));
}

TEST(FastPtrHashMap, RefusesAnEqualKeyAndANullOne)
{
    MKTest::Reports reports;
    ThingMap map;
    EXPECT_TRUE(map.Insert({Key(0x10), 1}));
    EXPECT_FALSE(map.Insert({Key(0x10), 2}));
    EXPECT_EQ(*map.Find(Key(0x10)), 1);
    EXPECT_EQ(map.Get_Count(), 1u);
    EXPECT_EQ(reports.Get_Text(), "");
    EXPECT_FALSE(map.Insert({nullptr, 3}));
    EXPECT_THAT(reports.Get_Asserts(), ElementsAre("!item.first"));
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
    EXPECT_TRUE(list.Is_Empty());
    EXPECT_TRUE(list.Add_Tail(&b));
    EXPECT_TRUE(list.Add_Head(&a));
    EXPECT_TRUE(list.Add_Tail(&d));
    EXPECT_TRUE(list.Add_Before(&c, &d));
    EXPECT_EQ(Names(list), "abcd");
    EXPECT_TRUE(list.Remove(&b));
    EXPECT_TRUE(list.Add_After(&b, &d));
    EXPECT_EQ(Names(list), "acdb");
    EXPECT_FALSE(list.Is_Empty());
    while (!list.Is_Empty()) list.Remove(list[0]);
}

TEST(MultiLinkedList, AMemberSitsInManyLists)
{
    std::vector<std::unique_ptr<MemberList>> lists;
    Member a('a'), b('b');
    for (int i = 0; i < 9; ++i) {
        lists.push_back(std::make_unique<MemberList>());
        EXPECT_TRUE(lists.back()->Add_Tail(&a));
        EXPECT_TRUE(lists.back()->Add_Head(&b));
    }
    EXPECT_TRUE(lists[4]->Remove(&a));
    EXPECT_FALSE(lists[4]->Remove(&a));
    for (size_t i = 0; i < lists.size(); ++i) {
        EXPECT_EQ(Names(*lists[i]), i == 4 ? "b" : "ba");
        EXPECT_EQ(lists[i]->Contains(a), i != 4);
        lists[i]->Remove(&a);
        lists[i]->Remove(&b);
    }
}

TEST(MultiLinkedList, RefusesASecondPlaceInOneList)
{
    MKTest::Reports reports;
    MemberList list;
    Member a('a'), b('b');
    list.Add_Tail(&a);
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

TEST(MultiLinkedList, APlaceBesideAStrangerIsRefusedAndCanBeTriedAgain)
{
    MKTest::Reports reports;
    MemberList list;
    Member a('a'), stranger('s');
    {
        MemberList gone;
        EXPECT_FALSE(gone.Add_After(&a, &stranger));
        EXPECT_FALSE(a.Is_In_List(gone));
        EXPECT_FALSE(gone.Remove(&a));
    }
    EXPECT_FALSE(list.Add_Before(&a, &stranger));
    EXPECT_TRUE(list.Is_Empty());
    EXPECT_TRUE(list.Add_Tail(&a));
    EXPECT_EQ(Names(list), "a");
    list.Remove(&a);
    EXPECT_EQ(reports.Get_Text(), "");
}

TEST(MultiLinkedList, AMemberThatEndsLeavesItsLists)
{
    MKTest::Reports reports;
    MemberList first, second;
    Member a('a');
    first.Add_Tail(&a);
    {
        Member b('b');
        first.Add_Tail(&b);
        second.Add_Tail(&b);
    }
    EXPECT_EQ(Names(first), "a");
    EXPECT_TRUE(second.Is_Empty());
    first.Remove(&a);
    EXPECT_EQ(reports.Get_Text(), "");
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
    const MemberList &view = list;
    MultiLinkedListConstIterator<Member> i(view);
    EXPECT_EQ(i.Get_Current()->Name, 'a');
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
    EXPECT_EQ(pool.Get_Block_Count(), 2u);
    EXPECT_EQ(pool.Get_Used_Count(), 4u);
    pool.Free(taken[1]);
    pool.Free(nullptr);
    EXPECT_EQ(pool.Get_Used_Count(), 3u);
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

TEST(MemoryPool, TakesItsLockOnlyWhenInForce)
{
    struct CountingLock
    {
        explicit CountingLock(bool inForce) : InForce(inForce) {}
        void lock() { Taken() += InForce; }
        void unlock() {}
        static int &Taken()
        {
            static int taken = 0;
            return taken;
        }
        bool InForce;
    };
    MemoryPoolClass<MK::String, 2, CountingLock> locked(true);
    MK::String *text = locked.New("a text that is too long to stand in the string itself");
    EXPECT_EQ(text->substr(0, 6), "a text");
    locked.Delete(text);
    EXPECT_EQ(CountingLock::Taken(), 2);
    MemoryPoolClass<MK::String, 2, CountingLock> open(false);
    open.Delete(open.New("x"));
    EXPECT_EQ(CountingLock::Taken(), 2);
    EXPECT_EQ(locked.Get_Used_Count(), 0u);
}

} // namespace
