#include "MKLib/MultiLinkedList.h"

#include "MKLib/MemoryPool.h"

namespace
{

using NodePool = MemoryPoolClass<MultiLinkedListNode, 256>;

/// Never destroyed: lists in static objects may outlive any order of destruction.
NodePool &Nodes()
{
    static NodePool *pool = new NodePool;
    return *pool;
}

} // namespace

MultiLinkedListMember::~MultiLinkedListMember()
{
    // A list that holds a node is alive: one that ends takes its nodes out of its members. An entry without a node may
    // name a list that is gone, and is passed over.
    Nodes.For_Each([](GenericMultiLinkedList *list, MultiLinkedListNode *node) {
        if (node) list->Unlink(node);
    });
}

MultiLinkedListNode *MultiLinkedListMember::Find_Node(const GenericMultiLinkedList &list) const
{
    MultiLinkedListNode *const *node = Nodes.Find(&list);
    return node ? *node : nullptr;
}

GenericMultiLinkedList::~GenericMultiLinkedList()
{
    MK_ASSERT(Is_Empty(), "Is_Empty()");
    while (!Is_Empty()) Remove(Sentinel.Next->Object);
}

bool GenericMultiLinkedList::Add_Head(MultiLinkedListMember *member, bool onlyOnce)
{
    return May_Add(member, onlyOnce) && Link(member, &Sentinel);
}

bool GenericMultiLinkedList::Add_Tail(MultiLinkedListMember *member, bool onlyOnce)
{
    return May_Add(member, onlyOnce) && Link(member, Sentinel.Previous);
}

bool GenericMultiLinkedList::Add_Before(MultiLinkedListMember *member, const MultiLinkedListMember *reference,
                                        bool onlyOnce)
{
    if (!May_Add(member, onlyOnce)) return false;
    member->Nodes.Insert({this, nullptr});
    const MultiLinkedListNode *node = reference ? reference->Find_Node(*this) : nullptr;
    return node && Link(member, node->Previous);
}

bool GenericMultiLinkedList::Add_After(MultiLinkedListMember *member, const MultiLinkedListMember *reference,
                                       bool onlyOnce)
{
    if (!May_Add(member, onlyOnce)) return false;
    member->Nodes.Insert({this, nullptr});
    MultiLinkedListNode *node = reference ? reference->Find_Node(*this) : nullptr;
    return node && Link(member, node);
}

bool GenericMultiLinkedList::Remove(MultiLinkedListMember *member)
{
    MultiLinkedListNode *node = member ? member->Find_Node(*this) : nullptr;
    if (!node) return false;
    member->Nodes.Remove(this);
    Unlink(node);
    return true;
}

MultiLinkedListMember *GenericMultiLinkedList::Get_Member(int index) const
{
    if (!MK_VERIFY(index >= 0 && index < Count, "index >=0 && index < Count")) return nullptr;
    const MultiLinkedListNode *node = Sentinel.Next;
    while (index-- > 0) node = node->Next;
    return node->Object;
}

bool GenericMultiLinkedList::May_Add(const MultiLinkedListMember *member, bool onlyOnce) const
{
    if (!MK_VERIFY(member != nullptr, "member != NULL")) return false;
    if (!member->Is_In_List(*this)) return true;
    MK_ASSERT(onlyOnce, "!member->Is_In_List(this)");
    return false;
}

bool GenericMultiLinkedList::Link(MultiLinkedListMember *member, MultiLinkedListNode *previous)
{
    member->Nodes.Insert({this, nullptr});
    MultiLinkedListNode *node = Nodes().New();
    if (!node) return false;
    *member->Nodes.Find(this) = node;
    node->Object = member;
    node->Previous = previous;
    node->Next = previous->Next;
    previous->Next->Previous = node;
    previous->Next = node;
    ++Count;
    return true;
}

void GenericMultiLinkedList::Unlink(MultiLinkedListNode *node)
{
    node->Previous->Next = node->Next;
    node->Next->Previous = node->Previous;
    --Count;
    Nodes().Delete(node);
}

bool GenericMultiLinkedListIterator::Remove_Current()
{
    MultiLinkedListMember *const member = Get_Current();
    Next();
    return List->Remove(member);
}
