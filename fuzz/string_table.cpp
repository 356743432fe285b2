// CLocale loading a string block of arbitrary bytes from a module table: the
// lengths inside the block are not trusted, so every text must stay within
// the block and every id must read as terminated text.
#include <cstddef>
#include <cstdint>

#include "qv/core/Locale.h"
#include "qv/core/WideChar.h"

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    if (size < 1 || size > 0x20000) return 0;
    // The first byte picks the block, so the table's size varies too.
    qv::SResourceEntry const entry = {qv::SResourceId::Number(6), qv::SResourceId::Number(uint16_t(1 + data[0] % 80)),
                                      0x0409, uint32_t(size - 1), data + 1};
    qv::SResourceModule const module = {u"fuzz", qv::EResourceModuleKind::Library, &entry, 1};
    qv::CResourceRegistration registration(module);
    qv::CLocale locale;
    locale.setLanguage(0x0409);
    locale.AddModule(&module);
    static volatile size_t total = 0;
    for (unsigned id = 0; id <= locale.getLastID(); ++id)
        total = total + qv::wcslen(locale.getString(id));
    return 0;
}
