// Reading a VS_VERSIONINFO block from untrusted bytes: every length is held
// against its parent and the bytes there are, and the depth is fixed.
#include <cstring>

#include "qv/core/ByteSpan.h"
#include "qv/core/VersionInfo.h"
#include "qv/core/WideChar.h"
#include "qv/files/IFile.h"

namespace qv {

namespace {

// A block's header and key, with where its value starts and where it ends
// (offsets from the root's first byte).
struct SBlock {
    uint16_t wLength = 0;
    uint16_t wValueLength = 0;
    uint16_t wType = 0;
    CString key;
    uint64_t valueAt = 0;
    uint64_t end = 0;
    // Where the children start behind a value of valueBytes bytes.
    uint64_t ChildrenAt(uint64_t valueBytes) const { return AlignUp4(valueAt + valueBytes); }
};

// Up to units UTF-16 units from at, ending at the first NUL.
CString UnitsText(SByteSpan const &bytes, uint64_t at, uint32_t units) {
    CString text;
    char16_t *buffer = text.GetBuffer(int(units));
    uint32_t i = 0;
    for (uint16_t unit = 0; i < units && bytes.Word(at + 2 * i, unit) && unit; ++i)
        buffer[i] = char16_t(unit);
    buffer[i] = 0;
    text.ReleaseBuffer();
    return text;
}

// The block at at, which must end by limit; its key must end inside it.
bool ReadBlock(SByteSpan const &bytes, uint64_t at, uint64_t limit, SBlock &block) {
    if (!bytes.Word(at, block.wLength) || !bytes.Word(at + 2, block.wValueLength) || !bytes.Word(at + 4, block.wType))
        return false;
    if (block.wLength < 6 || at + block.wLength > limit) return false;
    block.end = at + block.wLength;
    uint64_t p = at + 6;
    for (uint16_t unit = 1; unit; p += 2)
        if (p + 2 > block.end || !bytes.Word(p, unit)) return false;
    block.key = UnitsText(bytes, at + 6, uint32_t((p - at - 6) / 2));
    block.valueAt = AlignUp4(p);
    return true;
}

// Calls child(at, limit) for each child from first to the parent's end;
// fewer than a header's bytes at the end are padding.
template <class Child> bool ForEachChild(uint64_t first, uint64_t end, Child child) {
    for (uint64_t at = AlignUp4(first); at < end && end - at >= 6;) {
        uint64_t next = 0;
        if (!child(at, next)) return false;
        at = AlignUp4(next);
    }
    return true;
}

bool IsContainer(SBlock const &block, VS_FILEINFO_HEADER &header) {
    if (header.present || block.wValueLength != 0) return false;
    header = {true, block.wLength, block.wValueLength, block.wType};
    return true;
}

bool ReadString(SByteSpan const &bytes, uint64_t at, uint64_t limit, VS_STRING &out, uint64_t &end) {
    SBlock block;
    if (!ReadBlock(bytes, at, limit, block)) return false;
    if (block.wValueLength && block.valueAt + 2 * uint64_t(block.wValueLength) > block.end) return false;
    out.wLength = block.wLength;
    out.wValueLength = block.wValueLength;
    out.wType = block.wType;
    out.key = block.key;
    out.value = UnitsText(bytes, block.valueAt, block.wValueLength);
    end = block.end;
    return true;
}

bool ReadStringTable(SByteSpan const &bytes, uint64_t at, uint64_t limit, VS_STRINGTABLE &out, uint64_t &end) {
    SBlock block;
    if (!ReadBlock(bytes, at, limit, block) || block.wValueLength != 0) return false;
    out.wLength = block.wLength;
    out.wValueLength = block.wValueLength;
    out.wType = block.wType;
    out.key = block.key;
    end = block.end;
    return ForEachChild(block.ChildrenAt(0), block.end, [&](uint64_t child, uint64_t &next) {
        VS_STRING entry;
        return ReadString(bytes, child, block.end, entry, next) && out.strings.Add(entry);
    });
}

bool ReadVar(SByteSpan const &bytes, uint64_t at, uint64_t limit, VS_VAR &out, uint64_t &end) {
    SBlock block;
    if (!ReadBlock(bytes, at, limit, block)) return false;
    if (block.wValueLength && block.valueAt + block.wValueLength > block.end) return false;
    out.wLength = block.wLength;
    out.wValueLength = block.wValueLength;
    out.wType = block.wType;
    out.key = block.key;
    if (!out.value.SetSize(block.wValueLength)) return false;
    if (block.wValueLength) std::memcpy(out.value.GetData(), bytes.data + block.valueAt, block.wValueLength);
    end = block.end;
    return true;
}

bool ReadFixedInfo(SByteSpan const &bytes, uint64_t at, VS_FIXEDFILEINFO &info) {
    uint32_t *fields[] = {&info.dwSignature,     &info.dwStrucVersion,     &info.dwFileVersionMS, &info.dwFileVersionLS,
                          &info.dwProductVersionMS, &info.dwProductVersionLS, &info.dwFileFlagsMask, &info.dwFileFlags,
                          &info.dwFileOS,        &info.dwFileType,         &info.dwFileSubtype,   &info.dwFileDateMS,
                          &info.dwFileDateLS};
    for (uint32_t *field : fields) {
        if (!bytes.DWord(at, *field)) return false;
        at += 4;
    }
    return true;
}

bool ReadChild(SByteSpan const &bytes, uint64_t at, uint64_t limit, CVersionInfo &info, uint64_t &end) {
    SBlock block;
    if (!ReadBlock(bytes, at, limit, block)) return false;
    end = block.end;
    if (block.key.Equals(u"StringFileInfo")) {
        if (!IsContainer(block, info.stringFileInfo)) return false;
        return ForEachChild(block.ChildrenAt(0), block.end, [&](uint64_t child, uint64_t &next) {
            VS_STRINGTABLE table;
            return ReadStringTable(bytes, child, block.end, table, next) && info.stringTables.Add(table);
        });
    }
    if (block.key.Equals(u"VarFileInfo")) {
        if (!IsContainer(block, info.varFileInfo)) return false;
        info.varsFirst = !info.stringFileInfo.present;
        return ForEachChild(block.ChildrenAt(0), block.end, [&](uint64_t child, uint64_t &next) {
            VS_VAR var;
            return ReadVar(bytes, child, block.end, var, next) && info.vars.Add(var);
        });
    }
    return false;
}

constexpr char16_t kRootKey[] = u"VS_VERSION_INFO";
constexpr uint32_t kFixedInfoSize = 52;

bool ReadRoot(SByteSpan const &bytes, CVersionInfo &info) {
    SBlock root;
    if (!ReadBlock(bytes, 0, bytes.size, root) || !root.key.Equals(kRootKey)) return false;
    if (root.wValueLength != 0 && root.wValueLength != kFixedInfoSize) return false;
    info.wLength = root.wLength;
    info.wValueLength = root.wValueLength;
    info.wType = root.wType;
    std::memcpy(info.szKey, kRootKey, sizeof kRootKey);
    // The key's 32 bytes end at 38; two bytes of padding bring the value to 40.
    if (!bytes.Word(38, info.Padding1)) return false;
    if (root.wValueLength) {
        if (root.valueAt + kFixedInfoSize > root.end || !ReadFixedInfo(bytes, root.valueAt, info.Value)) return false;
    }
    return ForEachChild(root.ChildrenAt(root.wValueLength), root.end, [&](uint64_t child, uint64_t &next) {
        return ReadChild(bytes, child, root.end, info, next);
    });
}

} // namespace

bool CVersionInfo::Parse(uint8_t const *bytes, uint32_t size) {
    Destroy();
    if (bytes && ReadRoot(SByteSpan{bytes, size}, *this)) return true;
    Destroy();
    return false;
}

bool CVersionInfo::Load(IFile &file) {
    Destroy();
    int64_t const start = file.GetPosition();
    uint16_t length = 0;
    if (!file.GetWORD(length) || length < 6 || file.GetRemaining() < length - 2) {
        file.SetPosition(start);
        return false;
    }
    TSimpleArray<uint8_t> block;
    bool ok = block.SetSize(length) && file.SetPosition(start) == start && file.ReadBytes(block.GetData(), length) &&
              Parse(block.GetData(), length);
    if (!ok) file.SetPosition(start);
    return ok;
}

} // namespace qv
