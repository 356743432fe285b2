#pragma once

/// @file
/// IPODFile: a table of per-frame data, rows by named columns, every cell a
/// string, with a SAF header beside it.
///
/// Ownership: strings returned by GetValue and GetColumnInfo belong to the
/// table and stay good only until the next call on it. Failures are results
/// (false, null, or kPODNone); nothing throws. One thread at a time: even
/// reads move rows between caches.
///
/// Two higher operations work on any implementation: MakeDuplicate copies a
/// table into another, and MergeWith brings a column of one table into
/// another by interpolating along a key column (memory: 8 bytes per row of
/// each table for the keys and values). MergeWith leaves a text for GetError:
/// "No Error." after success, otherwise the text of the step that failed.
/// Columns and cells are also reached through small proxies: table[col] or
/// table[u"Name"] gives a CColumn, column[row] a CValue.

#include <cstddef>
#include <cstdint>

#include "qv/core/Export.h"
#include "qv/tables/PODValueFormat.h"

namespace qv {

class CSAFFile;
class CTagFile;
class IFileSystem;

inline constexpr uint32_t kPODNone = 0xFFFFFFFFu; ///< no row or column: the failure of AddColumn and AddRow

/// @copydoc IPODFile.h
class QV_API IPODFile {
public:
    class CColumn;
    class CValue;

    /// One property of a column (name, class, unit or type): reads through
    /// GetColumnInfo (null when the column is not live), writes through
    /// UpdateColumn with only that property set. Holds the table, not owned.
    class CProperty {
    public:
        /// The properties in the order of CColumn's members.
        enum EKind : int { kName, kClass, kUnit, kType };
        /// The property kind of column col of table.
        CProperty(IPODFile &table, uint32_t col, EKind kind) : table(&table), col(col), kind(kind) {}
        /// The property's text, null when the column is not live.
        operator char16_t const *() const {
            char16_t const *out[4] = {};
            return table->GetColumnInfo(col, &out[0], &out[1], &out[2], &out[3]) ? out[kind] : nullptr;
        }
        /// Changes only this property; a refused change leaves it as it was.
        CProperty &operator=(char16_t const *text) {
            char16_t const *in[4] = {};
            in[kind] = text;
            table->UpdateColumn(col, in[0], in[1], in[2], in[3]);
            return *this;
        }

    private:
        IPODFile *table;
        uint32_t col;
        EKind kind;
    };

    /// One cell. Reads through GetValue (null on failure; as an int, the
    /// leading decimal number, 0 if none); writes through PutValue, a failed
    /// write leaving the cell as it was.
    class CValue {
    public:
        /// Cell (col, row) of table; not checked until used.
        CValue(IPODFile &table, uint32_t col, uint32_t row) : table(&table), col(col), row(row) {}
        CValue(CValue const &) = default; ///< names the same cell
        /// The cell's text, null on failure.
        operator char16_t const *() const { return table->GetValue(col, row); }
        operator int() const; ///< the text read as a decimal number (_wtol)
        /// Writes text, a number as decimal text, or the text of another cell.
        ///@{
        CValue &operator=(char16_t const *text) {
            table->PutValue(col, row, text);
            return *this;
        }
        CValue &operator=(int value);
        CValue &operator=(CValue const &other);
        ///@}

    private:
        IPODFile *table;
        uint32_t col, row;
    };

    /// One column: its four properties and, by row, its cells. The column
    /// number is not checked until used.
    class CColumn {
    public:
        /// Column col of table.
        CColumn(IPODFile &table, uint32_t col)
            : name(table, col, CProperty::kName), cls(table, col, CProperty::kClass),
              unit(table, col, CProperty::kUnit), type(table, col, CProperty::kType), table(&table), col(col) {}
        CValue operator[](uint32_t row) const { return CValue(*table, col, row); } ///< the cell of row
        uint32_t GetIndex() const { return col; } ///< the column number

        /// The four properties.
        ///@{
        CProperty name, cls, unit, type;
        ///@}

    private:
        IPODFile *table;
        uint32_t col;
    };

