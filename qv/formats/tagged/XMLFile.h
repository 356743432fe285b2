/// @file
/// CXMLFile: the library's own small XML reader and writer, for its settings
/// and dictionary files. It reads bytes straight into a tree of CNode (no
/// namespaces, DTDs or CDATA) and writes the tree back with tab indentation
/// and CR LF line ends. Like CSBFile it has a cursor, the current node.
///
/// Reading (Load). A UTF-8 byte-order mark is skipped. A file holds one or
/// more top-level nodes (elements, processing instructions such as the
/// declaration, comments); all become top-level nodes in order. Element and
/// attribute names and values are UTF-8 (bad bytes become U+FFFD). Only seven
/// entities are decoded, without regard to case: &quot; &apos; &lt; &gt;
/// &amp; &#13; &#10;. Any other "&..." run (up to its ';' or 15 bytes) stays as
/// written, numeric references included. Attribute values may be double or
/// single quoted, or bare (<a b=c>); duplicates are kept. Closing names compare
/// without regard to case. An element's text goes to its value with leading
/// white space dropped and trailing white space kept; text on both sides of
/// a child is joined. A bare '>' in text, a CDATA section, a DOCTYPE, a
/// mismatched or missing end tag all make the load fail. Files written
/// against this reader depend on these rules.
///
/// One departure from the bare byte walk: white space at the very end of the
/// file is accepted, so that a file ending in an empty element or a comment
/// and a line end (as this writer leaves it) reads back.
///
/// Hostile input. The whole remaining file is read into one buffer of its own
/// size (no allocation from any length field), the parser walks it with an
/// explicit stack (a file nested 100,000 deep loads, nothing recurses), and
/// every run stops at the end of the buffer. After a load the file stands at
/// its end.
///
/// Writing (Save). Each top-level node and all below it, at depth 0: depth
/// tabs, "<name" ("<?name" for a processing instruction), attributes as
/// ' name="value"', then " />\r\n" (" ?>\r\n") for a node without children
/// and value; otherwise ">", the value (on a line of its own, indented, when
/// there are children), children one level deeper, "</name>\r\n". & < > " '
/// are written as entities everywhere, CR and LF as &#13; &#10; in attribute
/// values only. No byte-order mark and no declaration of its own: a
/// declaration is written only if the tree holds it as a node. Comments and
/// text nodes are written as elements with an empty name (applications do not
/// save trees that hold them; existing files show this form). The text is
/// well-formed XML for trees of elements and processing instructions with
/// XML names and without control characters other than tab, CR and LF.
///
/// Round trips. A tree whose elements have either children or a value (not
/// both), with values that do not start with white space, reads back as the
/// same tree. A value beside children gains the line end and indentation
/// that follow it.
///
/// Saving by path writes a temporary file beside the target and renames it
/// over the target (qv/filesystems/AtomicSave.h); on a file system that cannot
/// rename the target is written directly.
///
/// Failures: Load and Save give false; a failed Load leaves an empty tree.
/// Save fails on a short write. No message is produced.
///
/// Ownership: the object owns its nodes; Insert and InsertChild take a node
/// made with new, Detatch hands one back to the caller, who deletes it.
///
/// Threads: no locks; one object belongs to one thread at a time.
#pragma once

#include <cstdint>

#include "qv/core/Array.h"
#include "qv/core/Export.h"
#include "qv/core/NameValuePair.h"
#include "qv/core/String.h"
#include "qv/formats/tagged/TreeCursor.h"

namespace qv {

class IFile;
class IFileSystem;

/// @copydoc XMLFile.h
class QV_API CXMLFile {
public:
    /// One attribute: name and value text.
    struct ATTRIB {
        CString name;  ///< compared without case
        CString value; ///< decoded text
    };

