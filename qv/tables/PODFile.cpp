#include "qv/tables/PODFile.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <string>

#include "qv/core/String.h"
#include "qv/core/WideChar.h"
#include "qv/files/File.h"
#include "qv/files/IFile.h"
#include "qv/files/OpenFlags.h"
#include "qv/filesystems/AtomicSave.h"
#include "qv/filesystems/IFileSystem.h"
#include "qv/tables/PODFields.h"
#include "qv/platform/FileLock.h"
#include "qv/tables/PODLineIndex.h"

namespace qv {

namespace {

constexpr uint32_t kLineSize = CPODFile::kLineSize;
constexpr uint32_t kHeaderMagicSize = 6; // "HDSize", how every tagged header starts
constexpr uint32_t kMaxColumns = kLineSize / 2; // a field takes at least a byte and a separator
constexpr uint32_t kSeekStart = 1;
constexpr uint8_t kNoSlot = 0xFF;
constexpr uint32_t kCellEmpty = 0, kCellSource = 1, kCellRowCache = 2, kCellDiffCache = 3, kCellDiffFile = 4,
                   kCellRemoved = 5;
constexpr uint32_t kChanged = 1;
constexpr size_t kFlushAt = 1 << 16;
constexpr char16_t kDamaged[] = u"An edit failed half-way for a failed temporary file; the table cannot be saved.";
constexpr char16_t kNotReopened[] = u"The table was saved, but reading it back failed.";
constexpr char16_t kSourceChanged[] = u"The table's file changed on disk while it was open.";
constexpr char16_t kLineTooLong[] = u"A line of the table is longer than the 8,192-byte line buffer.";
constexpr char16_t kCellTooLong[] = u"A cell of the table is longer than 255 characters.";
constexpr char16_t kColumnTextTooLong[] = u"A column's name, unit, class or type is too long.";
constexpr char16_t kCellNotUtf8[] = u"A cell of the table is not UTF-8 text.";
constexpr char16_t kColumnTextNotUtf8[] = u"A column's name, unit, class or type is not UTF-8 text.";
constexpr char16_t kUnwritable[] =
    u"A value or column text holds a double quote, a line feed or a lone surrogate, which the table cannot hold.";

// The header lines in their fixed file order: name, unit, class, type.
constexpr char16_t const *kSizeTags[4] = {u"PNSize", u"PUSize", u"PCSize", u"PTSize"};

char16_t *ColumnField(CPODFile::Column &c, int kind, size_t &size) {
    switch (kind) {
    case 0: size = 128; return c.name;
    case 1: size = 64; return c.unit;
    case 2: size = 128; return c.cls;
    default: size = 64; return c.type;
    }
}

constexpr uint8_t kCellsMade = 1;

// A row's item in the cell records: this head, then a CellEntry per column.
#pragma pack(push, 1)
struct RowHead {
    uint8_t made;  ///< kCellsMade once the cells below are set
    uint32_t line; ///< the row's source line, kPODNone for a row added since the load
};
#pragma pack(pop)

uint32_t CellItemSize(uint32_t columns) {
    return uint32_t(sizeof(RowHead) + sizeof(CPODFile::CellEntry) * columns);
}

// The temporary files are made on first use: a table opened only to be read
// needs no diff file, and one never read no cell records.
CPersistedArray *MadeOnFirstUse(std::unique_ptr<CPersistedArray> &array, uint32_t itemSize, uint32_t windowBudget) {
    if (!array) {
        array.reset(new (std::nothrow) CPersistedArray(itemSize, windowBudget));
        if (array && !array->IsReady()) array.reset(); // tried again on the next use
    }
    return array.get();
}

uint32_t SourceLine(CPODFile::CellEntry const *cells) {
    RowHead head;
    std::memcpy(&head, reinterpret_cast<uint8_t const *>(cells) - sizeof head, sizeof head);
    return head.line;
}

bool CopyText(char16_t *out, size_t size, char16_t const *text) {
    size_t n = 0;
    while (text[n]) if (++n >= size) return false;
    std::memcpy(out, text, (n + 1) * sizeof(char16_t));
    return true;
}

// False when the text does not fit in size units with its terminator: out is
// then empty, and the caller must not take it for the field's value.
bool Utf8ToField(char const *field, char16_t *out, int size) {
    int n = int(std::strlen(field));
    int got = n ? CString::ConvertToTCHAR(field, n, out, size - 1) : 0;
    bool const fits = n == 0 || (got > 0 && got < size);
    out[fits ? got : 0] = 0;
    return fits;
}

// Bytes that are not UTF-8 convert to U+FFFD, which a save would write back
// in their place: such a text is not read at all. A real U+FFFD converts back.
bool SavesBackSame(char const *field, char16_t const *text) {
    int n = 0;
    bool replaced = false;
    for (; text[n]; ++n) replaced |= text[n] == u'\xFFFD';
    if (!replaced) return true;
    char utf8[CPODFile::kValueSize * 3 + 1];
    int const got = CString::ConvertToUTF8(text, n, utf8, sizeof utf8);
    return got > 0 && std::strlen(field) == size_t(got) && std::memcmp(field, utf8, size_t(got)) == 0;
}

// A lone surrogate converts to U+FFFD: written, it would read back changed.
bool WellFormed(char16_t const *text, int n) {
    for (int i = 0; i < n; ++i) {
        if (text[i] < 0xD800 || text[i] > 0xDFFF) continue;
        if (text[i] > 0xDBFF || i + 1 == n || text[i + 1] < 0xDC00 || text[i + 1] > 0xDFFF) return false;
        ++i;
    }
    return true;
}

// Only zero or missing against not zero counts in a size tag.
bool SizeTagSet(CSAFFile &header, char16_t const *tag) {
    char16_t const *v = header.GetTagValue(tag);
    if (!v) return false;
    for (; *v; ++v) if (*v >= u'1' && *v <= u'9') return true;
    return false;
}

bool ParseCount(char16_t const *text, uint32_t &out) {
    if (!text || !*text) return false;
    uint64_t v = 0;
    for (; *text; ++text) {
        if (*text < u'0' || *text > u'9' || (v = v * 10 + uint32_t(*text - u'0')) > UINT32_MAX) return false;
    }
    out = uint32_t(v);
    return true;
}

bool SetTag(CSAFFile &header, char16_t const *name, char16_t const *value) {
    return header.GetTagValue(name) ? header.SetTagValue(name, value) : header.AddTag(name, value);
}

CString Decimal(uint32_t v) {
    char16_t text[16];
    int n = 15;
    text[n] = 0;
    do text[--n] = char16_t(u'0' + v % 10); while ((v /= 10) != 0);
    return CString(text + n);
}

} // namespace

CPODFile::CPODFile(uint32_t windowBudget)
    : lines(windowBudget), line(new (std::nothrow) char[kLineSize]), windowBudget(windowBudget) {}

CPODFile::~CPODFile() { Destroy(); }

// A row's records are made on first use: cells of a line read from the
// source file come from it, those of a row added since the load empty. A row
// not made yet is still line number row when below linedRows: every removal
// makes the rows behind it first.
CPODFile::CellEntry *CPODFile::Cells(uint32_t row) {
    if (row >= rowCount) return nullptr;
    CPersistedArray *records = MadeOnFirstUse(cellIndex, CellItemSize(ColumnCount()), windowBudget);
    uint8_t *item = records ? records->GetItem(row) : nullptr;
    if (!item) return nullptr;
    auto *cells = reinterpret_cast<CellEntry *>(item + sizeof(RowHead));
    if (item[0] != kCellsMade) {
        RowHead const head{kCellsMade, row < linedRows ? row : kPODNone};
        for (uint32_t col = 0; col < ColumnCount(); ++col)
            cells[col] = {col < sourceFields && head.line != kPODNone ? kCellSource : kCellEmpty, kNoSlot, kNoSlot,
                          kPODNone};
        std::memcpy(item, &head, sizeof head);
    }
    return cells;
}

void CPODFile::Destroy() {
    rowCache.clear();
    diffCache.clear();
    if (source) {
        source->Close();
        delete source;
        source = nullptr;
    }
    diffFile.reset();
    lines.Empty();
    cellIndex.reset();
    columns.clear();
    header.Destroy();
    fields.clear();
    sourceFields = liveColumns = rowCursor = diffCursor = rowCount = linedRows = 0;
    isOpen = isModified = damaged = false;
}

bool CPODFile::StartHeader() {
    if (!header.New(false) || !SetTag(header, u"KeyWrd", u"POD") || !SetTag(header, u"NumDPs", u"auto")) return false;
    for (int i = 0; i < 3; ++i) if (!SetTag(header, kSizeTags[i], u"20")) return false;
    return true;
}

bool CPODFile::New() {
    Destroy();
    if (!StartHeader() || !line) return false;
    isOpen = isModified = true;
    return true;
}

CPODFile::SourceStamp CPODFile::TakeSourceStamp() {
    SourceStamp stamp;
    SFileIdentity identity;
    if (auto *disk = dynamic_cast<CFile *>(source); disk && GetFileIdentity(disk->GetHandle(), identity)) {
        stamp = {identity.device, identity.inode, identity.size, identity.modified};
    } else {
        stamp.size = static_cast<unsigned long long>(source->GetSize());
    }
    return stamp;
}

// Cells are read from the source file long after it was opened: a file that
// changed meanwhile would give cells of other rows, so it gives none.
bool CPODFile::SourceUnchanged() {
    if (TakeSourceStamp() == sourceStamp) return true;
    SetError(kSourceChanged);
    return false;
}

// A file replaced under its name (a rename over it) still reads as the old
// one through the open handle, so the cells stay right; but saving over that
// name would drop the other writer's file, so such a save is refused.
bool CPODFile::SourceStillNamed(IFileSystem &fs, char16_t const *name) {
    auto *disk = dynamic_cast<CFile *>(source);
    if (!disk || &fs != &disk->GetFileSystem()) return true;
    char16_t opened[512], target[512];
    disk->GetFilename(opened, 512);
    if (!fs.GetFullPath(target, name, 512) || CString::Compare(opened, target) != 0) return true;
    SFileIdentity now;
    if (GetFileIdentity(opened, now) && now.device == sourceStamp.device && now.inode == sourceStamp.inode) return true;
    SetError(kSourceChanged);
    return false;
}

bool CPODFile::ReadSourceLine(uint32_t number) {
    uint32_t length = 0;
    char const *text = line && source && SourceUnchanged() ? lines.Line(*source, number, length) : nullptr;
    if (!text || length >= kLineSize) return false;
    std::memcpy(line.get(), text, length); // split in a copy: the index reads on from its buffer
    SplitPODLine(line.get(), length, fields.data(), sourceFields);
    return true;
}

// The line at position into the line buffer; length counts its LF, if any.
// A read that stops short of both the buffer and the end of the file failed:
// taken for the end, it would cut the line and make its rest a row.
bool CPODFile::ReadLineAt(int64_t position, uint32_t &length) {
    if (source->Seek(position, kSeekStart) != position) return false;
    uint32_t got = source->Read(line.get(), kLineSize - 1);
    if (got < kLineSize - 1 && position + got < source->GetSize()) return false;
    char const *lf = static_cast<char const *>(std::memchr(line.get(), '\n', got));
    if (!lf && got == kLineSize - 1) return false; // longer than any line we hold
    length = lf ? uint32_t(lf - line.get() + 1) : got;
    return true;
}

bool CPODFile::ReadHeaderLines(int64_t &position) {
    for (int kind = 0; kind < 4; ++kind) {
        if (!SizeTagSet(header, kSizeTags[kind])) continue;
        uint32_t length = 0;
        if (!ReadLineAt(position, length)) return false;
        SplitPODLine(line.get(), length, fields.data(), sourceFields);
        for (uint32_t col = 0; col < sourceFields; ++col) {
            size_t size;
            char16_t *out = ColumnField(columns[col], kind, size);
            if (!Utf8ToField(fields[col], out, int(size))) return SetError(kColumnTextTooLong), false;
            if (!SavesBackSame(fields[col], out)) return SetError(kColumnTextNotUtf8), false;
        }
        position += length;
    }
    return true;
}

// A plain text file has no NParam: the fields of its first line count the
// columns. The whole line counts, as long as the header lines are read: one
// cut short would drop the columns behind the cut on the next save.
bool CPODFile::CountPlainColumns() {
    uint32_t length = 0;
    if (!ReadLineAt(0, length)) return false;
    // A header that failed to load (a failed read) makes no plain table: its
    // tags would pass for rows, and a save would write them back as data.
    if (length >= kHeaderMagicSize && _strnicmp(line.get(), "HDSize", kHeaderMagicSize) == 0) return false;
    std::vector<char const *> all(kMaxColumns);
    return SetTag(header, u"NParam", Decimal(SplitPODLine(line.get(), length, all.data(), kMaxColumns)));
}

bool CPODFile::Load(IFileSystem *fs, char16_t const *name, bool mustExist) {
    Destroy();
    if (!fs || !line) return false;
    bool plain = false;
    if (!header.Load(fs, name)) {
        if (mustExist) return Destroy(), false;
        if (!fs->FileExists(name)) return New(); // nothing there yet: an empty table
        if (!StartHeader()) return Destroy(), false;
        plain = true;
    }
    char16_t const *keyword = header.GetTagValue(u"KeyWrd");
    uint32_t count = 0;
    if (!keyword || CString::CompareNoCase(keyword, u"POD") != 0) return Destroy(), false;
    source = fs->CreateFileW(name, kOpenExisting | kOpenRead | kOpenShareRead);
    if (!source) return Destroy(), false;
    sourceStamp = TakeSourceStamp();
    if (plain && !CountPlainColumns()) return Destroy(), false;
    if (!header.GetTagValue(u"NumDPs") || !ParseCount(header.GetTagValue(u"NParam"), count) || count > kMaxColumns)
        return Destroy(), false;
    sourceFields = count;
    fields.assign(count, nullptr);
    columns.assign(count, Column{{}, {}, {}, {}, 1});
    int64_t position = plain ? 0 : header.GetDataPosition();
    if (!ReadHeaderLines(position) || !lines.Build(*source, position) || !SourceUnchanged()) return Destroy(), false;
    // A row that could never be read would be counted yet unreadable, and a
    // Save would have to drop it: refuse the table whole.
    if (lines.GetLongestLine() >= kLineSize) return Destroy(), SetError(kLineTooLong), false;
    rowCount = linedRows = lines.GetCount();
    liveColumns = count;
    isOpen = true;
    return true;
}

int CPODFile::MoveRowToCache(uint32_t row) {
    uint32_t const n = ColumnCount();
    CellEntry *cells = Cells(row);
    if (!cells) return -1;
    if (n && cells[0].state == kCellRowCache) return cells[0].rowSlot;
    uint32_t slot;
    if (rowCache.size() < kRowCacheSize) {
        rowCache.push_back(CachedRow{kPODNone, std::vector<CachedCell>(n)});
        slot = uint32_t(rowCache.size() - 1);
    } else {
        slot = rowCursor;
        if (!MoveRowToDiffCache(slot)) return -1; // the row stays; nothing is lost
        rowCursor = (rowCursor + 1) % kRowCacheSize;
    }
    cells = Cells(row);
    if (!cells) return -1;
    bool fromSource = false;
    for (uint32_t col = 0; col < n; ++col) fromSource |= cells[col].state == kCellSource;
    if (fromSource && !ReadSourceLine(SourceLine(cells))) return -1;
    // Values first, states after: a failed diff-file read leaves the row
    // where its values are, and the slot empty.
    CachedRow &cached = rowCache[slot];
    for (uint32_t col = 0; col < n; ++col) {
        CellEntry const &cell = cells[col];
        CachedCell &out = cached.cells[col];
        out.flags = 0;
        out.value[0] = 0;
        if (cell.state == kCellSource && col < sourceFields) {
            // Cut, the cell would be saved back changed: it is not read at all.
            if (!Utf8ToField(fields[col], out.value, kValueSize)) return SetError(kCellTooLong), -1;
            if (!SavesBackSame(fields[col], out.value)) return SetError(kCellNotUtf8), -1;
        } else if (cell.state == kCellDiffCache) {
            // The cell keeps its diff-cache slot whether or not the row had
            // source cells: dropping it would orphan the entry, which would
            // later be written over a newer edit of the same cell.
            std::memcpy(out.value, diffCache[cell.diffSlot].value, sizeof out.value);
            out.flags = kChanged;
        } else if (cell.state == kCellDiffFile) {
            uint8_t const *record = diffFile->ReadItem(cell.record);
            if (!record) return -1;
            std::memcpy(out.value, reinterpret_cast<DiffEntry const *>(record)->value, sizeof out.value);
        }
    }
    for (uint32_t col = 0; col < n; ++col) {
        cells[col].state = kCellRowCache;
        cells[col].rowSlot = uint8_t(slot);
    }
    cached.row = row;
    return int(slot);
}

uint8_t CPODFile::TakeDiffSlot() {
    if (diffCache.size() < kDiffCacheSize) {
        diffCache.push_back(DiffEntry{kPODNone, 0, {}});
        return uint8_t(diffCache.size() - 1);
    }
    uint8_t slot = uint8_t(diffCursor);
    if (!MoveItemToDiffFile(slot)) return kNoSlot; // its value is still the only copy
    diffCursor = (diffCursor + 1) % kDiffCacheSize;
    return slot;
}

// Cell by cell, each one finished before the next: after a failure the row
// is still resident with every cell not yet moved, and a retry moves those.
bool CPODFile::MoveRowToDiffCache(uint32_t slot) {
    if (slot >= rowCache.size() || rowCache[slot].row == kPODNone) return true;
    uint32_t const row = rowCache[slot].row;
    for (uint32_t col = 0; col < ColumnCount(); ++col) {
        CellEntry *cells = Cells(row);
        if (!cells) return false;
        CellEntry cell = cells[col];
        if (cell.state != kCellRowCache || cell.rowSlot != slot) continue;
        CachedCell const &cached = rowCache[slot].cells[col];
        if (!(cached.flags & kChanged)) {
            cell.state = cell.diffSlot != kNoSlot                              ? kCellDiffCache
                         : cell.record != kPODNone                             ? kCellDiffFile
                         : !columns[col].live                                  ? kCellRemoved
                         : col < sourceFields && SourceLine(cells) != kPODNone ? kCellSource
                                                                               : kCellEmpty;
        } else {
            if (cell.diffSlot == kNoSlot) {
                cell.diffSlot = TakeDiffSlot(); // may touch other rows
                if (cell.diffSlot == kNoSlot) return false;
            }
            DiffEntry &entry = diffCache[cell.diffSlot];
            entry.row = row;
            entry.col = col;
            std::memcpy(entry.value, cached.value, sizeof entry.value);
            cell.state = kCellDiffCache;
        }
        cell.rowSlot = kNoSlot;
        cells = Cells(row);
        if (!cells) return false;
        cells[col] = cell;
    }
    rowCache[slot].row = kPODNone;
    return true;
}

bool CPODFile::MoveItemToDiffFile(uint32_t slot) {
    if (slot >= diffCache.size()) return true;
    DiffEntry &entry = diffCache[slot];
    if (entry.row == kPODNone) return true;
    CellEntry *cells = entry.col < ColumnCount() ? Cells(entry.row) : nullptr;
    if (!cells && entry.row < nDPs()) return false; // a failed read: the value has no other copy
    if (!cells) {                                    // its row is gone: the entry is free
        entry.row = kPODNone;
        return true;
    }
    if (cells[entry.col].diffSlot != slot) { // a freed entry
        entry.row = kPODNone;
        return true;
    }
    CellEntry cell = cells[entry.col];
    CPersistedArray *records = MadeOnFirstUse(diffFile, sizeof(DiffEntry), windowBudget);
    if (!records) return false;
    if (cell.record == kPODNone) cell.record = records->GetCount();
    uint8_t *record = records->GetItem(cell.record);
    if (!record) return false;
    std::memcpy(record, &entry, sizeof entry);
    if (cell.state == kCellDiffCache) cell.state = kCellDiffFile;
    cell.diffSlot = kNoSlot;
    cells = Cells(entry.row);
    if (!cells) return false;
    cells[entry.col] = cell;
    entry.row = kPODNone;
    return true;
}

char16_t const *CPODFile::GetValue(uint32_t col, uint32_t row) {
    if (col >= ColumnCount() || row >= nDPs() || !columns[col].live) return nullptr;
    int slot = MoveRowToCache(row);
    return slot < 0 ? nullptr : rowCache[size_t(slot)].cells[col].value;
}

bool CPODFile::PutValue(uint32_t col, uint32_t row, char16_t const *value) {
    // A copy first: value may point into the row cache, which the fetch of
    // this row can overwrite.
    char16_t text[kValueSize];
    if (!value || !CopyText(text, kValueSize, value)) return false; // over 255 characters: refused
    if (col >= ColumnCount() || !columns[col].live) return false;
    int slot = MoveRowToCache(row);
    if (slot < 0) return false;
    CachedCell &cell = rowCache[size_t(slot)].cells[col];
    std::memcpy(cell.value, text, sizeof text);
    cell.flags |= kChanged;
    isModified = true;
    return true;
}

uint32_t CPODFile::AddColumn(char16_t const *name, char16_t const *cls, char16_t const *unit, char16_t const *type) {
    Column column{{}, {}, {}, {}, 1};
    if (!isOpen || ColumnCount() >= kMaxColumns || !CopyText(column.name, 128, name ? name : u"") ||
        !CopyText(column.cls, 128, cls ? cls : u"") || !CopyText(column.unit, 64, unit ? unit : u"") ||
        !CopyText(column.type, 64, type ? type : u"") ||
        (cellIndex && !cellIndex->SetItemSize(CellItemSize(ColumnCount() + 1))))
        return kPODNone;
    uint32_t const col = ColumnCount();
    columns.push_back(column);
    for (uint32_t row = 0; row < nDPs(); ++row) {
        CellEntry *cells = Cells(row);
        if (!cells) return Damaged(), kPODNone;
        cells[col] = {kCellEmpty, kNoSlot, kNoSlot, kPODNone};
    }
    for (uint32_t slot = 0; slot < rowCache.size(); ++slot) {
        rowCache[slot].cells.push_back(CachedCell{0, {}});
        // A resident row's new cell is resident too, or an edit to it would be skipped on eviction.
        if (rowCache[slot].row == kPODNone) continue;
        CellEntry *cells = Cells(rowCache[slot].row);
        if (!cells) return Damaged(), kPODNone;
        cells[col] = {kCellRowCache, uint8_t(slot), kNoSlot, kPODNone};
    }
    ++liveColumns;
    isModified = true;
    return col;
}

uint32_t CPODFile::AddRow() {
    if (liveColumns == 0 || rowCount == kPODNone - 1) return kPODNone;
    isModified = true;
    return rowCount++; // at or past linedRows: its cells start empty (see Cells)
}

void CPODFile::AllocRows(uint32_t count) {
    while (nDPs() < count && AddRow() != kPODNone) {}
}

void CPODFile::RemoveCol(uint32_t col) {
    if (col >= ColumnCount()) return;
    if (columns[col].live && liveColumns) --liveColumns;
    columns[col].live = 0;
    isModified = true;
}

void CPODFile::RemoveRow(uint32_t row) {
    CellEntry *cells = Cells(row);
    if (!cells) return;
    uint32_t const n = ColumnCount();
    // The removed row's own cache entries go with it, or they would later
    // land on whichever row takes its number.
    for (uint32_t col = 0; col < n; ++col) {
        if (cells[col].rowSlot != kNoSlot) rowCache[cells[col].rowSlot].row = kPODNone;
        if (cells[col].diffSlot != kNoSlot) diffCache[cells[col].diffSlot].row = kPODNone;
    }
    for (uint32_t later = row + 1; later < nDPs(); ++later) {
        cells = Cells(later);
        if (!cells) return Damaged();
        // Once per row, by any cell still resident: a row left half-way out
        // of the cache by a failed eviction has moved its first cells.
        for (uint32_t col = 0; col < n; ++col) {
            if (cells[col].rowSlot == kNoSlot) continue;
            --rowCache[cells[col].rowSlot].row;
            break;
        }
        for (uint32_t col = 0; col < n; ++col) {
            if (cells[col].diffSlot != kNoSlot) --diffCache[cells[col].diffSlot].row;
            if (cells[col].record == kPODNone) continue;
            uint8_t *record = diffFile->GetItem(cells[col].record);
            if (!record) return Damaged();
            --reinterpret_cast<DiffEntry *>(record)->row;
            cells = Cells(later); // the diff file and the index are apart, but stay safe
            if (!cells) return Damaged();
        }
    }
    if (!cellIndex->Remove(row)) return Damaged(); // made by Cells(row) above
    --rowCount;
    linedRows = std::min(linedRows, row); // the rows behind were made above
    isModified = true;
}

bool CPODFile::FindColumn(char16_t const *name, uint32_t &col) {
    for (col = 0; col < ColumnCount(); ++col)
        if (columns[col].live && name && CString::CompareNoCase(columns[col].name, name) == 0) return true;
    return false;
}

bool CPODFile::GetColumnInfo(uint32_t col, char16_t const **name, char16_t const **cls, char16_t const **unit,
                             char16_t const **type) {
    if (col >= ColumnCount() || !columns[col].live) return false;
    if (name) *name = columns[col].name;
    if (cls) *cls = columns[col].cls;
    if (unit) *unit = columns[col].unit;
    if (type) *type = columns[col].type;
    return true;
}

bool CPODFile::UpdateColumn(uint32_t col, char16_t const *name, char16_t const *cls, char16_t const *unit,
                            char16_t const *type) {
    if (col >= ColumnCount() || !columns[col].live) return false;
    Column c = columns[col];
    if ((name && !CopyText(c.name, 128, name)) || (cls && !CopyText(c.cls, 128, cls)) ||
        (unit && !CopyText(c.unit, 64, unit)) || (type && !CopyText(c.type, 64, type)))
        return false;
    columns[col] = c;
    isModified = true;
    return true;
}

bool CPODFile::WriteTable(IFile &out) {
    std::string text;
    char utf8[kValueSize * 3 + 1];
    auto flush = [&] {
        bool ok = out.Write(text.data(), uint32_t(text.size())) == text.size();
        text.clear();
        return ok;
    };
    auto writeLine = [&](auto &&valueOf) {
        size_t const lineStart = text.size();
        bool first = true;
        for (uint32_t col = 0; col < ColumnCount(); ++col) {
            if (!columns[col].live) continue;
            char16_t const *value = valueOf(col);
            if (!value) return false;
            int n = 0;
            while (value[n]) ++n;
            int got = n ? CString::ConvertToUTF8(value, n, utf8, sizeof utf8) : 0;
            std::string_view const field(utf8, size_t(got > 0 ? got : 0));
            // Written anyway, it would read back as another value or another row.
            if ((n && got <= 0) || field.find_first_of("\"\n") != std::string_view::npos || !WellFormed(value, n))
                return SetError(kUnwritable), false;
            if (!first) text += '\t';
            first = false;
            AppendPODField(text, field);
        }
        text += "\r\n";
        // A line the load could not hold would make the saved table one that
        // no longer opens: the old file stays instead.
        if (text.size() - lineStart >= kLineSize) return SetError(kLineTooLong), false;
        return text.size() < kFlushAt || flush();
    };
    for (int kind = 0; kind < 4; ++kind) {
        if (!SizeTagSet(header, kSizeTags[kind])) continue;
        if (!writeLine([&](uint32_t col) -> char16_t const * {
                size_t size;
                return ColumnField(columns[col], kind, size);
            }))
            return false;
    }
    for (uint32_t row = 0; row < nDPs(); ++row)
        if (!writeLine([&](uint32_t col) { return GetValue(col, row); })) return false;
    return flush();
}

void CPODFile::Damaged() {
    damaged = true;
    SetError(kDamaged);
}

bool CPODFile::Save(IFileSystem *fs, char16_t const *name, bool mergeHeader, bool saveFlag) {
    if (!isOpen || !fs) return false;
    if (damaged) return SetError(kDamaged), false;
    if (source && (!SourceUnchanged() || !SourceStillNamed(*fs, name))) return false;
    CSAFFile out = header;
    if (mergeHeader && !out.Load(fs, name)) return false;
    char16_t const *rows = out.GetTagValue(u"NumDPs");
    if (!rows) return false;
    if (CString::CompareNoCase(rows, u"auto") != 0 && !SetTag(out, u"NumDPs", Decimal(nDPs()))) return false;
    if (!SetTag(out, u"NParam", Decimal(liveColumns))) return false;
    out.DropData();
    CSAFFile kept = header;
    header = out; // the size tags of the header written decide the column lines
    uint32_t dataPosition = 0;
    uint32_t const rowsWritten = nDPs(), columnsWritten = liveColumns;
    bool written = SaveAtomically(fs, name, [&](IFile &f) {
        return out.SaveTo(&f, dataPosition, saveFlag) && f.Seek(dataPosition, kSeekStart) == dataPosition &&
               WriteTable(f);
    });
    if (!written) {
        header = kept; // the table and its edits stay as they were
        return false;
    }
    // The table is reopened from what was written. A header read that fails
    // can pass for the header's end, so the reopened table must match what
    // went out, or it would show other cells than the file holds.
    if (!Load(fs, name, true)) return false;
    if (header.GetDataPosition() == dataPosition && nDPs() == rowsWritten && liveColumns == columnsWritten) return true;
    Destroy();
    SetError(kNotReopened);
    return false;
}

} // namespace qv
