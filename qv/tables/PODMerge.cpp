// IPODFile::MergeWith: a column of one table brought into another by matching
// the rows of both along a key column.
#include <algorithm>
#include <cmath>
#include <memory>
#include <new>

#include "qv/core/WideChar.h"
#include "qv/core/WideFormat.h"
#include "qv/formats/tagged/TagFile.h"
#include "qv/tables/IPODFile.h"
#include "qv/tables/PODUnits.h"

namespace qv {

namespace {

constexpr double kDay = 86400;
constexpr size_t kNameSize = 128, kUnitSize = 64; // a column's name and unit fields
constexpr size_t kValueText = 64;                 // a value written back through its format

// Keys and values of a column as numbers; 8 bytes a row.
using Numbers = std::unique_ptr<double[]>;

Numbers MakeNumbers(uint32_t n) { return Numbers(new (std::nothrow) double[n ? n : 1]); }

void Copy(char16_t *out, size_t size, char16_t const *text) {
    size_t n = 0;
    for (; text && text[n] && n + 1 < size; ++n) out[n] = text[n];
    out[n] = 0;
}

char16_t const *UnitOf(IPODFile &table, uint32_t col) {
    char16_t const *unit = nullptr;
    return table.GetColumnInfo(col, nullptr, nullptr, &unit, nullptr) && unit ? unit : u"";
}

// The period by which a column's values wrap. An IRIG clock wraps by day,
// which the day rollover handles instead, so it has none here.
bool PeriodOf(char16_t const *unit, double &period) {
    return _wcsicmp(unit, u"IRIG") != 0 && GetPODUnitPeriod(unit, period);
}

// Adds whole days to k until it is no longer below previous.
double RollOver(double k, double previous) {
    if (!(k < previous) || !std::isfinite(k) || !std::isfinite(previous)) return k;
    double const days = std::ceil((previous - k) / kDay);
    if (days > 1e6) return k + days * kDay; // a hostile gap: no day-by-day walk
    while (k < previous) k += kDay;
    return k;
}

// Reads every row of column col through format into out, unwrapping values of
// a periodic unit once and, with rollover, making keys rise over midnight.
// False with the error text on a cell that does not read.
bool ReadNumbers(IPODFile &errors, IPODFile &table, uint32_t col, char16_t const *format, bool rollover,
                 double *out) {
    double period = 0;
    bool const periodic = PeriodOf(UnitOf(table, col), period);
    uint32_t const rows = table.nDPs();
    for (uint32_t row = 0; row < rows; ++row) {
        char16_t const *text = table.GetValue(col, row);
        double k = 0;
        if (!text || !IPODFile::GetValue(k, text, format)) {
            char16_t message[512];
            swprintf(message, 512, u"Could not get value from data \"%s\" with format \"%s\".", text ? text : u"",
                     format);
            errors.SetError(message);
            return false;
        }
        if (row > 0 && periodic) {
            if (row == 1 && std::fabs(out[0] + period - k) < std::fabs(out[0] - k)) out[0] += period;
            if (std::fabs(k + period - out[row - 1]) < std::fabs(k - out[row - 1])) k += period;
        }
        if (row > 0 && rollover) k = RollOver(k, out[row - 1]);
        out[row] = k;
    }
    return true;
}

// The first j whose key is not below key, as a scan from 0 finds it; rising
// keys are searched by halves.
uint32_t FirstNotBelow(double const *keys, uint32_t n, bool rising, double key) {
    if (rising) return uint32_t(std::lower_bound(keys, keys + n, key) - keys);
    uint32_t j = 0;
    while (j < n && keys[j] < key) ++j;
    return j;
}

} // namespace

bool IPODFile::MergeWith(IPODFile &add, char16_t const *keyColumn, char16_t const *keyFormat,
                         char16_t const *addColumn, char16_t const *addFormat, bool keepValues, bool dayRollover) {
    SetError(u"Key column does not exist in pod file or add file.");
    uint32_t keyHere = 0, keyThere = 0, addCol = 0;
    if (!keyColumn || !FindColumn(keyColumn, keyHere) || !add.FindColumn(keyColumn, keyThere)) return false;
    char16_t name[kNameSize], cls[kNameSize], unit[kUnitSize], type[kUnitSize];
    if (!addColumn) {
        // A two-column add table: the column that is not the key.
        char16_t const *other = nullptr;
        if (add.nParams() != 2 || !add.GetColumnInfo(keyThere == 0 ? 1 : 0, &other, nullptr, nullptr, nullptr))
            return false;
        Copy(name, kNameSize, other);
        addColumn = name;
    }
    SetError(u"Add column does not exists in add file.");
    if (!add.FindColumn(addColumn, addCol)) return false;
    {
        // Copies: add may be this table, whose column fields move as columns are added.
        char16_t const *info[4] = {};
        add.GetColumnInfo(addCol, &info[0], &info[1], &info[2], &info[3]);
        Copy(name, kNameSize, info[0]);
        Copy(cls, kNameSize, info[1]);
        Copy(unit, kUnitSize, info[2]);
        Copy(type, kUnitSize, info[3]);
    }

    uint32_t const rows = nDPs(), addRows = add.nDPs();
    Numbers keys = MakeNumbers(rows), addKeys = MakeNumbers(addRows), values = MakeNumbers(addRows);
    if (!keys || !addKeys || !values) {
        SetError(u"Not enough memory for the keys.");
        return false;
    }
    if (!ReadNumbers(*this, *this, keyHere, keyFormat, dayRollover, keys.get()) ||
        !ReadNumbers(*this, add, keyThere, keyFormat, dayRollover, addKeys.get()) ||
        (addFormat && !ReadNumbers(*this, add, addCol, addFormat, false, values.get())))
        return false;

    SetError(u"No appropriate conversion available.");
    uint32_t tagIndex = 0;
    CTagFile &tags = GetTagFile();
    bool const tagged = tags.FindTag(name, tagIndex);
    int const tagUnits = tagged ? tags.GetTagEntry(tagIndex).GetUnits() : 0;
    if (addFormat && tagUnits != 0 && _wcsicmp(CTagEntry::UnitsToStr(tagUnits), unit) != 0) {
        double const factor = GetPODUnitFactor(GetPODUnitIndex(unit), GetUnitConversionIndex(name));
        if (factor == 0) return false;
        for (uint32_t j = 0; j < addRows; ++j) values[j] *= factor;
    }

    SetError(u"Could not write the merged column.");
    uint32_t col = 0;
    if (!FindColumn(name, col)) {
        col = AddColumn(name, cls, tagged ? CTagEntry::UnitsToStr(tagUnits) : unit, type);
        if (col == kPODNone) return false;
    }
    if (!keepValues)
        for (uint32_t row = 0; row < rows; ++row)
            if (!PutValue(col, row, u"")) return false;
    double period = 0;
    bool const periodic = PeriodOf(UnitOf(*this, col), period);
    bool const rising = std::is_sorted(addKeys.get(), addKeys.get() + addRows);

    for (uint32_t row = 0; row < rows; ++row) {
        double const key = keys[row];
        uint32_t const j = FirstNotBelow(addKeys.get(), addRows, rising, key);
        if (j == addRows) continue;
        double value;
        if (addKeys[j] == key) {
            if (!addFormat) {
                if (!PutValue(col, row, add.GetValue(addCol, j))) return false;
                continue;
            }
            value = values[j];
        } else if (j == 0) {
            continue;
        } else {
            double const t = (key - addKeys[j - 1]) / (addKeys[j] - addKeys[j - 1]);
            if (!addFormat) {
                if (!PutValue(col, row, add.GetValue(addCol, t <= 0.5 ? j - 1 : j))) return false;
                continue;
            }
            value = t * (values[j] - values[j - 1]) + values[j - 1];
        }
        if (periodic && value > period) value -= period;
        char16_t text[kValueText];
        if (!IPODFile::PutValue(value, text, kValueText, addFormat) || !PutValue(col, row, text)) return false;
    }
    SetError(u"No Error.");
    return true;
}

} // namespace qv