    /// The attributes of a node, in file order; names compare without case.
    class QV_API CAttribArray : public TArray<ATTRIB> {
    public:
        using TArray<ATTRIB>::operator[];
        using TArray<ATTRIB>::Remove;
        /// The value of the first attribute of that name; one with an empty
        /// value is appended if there is none.
        ///@{
        CString &operator[](char16_t const *name);
        bool Exists(char16_t const *name) const;
        bool Remove(char16_t const *name); ///< false if absent
        ///@}
        /// The index of the first of that name, or UINT32_MAX.
        uint32_t Find(char16_t const *name) const;
    };

    /// The parser's working state, shared by a whole load: the file's bytes,
    /// where the walk stands, and the line it is on (kept, not reported).
    struct QV_API SImportant {
        TSimpleArray<char> bytes; ///< the rest of the file, read at once
        int64_t origin = 0;    ///< the file position of bytes[0]
        uint32_t position = 0; ///< the next byte to read
        bool keepText = false; ///< copied from CXMLFile::keepText
        int32_t line = 1;      ///< counted from 1 at each line feed
        int32_t column = 1;    ///< kept for callers; the reader leaves it at 1
        bool loaded = false; ///< bytes hold the rest of the file
    };

    /// One node of the tree: an element, a processing instruction, a comment
    /// or (with keepText) a text node. The links are public so the tree
    /// cursor can walk them.
    class QV_API CNode {
    public:
        /// The kind of node.
        enum NODETYPE { ELEMENT = 0, PROCESSING_INSTRUCTION = 1, TEXT = 2, COMMENT = 3 };

        CNode *next = nullptr;       ///< the next sibling, or null
        CNode *prev = nullptr;       ///< the previous sibling, or null
        CNode *firstChild = nullptr; ///< the first child, or null
        CNode *lastChild = nullptr;  ///< the last child, or null
        CNode *parent = nullptr;     ///< null at the top level
        NODETYPE type = ELEMENT;     ///< the kind of node
        CString name;                ///< the element or instruction name
        CString value;               ///< the text of an element (see the top of this file)
        CAttribArray attributes;     ///< in file order

        CNode();
        /// A new unlinked node of the given kind (ELEMENT by default), name,
        /// value and attributes, added in the order given. A null text is
        /// stored as the empty text.
        ///@{
        explicit CNode(char16_t const *name);
        CNode(char16_t const *name, char16_t const *value);
        CNode(char16_t const *name, TArray<SNameValuePair> const &attributes);
        CNode(char16_t const *name, TArray<SNameValuePair> const &attributes, char16_t const *value);
        CNode(NODETYPE type, char16_t const *name);
        CNode(NODETYPE type, char16_t const *name, TArray<SNameValuePair> const &attributes);
        ///@}
        /// Deletes everything below (not the siblings); unlink it first if it
        /// is in a tree.
        ///@{
        ~CNode();
        CNode(CNode const &) = delete;
        CNode &operator=(CNode const &) = delete;
        ///@}

        /// The linked nodes. C++ gives a call through a null pointer no
        /// meaning, so the null-safe chains are the static forms below.
        ///@{
        CNode *Root(); ///< the head of the top-level list above this
        CNode *Parent() { return parent; }
        CNode *First(); ///< head of this node's sibling list
        CNode *Last();
        CNode *Next() { return next; }
        CNode *Prev() { return prev; }
        CNode *Child() { return firstChild; }
        CNode *FirstChild() { return firstChild; }
        CNode *LastChild() { return lastChild; }
        ///@}

        /// By name without case: from this node along next links; from the
        /// head of its list; from the next node; from the first child.
        ///@{
        CNode *Find(char16_t const *name);
        CNode *FindFirst(char16_t const *name);
        CNode *FindNext(char16_t const *name);
        CNode *FindChild(char16_t const *name);
        ///@}

        char16_t const *GetName() { return name.GetUTF16(); }   ///< the name text
        char16_t const *GetValue() { return value.GetUTF16(); } ///< the value text
        /// The attribute's value, or the empty text or the fallback.
        ///@{
        char16_t const *GetAttribute(char16_t const *name);
        char16_t const *GetAttribute(char16_t const *name, char16_t const *fallback);
        ///@}

