#include "MKLib/NameTable.h"
#include "MKLib/RefCount.h"
#include "MKLib/RunTimeType.h"

#include "common/Reports.h"

#include <gmock/gmock.h>

#include <thread>
#include <vector>

namespace
{

struct Counted : RefCountClass
{
    explicit Counted(int *countAtEnd = nullptr) : CountAtEnd(countAtEnd) {}
    ~Counted() override
    {
        if (CountAtEnd) *CountAtEnd = Get_Ref_Count();
    }
    int *CountAtEnd;
};

TEST(RefCount, AnOwnerMadeWhileTheObjectDiesAsserts)
{
    struct SelfOwning : RefCountClass
    {
        ~SelfOwning() override { SmartPtr<SelfOwning> self(this); }
    };
    MKTest::Reports reports;
    auto *object = new SelfOwning;
    object->Add_Ref();
    // The owner in the destructor takes the count from -1 to 0 and back, and each of the two is reported.
    object->Release_Ref();
    EXPECT_EQ(reports.Count_Asserts("RefCount != -1"), 1);
    EXPECT_EQ(reports.Count_Asserts("refcount >= 0"), 1);
}

TEST(RefCount, AnObjectOnTheStackEndsSilentlyAndAnOwnedOneDoesNot)
{
    MKTest::Reports reports;
    {
        Counted fresh;
    }
    EXPECT_EQ(reports.Get_Text(), "");
    {
        Counted owned;
        owned.Add_Ref();
    }
    EXPECT_THAT(reports.Get_Asserts(), testing::ElementsAre("RefCount == 0 || RefCount == -1"));
}

TEST(RefCount, AClassMayReturnItsObjectsElsewhere)
{
    struct Pooled : RefCountClass
    {
        void Delete_This() override { Returned = true; }
        bool Returned = false;
    };
    MKTest::Reports reports;
    Pooled object;
    SmartPtr<Pooled>{ &object} = nullptr;
    EXPECT_TRUE(object.Returned);
    EXPECT_EQ(object.Get_Ref_Count(), -1);
    EXPECT_EQ(reports.Get_Text(), "");
}

TEST(RefCount, ACopyStartsWithACountOfItsOwn)
{
    MKTest::Reports reports;
    const SmartPtr<Counted> owned(new Counted);
    Counted copy(*owned.Get());
    EXPECT_EQ(copy.Get_Ref_Count(), 0);
    copy = *owned.Get();
    EXPECT_EQ(copy.Get_Ref_Count(), 0);
    EXPECT_EQ(owned->Get_Ref_Count(), 1);
    EXPECT_EQ(reports.Get_Text(), "");
}

TEST(SmartPtr, CountsItsOwnersThroughEveryWayOfAssigning)
{
    int endOfA = 99;
    int endOfB = 99;
    auto *a = new Counted(&endOfA);
    auto *b = new Counted(&endOfB);
    SmartPtr<Counted> first(a);
    SmartPtr<Counted> second(b);
    SmartPtr<Counted> third(first);
    EXPECT_EQ(a->Get_Ref_Count(), 2);

    SmartPtr<Counted> &alias = first;
    first = alias; // neither releases nor adds
    first = a;
    EXPECT_EQ(a->Get_Ref_Count(), 2);

    SmartPtr<Counted> moved(std::move(third));
    EXPECT_EQ(a->Get_Ref_Count(), 2);
    moved = second;
    EXPECT_EQ(a->Get_Ref_Count(), 1);
    EXPECT_EQ(b->Get_Ref_Count(), 2);
    first = std::move(moved);
    EXPECT_EQ(endOfA, -1);
    EXPECT_EQ(b->Get_Ref_Count(), 2);
    first = nullptr;
    EXPECT_EQ(endOfB, 99);
    second = nullptr;
    EXPECT_EQ(endOfB, -1);
}

TEST(SmartPtr, HoldsTheNewObjectBeforeTheOldOneEnds)
{
    struct Node : RefCountClass
    {
        ~Node() override
        {
            if (Holder) SeenByDestructor = Holder->Get();
        }
        SmartPtr<Node> *Holder = nullptr;
        Node *&SeenByDestructor;
        explicit Node(Node *&seen) : SeenByDestructor(seen) {}
    };
    Node *seen = nullptr;
    Node *unused = nullptr;
    SmartPtr<Node> holder(new Node(seen));
    holder->Holder = &holder;
    auto *next = new Node(unused);
    holder = next;
    EXPECT_EQ(seen, next);
    EXPECT_EQ(next->Get_Ref_Count(), 1);
}

TEST(RefCount, CountsAcrossThreads)
{
    constexpr int THREADS = 4;
    constexpr int ROUNDS = 5000;
    int countAtEnd = 99;
    {
        SmartPtr<Counted> shared(new Counted(&countAtEnd));
        std::vector<std::thread> threads;
        for (int i = 0; i < THREADS; ++i)
            threads.emplace_back([own = shared] {
                for (int round = 0; round < ROUNDS; ++round) SmartPtr<Counted> copy(own);
            });
        shared = nullptr; // the last thread to finish ends the object
        for (std::thread &thread : threads) thread.join();
        threads.clear();
    }
    EXPECT_EQ(countAtEnd, -1);
}

struct Root
{
    virtual ~Root() = default;
    MK_RUN_TIME_TYPE_ROOT
};
struct Middle : Root
{
    MK_RUN_TIME_TYPE
};
struct Leaf final : Middle
{
    MK_RUN_TIME_TYPE
};
struct Other final : Root
{
    MK_RUN_TIME_TYPE
};
MK_DEFINE_RUN_TIME_TYPE_ROOT(Root)
MK_DEFINE_RUN_TIME_TYPE(Middle, Root)
MK_DEFINE_RUN_TIME_TYPE(Leaf, Middle)
MK_DEFINE_RUN_TIME_TYPE(Other, Root)

namespace Elsewhere
{
struct Leaf final : Root
{
    MK_RUN_TIME_TYPE
};
MK_DEFINE_RUN_TIME_TYPE(Leaf, Root)
} // namespace Elsewhere

TEST(RunTimeType, CastsAlongTheChainOnly)
{
    Leaf leaf;
    Other other;
    Root *root = &leaf;
    EXPECT_EQ(MK_Dynamic_Cast<Leaf>(root), &leaf);
    EXPECT_EQ(MK_Dynamic_Cast<Root>(root), &leaf);
    EXPECT_EQ(MK_Dynamic_Cast<Other>(root), nullptr);
    EXPECT_EQ(MK_Dynamic_Cast<Leaf>(static_cast<Root *>(&other)), nullptr);
    EXPECT_EQ(MK_Dynamic_Cast<Leaf>(static_cast<Root *>(nullptr)), nullptr);
    EXPECT_EQ(MK_Dynamic_Cast<const Middle>(static_cast<const Root *>(root)), &leaf);
    Elsewhere::Leaf namesake;
    EXPECT_EQ(MK_Dynamic_Cast<Leaf>(static_cast<Root *>(&namesake)), nullptr) << "an equal name is no match";
}

TEST(NameTable, EqualTextsShareOneEntry)
{
    const std::string bytes("a\0\xff", 3);
    const NameTableRef first(bytes);
    const NameTableRef second(bytes);
    EXPECT_EQ(&first.Get_String(), &second.Get_String());
    EXPECT_EQ(std::string_view(first.Get_String()), bytes);
    EXPECT_FALSE(first == NameTableRef("a"));
}

TEST(NameTable, TheEmptyTextIsTheEmptyHandle)
{
    EXPECT_EQ(NameTableRef(""), NameTableRef());
    EXPECT_EQ(NameTableRef().Get_String(), "");
    NameTableRef name("Fire");
    NameTableRef taken(std::move(name));
    EXPECT_EQ(taken.Get_String(), "Fire");
    name = taken;
    taken = NameTableRef();
    EXPECT_EQ(name.Get_String(), "Fire");
}

TEST(NameTable, ThreadsMakeAndDropTheSameNames)
{
    std::vector<std::thread> threads;
    std::atomic<int> wrong{0};
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&wrong] {
            for (int round = 0; round < 2000; ++round) {
                const std::string text = "name " + std::to_string(round % 7);
                const NameTableRef name(text);
                const NameTableRef copy(name);
                if (std::string_view(copy.Get_String()) != text) ++wrong;
            }
        });
    for (std::thread &thread : threads) thread.join();
    EXPECT_EQ(wrong, 0);
}

} // namespace
