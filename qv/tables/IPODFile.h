#pragma once

/// @file
/// IPODFile: a table of per-frame data, rows by named columns, every cell a
/// string, with a SAF header beside it.
///
/// Ownership: strings returned by GetValue and GetColumnInfo belong to the
/// table and stay good only until the next call on it. Failures are results
/// (false, null, or kPODNone); nothing throws. One thread at a time: even
/// reads move rows between caches.

#include <cstddef>
#include <cstdint>

#include "qv/core/Export.h"
#include "qv/tables/PODValueFormat.h"

namespace qv {

class CSAFFile;
class CTagFile;
class IFileSystem;

inline constexpr uint32_t kPODNone = 0xFFFFFFFFu;

class QV_API IPODFile {
public:
    virtual ~IPODFile();
    virtual CSAFFile &GetHeader() = 0;
    virtual CTagFile &GetTagFile() = 0;
    virtual bool New() = 0;
    virtual bool Load(IFileSystem *fs, char16_t const *name, bool mustExist) = 0;
    virtual bool Save(IFileSystem *fs, char16_t const *name, bool mergeHeader, bool saveFlag) = 0;
    virtual void Destroy() = 0;
    virtual void RemoveRow(uint32_t row) = 0;
    virtual void RemoveCol(uint32_t col) = 0;
    virtual bool FindColumn(char16_t const *name, uint32_t &col) = 0;
    /// The new column's number, kPODNone on failure.
    virtual uint32_t AddColumn(char16_t const *name, char16_t const *cls, char16_t const *unit,
                               char16_t const *type) = 0;
    virtual uint32_t AddRow() = 0; ///< the new row's number, kPODNone without columns
    virtual void AllocRows(uint32_t count) = 0;
    virtual uint32_t nDPs() = 0;
    virtual uint32_t nParams() = 0; ///< live columns
    virtual uint32_t GetColumnID(uint32_t col) { return col; }
    virtual bool IsValid() = 0;
    virtual char16_t const *GetValue(uint32_t col, uint32_t row) = 0;
    virtual bool PutValue(uint32_t col, uint32_t row, char16_t const *value) = 0;
    /// Null arguments leave their field alone.
    virtual bool UpdateColumn(uint32_t col, char16_t const *name, char16_t const *cls, char16_t const *unit,
                              char16_t const *type) = 0;
    /// Null arguments are skipped.
    virtual bool GetColumnInfo(uint32_t col, char16_t const **name, char16_t const **cls, char16_t const **unit,
                               char16_t const **type) = 0;

    uint32_t nRows() { return nDPs(); }
    uint32_t nCols() { return nParams(); }
    char16_t const *GetError() const { return error; }
    void SetError(char16_t const *text); ///< cut to the buffer

    static bool GetValue(double &out, char16_t const *text, char16_t const *format) {
        return ParsePODValue(out, text, format);
    }
    static bool PutValue(double value, char16_t *out, size_t outSize, char16_t const *format) {
        return FormatPODValue(value, out, outSize, format);
    }

private:
    char16_t error[512] = {};
};

} // namespace qv
