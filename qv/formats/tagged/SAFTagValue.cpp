// CSAFFile::CTagValue: a tag reached by name, read and written as text or as
// a number (numbers go through the library's locale-free text forms).
#include "qv/core/WideChar.h"
#include "qv/core/WideFormat.h"
#include "qv/formats/tagged/SAFFile.h"

namespace qv {

namespace {

// Enough for any "%d" or "%e" text.
constexpr size_t kNumberText = 64;

} // namespace

CSAFFile::CTagValue::CTagValue(CSAFFile *file, char16_t const *name) : file(file), name(name) {}

CSAFFile::CTagValue &CSAFFile::CTagValue::operator=(char16_t const *value) {
    file->SetTagValue(name, value);
    return *this;
}

CSAFFile::CTagValue &CSAFFile::CTagValue::operator=(int value) {
    char16_t text[kNumberText];
    swprintf(text, kNumberText, u"%d", value);
    return *this = text;
}

CSAFFile::CTagValue &CSAFFile::CTagValue::operator=(double value) {
    char16_t text[kNumberText];
    swprintf(text, kNumberText, u"%e", value);
    return *this = text;
}

CSAFFile::CTagValue::operator char16_t const *() const {
    return file->GetTagValue(name);
}

CSAFFile::CTagValue::operator int32_t() const {
    return ToLong(0);
}

CSAFFile::CTagValue::operator double() const {
    return ToDouble(0.0);
}

int32_t CSAFFile::CTagValue::ToLong(int32_t fallback) const {
    char16_t const *value = file->GetTagValue(name);
    return value ? _wtol(value) : fallback;
}

double CSAFFile::CTagValue::ToDouble(double fallback) const {
    char16_t const *value = file->GetTagValue(name);
    return value ? _wtof(value) : fallback;
}

bool CSAFFile::CTagValue::Exists() const {
    return file->GetTagValue(name) != nullptr;
}

} // namespace qv