    virtual ~IPODFile(); ///< the implementation frees what it holds
    virtual CSAFFile &GetHeader() = 0;   ///< the SAF header, owned by the table
    virtual CTagFile &GetTagFile() = 0;  ///< the tag dictionary the header uses (not owned)
    virtual bool New() = 0;              ///< an empty table with a new header; unsaved changes are dropped
    /// Opens the table in file name of fs. With mustExist false, a file
    /// without a SAF header is read as plain delimited text and a missing
    /// file gives an empty table.
    virtual bool Load(IFileSystem *fs, char16_t const *name, bool mustExist) = 0;
    /// Writes the whole table to name (mergeHeader: over the header the
    /// file already has), then reopens it from there.
    virtual bool Save(IFileSystem *fs, char16_t const *name, bool mergeHeader, bool saveFlag) = 0;
    virtual void Destroy() = 0;                 ///< drops everything, unsaved changes too
    virtual void RemoveRow(uint32_t row) = 0;   ///< later rows move down by one
    virtual void RemoveCol(uint32_t col) = 0;   ///< the column keeps its number but is no longer live
    /// The first live column named name (ignoring case); false if none.
    virtual bool FindColumn(char16_t const *name, uint32_t &col) = 0;
    /// The new column's number, kPODNone on failure.
    virtual uint32_t AddColumn(char16_t const *name, char16_t const *cls, char16_t const *unit,
                               char16_t const *type) = 0;
    virtual uint32_t AddRow() = 0; ///< the new row's number, kPODNone without columns
    virtual void AllocRows(uint32_t count) = 0; ///< adds rows up to count; never shrinks
    virtual uint32_t nDPs() = 0;    ///< rows
    virtual uint32_t nParams() = 0; ///< live columns
    virtual uint32_t GetColumnID(uint32_t col) { return col; } ///< col itself
    virtual bool IsValid() = 0; ///< whether a table is open
    /// Cell (col, row): a string owned by the table, null on failure.
    virtual char16_t const *GetValue(uint32_t col, uint32_t row) = 0;
    /// Sets cell (col, row); false (cell unchanged) on failure.
    virtual bool PutValue(uint32_t col, uint32_t row, char16_t const *value) = 0;
    /// Null arguments leave their field alone.
    virtual bool UpdateColumn(uint32_t col, char16_t const *name, char16_t const *cls, char16_t const *unit,
                              char16_t const *type) = 0;
    /// Null arguments are skipped.
    virtual bool GetColumnInfo(uint32_t col, char16_t const **name, char16_t const **cls, char16_t const **unit,
                               char16_t const **type) = 0;

    uint32_t nRows() { return nDPs(); }   ///< as nDPs
    uint32_t nCols() { return nParams(); } ///< as nParams
    char16_t const *GetError() const { return error; } ///< the last error text, empty if none was set
    void SetError(char16_t const *text); ///< cut to the buffer

    /// Whether unit is the unit of the dictionary tag tagName (ignoring
    /// case); true when there is no such tag or it has no unit.
    bool IsCorrectUnit(char16_t const *tagName, char16_t const *unit);
    /// The conversion index (see PODUnits.h) of the unit of the dictionary
    /// tag tagName; -1 without such a tag or for a unit without an index.
    int GetUnitConversionIndex(char16_t const *tagName);
    /// Makes target a copy of this table: header, every live column and
    /// every cell. False at the first step that fails (target then holds what
    /// was copied so far), or when target is this table.
    bool MakeDuplicate(IPODFile &target);
    /// Brings column addColumn of table add into this table, matching rows by
    /// keyColumn (whose values both tables read with keyFormat; add's keys
    /// must rise). With addFormat, values are read, converted to the unit
    /// the tag dictionary gives the column, interpolated linearly and written
    /// back through addFormat; without it the nearer cell's text is copied
    /// (the earlier one at halfway). A null addColumn names the other column
    /// of a two-column add table. Unless keepValues, the column's cells are
    /// emptied first, so rows outside add's keys end empty. dayRollover adds
    /// a day to a key below its predecessor. False with an error text (see
    /// the top of this file); nothing has changed when the columns are not
    /// found.
    bool MergeWith(IPODFile &add, char16_t const *keyColumn, char16_t const *keyFormat, char16_t const *addColumn,
                   char16_t const *addFormat, bool keepValues, bool dayRollover);

    /// A column by number (not checked), or by name: a name no live column
    /// has adds that column, class "Unclassified", unit "None", empty type
    /// (callers rely on naming a column to create it).
    ///@{
    CColumn operator[](int col) { return CColumn(*this, uint32_t(col)); }
    CColumn operator[](uint32_t col) { return CColumn(*this, col); }
    CColumn operator[](char16_t const *name);
    ///@}

    /// A number read from text, or written into out (outSize units),
    /// through a value format (see PODValueFormat.h).
    ///@{
    static bool GetValue(double &out, char16_t const *text, char16_t const *format) {
        return ParsePODValue(out, text, format);
    }
    static bool PutValue(double value, char16_t *out, size_t outSize, char16_t const *format) {
        return FormatPODValue(value, out, outSize, format);
    }
    ///@}

private:
    char16_t error[512] = {};
};

} // namespace qv
