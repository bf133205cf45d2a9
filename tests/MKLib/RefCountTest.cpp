#include "MKLib/NameTable.h"
#include "MKLib/RefCount.h"
#include "MKLib/RunTimeType.h"

#include <gtest/gtest.h>

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

TEST(SmartPtr, CountsItsOwnersThroughEveryWayOfAssigning)
{
    int endOfA = 99;
    int endOfB = 99;
    auto *a = new Counted(&endOfA);
    auto *b = new Counted(&endOfB);
    SmartPtr<Counted> first(a);
    SmartPtr<Counted> second(b);
    SmartPtr<Counted> third(first);
    SmartPtr<Counted> &alias = first;
    first = alias; // neither releases nor adds
    first = a;
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
            if (Seen) *Seen = Holder->Get();
        }
        SmartPtr<Node> *Holder = nullptr;
        Node **Seen = nullptr;
    };
    Node *seen = nullptr;
    SmartPtr<Node> holder(new Node);
    holder->Holder = &holder;
    holder->Seen = &seen;
    auto *next = new Node;
    holder = next;
    EXPECT_EQ(seen, next);
}

TEST(RefCount, CountsAcrossThreads)
{
    int countAtEnd = 99;
    SmartPtr<Counted> shared(new Counted(&countAtEnd));
    std::vector<std::jthread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([own = shared] {
            for (int round = 0; round < 5000; ++round) SmartPtr<Counted> copy(own);
        });
    shared = nullptr; // the last thread to finish ends the object
    threads.clear();
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
MK_DEFINE_RUN_TIME_TYPE_ROOT(Root)
MK_DEFINE_RUN_TIME_TYPE(Middle, Root)
MK_DEFINE_RUN_TIME_TYPE(Leaf, Middle)

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
    Root *root = &leaf;
    EXPECT_EQ(MK_Dynamic_Cast<Leaf>(root), &leaf);
    EXPECT_EQ(MK_Dynamic_Cast<Root>(root), &leaf);
    EXPECT_EQ(MK_Dynamic_Cast<Leaf>(static_cast<Root *>(nullptr)), nullptr);
    EXPECT_EQ(MK_Dynamic_Cast<const Middle>(static_cast<const Root *>(root)), &leaf);
    Elsewhere::Leaf namesake;
    EXPECT_EQ(MK_Dynamic_Cast<Leaf>(static_cast<Root *>(&namesake)), nullptr) << "an equal name is no match";
}

TEST(NameTable, EqualTextsShareOneEntryAndTheEmptyOneHasNone)
{
    const std::string bytes("a\0\xff", 3);
    NameTableRef name(bytes);
    EXPECT_EQ(&name.Get_String(), &NameTableRef(bytes).Get_String());
    EXPECT_FALSE(name == NameTableRef("a"));
    EXPECT_EQ(NameTableRef(""), NameTableRef());
    NameTableRef taken(std::move(name));
    name = taken;
    taken = NameTableRef();
    EXPECT_EQ(std::string_view(name.Get_String()), bytes);
}

TEST(NameTable, ThreadsMakeAndDropTheSameNames)
{
    std::vector<std::jthread> threads;
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
    threads.clear();
    EXPECT_EQ(wrong, 0);
}

} // namespace
