/// @file
/// CLocale: the texts of the string tables of the loaded modules in the
/// user's language, and the language-aware finding of module resources.
///
/// Construction takes the language from GetUserDefaultLCID (the environment,
/// see LanguageTags.h) and the modules from the resource registry: libqv's own
/// table, then the program's (either is left out when missing). Then the
/// string table is loaded: for each module and each string block (type 6) the
/// block in the current language, with the fallback of FindResource (see
/// ModuleResources.h), is copied into one text block. Ids that no block holds
/// read as the empty text. A later module overwrites the ids of an earlier one,
/// block by block (a block sets all of its 16 ids, absent ones to the empty
/// text), so the program's texts replace the library's, and a module given to
/// AddModule replaces both.
///
/// Languages on offer: the languages of the program's string block 15 (ids 224
/// to 239), which a program carries once per translation. Each gets the name
/// that libqv's table holds for it (kLanguageNameId, looked up in that language
/// or one of the same primary language), else its "de-DE" tag, else the id as
/// "0x0407".
///
/// The library reserves the ids 1024 to 1039 (one block) for its own texts.
///
/// getString never returns null: an unknown id gives the empty text. The
/// pointers stay valid until the next reload (setLocale, setLanguage,
/// AddModule) or destruction. FindResourceW and GetResourceLangID take type
/// and name in the pointer convention of ResourceId.h ("#6" or
/// MakeIntResource(6)); GetResourceLangID gives 0 when nothing is found.
///
/// Right-to-left layout is true for the languages that IsRightToLeftLanguage
/// names.
///
/// Failure: an exhausted heap during loading leaves the table short; those ids
/// read as the empty text.
/// Threads: no lock. Set up once (the global Locale is built on first use, safely
/// from any thread); afterwards getString and the other getters are read-only
/// and may be called from any thread. Reloading needs the caller's exclusion.
#pragma once

#include <cstdint>

#include "qv/core/Array.h"
#include "qv/core/Export.h"
#include "qv/core/ResourceTable.h"
#include "qv/core/Singleton.h"
#include "qv/core/String.h"

namespace qv {

constexpr uint32_t kLanguageNameId = 1024; ///< libqv: the name of the table's language
constexpr uint16_t kLanguageListBlock = 15; ///< the program's string block whose languages are on offer

/// @copydoc Locale.h
struct SLocale {
    uint16_t language; ///< language id, such as 0x0407
    CString name;      ///< libqv's name for it, else its tag, else "0x0407"
    bool rightToLeft;  ///< laid out right to left
};

/// @copydoc Locale.h
class QV_API CLocale {
public:
    CLocale();
    ~CLocale();
    CLocale(CLocale const &) = delete;
    CLocale &operator=(CLocale const &) = delete;

    /// Adds a module whose texts replace those of the modules before it, and
    /// reloads the string table.
    void AddModule(HINSTANCE module);
    /// The locale id; setLocale takes the language from its low 16 bits and
    /// reloads the string table.
    ///@{
    uint32_t getLocale();
    void setLocale(uint32_t lcid);
    ///@}
    /// The language id; setLanguage puts it into the locale id's low 16 bits
    /// and reloads the string table.
    ///@{
    uint16_t getLanguage();
    void setLanguage(uint16_t language);
    ///@}
    bool getRightToLeftLayout(); ///< true for a right-to-left language
    /// One past the highest id the loaded blocks cover (16 per block); 0 when
    /// nothing is loaded.
    unsigned getLastID();
    /// The text of id, or the empty text; never null. Valid until the next
    /// reload or destruction; the caller must not free or write it.
    char16_t *getString(unsigned id);
    /// The languages on offer, as listed at construction.
    TArray<SLocale> const &getLanguages() const;

    /// The resource of module in the current language (with FindResource's
    /// fallback), or null.
    HRSRC FindResourceW(HINSTANCE module, char16_t const *type, char16_t const *name);
    /// The language of the resource FindResourceW finds, or 0 if none.
    uint16_t GetResourceLangID(HINSTANCE module, char16_t const *type, char16_t const *name);

private:
    void LoadStringTable();
    void LoadLanguageList();

    TArray<HINSTANCE> modules;
    uint32_t lcid = 0;
    uint16_t language = 0;
    TSimpleArray<char16_t> strings; ///< every text, each terminated; unit 0 is the empty text
    TSimpleArray<char16_t *> table; ///< id to text
    uint32_t lastID = 0;
    TArray<SLocale> languages;
    bool rightToLeft = false;
};

/// The process's locale, built on first use; one instance inside libqv.so.
///@{
extern template class TSingletonPtr<CLocale>;
extern QV_API TSingletonPtr<CLocale> Locale; ///< the process's CLocale, built on first use
///@}

} // namespace qv
