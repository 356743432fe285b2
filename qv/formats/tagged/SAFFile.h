/// @file
/// CSAFFile: a SAF header (name and value text lines over a binary data
/// segment), kept in memory as an ordered list of tags.
///
/// File form, from byte 0: tag lines "name value\r\n" in UTF-8 (a tag without a
/// value keeps the blank), the first always HdSize; then padding lines that
/// begin "saf_padding "; then "DATA\r\n"; then the data segment up to the end of
/// the file. The class never holds the data segment. Its point is that the
/// header can grow or shrink on a multi-gigabyte file without moving the data:
/// Update consumes or regenerates the padding and moves the data (IFile::Insert
/// or Remove) only when the slack before it leaves 16..4096 bytes.
///
/// Tags. After New or Load the first tag is HdSize ("auto" in a new file,
/// "Auto" after a load) and the last is DATA with an empty value. Names compare
/// without regard to case; duplicates are legal and the first one is found.
///
/// What a tag may hold. SetTagValue and AddTag refuse (return false, change
/// nothing) what would not read back as the same header:
///   - a CR or LF in a name or value, or a blank in a name;
///   - a line longer than 510 bytes of UTF-8 before its CR LF (name, blank,
///     value): the reader takes lines of at most 511 bytes before the LF;
///   - a new tag named HdSize, DATA or saf_padding (the reader treats those
///     lines specially);
///   - an HdSize value other than "auto" (any case): a number there is read as
///     an older fixed-size header's size (see Load).
/// Leading and trailing blanks of a value are not kept by a load. The tag
/// returned by operator[](index) is the stored tag itself: what a caller
/// writes through it is not checked.
///
/// Load reads only the header: a line over 511 bytes, the end of the file or
/// 65536 lines end it as a DATA line would. A header that ends without a DATA
/// line gets a DATA tag, so that the last tag is always DATA and a rewrite never
/// drops a real tag. Older fixed-size headers (HdSize holding the header's size
/// in bytes, no DATA line) load with HdSize "Auto" and a DATA tag supplied.
/// Such a header ends where a line ends exactly at that byte count. Lines are
/// read whole, so a count that falls inside a line is passed over and the
/// reader goes on into the data up to a DATA line or one of the ends above
/// (the tags it finds there are kept: existing readers see the same). Then the
/// header did not end at its stated size, HeaderEndsAsStated() is false, and
/// Update refuses the file: its data position is not trustworthy, and
/// rewriting the header would overwrite image data.
///
/// Failures are reported by bool only; nothing throws on bad file content.
/// A failed Load keeps the tags read so far, with filename cleared.
///
/// By path (qv/formats/tagged/SAFFileSave.cpp). Load(fs, path) opens with
/// 0x212 and remembers the file and file system. Save(fs, path, pad) takes
/// one of three roads:
///   - a new file (no file name yet): the header alone, with 2048 bytes of
///     padding if pad is set, written to a temporary file beside path and
///     renamed over it;
///   - save as (path differs from the file name, compared exactly since disk
///     names are case-sensitive, or fs differs): the header, padded with 2048
///     bytes if the old file has data behind its header, then the old data
///     segment, all into a temporary file renamed over path; the old file is
///     only read;
///   - in place (all other cases): Update on the file itself, since only that
///     keeps a multi-gigabyte data segment where it is; Update's own rules
///     about failures hold (see there).
/// On a file system without rename the first two write path directly.
/// Save reports every failed write; after a failure the object is unchanged.
/// Tag groups (BubbleGroups, SortByGroups) arrange the header by the shared
/// dictionary (qv/formats/tagged/TagFile.h); safTest is the library's self
/// check of the padding rules (qv/formats/tagged/SAFSelfTest.h).
///
/// Ownership: the object owns its tags; fileSystem is not owned. Update works on
/// the caller's open IFile and leaves it open, positioned at the data segment.
///
/// Threads: a CSAFFile belongs to one thread at a time.
#pragma once

