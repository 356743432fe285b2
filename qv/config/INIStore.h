/// @file
/// CINIStore: settings in an INI file, loaded and saved whole (see
/// qv/config/FileStore.h for the file forms and the atomic save).
///
/// The file is UTF-8 text. A line starting with '[' names the section: the text
/// behind '[' up to the last ']' (or the line's end). Any other non-empty line
/// holds a key and a value, the first two runs of characters other than '=',
/// tab, CR and LF: a space does not separate, a tab does, "a=b=c" gives the key
/// a and the value b, and a line without a value gives an empty one. The key
/// becomes "/section/key" with '\' taken as '/', so sections (and keys) may
/// hold paths with either slash. Lines are read up to 1,024 bytes: a longer
/// line is cut there and the rest of it skipped, so one over-long line never
/// stops the load. Bad UTF-8 reads as U+FFFD. The parser has no failure: any
/// line reads as something; Load(IFile*) is false only when a read fails.
///
/// Save writes the root's leaves first with no header, then "[path]\r\n" for
/// each entry, path being "/a/b" as MakePath forms it from the root's empty
/// name, with the entry's leaves as "name=value\r\n", then its sub-entries,
/// depth first in child order. Leaves always come before sub-entries: a leaf
/// written after a sub-entry's header would come back inside that sub-entry on
/// load, its own path lost. Save gives false, writing nothing, when the text
/// would not load back as the store: a line longer than Load reads (a long
/// value, a deep section path); a name or value holding '=', a tab, CR or LF;
/// a name that is empty, opens with '[' or holds '\'; a section path holding
/// CR, LF or '\'.
#pragma once

#include <string>

#include "qv/config/FileStore.h"

namespace qv {

/// @copydoc INIStore.h
class QV_API CINIStore : public CFileStore {
public:
    /// The file-name forms of CFileStore, kept visible beside the overrides.
    ///@{
    using CFileStore::Load;
    using CFileStore::Save;
    ///@}
    bool Load(IFile *file) override;
    bool Save(IFile *file) override;

private:
    struct SSection {
        CString text = CString(u"");
        int32_t node = -1; ///< its node once a key needed it
    };
    static bool IsPlainKey(char const *key, SSection const &section);
    void LoadLine(char *line, SSection &section);
    bool SaveNode(int32_t node, CString const &parentPath, std::string &text) const;
};

} // namespace qv
