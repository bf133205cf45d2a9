#pragma once

#include "MKLib/FastPtrHashMap.h"
#include "MKLib/NoCopy.h"

/// Lists whose members may sit in many lists at once. A member knows its node in each list, so removal and insertion
/// beside it walk nothing. A list owns neither its members nor a reference to them; it must be empty when it ends. No
/// lock.

class GenericMultiLinkedList;
class MultiLinkedListMember;

struct MultiLinkedListNode
{
    MultiLinkedListNode *Next;
    MultiLinkedListNode *Previous;
    MultiLinkedListMember *Object; ///< null in a list's sentinel
};

/// Base of an object that goes into lists. One that ends while it is in some leaves them.
class MultiLinkedListMember : public MK::NoCopy
{
public:
    MultiLinkedListMember() = default;
    virtual ~MultiLinkedListMember();

    bool Is_In_List(const GenericMultiLinkedList &list) const { return Find_Node(list) != nullptr; }

private:
    friend class GenericMultiLinkedList;

    MultiLinkedListNode *Find_Node(const GenericMultiLinkedList &list) const;

    FastPtrHashMap<GenericMultiLinkedList, MultiLinkedListNode *> Nodes;
};

/// The list without its type: a circle through a sentinel.
class GenericMultiLinkedList : public MK::NoCopy
{
public:
    GenericMultiLinkedList() = default;
    ~GenericMultiLinkedList();

    bool Is_Empty() const { return Count == 0; }
    int Get_Count() const { return Count; }
    bool Contains(const MultiLinkedListMember &member) const { return member.Is_In_List(*this); }

protected:
    friend class GenericMultiLinkedListIterator;
    friend class GenericMultiLinkedListConstIterator;
    friend class MultiLinkedListMember;

    // `onlyOnce` looks first: a member that is in this list already is refused, and nothing changes. Without it the
    // caller vouches that the member isn't; a second node for one member is never made, and asserts.
    bool Add_Head(MultiLinkedListMember *member, bool onlyOnce);
    bool Add_Tail(MultiLinkedListMember *member, bool onlyOnce);
    /// False as well when `reference` isn't in this list.
    bool Add_Before(MultiLinkedListMember *member, const MultiLinkedListMember *reference, bool onlyOnce);
    bool Add_After(MultiLinkedListMember *member, const MultiLinkedListMember *reference, bool onlyOnce);
    /// False when the member isn't in this list.
    bool Remove(MultiLinkedListMember *member);
    /// The member at a position, by a walk from the head; null, with an assertion, out of range.
    MultiLinkedListMember *Get_Member(int index) const;

private:
    bool May_Add(const MultiLinkedListMember *member, bool onlyOnce) const;
    bool Link(MultiLinkedListMember *member, MultiLinkedListNode *previous);
    void Unlink(MultiLinkedListNode *node);

    MultiLinkedListNode Sentinel{&Sentinel, &Sentinel, nullptr};
    int Count = 0;
};

/// Walks a list. The current member may leave the list only through `Remove_Current`, which steps on to the next.
class GenericMultiLinkedListIterator
{
public:
    explicit GenericMultiLinkedListIterator(GenericMultiLinkedList &list) : List(&list), Node(list.Sentinel.Next) {}

    void First() { Node = List->Sentinel.Next; }
    void Next() { Node = Node->Next; }
    bool Is_Done() const { return Node->Object == nullptr; }
    MultiLinkedListMember *Get_Current() const { return Node->Object; }
    bool Remove_Current();

private:
    GenericMultiLinkedList *List;
    MultiLinkedListNode *Node;
};

class GenericMultiLinkedListConstIterator
{
public:
    explicit GenericMultiLinkedListConstIterator(const GenericMultiLinkedList &list)
        : List(&list), Node(list.Sentinel.Next)
    {
    }

    void First() { Node = List->Sentinel.Next; }
    void Next() { Node = Node->Next; }
    bool Is_Done() const { return Node->Object == nullptr; }
    const MultiLinkedListMember *Get_Current() const { return Node->Object; }

private:
    const GenericMultiLinkedList *List;
    const MultiLinkedListNode *Node;
};

/// A list of T, which derives from MultiLinkedListMember.
template <typename T>
class MultiLinkedListClass : public GenericMultiLinkedList
{
public:
    bool Add_Head(T *member, bool onlyOnce = true) { return GenericMultiLinkedList::Add_Head(member, onlyOnce); }
    bool Add_Tail(T *member, bool onlyOnce = true) { return GenericMultiLinkedList::Add_Tail(member, onlyOnce); }
    bool Add_Before(T *member, const T *reference, bool onlyOnce = true)
    {
        return GenericMultiLinkedList::Add_Before(member, reference, onlyOnce);
    }
    bool Add_After(T *member, const T *reference, bool onlyOnce = true)
    {
        return GenericMultiLinkedList::Add_After(member, reference, onlyOnce);
    }
    bool Remove(T *member) { return GenericMultiLinkedList::Remove(member); }
    T *operator[](int index) const { return static_cast<T *>(Get_Member(index)); }
};

template <typename T>
class MultiLinkedListIterator : public GenericMultiLinkedListIterator
{
public:
    explicit MultiLinkedListIterator(MultiLinkedListClass<T> &list) : GenericMultiLinkedListIterator(list) {}
    T *Get_Current() const { return static_cast<T *>(GenericMultiLinkedListIterator::Get_Current()); }
};

template <typename T>
class MultiLinkedListConstIterator : public GenericMultiLinkedListConstIterator
{
public:
    explicit MultiLinkedListConstIterator(const MultiLinkedListClass<T> &list)
        : GenericMultiLinkedListConstIterator(list)
    {
    }
    const T *Get_Current() const { return static_cast<const T *>(GenericMultiLinkedListConstIterator::Get_Current()); }
};