#include <cstdint>

#include "qv/core/Array.h"
#include "qv/core/Export.h"
#include "qv/core/String.h"

namespace qv {

class IFile;
class IFileSystem;
class CTagFile;
QV_API CTagFile &GetTagFile();

/// @copydoc SAFFile.h
struct SAF_TAG {
    CString name;  ///< the tag's name
    CString value; ///< its value text
};

/// @copydoc SAFFile.h
class QV_API CSAFFile {
public:
    /// A handle on a tag by name: the file and the name pointer, which is not
    /// copied and must outlive the handle. The tag need not exist.
    class QV_API CTagValue {
    public:
        /// A handle on the tag name of file; neither is copied or owned.
        CTagValue(CSAFFile *file, char16_t const *name);
        CTagValue(CTagValue const &other) = default; ///< the same file and name

        CTagValue &operator=(char16_t const *value); ///< SetTagValue (refusals ignored)
        CTagValue &operator=(int value);             ///< "%d"
        CTagValue &operator=(double value);          ///< "%e": 1.5 is "1.500000e+000"
        /// Copies the handle, not the value: existing callers depend on it.
        CTagValue &operator=(CTagValue const &other) = default;

        operator char16_t const *() const; ///< GetTagValue: null if absent
        operator int32_t() const;          ///< _wtol of the value, 0 if absent
        operator double() const;           ///< _wtof of the value, 0.0 if absent
        int32_t ToLong(int32_t fallback) const;  ///< _wtol of the value, fallback if absent
        double ToDouble(double fallback) const;  ///< _wtof of the value, fallback if absent
        bool Exists() const;                     ///< whether the tag is in the file

    private:
        CSAFFile *file;
        char16_t const *name;
    };

    CSAFFile(); ///< no tags at all until New or Load
    /// Copies every tag, the file name and the file system pointer (still
    /// not owned).
    ///@{
    CSAFFile(CSAFFile const &other) = default;
    CSAFFile &operator=(CSAFFile const &other) = default;
    ///@}
    ~CSAFFile() = default;

    /// Tags become exactly HdSize "auto" and DATA "". Without keepFile the
    /// file name, file system and data position are cleared too. True.
    bool New(bool keepFile);
    /// Reads the header from the start of f. False if f does not begin with
    /// "HdSize" (any case) or its first tag is not HdSize. False too if a read
    /// or seek of f fails before the header's end (IFile::GetLine's Failed):
    /// a part of a header never loads as the whole.
    bool Load(IFile *f);
    /// Rewrites the header at the start of f. dataPosition is the data
    /// segment's offset in f on entry (0 with an empty f: a new file) and on
    /// return. A new file gets 2048 bytes of padding if pad is set, none
    /// otherwise; an existing one keeps the data where it is while the slack
    /// stays within 16..4096 bytes, otherwise the data moves once so that 2048
    /// bytes of padding remain. f is left positioned at the data segment. The
    /// object's own data position and file name are not changed. False with
    /// no f or no tags, after a Load whose header did not end at its stated
    /// size (see HeaderEndsAsStated), or with a header too large (f untouched
    /// in all these). On a failure of f it is false too, dataPosition keeps its
    /// value, and f is left as IFile::Insert/Remove leave it: unchanged when
    /// the data could not move (a full disk among others); when the header
    /// write itself fails or falls short, the move is undone and the old
    /// header bytes put back, so that the file still says where its data is.
    /// Only if those writes fail as well is the file damaged.
    bool Update(IFile *f, uint32_t &dataPosition, bool pad) const;
    /// dataPosition = 0, then Update: whatever f holds becomes the data segment.
    bool SaveTo(IFile *f, uint32_t &dataPosition, bool pad) const;
    /// No file, no tags (not even the fixed two); the tag block is freed.
    void Destroy();
    /// Forgets the file (data position, file system, name); the tags stay.
    void DropData();
    /// target.New(false), then every tag between the fixed two is added to
    /// target in order. False at the first tag that target refuses.
    bool MakeDuplicate(CSAFFile &target) const;

