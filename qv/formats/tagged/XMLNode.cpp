// CXMLFile's nodes and attribute lists: building, walking and copying.
#include "qv/core/WideChar.h"
#include "qv/formats/tagged/XMLFile.h"

namespace qv {

using CNode = CXMLFile::CNode;

namespace {

bool SameName(CString const &a, char16_t const *b) {
    return _wcsicmp(a.GetUTF16(), b ? b : u"") == 0;
}

void AddPairs(CXMLFile::CAttribArray &attributes, TArray<SNameValuePair> const &pairs) {
    for (uint32_t i = 0; i < pairs.nItems(); ++i)
        attributes.Add(CXMLFile::ATTRIB{pairs.GetAt(i).Name, pairs.GetAt(i).Value});
}

} // namespace

uint32_t CXMLFile::CAttribArray::Find(char16_t const *name) const {
    for (uint32_t i = 0; i < nItems(); ++i)
        if (SameName(GetAt(i).name, name)) return i;
    return UINT32_MAX;
}

CString &CXMLFile::CAttribArray::operator[](char16_t const *name) {
    uint32_t i = Find(name);
    if (i == UINT32_MAX) {
        i = nItems();
        Add(ATTRIB{CString(name ? name : u""), CString(u"")});
    }
    return GetItem(i).value;
}

bool CXMLFile::CAttribArray::Exists(char16_t const *name) const {
    return Find(name) != UINT32_MAX;
}

bool CXMLFile::CAttribArray::Remove(char16_t const *name) {
    uint32_t i = Find(name);
    return i != UINT32_MAX && TArray<ATTRIB>::Remove(i);
}

CNode::CNode() = default;
CNode::CNode(char16_t const *n) : name(n ? n : u"") {}
CNode::CNode(char16_t const *n, char16_t const *v) : name(n ? n : u""), value(v ? v : u"") {}
CNode::CNode(char16_t const *n, TArray<SNameValuePair> const &pairs) : name(n ? n : u"") {
    AddPairs(attributes, pairs);
}
CNode::CNode(char16_t const *n, TArray<SNameValuePair> const &pairs, char16_t const *v)
    : name(n ? n : u""), value(v ? v : u"") {
    AddPairs(attributes, pairs);
}
CNode::CNode(NODETYPE t, char16_t const *n) : type(t), name(n ? n : u"") {}
CNode::CNode(NODETYPE t, char16_t const *n, TArray<SNameValuePair> const &pairs) : type(t), name(n ? n : u"") {
    AddPairs(attributes, pairs);
}

CNode::~CNode() {
    tree::DeleteDescendants(this);
}

CNode *CNode::Root() {
    CNode *n = this;
    while (n->parent) n = n->parent;
    return tree::HeadOf(n);
}
CNode *CNode::First() { return tree::HeadOf(this); }
CNode *CNode::Last() { return tree::TailOf(this); }

CNode *CNode::Find(char16_t const *n) {
    CNode *node = this;
    while (node && !SameName(node->name, n)) node = node->next;
    return node;
}
CNode *CNode::FindFirst(char16_t const *n) { return First()->Find(n); }
CNode *CNode::FindNext(char16_t const *n) { return Find(next, n); }
CNode *CNode::FindChild(char16_t const *n) { return Find(firstChild, n); }

char16_t const *CNode::GetAttribute(char16_t const *n) { return GetAttribute(n, u""); }
char16_t const *CNode::GetAttribute(char16_t const *n, char16_t const *fallback) {
    uint32_t i = attributes.Find(n);
    return i == UINT32_MAX ? fallback : attributes.GetAt(i).value.GetUTF16();
}

bool CNode::HasChildren() { return firstChild != nullptr; }
uint32_t CNode::NumChildren() { return firstChild ? tree::CountPeers(firstChild) : 0; }
uint32_t CNode::NumChildren(char16_t const *n) {
    uint32_t count = 0;
    for (CNode *c = firstChild; c; c = c->next) count += SameName(c->name, n);
    return count;
}

bool CNode::InsertChild(CNode *node, bool first) {
    if (!node) return false;
    if (first) tree::PrependChild(this, node);
    else tree::AppendChild(this, node);
    return true;
}

CNode *CNode::Duplicate() {
    return tree::Duplicate(this, [](CNode *n) {
        CNode *copy = new CNode(n->type, n->name.GetUTF16());
        copy->value = n->value;
        copy->attributes = n->attributes;
        return copy;
    });
}

} // namespace qv
