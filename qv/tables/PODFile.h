#pragma once

/// @file
/// CPODFile: a POD table of any length at a fixed memory cost. The source text
/// stays on disk and is read a line at a time; the row index (the position of
/// every 64th line, CPODLineIndex) lives behind a 32 KiB window, in a
/// temporary file past it, and the rows' cell records in another behind a
/// 512 KiB window, made for a row only when it is first read or edited; 64
/// parsed rows sit in a row cache; edited cells fall through a 32-cell diff
/// cache into a temporary diff file. Temporary files are made when first needed.
/// Nothing reaches the real file until Save writes it out whole, through a
/// temporary file and a rename, so a failed Save leaves the old file whole.
///
/// Failures are results (false, null, kPODNone). Values longer than 255
/// characters are refused, and so is a table with a line of kLineSize bytes
/// or more, or a column text longer than its field: on loading and on saving
/// alike, so a saved table always opens again. A row of the file with a cell
/// longer than 255 characters gives no values (null, with the reason in
/// GetError), and a Save fails while it is in the table; so does a cell that
/// is not UTF-8 text (a column text of that kind refuses the load). Save
/// also refuses, keeping the old file, a value or column text holding a
/// double quote, an LF or a lone surrogate, which no line of the table can
/// hold. One thread at a time; see IPODFile.

#include <memory>
#include <vector>

#include "qv/core/PersistedArray.h"
#include "qv/formats/tagged/SAFFile.h"
#include "qv/tables/IPODFile.h"
#include "qv/tables/PODLineIndex.h"

namespace qv {

class IFile;

/// @copydoc PODFile.h
class QV_API CPODFile : public IPODFile {
public:
    static constexpr uint32_t kDiffCacheSize = 32; ///< edited cells held in memory before the diff file
    static constexpr uint32_t kRowCacheSize = 64;  ///< parsed rows held in memory
    static constexpr uint32_t kValueSize = 256; ///< with the terminator
    /// Bytes of the line buffer: Load refuses a table with a line of this
    /// many bytes or more (its LF included), which could never be read.
    static constexpr uint32_t kLineSize = 8192;

    /// A closed table. windowBudget: bytes of the cell records and of the
    /// diff file held in memory each, and of the row index up to its own
    /// smaller bound (512 KiB by default; less trades speed for memory).
    explicit CPODFile(uint32_t windowBudget = CPersistedArray::kWindowBudget);
    ~CPODFile() override;
    CPODFile(CPODFile const &) = delete;
    CPODFile &operator=(CPODFile const &) = delete;

    CSAFFile &GetHeader() override { return header; }
    CTagFile &GetTagFile() override { return header.GetTagFile(); }
    bool New() override;
    bool Load(IFileSystem *fs, char16_t const *name, bool mustExist) override;
    bool Save(IFileSystem *fs, char16_t const *name, bool mergeHeader, bool saveFlag) override;
    void Destroy() override;
    void RemoveRow(uint32_t row) override;
    void RemoveCol(uint32_t col) override;
    bool FindColumn(char16_t const *name, uint32_t &col) override;
    uint32_t AddColumn(char16_t const *name, char16_t const *cls, char16_t const *unit,
                       char16_t const *type) override;
    uint32_t AddRow() override;
    void AllocRows(uint32_t count) override;
    uint32_t nDPs() override { return rowCount; }
    uint32_t nParams() override { return liveColumns; }
    bool IsValid() override { return isOpen; }
    char16_t const *GetValue(uint32_t col, uint32_t row) override;
    bool PutValue(uint32_t col, uint32_t row, char16_t const *value) override;
    bool UpdateColumn(uint32_t col, char16_t const *name, char16_t const *cls, char16_t const *unit,
                      char16_t const *type) override;
    bool GetColumnInfo(uint32_t col, char16_t const **name, char16_t const **cls, char16_t const **unit,
                       char16_t const **type) override;
    /// The number forms of the contract beside the cell forms.
    ///@{
    using IPODFile::GetValue;
    using IPODFile::PutValue;
    ///@}

