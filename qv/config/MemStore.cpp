// CMemStore: the settings tree as one array of index-linked nodes.
#include "qv/config/MemStore.h"

#include "qv/filesystems/Path.h"

namespace qv {

namespace {

// Large stores (a loaded file) would copy the array at every fifth node with
// the default linear step.
constexpr uint16_t kNodeGrowth = 4096;

} // namespace

CMemStore::CMemStore() {
    nodes.SetGrowthRate(kNodeGrowth);
    nodes.Add(SNode());
}

CMemStore::CMemStore(CMemStore const &other) : IConfigStore(other), nodes(other.nodes) {
    nodes.SetGrowthRate(kNodeGrowth);
}

CMemStore &CMemStore::operator=(CMemStore const &other) {
    IConfigStore::operator=(other);
    nodes = other.nodes;
    return *this;
}

CMemStore::~CMemStore() = default;

void CMemStore::Reset() {
    nodes.Empty();
    nodes.Add(SNode());
    current = u"/";
}

int32_t CMemStore::FindChild(int32_t parent, char16_t const *name, int32_t *last) const {
    *last = -1;
    for (int32_t child = nodes.GetAt(uint32_t(parent)).firstChild; child >= 0;
         child = nodes.GetAt(uint32_t(child)).nextSibling) {
        if (nodes.GetAt(uint32_t(child)).name.EqualsNoCase(name)) return child;
        *last = child;
    }
    return -1;
}

int32_t CMemStore::AddChild(int32_t parent, int32_t last, CString const &name) {
    SNode node;
    node.name = name;
    if (nodes.GetSize() >= uint32_t(INT32_MAX) || !nodes.Add(node)) return -1;
    int32_t index = int32_t(nodes.GetSize() - 1);
    if (last < 0)
        nodes[uint32_t(parent)].firstChild = index;
    else
        nodes[uint32_t(last)].nextSibling = index;
    return index;
}

int32_t CMemStore::GetNode(char16_t const *path, bool *created) {
    if (created) *created = false;
    TArray<CString> items;
    path::SplitPath(items, ExpandPath(path));
    int32_t node = 0;
    for (uint32_t i = 0; i < items.GetSize(); ++i) {
        int32_t last = -1;
        int32_t child = FindChild(node, items[i], &last);
        if (child < 0) {
            child = AddChild(node, last, items[i]);
            if (child < 0) return node; // no room: the nearest node that exists
            if (created) *created = true;
        }
        node = child;
    }
    return node;
}

CString CMemStore::GetString(char16_t const *name, char16_t const *defaultValue) {
    bool created = false;
    int32_t node = GetNode(name, &created);
    if (created) nodes[uint32_t(node)].value = defaultValue ? defaultValue : u"";
    return nodes[uint32_t(node)].value;
}

bool CMemStore::SetString(char16_t const *name, char16_t const *value) {
    nodes[uint32_t(GetNode(name))].value = value ? value : u"";
    return true;
}

bool CMemStore::isLeaf(char16_t const *path) {
    return nodes[uint32_t(GetNode(path))].firstChild < 0;
}

bool CMemStore::isEntry(char16_t const *path) {
    return nodes[uint32_t(GetNode(path))].firstChild >= 0;
}

bool CMemStore::list(TArray<CString> &names, char16_t const *path) {
    int32_t node = GetNode(path);
    for (int32_t child = nodes[uint32_t(node)].firstChild; child >= 0; child = nodes[uint32_t(child)].nextSibling)
        names.Add(nodes[uint32_t(child)].name);
    return true;
}

bool CMemStore::copyValue(IConfigStore &target, char16_t const *targetPath, char16_t const *sourcePath) {
    return target.SetString(targetPath, GetString(sourcePath, u""));
}

} // namespace qv
