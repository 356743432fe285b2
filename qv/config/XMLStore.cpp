// CXMLStore: the store tree to and from the elements of a CXMLFile.
#include "qv/config/XMLStore.h"

#include <vector>

#include "qv/filesystems/Path.h"
#include "qv/formats/tagged/XMLFile.h"

namespace qv {

namespace {

using CNode = CXMLFile::CNode;

// A path no longer than a store path: deeper items would be cut anyway, and
// keeping them would cost the square of the depth.
CString Bounded(CString path) {
    if (path.GetLength() >= IConfigStore::PathSize) path.Truncate(IConfigStore::PathSize - 1);
    return path;
}

} // namespace

bool CXMLStore::Load(IFile *file) {
    Reset();
    CXMLFile xml;
    if (!file || !xml.Load(file) || !xml.Root() || !xml.FindFirst(u"store")) return false;
    struct SFrame {
        CNode *node;
        CString parentPath;
    };
    // An explicit stack: files may nest far deeper than a thread's stack.
    std::vector<SFrame> stack{{xml.GetCurr()->Child(), CString(u"/")}};
    while (!stack.empty()) {
        CNode *node = stack.back().node;
        if (!node) {
            stack.pop_back();
            continue;
        }
        stack.back().node = node->Next();
        if (node->type != CNode::ELEMENT) continue;
        CString nodePath = Bounded(path::MakePath(stack.back().parentPath, node->attributes[u"name"], u'/'));
        if (!node->value.IsEmpty()) SetString(nodePath, node->value);
        if (node->Child()) stack.push_back({node->Child(), nodePath});
    }
    return true;
}

namespace {

// Tree depth is bounded by the store's path length, so this may recurse.
void SaveNode(TArray<CMemStore::SNode> const &nodes, int32_t index, CNode *parent) {
    for (int32_t child = nodes.GetAt(uint32_t(index)).firstChild; child >= 0;
         child = nodes.GetAt(uint32_t(child)).nextSibling) {
        CMemStore::SNode const &node = nodes.GetAt(uint32_t(child));
        auto *entry = new CNode(u"entry");
        entry->attributes[u"name"] = node.name;
        parent->InsertChild(entry, false);
        if (node.firstChild < 0)
            entry->value = node.value;
        else
            SaveNode(nodes, child, entry);
    }
}

} // namespace

bool CXMLStore::Save(IFile *file) {
    if (!file) return false;
    CXMLFile xml;
    auto *store = new CNode(u"store");
    if (!xml.Insert(store, false)) {
        delete store;
        return false;
    }
    SaveNode(nodes, 0, store);
    return xml.Save(file);
}

} // namespace qv
