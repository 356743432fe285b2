#include "qv/tables/IPODFile.h"

#include "qv/core/Array.h"
#include "qv/core/WideChar.h"
#include "qv/core/WideFormat.h"
#include "qv/formats/tagged/SAFFile.h"
#include "qv/formats/tagged/TagFile.h"
#include "qv/tables/PODUnits.h"

namespace qv {

namespace {

// The dictionary entry of tagName, or null.
CTagEntry const *FindTagEntry(CTagFile &tags, char16_t const *tagName) {
    uint32_t index = 0;
    if (!tagName || !tags.FindTag(tagName, index)) return nullptr;
    return &tags.GetTagEntry(index);
}

} // namespace

IPODFile::~IPODFile() = default;

void IPODFile::SetError(char16_t const *text) {
    size_t n = 0;
    for (; text && text[n] && n + 1 < sizeof error / sizeof error[0]; ++n) error[n] = text[n];
    error[n] = 0;
}

bool IPODFile::IsCorrectUnit(char16_t const *tagName, char16_t const *unit) {
    CTagEntry const *tag = FindTagEntry(GetTagFile(), tagName);
    if (!tag || tag->GetUnits() == CTagEntry::UNITS_NONE) return true;
    return unit && _wcsicmp(CTagEntry::UnitsToStr(tag->GetUnits()), unit) == 0;
}

int IPODFile::GetUnitConversionIndex(char16_t const *tagName) {
    CTagEntry const *tag = FindTagEntry(GetTagFile(), tagName);
    return tag ? GetPODUnitIndex(CTagEntry::UnitsToStr(tag->GetUnits())) : -1;
}

IPODFile::CColumn IPODFile::operator[](char16_t const *name) {
    uint32_t col = 0;
    if (!FindColumn(name, col)) col = AddColumn(name, u"Unclassified", u"None", u"");
    return CColumn(*this, col);
}

IPODFile::CValue::operator int() const { return _wtol(table->GetValue(col, row)); }

IPODFile::CValue &IPODFile::CValue::operator=(int value) {
    char16_t text[16];
    swprintf(text, 16, u"%d", value);
    table->PutValue(col, row, text);
    return *this;
}

IPODFile::CValue &IPODFile::CValue::operator=(CValue const &other) {
    table->PutValue(col, row, other.table->GetValue(other.col, other.row));
    return *this;
}

bool IPODFile::MakeDuplicate(IPODFile &target) {
    if (&target == this || !target.New() || !GetHeader().MakeDuplicate(target.GetHeader())) return false;
    // Every live column is copied, also those above a removed one, so that a
    // removed column never costs the copy a live one.
    uint32_t const columns = nParams();
    TArray<uint32_t> from, to;
    for (uint32_t col = 0, found = 0; found < columns && col != kPODNone; ++col) {
        char16_t const *name, *cls, *unit, *type;
        if (!GetColumnInfo(col, &name, &cls, &unit, &type)) continue;
        uint32_t added = target.AddColumn(name, cls, unit, type);
        if (added == kPODNone || !from.Add(col) || !to.Add(added)) return false;
        ++found;
    }
    uint32_t const rows = nDPs();
    target.AllocRows(rows);
    if (target.nDPs() != rows) return false;
    // Row by row, so that a long table is read once rather than once a column.
    for (uint32_t row = 0; row < rows; ++row) {
        for (uint32_t i = 0; i < from.GetSize(); ++i) {
            char16_t const *value = GetValue(from.GetAt(i), row);
            if (!value || !target.PutValue(to.GetAt(i), row, value)) return false;
        }
    }
    return true;
}

} // namespace qv
