/// @file
/// TTreeCursor<Node>: the linked tree and its cursor that CXMLFile and CSBFile
/// share. Node has the public links next, prev, firstChild, lastChild and
/// parent, and GetName(). Every walk here is a loop: no tree, however deep,
/// recurses on the call stack.
///
/// The cursor is the current node; the empty-position flag says it stands at
/// the empty child list of the current node instead (Child(true) on a leaf),
/// so that the next Insert makes a first child.
///
/// Ownership: the tree owns its nodes (allocated with new). Remove deletes a
/// node with its subtree; Detatch hands it to the caller. Unlinking always
/// keeps the parent's first and last child right.
///
/// Threads: none; a tree belongs to one thread at a time.
#pragma once

#include <cstdint>

#include "qv/core/WideChar.h"

namespace qv {

/// The links of a tree, as free functions over any node type with them.
namespace tree {

/// The first of n's siblings (n itself if it has no prev); null for null.
template <class Node> Node *HeadOf(Node *n) {
    if (!n) return nullptr;
    while (n->prev) n = n->prev;
    return n;
}

/// The last of n's siblings (n itself if it has no next); null for null.
template <class Node> Node *TailOf(Node *n) {
    if (!n) return nullptr;
    while (n->next) n = n->next;
    return n;
}

/// Length of the sibling list that holds n, counted from its head.
template <class Node> uint32_t CountPeers(Node *n) {
    uint32_t count = 0;
    for (n = HeadOf(n); n; n = n->next) ++count;
    return count;
}

/// Links the unlinked n just after or before at, under at's parent,
/// keeping the parent's first and last child right. Neither may be null.
///@{
template <class Node> void LinkAfter(Node *at, Node *n) {
    n->parent = at->parent;
    n->prev = at;
    n->next = at->next;
    if (at->next) at->next->prev = n;
    else if (at->parent) at->parent->lastChild = n;
    at->next = n;
}

template <class Node> void LinkBefore(Node *at, Node *n) {
    n->parent = at->parent;
    n->next = at;
    n->prev = at->prev;
    if (at->prev) at->prev->next = n;
    else if (at->parent) at->parent->firstChild = n;
    at->prev = n;
}

///@}
/// Links the unlinked n as parent's last or first child. Neither may be null.
///@{
template <class Node> void AppendChild(Node *parent, Node *n) {
    if (parent->lastChild) return LinkAfter(parent->lastChild, n);
    n->parent = parent;
    n->prev = n->next = nullptr;
    parent->firstChild = parent->lastChild = n;
}

template <class Node> void PrependChild(Node *parent, Node *n) {
    if (parent->firstChild) return LinkBefore(parent->firstChild, n);
    AppendChild(parent, n);
}

///@}
/// Takes n out of its list, fixing its neighbours and its parent's first
/// and last child; n keeps its children and has no links left to the tree.
template <class Node> void Unlink(Node *n) {
    if (n->prev) n->prev->next = n->next;
    else if (n->parent) n->parent->firstChild = n->next;
    if (n->next) n->next->prev = n->prev;
    else if (n->parent) n->parent->lastChild = n->prev;
    n->next = n->prev = n->parent = nullptr;
}

/// Deletes everything below n, without recursion: each node's children are
/// spliced in behind it before it goes, so one list carries the whole walk.
template <class Node> void DeleteDescendants(Node *n) {
    Node *list = n->firstChild;
    n->firstChild = n->lastChild = nullptr;
    while (list) {
        if (list->firstChild) {
            list->lastChild->next = list->next;
            list->next = list->firstChild;
            list->firstChild = list->lastChild = nullptr;
        }
        Node *next = list->next;
        list->next = nullptr;
        delete list;
        list = next;
    }
}

/// Depth-first over top and everything below it: enter(node, depth) before a
/// node's children, leave(node, depth) after them. A false from either stops
/// the walk with false.
template <class Node, class Enter, class Leave> bool Walk(Node *top, Enter &&enter, Leave &&leave) {
    Node *n = top;
    uint32_t depth = 0;
    for (;;) {
        if (!enter(n, depth)) return false;
        if (n->firstChild) {
            n = n->firstChild;
            ++depth;
            continue;
        }
        for (;;) {
            if (!leave(n, depth)) return false;
            if (n == top) return true;
            if (n->next) {
                n = n->next;
                break;
            }
            n = n->parent;
            --depth;
        }
    }
}

/// A deep copy of n and all below it, unlinked; clone(node) copies one node
/// without its links.
template <class Node, class Clone> Node *Duplicate(Node *top, Clone &&clone) {
    Node *copy = nullptr, *at = nullptr;
    Walk(
        top,
        [&](Node *n, uint32_t) {
            Node *c = clone(n);
            if (at) AppendChild(at, c);
            else copy = c;
            at = c;
            return true;
        },
        [&](Node *, uint32_t) {
            if (at != copy) at = at->parent;
            return true;
        });
    return copy;
}

} // namespace tree

/// @copydoc TreeCursor.h
template <class Node> class TTreeCursor {
public:
    Node *root = nullptr;        ///< the head of the top-level list, or null for an empty tree
    Node *current = nullptr;     ///< the current node, or null
    bool emptyPosition = false;  ///< at the empty child list of current (see the top of this file)

    TTreeCursor() = default;
    TTreeCursor(TTreeCursor const &) = delete;
    TTreeCursor &operator=(TTreeCursor const &) = delete;
    ~TTreeCursor() { Destroy(); }

    /// Deletes every top-level node with its subtree.
    void Destroy() {
        Node *n = tree::HeadOf(root);
        while (n) {
            Node *next = n->next;
            n->next = n->prev = nullptr;
            delete n;
            n = next;
        }
        root = current = nullptr;
        emptyPosition = false;
    }

    /// Moves to the first top-level node; false for an empty tree.
    bool Root() {
        emptyPosition = false;
        current = root;
        return current != nullptr;
    }
    /// Moves to the parent; from the empty position, back to current
    /// itself. False at the top level or with no current node.
    bool Parent() {
        if (emptyPosition) {
            emptyPosition = false;
            return current != nullptr;
        }
        if (!current || !current->parent) return false;
        current = current->parent;
        return true;
    }
    /// Moves to the first child. A node without children: false, unless
    /// allowEmpty, which takes the empty position under it and gives true.
    bool Child(bool allowEmpty) {
        if (!current) return false;
        if (current->firstChild) {
            emptyPosition = false;
            current = current->firstChild;
            return true;
        }
        if (!allowEmpty) return false;
        emptyPosition = true;
        return true;
    }
    /// Moves to the next or previous sibling; false (staying put) at the end
    /// of the list or with no current node.
    ///@{
    bool Next() {
        emptyPosition = false;
        if (!current || !current->next) return false;
        current = current->next;
        return true;
    }
    bool Prev() {
        emptyPosition = false;
        if (!current || !current->prev) return false;
        current = current->prev;
        return true;
    }
    ///@}
    /// Moves to the first or last sibling; false only with no current node.
    ///@{
    bool First() {
        emptyPosition = false;
        if (!current) return false;
        current = tree::HeadOf(current);
        return true;
    }
    bool Last() {
        emptyPosition = false;
        if (!current) return false;
        current = tree::TailOf(current);
        return true;
    }

    ///@}
    /// Links n (made with new; the tree takes it) before or after the
    /// current node, or as the first child at the empty position, or as the
    /// only node of an empty tree, and makes it current. False for a null n
    /// or no current node in a non-empty tree.
    bool Insert(Node *n, bool before) {
        if (!n) return false;
        if (!root) {
            n->next = n->prev = n->parent = nullptr;
            root = current = n;
            emptyPosition = false;
            return true;
        }
        if (emptyPosition) return InsertChild(n, true);
        if (!current) return false;
        if (before) tree::LinkBefore(current, n);
        else tree::LinkAfter(current, n);
        if (!n->parent && !n->prev) root = n; // a new head of the top level
        current = n;
        return true;
    }
    /// Links n (made with new; the tree takes it) as the first or last child
    /// of the current node, or as the only node of an empty tree, and makes
    /// it current. False for a null n or no current node.
    bool InsertChild(Node *n, bool first) {
        emptyPosition = false;
        if (!n) return false;
        if (!root) return Insert(n, true);
        if (!current) return false;
        if (first) tree::PrependChild(current, n);
        else tree::AppendChild(current, n);
        current = n;
        return true;
    }

    /// Unlinks the current node; the cursor goes to the next sibling, else
    /// the previous, else the parent with the empty-position flag up.
    ///@{
    Node *Detatch() {
        if (emptyPosition || !current) return nullptr;
        Node *n = current;
        Node *parent = n->parent;
        current = n->next ? n->next : n->prev;
        if (root == n) root = n->next ? n->next : n->prev;
        tree::Unlink(n);
        if (!current) {
            current = parent;
            emptyPosition = parent != nullptr;
        }
        return n;
    }
    bool Remove() {
        Node *n = Detatch();
        delete n;
        return n != nullptr;
    }
    ///@}

    /// Moves to the first sibling of that name (without case), searching
    /// from the head of the current list. On failure the cursor is left at
    /// the last sibling.
    bool FindFirst(char16_t const *name) {
        emptyPosition = false;
        if (!current) return false;
        current = tree::HeadOf(current);
        return Matches(current, name) || FindNext(name);
    }
    /// Moves to the next sibling of that name (without case). On failure the
    /// cursor is left at the last sibling.
    bool FindNext(char16_t const *name) {
        emptyPosition = false;
        if (!current) return false;
        while (current->next) {
            current = current->next;
            if (Matches(current, name)) return true;
        }
        return false;
    }
    /// Moves to the first child of that name (without case); on failure the
    /// cursor does not move.
    bool FindFirstChild(char16_t const *name) {
        if (emptyPosition || !current || !current->firstChild) return false;
        Node *parent = current;
        current = current->firstChild;
        if (FindFirst(name)) return true;
        current = parent;
        return false;
    }

private:
    static bool Matches(Node *n, char16_t const *name) { return _wcsicmp(n->GetName(), name ? name : u"") == 0; }
};

} // namespace qv
