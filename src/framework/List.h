// Doubly linked lists with positions:
//
//     CList<CString> names(10);
//     names.AddTail(L"first");
//     for (POSITION place = names.GetHeadPosition(); place != nullptr;) {
//         const CString& name = names.GetNext(place);    // `place` goes on to the next, null behind the last
//     }
//
// Elements stay until RemoveAll, and positions are good as long. A null position given to a member that needs an
// element, and the tail of an empty list, throw CInvalidArgException.
#pragma once

#include <list>
#include <memory_resource>

#include "framework/CString.h"

template <typename TYPE, typename ARG_TYPE = const TYPE&>
class CList : public CObject {
public:
    // The block size is a hint that this implementation has no use for.
    explicit CList(INT_PTR blockSize = 10) { static_cast<void>(blockSize); }

    INT_PTR GetCount() const { return static_cast<INT_PTR>(m_nodes.size()); }
    BOOL IsEmpty() const { return m_nodes.empty(); }

    POSITION AddHead(ARG_TYPE element) { return Link(m_nodes.begin(), element); }
    POSITION AddTail(ARG_TYPE element) { return Link(m_nodes.end(), element); }
    void RemoveAll() {
        m_nodes.clear();
        m_blocks.release();
        m_cursor = nullptr;
    }

    POSITION GetHeadPosition() const { return m_nodes.empty() ? nullptr : Place(m_nodes.front()); }
    TYPE& GetTail() { return At(m_nodes.empty() ? nullptr : Place(m_nodes.back())).element; }
    TYPE& GetAt(POSITION place) { return At(place).element; }
    const TYPE& GetAt(POSITION place) const { return At(place).element; }

    // The element at `place`, which moves on to the following one, or becomes null behind the last.
    TYPE& GetNext(POSITION& place) {
        Node& node = At(place);
        place = After(node);
        return node.element;
    }
    const TYPE& GetNext(POSITION& place) const { return const_cast<CList*>(this)->GetNext(place); }

    // The first element equal to `element`, or null.
    POSITION Find(ARG_TYPE element) const {
        POSITION place = GetHeadPosition();
        while (place != nullptr && !(At(place).element == element)) place = After(At(place));
        return place;
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
