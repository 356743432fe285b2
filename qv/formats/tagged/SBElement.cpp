// The SBF file's elements: attributes by name and the subtree below.
#include "qv/core/WideChar.h"
#include "qv/formats/tagged/SBFile.h"

namespace qv {

using CElement = CSBFile::CElement;

CElement::~CElement() {
    tree::DeleteDescendants(this);
}

uint32_t CElement::NumChildren() const {
    return firstChild ? tree::CountPeers(firstChild) : 0;
}

CSBFile::ATTRIB *CElement::FindAttribute(char16_t const *n) {
    for (uint32_t i = 0; i < attributes.nItems(); ++i)
        if (_wcsicmp(attributes[i].name.GetUTF16(), n ? n : u"") == 0) return &attributes[i];
    return nullptr;
}

void CElement::PutAttribute(char16_t const *n, VARIANT const &v) {
    if (ATTRIB *a = FindAttribute(n)) {
        a->value = v;
        return;
    }
    attributes.Add(ATTRIB{0, CString(n ? n : u""), v});
}

CSBFile::VARIANT &CElement::GetAttribute(char16_t const *n) {
    static VARIANT none;
    ATTRIB *a = FindAttribute(n);
    if (a) return a->value;
    none.Destroy();
    return none;
}

bool CElement::RemoveAttribute(char16_t const *n) {
    ATTRIB *a = FindAttribute(n);
    return a && attributes.Remove(uint32_t(a - attributes.GetData()));
}

bool CElement::AttributeExists(char16_t const *n) {
    return FindAttribute(n) != nullptr;
}

void CElement::Destroy() {
    tree::DeleteDescendants(this);
}

void CElement::SelfDestruct() {
    delete this;
}

} // namespace qv
