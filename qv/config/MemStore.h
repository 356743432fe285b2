/// @file
/// CMemStore: the settings tree in memory, and the base of the file stores
/// (CINIStore, CXMLStore).
///
/// The tree is one TArray of SNode linked by indices (first child, next
/// sibling, -1 for none), so the array may move as it grows and a whole store
/// copies as one array. Node 0 is the root, with empty name and value.
///
/// The tree never fails a lookup: it grows. Any operation on a path that does
/// not exist makes the missing nodes, so GetString of a missing key returns
/// the default and stores it, and isLeaf of a missing path is true (and the
/// path now exists). An entry is a node with children, a leaf one without.
/// Names compare without regard to case and keep the case they were made with.
/// Children keep the order in which they were made. list appends to names
/// without emptying it. unlink is not supported (false): the tree cannot
/// delete a key. Writes never fail (a heap that cannot grow drops the node
/// silently, as TArray does).
///
/// A lookup is linear in the number of siblings at each level.
///
/// Copies (construction and assignment) take the node array whole and the
/// current path. Threads: one thread at a time.
#pragma once

#include <cstdint>

#include "qv/config/IConfigStore.h"

namespace qv {

/// @copydoc MemStore.h
class QV_API CMemStore : public IConfigStore {
public:
    /// One key of the tree, kept in the nodes array; links are indices.
    struct SNode {
        CString name; ///< The key's name ("" for the root).
        CString value; ///< The value; empty when none was set.
        int32_t firstChild = -1; ///< Index of the first child, -1 for none.
        int32_t nextSibling = -1; ///< Index of the next sibling, -1 for none.
    };

    CMemStore();
    /// Copies the whole tree and the current path.
    ///@{
    CMemStore(CMemStore const &other);
    CMemStore &operator=(CMemStore const &other);
    ///@}
    ~CMemStore() override;

    bool copyValue(IConfigStore &target, char16_t const *targetPath, char16_t const *sourcePath) override;
    bool list(TArray<CString> &names, char16_t const *path) override;
    bool isLeaf(char16_t const *path) override;
    bool isEntry(char16_t const *path) override;
    CString GetString(char16_t const *name, char16_t const *defaultValue) override;
    bool SetString(char16_t const *name, char16_t const *value) override;

    /// The number of nodes, root included.
    uint32_t GetNodeCount() const { return nodes.GetSize(); }

protected:
    /// The node of path (expanded against the current path), made with every
    /// missing node above it; *created (if not null) tells whether any was made.
    int32_t GetNode(char16_t const *path, bool *created = nullptr);
    /// Only the root remains; the current path is "/" again.
    void Reset();
    /// The child of parent named name, or -1; *last gets the last child seen.
    int32_t FindChild(int32_t parent, char16_t const *name, int32_t *last) const;
    /// A new node named name as the last child of parent (after last, -1 for
    /// none); -1 if the array could not grow.
    int32_t AddChild(int32_t parent, int32_t last, CString const &name);

    TArray<SNode> nodes; ///< All nodes; index 0 is the root.
};

} // namespace qv
