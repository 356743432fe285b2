#include "qv/core/ResourceRegistry.h"

#include <mutex>

#include "qv/core/WideChar.h"

namespace qv {

namespace {

// Constant-initialised, so tables may register from any module's static
// constructors, libqv's own included, whatever the order of initialisation.
constinit std::mutex registryLock;
constinit CResourceRegistration *registryHead = nullptr;

bool NameMatches(SResourceModule const &module, char16_t const *name) {
    return name == nullptr || (module.name != nullptr && _wcsicmp(module.name, name) == 0);
}

} // namespace

CResourceRegistration::CResourceRegistration(SResourceModule const &module) : module(&module) {
    CResourceRegistry::Add(*this);
}

CResourceRegistration::~CResourceRegistration() {
    CResourceRegistry::Remove(*this);
}

// Appended at the end, so "first registered" is the order of loading.
void CResourceRegistry::Add(CResourceRegistration &registration) {
    std::lock_guard<std::mutex> hold(registryLock);
    CResourceRegistration **link = &registryHead;
    while (*link)
        link = &(*link)->next;
    registration.next = nullptr;
    *link = &registration;
}

void CResourceRegistry::Remove(CResourceRegistration &registration) {
    std::lock_guard<std::mutex> hold(registryLock);
    for (CResourceRegistration **link = &registryHead; *link; link = &(*link)->next) {
        if (*link != &registration) continue;
        *link = registration.next;
        return;
    }
}

HINSTANCE CResourceRegistry::Find(EResourceModuleKind kind, char16_t const *name) {
    std::lock_guard<std::mutex> hold(registryLock);
    for (CResourceRegistration *r = registryHead; r; r = r->next)
        if (r->module->kind == kind && NameMatches(*r->module, name)) return r->module;
    return nullptr;
}

HINSTANCE CResourceRegistry::FindByName(char16_t const *name) {
    std::lock_guard<std::mutex> hold(registryLock);
    for (CResourceRegistration *r = registryHead; r; r = r->next)
        if (NameMatches(*r->module, name)) return r->module;
    return nullptr;
}

bool CResourceRegistry::Contains(HINSTANCE module) {
    std::lock_guard<std::mutex> hold(registryLock);
    for (CResourceRegistration *r = registryHead; r; r = r->next)
        if (r->module == module) return true;
    return false;
}

SResourceEntry const *CResourceRegistry::Entries(HINSTANCE module, uint32_t &count) {
    count = 0;
    if (!module || !Contains(module)) return nullptr;
    count = module->count;
    return module->entries;
}

} // namespace qv
