#include "qv/core/Locale.h"

#include "qv/core/LanguageTags.h"
#include "qv/core/ModuleResources.h"
#include "qv/core/StringTableBlock.h"

namespace qv {

template class TSingletonPtr<CLocale>;
TSingletonPtr<CLocale> Locale;

namespace {

SResourceId const kStringType = SResourceId::Number(kResourceTypeString);

// Calls visit(entry) for each string block of each module that the language
// selects: one entry per module and block number.
template <class Visit> void ForEachStringBlock(TArray<HINSTANCE> const &modules, uint16_t language, Visit visit) {
    for (uint32_t m = 0; m < modules.GetSize(); ++m) {
        HINSTANCE module = modules.GetAt(m);
        for (uint32_t i = 0; HRSRC entry = GetResourceAt(module, i); ++i) {
            if (!entry->type.Matches(kStringType) || !entry->name.IsNumeric() || entry->name.id == 0) continue;
            if (FindResource(module, kStringType, entry->name, language) == entry) visit(*entry);
        }
    }
}

bool SamePrimaryLanguage(uint16_t a, uint16_t b) {
    return (a & 0x03FF) == (b & 0x03FF);
}

// libqv's name for the language, its tag, or its number.
CString LanguageName(uint16_t language) {
    HRSRC block =
        FindResource(GetLibraryModule(), kStringType, SResourceId::Number(StringBlockOfId(kLanguageNameId)), language);
    if (block && SamePrimaryLanguage(block->language, language)) {
        CString name = BlockString(block->data, block->size, kLanguageNameId);
        if (!name.IsEmpty()) return name;
    }
    CString tag;
    if (LocaleTagFromLanguage(language, tag)) return tag;
    return CString::FromFormat(u"0x%04X", unsigned(language));
}

char16_t emptyText[1] = {0}; // getString's answer while no text block exists

} // namespace

CLocale::CLocale() : lcid(GetUserDefaultLCID()), language(uint16_t(lcid)) {
    // The program's texts come after the library's, so they win.
    for (HINSTANCE module : {GetLibraryModule(), GetProgramModule()})
        if (module) modules.Add(module);
    LoadStringTable();
    LoadLanguageList();
}

CLocale::~CLocale() = default;

void CLocale::AddModule(HINSTANCE module) {
    modules.Add(module);
    LoadStringTable();
}

uint32_t CLocale::getLocale() {
    return lcid;
}

void CLocale::setLocale(uint32_t value) {
    lcid = value;
    language = uint16_t(value);
    LoadStringTable();
}

uint16_t CLocale::getLanguage() {
    return language;
}

void CLocale::setLanguage(uint16_t value) {
    language = value;
    lcid = (lcid & 0xFFFF0000u) | value;
    LoadStringTable();
}

bool CLocale::getRightToLeftLayout() {
    return rightToLeft;
}

unsigned CLocale::getLastID() {
    return lastID;
}

char16_t *CLocale::getString(unsigned id) {
    char16_t *empty = strings.GetSize() ? strings.GetData() : emptyText;
    return id < lastID && id < table.GetSize() ? table.GetData()[id] : empty;
}

TArray<SLocale> const &CLocale::getLanguages() const {
    return languages;
}

HRSRC CLocale::FindResourceW(HINSTANCE module, char16_t const *type, char16_t const *name) {
    return FindResource(module, SResourceId::FromText(type), SResourceId::FromText(name), language);
}

uint16_t CLocale::GetResourceLangID(HINSTANCE module, char16_t const *type, char16_t const *name) {
    HRSRC found = FindResourceW(module, type, name);
    return found ? found->language : 0;
}

// Two passes over the same blocks: the first measures, the second copies.
void CLocale::LoadStringTable() {
    strings.Destroy();
    table.Destroy();
    lastID = 0;
    rightToLeft = IsRightToLeftLanguage(language);
    uint64_t units = 1;
    uint32_t highest = 0;
    ForEachStringBlock(modules, language, [&](SResourceEntry const &block) {
        SStringBlockText texts[kStringsPerBlock];
        uint32_t present = ReadStringBlock(block.data, block.size, texts);
        for (uint32_t i = 0; i < present; ++i)
            units += texts[i].length + 1;
        if (uint32_t(block.name.id) << 4 > highest) highest = uint32_t(block.name.id) << 4;
    });
    if (units > UINT32_MAX || !strings.SetSize(uint32_t(units)) || !table.SetSize(highest)) {
        strings.Destroy();
        table.Destroy();
        return;
    }
    char16_t *text = strings.GetData();
    for (uint32_t id = 0; id < highest; ++id)
        table.GetData()[id] = text;
    uint32_t cursor = 1;
    ForEachStringBlock(modules, language, [&](SResourceEntry const &block) {
        SStringBlockText texts[kStringsPerBlock];
        uint32_t present = ReadStringBlock(block.data, block.size, texts);
        char16_t **ids = table.GetData() + (block.name.id - 1u) * kStringsPerBlock;
        for (uint32_t i = 0; i < kStringsPerBlock; ++i) {
            ids[i] = text; // a block cut short still sets all of its ids
            if (i >= present) continue;
            CopyBlockText(texts[i], text + cursor);
            ids[i] = text + cursor;
            cursor += texts[i].length + 1;
        }
    });
    lastID = highest;
}

void CLocale::LoadLanguageList() {
    TArray<uint16_t> found;
    GetResourceLanguages(GetProgramModule(), kStringType, SResourceId::Number(kLanguageListBlock), found);
    for (uint32_t i = 0; i < found.GetSize(); ++i) {
        uint16_t each = found.GetAt(i);
        languages.Add(SLocale{each, LanguageName(each), IsRightToLeftLanguage(each)});
    }
}

} // namespace qv
