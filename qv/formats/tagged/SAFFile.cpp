// CSAFFile's tag list: the fixed tags, lookup by name and the checked edits.
#include "qv/formats/tagged/SAFFile.h"

#include "qv/core/WideChar.h"
#include "qv/formats/tagged/SAFLayout.h"

namespace qv {

CSAFFile::CSAFFile() : fileSystem(nullptr), dataPosition(0) {}

void CSAFFile::ForgetFile() {
    filename = u"";
    fileSystem = nullptr;
    dataPosition = 0;
    headerEndsAsStated = true;
}

bool CSAFFile::New(bool keepFile) {
    if (!keepFile) ForgetFile();
    headerEndsAsStated = true;
    tags.Empty();
    tags.Add(SAF_TAG{CString(saf::kHdSize), CString(u"auto")});
    tags.Add(SAF_TAG{CString(saf::kData), CString(u"")});
    return true;
}

void CSAFFile::Destroy() {
    ForgetFile();
    tags.Destroy();
}

void CSAFFile::DropData() {
    ForgetFile();
}

bool CSAFFile::MakeDuplicate(CSAFFile &target) const {
    target.New(false);
    for (uint32_t i = 1; i + 1 < tags.nItems(); ++i) {
        SAF_TAG const &tag = tags.GetAt(i);
        if (!target.AddTag(tag.name.GetUTF16(), tag.value.GetUTF16())) return false;
    }
    return true;
}

uint32_t CSAFFile::nTags() const {
    return tags.nItems();
}

SAF_TAG &CSAFFile::operator[](uint32_t i) {
    return tags.GetItem(i);
}

CSAFFile::CTagValue CSAFFile::operator[](char16_t const *name) {
    return CTagValue(this, name);
}

bool CSAFFile::FindTag(char16_t const *name, uint32_t &index) const {
    for (uint32_t i = 0; i < tags.nItems(); ++i) {
        if (_wcsicmp(tags.GetAt(i).name.GetUTF16(), name ? name : u"") != 0) continue;
        index = i;
        return true;
    }
    return false;
}

bool CSAFFile::FindTag(char16_t const *name, SAF_TAG *&tag) {
    uint32_t index = 0;
    if (!FindTag(name, index)) return false;
    tag = &tags[index];
    return true;
}

char16_t const *CSAFFile::GetTagValue(char16_t const *name) const {
    uint32_t index = 0;
    return FindTag(name, index) ? tags.GetAt(index).value.GetUTF16() : nullptr;
}

bool CSAFFile::SetTagValue(uint32_t i, char16_t const *value) {
    char16_t const *name = i < tags.nItems() ? tags.GetAt(i).name.GetUTF16() : u"";
    if (!saf::IsWritableValue(name, value) || i == UINT32_MAX) return false;
    tags[i].value = value;
    return true;
}

bool CSAFFile::SetTagValue(char16_t const *name, char16_t const *value) {
    if (tags.nItems() == 0) return false;
    SAF_TAG *tag = nullptr;
    if (!FindTag(name, tag)) return AddTag(name, value);
    if (!saf::IsWritableValue(tag->name.GetUTF16(), value)) return false;
    tag->value = value;
    return true;
}

bool CSAFFile::AddTag(char16_t const *name, char16_t const *value) {
    if (!saf::IsWritableName(name) || saf::IsReservedName(name)) return false;
    if (!saf::IsWritableValue(name, value) || tags.nItems() == 0) return false;
    return tags.Insert(SAF_TAG{CString(name), CString(value)}, tags.nItems() - 1);
}

bool CSAFFile::RemoveTag(uint32_t i) {
    return tags.Remove(i);
}

bool CSAFFile::RemoveTag(char16_t const *name) {
    uint32_t index = 0;
    return FindTag(name, index) && tags.Remove(index);
}

uint32_t CSAFFile::GetDataPosition() const {
    return dataPosition;
}

bool CSAFFile::HeaderEndsAsStated() const {
    return headerEndsAsStated;
}

char16_t const *CSAFFile::GetFilename() const {
    return filename.GetUTF16();
}

IFileSystem *CSAFFile::GetFileSystem() const {
    return fileSystem;
}

} // namespace qv
