// The dictionary's three stored forms and its loads and saves by path.
#include <cstring>

#include "qv/core/WideChar.h"
#include "qv/files/MemFile.h"
#include "qv/filesystems/AtomicSave.h"
#include "qv/formats/tagged/ByPath.h"
#include "qv/formats/tagged/SBFile.h"
#include "qv/formats/tagged/TagFile.h"
#include "qv/formats/tagged/WholeFile.h"
#include "qv/formats/tagged/XMLFile.h"

namespace qv {

namespace {

constexpr char kMagic[4] = {'T', 'A', 'G', 'F'};
constexpr uint8_t kVersion = 3;
constexpr char16_t kRoot[] = u"TagFile";
constexpr char16_t kEntry[] = u"TagEntry";

} // namespace

bool CTagFile::Load(IFile *f) {
    if (!f) return false;
    int64_t start = f->GetPosition();
    char magic[4] = {0, 0, 0, 0};
    f->Read(magic, 4);
    f->SetPosition(start);
    if (std::memcmp(magic, kMagic, 4) == 0) return LoadBinary(f);
    if (std::memcmp(magic, "SBF", 3) == 0) return LoadSBF(f);
    return LoadXML(f);
}

bool CTagFile::LoadBinary(IFile *f) {
    Destroy();
    CMemFile in;
    if (!f || !tagged::ReadRest(f, in)) return false;
    char magic[4];
    uint8_t version = 0;
    uint32_t count = 0;
    if (!in.ReadBytes(magic, 4) || std::memcmp(magic, kMagic, 4) != 0) return false;
    if (!in.GetBYTE(version) || version > kVersion || !in.GetDWORD(count)) return false;
    for (uint32_t i = 0; i < count; ++i) {
        CTagEntry entry;
        if (!entry.Load(in, version) || !Add(entry)) return false; // the entries so far stay, unsorted
    }
    Sort();
    return true;
}

bool CTagFile::LoadSBF(IFile *f) {
    Destroy();
    CSBFile sbf;
    sbf.SetAppInfo("TAGF", 0, 1);
    if (!sbf.Load(f)) return false;
    for (bool more = sbf.Root(); more; more = sbf.Next()) {
        if (_wcsicmp(sbf.Curr().GetName(), kEntry) != 0) continue;
        CTagEntry entry;
        if (!entry.Load(sbf) || !Add(entry)) return false;
    }
    Sort();
    return true;
}

bool CTagFile::LoadXML(IFile *f) {
    Destroy();
    CXMLFile xml;
    if (!xml.Load(f) || !xml.Root()) return false;
    if (!xml.FindFirst(kRoot)) return false;
    for (bool more = xml.FindFirstChild(kEntry); more; more = xml.FindNext(kEntry)) {
        CTagEntry entry;
        if (!entry.Load(xml) || !Add(entry)) return false;
    }
    Sort();
    return true;
}

bool CTagFile::Save(IFile *f) {
    return SaveBinary(f);
}

bool CTagFile::SaveBinary(IFile *f) {
    Sort();
    CMemFile out;
    out.SetGrowthRate(0xFFFF);
    bool ok = out.WriteBytes(kMagic, 4) && out.PutBYTE(kVersion) && out.PutDWORD(nItems());
    for (uint32_t i = 0; ok && i < nItems(); ++i) ok = GetAt(i).Save(out);
    return ok && f && tagged::WriteWhole(f, out);
}

bool CTagFile::SaveSBF(IFile *f) {
    Sort();
    CSBFile sbf;
    sbf.SetAppInfo("TAGF", 0, 1);
    for (uint32_t i = 0; i < nItems(); ++i)
        if (!GetAt(i).Save(sbf)) return false;
    return sbf.Save(f);
}

bool CTagFile::SaveXML(IFile *f) {
    Sort();
    CXMLFile xml;
    auto *declaration = new CXMLFile::CNode(CXMLFile::CNode::PROCESSING_INSTRUCTION, u"xml");
    declaration->attributes[u"version"] = u"1.0";
    declaration->attributes[u"encoding"] = u"UTF-8";
    xml.Insert(declaration, false);
    xml.Insert(new CXMLFile::CNode(kRoot), false);
    xml.Child(true); // the entries go in as the root's children
    for (uint32_t i = 0; i < nItems(); ++i)
        if (!GetAt(i).Save(xml)) return false;
    return xml.Save(f);
}

// Each by-path form opens the file and runs the form on it.
#define QV_TAGFILE_LOAD_BY_PATH(Name)                                                                          \
    bool CTagFile::Name(IFileSystem *fs, char16_t const *path) {                                               \
        Destroy();                                                                                             \
        return tagged::LoadByPath(fs, path, [&](IFile *f) { return Name(f); });                                \
    }                                                                                                          \
    bool CTagFile::Name(char16_t const *path) { return Name(nullptr, path); }
#define QV_TAGFILE_SAVE_BY_PATH(Name)                                                                          \
    bool CTagFile::Name(IFileSystem *fs, char16_t const *path) {                                               \
        return SaveAtomically(fs, path, [&](IFile &f) { return Name(&f); });                                   \
    }                                                                                                          \
    bool CTagFile::Name(char16_t const *path) { return Name(nullptr, path); }

QV_TAGFILE_LOAD_BY_PATH(Load)
QV_TAGFILE_LOAD_BY_PATH(LoadBinary)
QV_TAGFILE_LOAD_BY_PATH(LoadSBF)
QV_TAGFILE_LOAD_BY_PATH(LoadXML)
QV_TAGFILE_SAVE_BY_PATH(Save)
QV_TAGFILE_SAVE_BY_PATH(SaveBinary)
QV_TAGFILE_SAVE_BY_PATH(SaveSBF)
QV_TAGFILE_SAVE_BY_PATH(SaveXML)

#undef QV_TAGFILE_LOAD_BY_PATH
#undef QV_TAGFILE_SAVE_BY_PATH

} // namespace qv
