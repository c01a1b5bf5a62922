// Doubly linked lists with positions:
//
//     CList<CString> names(10);
//     names.AddTail(L"first");
//     for (POSITION place = names.GetHeadPosition(); place != nullptr;) {
//         const CString& name = names.GetNext(place);    // `place` goes on to the next, null behind the last
//     }
//
// A position stays good until its element is removed. A null position given to a member that needs an element, and the
// head or tail of an empty list, throw CInvalidArgException.
#pragma once

#include <list>
#include <memory_resource>
#include <utility>

#include "framework/CString.h"

template <typename TYPE, typename ARG_TYPE = const TYPE&>
class CList : public CObject {
public:
    // The block size is a hint that this implementation has no use for.
    explicit CList(INT_PTR blockSize = 10) { static_cast<void>(blockSize); }

    INT_PTR GetCount() const { return static_cast<INT_PTR>(m_nodes.size()); }
    INT_PTR GetSize() const { return GetCount(); }
    BOOL IsEmpty() const { return m_nodes.empty(); }

    POSITION AddHead(ARG_TYPE element) { return Link(m_nodes.begin(), element); }
    POSITION AddTail(ARG_TYPE element) { return Link(m_nodes.end(), element); }
    TYPE RemoveHead() { return Take(At(GetHeadPosition())); }
    TYPE RemoveTail() { return Take(At(GetTailPosition())); }
    void RemoveAt(POSITION place) { Take(At(place)); }
    void RemoveAll() {
        m_nodes.clear();
        m_blocks.release();
        m_cursor = nullptr;
    }

    POSITION GetHeadPosition() const { return m_nodes.empty() ? nullptr : Place(m_nodes.front()); }
    POSITION GetTailPosition() const { return m_nodes.empty() ? nullptr : Place(m_nodes.back()); }
    TYPE& GetHead() { return At(GetHeadPosition()).element; }
    const TYPE& GetHead() const { return At(GetHeadPosition()).element; }
    TYPE& GetTail() { return At(GetTailPosition()).element; }
    const TYPE& GetTail() const { return At(GetTailPosition()).element; }
    TYPE& GetAt(POSITION place) { return At(place).element; }
    const TYPE& GetAt(POSITION place) const { return At(place).element; }
    void SetAt(POSITION place, ARG_TYPE element) { At(place).element = element; }

    // The element at `place`, which moves on to the following one, or becomes null behind the last.
    TYPE& GetNext(POSITION& place) {
        Node& node = At(place);
        place = After(node);
        return node.element;
    }
    const TYPE& GetNext(POSITION& place) const { return const_cast<CList*>(this)->GetNext(place); }

    // The first element equal to `element`, looking behind `after` if that is given; else null.
    POSITION Find(ARG_TYPE element, POSITION after = nullptr) const {
        for (POSITION place = after == nullptr ? GetHeadPosition() : After(At(after)); place != nullptr;) {
            Node& node = At(place);
            if (node.element == element) return place;
            place = After(node);
        }
        return nullptr;
    }
    // Null if `index` is negative or past the end. Indexes in rising order cost one step each.
    POSITION FindIndex(INT_PTR index) const;

private:
    struct Node {
        TYPE element;
        typename std::pmr::list<Node>::iterator self{};
    };

    static POSITION Place(const Node& node) { return reinterpret_cast<POSITION>(const_cast<Node*>(&node)); }
    static Node& At(POSITION place) {
        if (place == nullptr) AfxThrowInvalidArgException();
        return *reinterpret_cast<Node*>(place);
    }
    POSITION After(const Node& node) const {
        const auto next = std::next(node.self);
        return next == m_nodes.end() ? nullptr : Place(*next);
    }
    POSITION Link(typename std::pmr::list<Node>::iterator before, ARG_TYPE element) {
        if (before != m_nodes.end()) m_cursor = nullptr;
        const auto node = m_nodes.insert(before, Node{TYPE(element)});
        node->self = node;
        return Place(*node);
    }
    TYPE Take(Node& node) {
        m_cursor = nullptr;
        TYPE element = std::move(node.element);
        m_nodes.erase(node.self);
        return element;
    }

    // Nodes come from blocks: a long list would else be mostly the system's work, which takes long for small pieces.
    std::pmr::unsynchronized_pool_resource m_blocks;
    std::pmr::list<Node> m_nodes{&m_blocks};
    // Where the last FindIndex ended, so that reading by index from first to last is not a walk from the head each
    // time.
    mutable POSITION m_cursor = nullptr;
    mutable INT_PTR m_cursorIndex = 0;
};

template <typename TYPE, typename ARG_TYPE>
POSITION CList<TYPE, ARG_TYPE>::FindIndex(INT_PTR index) const {
    if (index < 0 || index >= GetCount()) return nullptr;
    if (m_cursor == nullptr || m_cursorIndex > index) {
        m_cursor = GetHeadPosition();
        m_cursorIndex = 0;
    }
    for (; m_cursorIndex < index; ++m_cursorIndex) m_cursor = After(At(m_cursor));
    return m_cursor;
}

class CStringList : public CList<CString, LPCWSTR> {
public:
    using CList::CList;
};

class CPtrList : public CList<void*, void*> {
public:
    using CList::CList;
};
