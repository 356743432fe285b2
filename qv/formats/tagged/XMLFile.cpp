// CXMLFile's cursor and its loads by path.
#include "qv/formats/tagged/XMLFile.h"

#include "qv/formats/tagged/ByPath.h"

namespace qv {

using CNode = CXMLFile::CNode;

bool CXMLFile::Load(IFileSystem *fs, char16_t const *path) {
    Destroy();
    return tagged::LoadByPath(fs, path, [&](IFile *f) { return Load(f); });
}

bool CXMLFile::Load(char16_t const *path) {
    return Load(nullptr, path);
}

void CXMLFile::Destroy() { cursor.Destroy(); }

bool CXMLFile::Root() { return cursor.Root(); }
bool CXMLFile::Parent() { return cursor.Parent(); }
bool CXMLFile::Child(bool allowEmpty) { return cursor.Child(allowEmpty); }
bool CXMLFile::Next() { return cursor.Next(); }
bool CXMLFile::Prev() { return cursor.Prev(); }
bool CXMLFile::First() { return cursor.First(); }
bool CXMLFile::Last() { return cursor.Last(); }
uint32_t CXMLFile::NumPeers() { return tree::CountPeers(cursor.current); }
uint32_t CXMLFile::NumPeers(CNode *node) { return tree::CountPeers(node); }
bool CXMLFile::HasChildren() { return cursor.current && cursor.current->firstChild; }
bool CXMLFile::IsValid() { return cursor.current != nullptr; }
bool CXMLFile::Insert(CNode *node, bool before) { return cursor.Insert(node, before); }
bool CXMLFile::InsertChild(CNode *node, bool first) { return cursor.InsertChild(node, first); }
bool CXMLFile::Remove() { return cursor.Remove(); }
CNode *CXMLFile::Detatch() { return cursor.Detatch(); }
bool CXMLFile::FindFirst(char16_t const *name) { return cursor.FindFirst(name); }
bool CXMLFile::FindNext(char16_t const *name) { return cursor.FindNext(name); }
bool CXMLFile::FindFirstChild(char16_t const *name) { return cursor.FindFirstChild(name); }
CNode *CXMLFile::GetCurr() { return cursor.current; }

void CXMLFile::SetCurr(CNode *node) {
    cursor.current = node;
    cursor.emptyPosition = false;
}

CNode &CXMLFile::Curr() {
    static CNode empty;
    return cursor.current ? *cursor.current : empty;
}

char16_t const *CXMLFile::GetValue() { return CNode::GetValue(cursor.current); }
char16_t const *CXMLFile::GetAttribute(char16_t const *name) { return CNode::GetAttribute(cursor.current, name); }
char16_t const *CXMLFile::GetAttribute(char16_t const *name, char16_t const *fallback) {
    return CNode::GetAttribute(cursor.current, name, fallback);
}

} // namespace qv
