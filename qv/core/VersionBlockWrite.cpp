// Writing a VS_VERSIONINFO block: each wLength is measured from what the
// block holds and patched in behind it, padding is zeros to 32-bit
// boundaries counted from the root's first byte.
#include "qv/core/VersionInfo.h"
#include "qv/core/WideChar.h"
#include "qv/files/MemFile.h"

namespace qv {

namespace {

// The block builder: the typed helpers over a memory file that starts at the
// root's first byte, and one flag that remembers any failed write.
class CBlockWriter {
public:
    CMemFile out;
    bool ok = true;

    CBlockWriter() { out.SetGrowthRate(4096); }

    void Word(uint16_t v) { ok = out.PutWORD(v) && ok; }
    void DWord(uint32_t v) { ok = out.PutDWORD(v) && ok; }
    void Bytes(void const *p, uint32_t n) { ok = out.WriteBytes(p, n) && ok; }
    void Pad() {
        while (out.GetPosition() % 4)
            Word(0);
    }
    // The header with a wLength to be patched, and the key with its NUL. A
    // value or child that follows pads to 32 bits first; a block without
    // either ends behind the key.
    int64_t Begin(uint16_t wValueLength, uint16_t wType, CString const &key) {
        int64_t const start = out.GetPosition();
        Word(0);
        Word(wValueLength);
        Word(wType);
        char16_t const *text = key.GetUTF16();
        for (int i = 0; i < key.GetLength(); ++i)
            Word(text[i]);
        Word(0);
        return start;
    }
    // Patches the block's wLength, which must fit 16 bits.
    void End(int64_t start, uint16_t &wLength) {
        int64_t const end = out.GetPosition();
        if (end - start > 0xFFFF) {
            ok = false;
            return;
        }
        wLength = uint16_t(end - start);
        out.SetPosition(start);
        Word(wLength);
        out.SetPosition(end);
    }
};

void WriteString(CBlockWriter &w, VS_STRING &entry) {
    int64_t const start = w.Begin(entry.wValueLength, entry.wType, entry.key);
    char16_t const *text = entry.value.GetUTF16();
    int const length = entry.value.GetLength();
    if (entry.wValueLength) w.Pad();
    for (int i = 0; i < entry.wValueLength; ++i)
        w.Word(i < length ? text[i] : 0);
    w.End(start, entry.wLength);
}

void WriteStringFileInfo(CBlockWriter &w, CVersionInfo &info) {
    VS_FILEINFO_HEADER &header = info.stringFileInfo;
    int64_t const start = w.Begin(header.wValueLength, header.wType, CString(u"StringFileInfo"));
    for (uint32_t t = 0; t < info.stringTables.GetSize(); ++t) {
        VS_STRINGTABLE &table = info.stringTables[t];
        w.Pad();
        int64_t const tableStart = w.Begin(table.wValueLength, table.wType, table.key);
        for (uint32_t s = 0; s < table.strings.GetSize(); ++s) {
            w.Pad();
            WriteString(w, table.strings[s]);
        }
        w.End(tableStart, table.wLength);
    }
    w.End(start, header.wLength);
}

void WriteVarFileInfo(CBlockWriter &w, CVersionInfo &info) {
    VS_FILEINFO_HEADER &header = info.varFileInfo;
    int64_t const start = w.Begin(header.wValueLength, header.wType, CString(u"VarFileInfo"));
    for (uint32_t v = 0; v < info.vars.GetSize(); ++v) {
        VS_VAR &var = info.vars[v];
        w.Pad();
        int64_t const varStart = w.Begin(var.wValueLength, var.wType, var.key);
        if (var.wValueLength) w.Pad();
        uint32_t const stored = var.value.GetSize() < var.wValueLength ? var.value.GetSize() : var.wValueLength;
        w.Bytes(var.value.GetData(), stored);
        for (uint32_t i = stored; i < var.wValueLength; ++i)
            w.Bytes("", 1);
        w.End(varStart, var.wLength);
    }
    w.End(start, header.wLength);
}

void WriteFixedInfo(CBlockWriter &w, VS_FIXEDFILEINFO const &f) {
    for (uint32_t v : {f.dwSignature, f.dwStrucVersion, f.dwFileVersionMS, f.dwFileVersionLS, f.dwProductVersionMS,
                       f.dwProductVersionLS, f.dwFileFlagsMask, f.dwFileFlags, f.dwFileOS, f.dwFileType,
                       f.dwFileSubtype, f.dwFileDateMS, f.dwFileDateLS})
        w.DWord(v);
}

} // namespace

bool CVersionInfo::Serialize(CMemFile &result) {
    if (wLength == 0) return false;
    CBlockWriter w;
    w.Word(0);
    w.Word(wValueLength);
    w.Word(wType);
    for (char16_t unit : szKey)
        w.Word(unit);
    w.Word(Padding1);
    if (wValueLength) WriteFixedInfo(w, Value);
    // Children are patched into copies first, so a block too long to hold
    // leaves this object as it was.
    CVersionInfo measured(*this);
    for (int pass = 0; pass < 2; ++pass) {
        bool const strings = (pass == 0) != varsFirst;
        w.Pad();
        if (strings && stringFileInfo.present) WriteStringFileInfo(w, measured);
        if (!strings && varFileInfo.present) WriteVarFileInfo(w, measured);
    }
    w.End(0, measured.wLength);
    if (!w.ok) return false;
    *this = measured;
    result = w.out;
    result.SetPosition(0);
    return true;
}

bool CVersionInfo::Save(IFile &file) {
    CMemFile block;
    return Serialize(block) && file.WriteBytes(block.GetData(), uint32_t(block.GetSize()));
}

} // namespace qv
