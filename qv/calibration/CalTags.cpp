// Free name/value tags of a calibration, file-wide (page -1) and per page.
// Names compare ignoring case; no reserved-name check happens here.
#include "qv/calibration/RCalFile.h"

namespace qv {

namespace {

char16_t const *Text(CString const &s) {
    char16_t const *text = s.GetTChar();
    return text ? text : u"";
}

int FindTag(TArray<SNameValuePair> const &tags, CString const &name) {
    for (uint32_t i = 0; i < tags.GetSize(); ++i)
        if (CString::CompareNoCase(Text(tags.GetAt(i).Name), Text(name)) == 0) return int(i);
    return -1;
}

} // namespace

TArray<SNameValuePair> *CRCalFile::TagList(int page) {
    if (page == -1) return &Tags;
    CAL_PAGE *p = PageInRange(page);
    return p ? &p->Tags : nullptr;
}

bool CRCalFile::GetTags(TArray<SNameValuePair> &tags) {
    return GetTags(-1, tags);
}

bool CRCalFile::GetTags(int page, TArray<SNameValuePair> &tags) {
    TArray<SNameValuePair> *list = TagList(page);
    if (!list) return false;
    tags = *list;
    return true;
}

bool CRCalFile::GetTag(CString name, CString &value) {
    return GetTag(-1, name, value);
}

bool CRCalFile::GetTag(int page, CString name, CString &value) {
    TArray<SNameValuePair> *list = TagList(page);
    int at = list ? FindTag(*list, name) : -1;
    if (at < 0) return false;
    value = (*list)[uint32_t(at)].Value;
    return true;
}

bool CRCalFile::SetTag(CString name, CString value) {
    return SetTag(-1, name, value);
}

bool CRCalFile::SetTag(int page, CString name, CString value) {
    TArray<SNameValuePair> *list = TagList(page);
    if (!list) return false;
    int at = FindTag(*list, name);
    if (at >= 0) {
        (*list)[uint32_t(at)].Value = value;
        return true;
    }
    return list->Add(SNameValuePair{name, value});
}

bool CRCalFile::RemoveTag(CString name) {
    return RemoveTag(-1, name);
}

bool CRCalFile::RemoveTag(int page, CString name) {
    TArray<SNameValuePair> *list = TagList(page);
    int at = list ? FindTag(*list, name) : -1;
    return at >= 0 && list->Remove(uint32_t(at));
}

bool CRCalFile::ClearTags() {
    return ClearTags(-1);
}

bool CRCalFile::ClearTags(int page) {
    TArray<SNameValuePair> *list = TagList(page);
    if (!list) return false;
    list->Empty();
    return true;
}

} // namespace qv