        /// Null-safe forms for chains (CNode::Child(CNode::Find(n, u"a"))):
        /// a null node gives null, the empty text or the fallback.
        ///@{
        static CNode *Parent(CNode *n) { return n ? n->parent : nullptr; }
        static CNode *Next(CNode *n) { return n ? n->next : nullptr; }
        static CNode *Prev(CNode *n) { return n ? n->prev : nullptr; }
        static CNode *Child(CNode *n) { return n ? n->firstChild : nullptr; }
        static CNode *LastChild(CNode *n) { return n ? n->lastChild : nullptr; }
        static CNode *Find(CNode *n, char16_t const *name) { return n ? n->Find(name) : nullptr; }
        static CNode *FindChild(CNode *n, char16_t const *name) { return n ? n->FindChild(name) : nullptr; }
        static char16_t const *GetValue(CNode *n) { return n ? n->GetValue() : u""; }
        static char16_t const *GetAttribute(CNode *n, char16_t const *name, char16_t const *fallback = u"") {
            return n ? n->GetAttribute(name, fallback) : fallback;
        }
        ///@}

        bool HasChildren(); ///< whether there is a first child
        uint32_t NumChildren(); ///< the count of direct children
        uint32_t NumChildren(char16_t const *name); ///< of those, the ones of that name, without case
        /// Links node as the first or last child and takes ownership; false
        /// only for a null node.
        bool InsertChild(CNode *node, bool first);
        /// A deep copy of this node and all below, unlinked.
        CNode *Duplicate();

        /// Reads this node (and all below) from the state's bytes, which are
        /// taken from f's position on first use; f is left behind what was read.
        bool Load(IFile *f, SImportant &state);
        /// Writes this node and all below at the given indentation.
        bool Save(IFile *f, int depth);
    };

    CXMLFile() = default;
    ~CXMLFile() = default;
    CXMLFile(CXMLFile const &) = delete;
    CXMLFile &operator=(CXMLFile const &) = delete;

    /// Empties the tree, then reads the rest of f. False on a null f or bad
    /// input, leaving an empty tree.
    bool Load(IFile *f);
    bool Load(IFileSystem *fs, char16_t const *path); ///< opened must-exist, read, share read
    bool Load(char16_t const *path);                  ///< on FileSystem, the disk
    /// Writes every top-level node and all below at f's position; false on
    /// a null f or a short write.
    bool Save(IFile *f);
    bool Save(IFileSystem *fs, char16_t const *path); ///< temporary file and rename
    bool Save(char16_t const *path); ///< on FileSystem, the disk
    void Destroy(); ///< deletes every node; there is no current node after

    /// Cursor moves; see qv/formats/tagged/TreeCursor.h.
    ///@{
    bool Root();
    bool Parent();
    bool Child(bool allowEmpty);
    bool Next();
    bool Prev();
    bool First();
    bool Last();
    uint32_t NumPeers();
    static uint32_t NumPeers(CNode *node);
    bool HasChildren();
    bool IsValid(); ///< there is a current node
    bool Insert(CNode *node, bool before);
    bool InsertChild(CNode *node, bool first);
    bool Remove();
    CNode *Detatch(); ///< the name is spelled so; null at the empty position
    bool FindFirst(char16_t const *name);
    bool FindNext(char16_t const *name);
    bool FindFirstChild(char16_t const *name);
    CNode *GetCurr();
    void SetCurr(CNode *node);
    ///@}
    /// The current node, or a static empty node when there is none.
    ///@{
    CNode &Curr();
    char16_t const *GetValue();
    char16_t const *GetAttribute(char16_t const *name);
    char16_t const *GetAttribute(char16_t const *name, char16_t const *fallback);
    ///@}

    /// Off after construction: with it on, text also goes into child nodes
    /// of type TEXT. There is no setter; subclasses turn it on.
    bool keepText = false;

private:
    TTreeCursor<CNode> cursor;
};

} // namespace qv