    bool IsOpen() const { return isOpen; }         ///< New or Load succeeded, no Destroy since
    bool IsModified() const { return isModified; } ///< changed since New, Load or Save
    int MoveRowToCache(uint32_t row); ///< the row-cache slot, -1 on failure
    /// Takes the row out of row-cache slot slot, its edited cells into the
    /// diff cache; false (the row still resident) when a temporary file fails.
    bool MoveRowToDiffCache(uint32_t slot);
    /// Writes diff-cache slot slot to the diff file; false (the slot kept)
    /// when the diff file fails.
    bool MoveItemToDiffFile(uint32_t slot);

    /// A column's four texts and whether it is live.
    struct Column {
        /// Name, class, unit and type, each with its terminator.
        ///@{
        char16_t name[128], cls[128], unit[64], type[64];
        ///@}
        uint32_t live; ///< 1 live, 0 removed
    };
#pragma pack(push, 1)
    /// Where one cell's value lives, as stored in the cell records (10 bytes).
    struct CellEntry {
        uint32_t state;   ///< 0 empty, 1 source file, 2 row cache, 3 diff cache, 4 diff file, 5 column removed
        uint8_t rowSlot;  ///< row-cache slot, 0xFF for none
        uint8_t diffSlot; ///< diff-cache slot, 0xFF for none
        uint32_t record;  ///< diff-file record, kPODNone for none
    };
#pragma pack(pop)
    /// An edited cell in the diff cache, and a record of the diff file (520 bytes).
    struct DiffEntry {
        /// The cell's row and column.
        ///@{
        uint32_t row, col;
        ///@}
        char16_t value[kValueSize]; ///< the edited text
    };

private:
    struct CachedCell {
        uint32_t flags;
        char16_t value[kValueSize];
    };
    struct CachedRow {
        uint32_t row;
        std::vector<CachedCell> cells;
    };

    uint32_t ColumnCount() const { return uint32_t(columns.size()); }
    CellEntry *Cells(uint32_t row);
    struct SourceStamp {
        unsigned long long device = 0, inode = 0, size = 0, modified = 0;
        bool operator==(SourceStamp const &) const = default;
    };

    bool StartHeader();
    bool CountPlainColumns();
    SourceStamp TakeSourceStamp();
    bool SourceUnchanged();
    bool SourceStillNamed(IFileSystem &fs, char16_t const *name);
    void Damaged();
    bool ReadSourceLine(uint32_t number);
    bool ReadLineAt(int64_t position, uint32_t &length);
    bool ReadHeaderLines(int64_t &position);
    bool WriteTable(IFile &out);
    uint8_t TakeDiffSlot();

    std::vector<Column> columns;
    std::vector<DiffEntry> diffCache;
    std::vector<CachedRow> rowCache;
    CPODLineIndex lines; ///< the source file's rows
    /// Per row a made flag byte and its source line, then a CellEntry per
    /// column. Rows at or past its count, or with the flag 0, hold their first
    /// records implicitly: opening a table writes no per-row record.
    std::unique_ptr<CPersistedArray> cellIndex;
    uint32_t rowCount = 0;
    uint32_t linedRows = 0; ///< rows below it not made yet are still their own source line
    std::unique_ptr<CPersistedArray> diffFile;
    std::vector<char const *> fields;
    uint32_t sourceFields = 0;
    uint32_t rowCursor = 0;
    std::unique_ptr<char[]> line;
    uint32_t diffCursor = 0;
    uint32_t windowBudget;
    uint32_t liveColumns = 0;
    CSAFFile header;
    IFile *source = nullptr;
    SourceStamp sourceStamp;
    bool isOpen = false;
    bool isModified = false;
    bool damaged = false; ///< an edit failed half-way: Save refuses
};

} // namespace qv
