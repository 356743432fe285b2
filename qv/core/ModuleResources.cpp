#include "qv/core/ModuleResources.h"

#include "qv/core/ResourceRegistry.h"

namespace qv {

namespace {

constexpr uint16_t kLanguageUSEnglish = 0x0409;
constexpr uint16_t kNotFound = 0xFFFF;

uint16_t PrimaryLanguage(uint16_t language) {
    return language & 0x03FF;
}
uint16_t Sublanguage(uint16_t language) {
    return language >> 10;
}

// The fallback step (0 best) at which an entry of language `have` answers a
// request for `want`.
uint16_t FallbackRank(uint16_t want, uint16_t have) {
    if (have == want) return 0;
    if (PrimaryLanguage(have) == PrimaryLanguage(want) && PrimaryLanguage(want) != 0) {
        if (Sublanguage(have) == 0) return 1;
        if (Sublanguage(have) == 1) return 2;
        return 3;
    }
    if (have == 0) return 4;
    if (have == kLanguageUSEnglish) return 5;
    return 6;
}

bool IsResource(SResourceEntry const &entry, SResourceId const &type, SResourceId const &name) {
    return entry.type.Matches(type) && entry.name.Matches(name);
}

} // namespace

HINSTANCE GetProgramModule() {
    return CResourceRegistry::Find(EResourceModuleKind::Program, nullptr);
}

HINSTANCE GetLibraryModule() {
    return CResourceRegistry::Find(EResourceModuleKind::Library, u"qv");
}

HINSTANCE FindResourceModule(char16_t const *name) {
    return name ? CResourceRegistry::FindByName(name) : GetProgramModule();
}

bool IsResourceModule(HINSTANCE module) {
    return module != nullptr && CResourceRegistry::Contains(module);
}

uint32_t GetResourceCount(HINSTANCE module) {
    uint32_t count = 0;
    CResourceRegistry::Entries(module, count);
    return count;
}

HRSRC GetResourceAt(HINSTANCE module, uint32_t index) {
    uint32_t count = 0;
    SResourceEntry const *entries = CResourceRegistry::Entries(module, count);
    return index < count ? &entries[index] : nullptr;
}

HRSRC FindResourceExact(HINSTANCE module, SResourceId type, SResourceId name, uint16_t language) {
    uint32_t count = 0;
    SResourceEntry const *entries = CResourceRegistry::Entries(module, count);
    for (uint32_t i = 0; i < count; ++i)
        if (entries[i].language == language && IsResource(entries[i], type, name)) return &entries[i];
    return nullptr;
}

// One pass: the best rank wins, the earlier entry on a tie.
HRSRC FindResource(HINSTANCE module, SResourceId type, SResourceId name, uint16_t language) {
    uint32_t count = 0;
    SResourceEntry const *entries = CResourceRegistry::Entries(module, count);
    HRSRC best = nullptr;
    uint16_t bestRank = kNotFound;
    for (uint32_t i = 0; i < count && bestRank != 0; ++i) {
        if (!IsResource(entries[i], type, name)) continue;
        uint16_t rank = FallbackRank(language, entries[i].language);
        if (rank >= bestRank) continue;
        best = &entries[i];
        bestRank = rank;
    }
    return best;
}

uint32_t GetResourceLanguages(HINSTANCE module, SResourceId type, SResourceId name, TArray<uint16_t> &out) {
    uint32_t count = 0;
    SResourceEntry const *entries = CResourceRegistry::Entries(module, count);
    uint32_t added = 0;
    for (uint32_t i = 0; i < count; ++i)
        if (IsResource(entries[i], type, name) && out.Add(entries[i].language)) ++added;
    return added;
}

} // namespace qv
