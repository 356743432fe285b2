// The SBF file: its header, string table and tree, read and written through
// a memory image of the file, with explicit stacks instead of recursion.
#include "qv/formats/tagged/SBFile.h"

#include <cstring>

#include "qv/core/WideChar.h"
#include "qv/files/MemFile.h"
#include "qv/filesystems/AtomicSave.h"
#include "qv/formats/tagged/ByPath.h"
#include "qv/formats/tagged/SBFString.h"
#include "qv/formats/tagged/WholeFile.h"

namespace qv {

using CElement = CSBFile::CElement;

namespace {

constexpr char kMagic[3] = {'S', 'B', 'F'};

// Where the rebuild of the tree stands: an element and its children to come.
struct OpenElement {
    CElement *element;
    uint32_t childrenLeft;
};

bool ReadAttributesAndData(IFile &in, CSBFile &file, CElement *e) {
    uint32_t count = 0;
    if (!in.GetDWORD(count)) return false;
    for (uint32_t i = 0; i < count; ++i) {
        CSBFile::ATTRIB a;
        if (!in.GetDWORD(a.nameIndex) || !a.value.Load(&in)) return false;
        a.name = file.GetString(a.nameIndex);
        if (!e->attributes.Add(a)) return false;
    }
    return e->data.Load(&in);
}

bool WriteAttributesAndData(IFile &out, CElement *e) {
    if (!out.PutDWORD(e->attributes.nItems())) return false;
    for (uint32_t i = 0; i < e->attributes.nItems(); ++i) {
        CSBFile::ATTRIB &a = e->attributes[i];
        if (!out.PutDWORD(a.nameIndex) || !a.value.Save(&out)) return false;
    }
    return e->data.Save(&out);
}

} // namespace

void CSBFile::SetAppInfo(char const *id, uint8_t major, uint8_t minor) {
    if (id) {
        size_t n = strnlen(id, sizeof(appId));
        std::memset(appId, 0, sizeof(appId));
        std::memcpy(appId, id, n);
    }
    appMajor = major;
    appMinor = minor;
}

void CSBFile::GetAppInfo(char *id, uint8_t &major, uint8_t &minor) const {
    if (id) {
        std::memcpy(id, appId, sizeof(appId));
        id[sizeof(appId)] = 0;
    }
    major = appMajor;
    minor = appMinor;
}

uint32_t CSBFile::GetString(char16_t const *name) {
    for (uint32_t i = 0; i < strings.nItems(); ++i)
        if (_wcsicmp(strings[i].GetUTF16(), name ? name : u"") == 0) return i;
    strings.Add(CString(name ? name : u""));
    return strings.nItems() - 1;
}

char16_t const *CSBFile::GetString(uint32_t index) const {
    char16_t const *text = index < strings.nItems() ? strings.GetAt(index).GetUTF16() : nullptr;
    return text ? text : u"";
}

void CSBFile::Destroy() {
    cursor.Destroy();
    DestroyStringTable();
}

void CSBFile::DestroyStringTable() {
    strings.Destroy();
}

bool CSBFile::Load(IFile *f) {
    Destroy();
    CMemFile in;
    if (!f || !tagged::ReadRest(f, in)) return false;
    char magic[3], id[4];
    if (!in.ReadBytes(magic, 3) || std::memcmp(magic, kMagic, 3) != 0) return false;
    in.GetBYTE();
    if (!in.ReadBytes(id, 4) || strncmp(id, appId, 4) != 0) return false;
    if (!in.GetBYTE(appMajor) || !in.GetBYTE(appMinor)) return false;
    uint32_t count = 0;
    if (!in.GetDWORD(count)) return false;
    for (uint32_t i = 0; i < count; ++i) {
        CString text;
        if (!sbf::GetString(in, text) || !strings.Add(text)) return false;
    }
    if (!ReadTree(in)) return false;
    cursor.Root();
    return true;
}

bool CSBFile::ReadTree(IFile &in) {
    uint32_t topLeft = 0;
    if (!in.GetDWORD(topLeft)) return false;
    TSimpleArray<OpenElement> open;
    open.SetGrowthRate(0xFFFF);
    CElement *lastTop = nullptr;
    for (;;) {
        uint32_t depth = open.nItems();
        if (depth && open[depth - 1].childrenLeft == 0) {
            if (!ReadAttributesAndData(in, *this, open[depth - 1].element)) return false;
            open.Remove(depth - 1);
            continue;
        }
        if (!depth && topLeft == 0) return true;
        uint32_t nameIndex = 0, children = 0;
        if (!in.GetDWORD(nameIndex) || !in.GetDWORD(children)) return false;
        CElement *e = CElement::New();
        e->source = this;
        e->nameIndex = nameIndex;
        e->name = GetString(nameIndex);
        if (depth) {
            --open[depth - 1].childrenLeft;
            tree::AppendChild(open[depth - 1].element, e);
        } else {
            --topLeft;
            if (lastTop) tree::LinkAfter(lastTop, e);
            else cursor.root = e;
            lastTop = e;
        }
        if (!open.Add(OpenElement{e, children})) return false;
    }
}

bool CSBFile::Write(IFile &out) {
    // Names first: the table only grows, and each element and attribute
    // learns its index.
    for (CElement *top = cursor.root; top; top = top->next) {
        tree::Walk(
            top,
            [&](CElement *e, uint32_t) {
                e->nameIndex = GetString(e->GetName());
                for (uint32_t i = 0; i < e->attributes.nItems(); ++i)
                    e->attributes[i].nameIndex = GetString(e->attributes[i].name.GetUTF16());
                return true;
            },
            [](CElement *, uint32_t) { return true; });
    }
    bool ok = out.WriteBytes(kMagic, 3) && out.PutBYTE(0) && out.WriteBytes(appId, 4) && out.PutBYTE(appMajor) &&
              out.PutBYTE(appMinor) && out.PutDWORD(strings.nItems());
    for (uint32_t i = 0; ok && i < strings.nItems(); ++i) ok = sbf::PutString(out, strings[i]);
    ok = ok && out.PutDWORD(tree::CountPeers(cursor.root));
    for (CElement *top = cursor.root; ok && top; top = top->next) {
        ok = tree::Walk(
            top,
            [&](CElement *e, uint32_t) { return out.PutDWORD(e->nameIndex) && out.PutDWORD(e->NumChildren()); },
            [&](CElement *e, uint32_t) { return WriteAttributesAndData(out, e); });
    }
    return ok;
}

bool CSBFile::Save(IFile *f) {
    CMemFile out;
    out.SetGrowthRate(0xFFFF);
    return f && Write(out) && tagged::WriteWhole(f, out);
}

bool CSBFile::Load(IFileSystem *fs, char16_t const *path) {
    Destroy();
    return tagged::LoadByPath(fs, path, [&](IFile *f) { return Load(f); });
}

bool CSBFile::Load(char16_t const *path) {
    return Load(nullptr, path);
}

bool CSBFile::Save(IFileSystem *fs, char16_t const *path) {
    return SaveAtomically(fs, path, [&](IFile &f) { return Save(&f); });
}

bool CSBFile::Save(char16_t const *path) {
    return Save(nullptr, path);
}

bool CSBFile::Root() { return cursor.Root(); }
bool CSBFile::Parent() { return cursor.Parent(); }
bool CSBFile::Child(bool allowEmpty) { return cursor.Child(allowEmpty); }
bool CSBFile::Next() { return cursor.Next(); }
bool CSBFile::Prev() { return cursor.Prev(); }
bool CSBFile::First() { return cursor.First(); }
bool CSBFile::Last() { return cursor.Last(); }
uint32_t CSBFile::NumPeers() { return tree::CountPeers(cursor.current); }
uint32_t CSBFile::NumPeers(CElement *element) { return tree::CountPeers(element); }
bool CSBFile::Insert(CElement *e, bool before) {
    if (e) e->source = this;
    return cursor.Insert(e, before);
}
bool CSBFile::InsertChild(CElement *e, bool first) {
    if (e) e->source = this;
    return cursor.InsertChild(e, first);
}
bool CSBFile::Remove() { return cursor.Remove(); }
bool CSBFile::FindFirst(char16_t const *name) { return cursor.FindFirst(name); }
bool CSBFile::FindNext(char16_t const *name) { return cursor.FindNext(name); }
bool CSBFile::FindFirstChild(char16_t const *name) { return cursor.FindFirstChild(name); }
CElement *CSBFile::GetCurr() { return cursor.current; }
void CSBFile::SetCurr(CElement *e) {
    cursor.current = e;
    cursor.emptyPosition = false;
}
CElement &CSBFile::Curr() {
    static CElement empty;
    return cursor.current ? *cursor.current : empty;
}
bool CSBFile::IsValid() { return cursor.current != nullptr; }

} // namespace qv
