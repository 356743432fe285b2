#include "qv/filesystems/RFSFileSystem.h"

#include "qv/core/Locale.h"
#include "qv/core/ModuleResources.h"
#include "qv/core/ResourceId.h"
#include "qv/core/StringFunctions.h"
#include "qv/core/WideChar.h"
#include "qv/files/ResourceFile.h"

namespace qv {

namespace {

constexpr char16_t kModuleKey[] = u"Module";
constexpr char16_t kNameKey[] = u"ResourceName";
constexpr char16_t kTypeKey[] = u"ResourceType";
constexpr char16_t kGZKey[] = u"GZFilter";

char16_t const *TypeName(uint16_t id) {
    static char16_t const *const names[] = {
        nullptr,        u"CURSOR",      u"BITMAP",       u"ICON",       u"MENU",     u"DIALOG",
        u"STRING",      u"FONTDIR",     u"FONT",         u"ACCELERATOR", u"RCDATA",   u"MESSAGETABLE",
        u"GROUP_CURSOR", nullptr,       u"GROUP_ICON",   nullptr,       u"VERSION",  u"DLGINCLUDE",
        nullptr,        u"PLUGPLAY",    u"VXD",          u"ANICURSOR",  u"ANIICON",  u"HTML",
        u"MANIFEST",
    };
    return id < sizeof(names) / sizeof(names[0]) ? names[id] : nullptr;
}

CString NumberText(uint16_t id) {
    return CString::FromFormat(u"#%d", int(id));
}

// The identifier in its pointer convention: a name, or "#n" for a number.
CString IdText(SResourceId const &id) {
    return id.IsNumeric() ? NumberText(id.id) : CString(id.name);
}

char16_t const *AsPointer(SResourceId const &id) {
    return id.IsNumeric() ? MakeIntResource(id.id) : id.name;
}

} // namespace

CRFSFileSystem::CRFSFileSystem(HINSTANCE module) {
    AddModule(module);
}

char16_t *CRFSFileSystem::ResourceName(char16_t *out, char16_t const *type, char16_t const *name) {
    SResourceId typeId = SResourceId::FromText(type), nameId = SResourceId::FromText(name);
    char16_t const *typeName = typeId.IsNumeric() ? TypeName(typeId.id) : nullptr;
    CString typeText = typeName ? CString(typeName) : IdText(typeId);
    CString path = MakePath(MakePath(CString(u""), typeText, u'/'), IdText(nameId), u'/');
    StrCpy(out, path.GetUTF16(), PathBufferSize);
    return out;
}

void CRFSFileSystem::AddModule(HINSTANCE module) {
    if (!module) module = GetProgramModule();
    uint32_t count = GetResourceCount(module);
    for (uint32_t i = 0; i < count; ++i) {
        HRSRC resource = GetResourceAt(module, i);
        HRSRC previous = i ? GetResourceAt(module, i - 1) : nullptr;
        // Entries are sorted by type and name: one file for all languages.
        if (previous && previous->type.Matches(resource->type) && previous->name.Matches(resource->name)) continue;
        char16_t path[PathBufferSize];
        ResourceName(path, AsPointer(resource->type), AsPointer(resource->name));
        bool packed = _wcsicmp(GetExtension(path), u".gz") == 0;
        if (packed) RemoveExtension(path);
        CDirectoryEntry entry = MakeFileEntry(path);
        HRSRC preferred = Locale->FindResourceW(module, AsPointer(resource->type), AsPointer(resource->name));
        entry.size = preferred ? preferred->size : resource->size;
        entry.properties[kModuleKey] = const_cast<void *>(static_cast<void const *>(module));
        entry.properties[kNameKey] = IdText(resource->name).GetUTF16();
        entry.properties[kTypeKey] = IdText(resource->type).GetUTF16();
        entry.properties[kGZKey] = packed ? 1 : 0;
        entries.Add(entry);
    }
}

uint32_t CRFSFileSystem::GetCapabilities() {
    return 0;
}

IFile *CRFSFileSystem::CreateFileW(char16_t const *path, uint32_t) {
    int index = FindFile(path);
    if (index < 0) return nullptr;
    CPropertyArray &properties = entries.GetItem(uint32_t(index)).properties;
    HINSTANCE module = static_cast<HINSTANCE>(static_cast<void *>(properties[kModuleKey]));
    HRSRC resource = Locale->FindResourceW(module, properties.GetValue(kTypeKey), properties.GetValue(kNameKey));
    return resource ? CreateResourceFile(resource, int(properties[kGZKey]) == 1) : nullptr;
}

bool CRFSFileSystem::DeleteFileW(char16_t const *) {
    return false;
}

bool CRFSFileSystem::CreateDirectoryW(char16_t const *, bool) {
    return false;
}

bool CRFSFileSystem::RemoveDirectoryW(char16_t const *, bool) {
    return false;
}

void CExeResourcesPostCreate::PostCreate(CRFSFileSystem *made) {
    HINSTANCE library = GetLibraryModule();
    if (library && library != GetProgramModule()) made->AddModule(library);
}

template class TSingletonPtr<CRFSFileSystem, 1, false, CExeResourcesPostCreate>;
TSingletonPtr<CRFSFileSystem, 1, false, CExeResourcesPostCreate> ExeResources;

} // namespace qv