    uint32_t nTags() const; ///< with the fixed two
    /// Extends the list as TArray::GetItem does. Index with an unsigned value
    /// (saf[0u]): a literal 0 would also match the by-name form.
    ///@{
    SAF_TAG &operator[](uint32_t i);
    CTagValue operator[](char16_t const *name);
    ///@}

    /// The first tag whose name equals name without regard to case.
    bool FindTag(char16_t const *name, uint32_t &index) const;
    /// Its value (never null for a present tag), or null if absent. Valid
    /// until the tag changes.
    char16_t const *GetTagValue(char16_t const *name) const;
    /// By index, extending the list as operator[] does. False if refused.
    bool SetTagValue(uint32_t i, char16_t const *value);
    /// Replaces the first match, otherwise adds a tag before the last (DATA).
    /// False with no tags at all, or if refused.
    bool SetTagValue(char16_t const *name, char16_t const *value);
    /// Always adds before the last tag, duplicates included. False with no
    /// tags, or if refused.
    bool AddTag(char16_t const *name, char16_t const *value);
    /// An index past the end is true without effect; an unknown name is false.
    ///@{
    bool RemoveTag(uint32_t i);
    bool RemoveTag(char16_t const *name);
    ///@}

    /// ---- By path ----
    /// fs null: the disk. True when the file loaded; then filename and
    /// fileSystem name it.
    ///@{
    bool Load(IFileSystem *fs, char16_t const *path);
    bool Load(char16_t const *path);
    ///@}
    /// See "By path" above. path null: the file name of the last load or
    /// save. Save() is Save(disk, null, true).
    ///@{
    bool Save(IFileSystem *fs, char16_t const *path, bool pad);
    bool Save(char16_t const *path, bool pad);
    bool Save();
    ///@}
    /// Whether the file begins with "HDSize" in any case (Load may still
    /// refuse it). False if it cannot be opened.
    static bool IsSAFFile(IFileSystem *fs, char16_t const *path);

    /// ---- Groups ----
    /// Brings the known "group" tags (values: the 17 group names of the
    /// dictionary's categories 0..16), each with the "groupcomment" tags that
    /// follow it, to the front of the header behind HdSize, in their order.
    /// True.
    bool BubbleGroups();
    /// As BubbleGroups, then moves every tag behind the header of its
    /// category's group in dictionary order (CTagFile::CompareTags), the
    /// comment tags (category 17) in front of it going along. Comments are
    /// exchanged into place rather than moved, an order existing files show.
    /// A tag whose group has no header stays where it is, or with addGroups
    /// gets a new "Group" tag behind the last group. True.
    bool SortByGroups(bool addGroups);
    /// The dictionary consulted: the shared one.
    CTagFile &GetTagFile() { return *tagFile; }

    uint32_t GetDataPosition() const; ///< offset of the data segment (the header's size)
    /// False after a Load of a fixed-size header whose HdSize fell inside a
    /// line (see Load); true otherwise.
    bool HeaderEndsAsStated() const;
    char16_t const *GetFilename() const; ///< never null
    IFileSystem *GetFileSystem() const;  ///< not owned; null until a load or save by path

protected:
    CString filename;        ///< empty for a file never saved or loaded
    IFileSystem *fileSystem; ///< not owned; null until a load or save by path
    uint32_t dataPosition;   ///< offset of the data segment (the header's size)
    TArray<SAF_TAG> tags;           ///< the header's tags, in header order
    bool headerEndsAsStated = true; ///< what HeaderEndsAsStated gives
    CTagFile *tagFile = &::qv::GetTagFile(); ///< not owned

private:
    bool FindTag(char16_t const *name, SAF_TAG *&tag);
    void ForgetFile();
};

} // namespace qv
