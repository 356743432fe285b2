// Reading the XML file: the whole rest of the file in one buffer, walked
// byte by byte with an explicit stack of open elements, so that neither the
// file's size nor its nesting can exhaust memory or the call stack.
#include <cstring>

#include "qv/core/WideChar.h"
#include "qv/files/IFile.h"
#include "qv/formats/tagged/XMLFile.h"
#include "qv/formats/tagged/XMLText.h"

namespace qv {

namespace {

using CNode = CXMLFile::CNode;

bool IsSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r'); // the C isspace set
}

// What reading a start tag found.
enum class Tag { Failed, Closed, Open };

class Parser {
public:
    explicit Parser(CXMLFile::SImportant &state)
        : s(state), data(state.bytes.GetData()), size(state.bytes.nItems()) {}

    bool Tree(CNode *top) {
        Tag tag = StartTag(top);
        if (tag != Tag::Open) return tag == Tag::Closed;
        TSimpleArray<CNode *> open;
        open.SetGrowthRate(0xFFFF);
        if (!open.Add(top)) return false;
        while (open.nItems()) {
            CNode *node = open[open.nItems() - 1];
            Text(node);
            SkipSpace();
            if (EndTag(node->name)) {
                SkipSpace();
                open.Remove(open.nItems() - 1);
                continue;
            }
            CNode *child = new CNode;
            tree::AppendChild(node, child);
            tag = StartTag(child);
            if (tag == Tag::Failed || (tag == Tag::Open && !open.Add(child))) return false;
        }
        return true;
    }

private:
    bool AtEnd() const { return s.position >= size; }
    char Peek(uint32_t ahead = 0) const { return s.position + ahead < size ? data[s.position + ahead] : '\0'; }

    void CountLines(uint32_t from, uint32_t to) {
        for (uint32_t i = from; i < to; ++i)
            if (data[i] == '\n') ++s.line;
    }

    void SkipSpace() {
        while (!AtEnd() && IsSpace(data[s.position])) {
            if (data[s.position] == '\n') ++s.line;
            ++s.position;
        }
    }

    // A run up to white space, '<', '>', '/' or delimiter (not consumed).
    // False only at the end of the data.
    bool Token(char delimiter, uint32_t &start, uint32_t &length) {
        if (AtEnd()) return false;
        start = s.position;
        while (!AtEnd()) {
            char c = data[s.position];
            if (IsSpace(c) || c == '<' || c == '>' || c == '/' || c == delimiter) break;
            ++s.position;
        }
        length = s.position - start;
        return true;
    }

    CString Decoded(uint32_t start, uint32_t length) const { return xml::Decode(data + start, length); }

    Tag StartTag(CNode *node) {
        SkipSpace();
        if (Peek() != '<' || AtEnd()) return Tag::Failed;
        ++s.position;
        if (Peek() == '?' && !AtEnd()) {
            node->type = CNode::PROCESSING_INSTRUCTION;
            ++s.position;
        } else if (Peek() == '!' && !AtEnd()) {
            ++s.position;
            return Comment(node) ? Tag::Closed : Tag::Failed;
        }
        SkipSpace();
        uint32_t start = 0, length = 0;
        if (!Token('>', start, length)) return Tag::Failed;
        node->name = Decoded(start, length);
        return Attributes(node);
    }

    Tag Attributes(CNode *node) {
        for (;;) {
            SkipSpace();
            if (AtEnd()) return Tag::Failed;
            char c = Peek();
            if (c == '>') {
                ++s.position;
                return Tag::Open;
            }
            if ((c == '/' || (c == '?' && node->type == CNode::PROCESSING_INSTRUCTION)) && Peek(1) == '>') {
                s.position += 2;
                return Tag::Closed;
            }
            if (!Attribute(node)) return Tag::Failed;
        }
    }

    bool Attribute(CNode *node) {
        uint32_t nameStart = 0, nameLength = 0, valueStart = 0, valueLength = 0;
        if (!Token('=', nameStart, nameLength)) return false;
        SkipSpace();
        if (AtEnd() || Peek() != '=') return false;
        ++s.position;
        SkipSpace();
        if (AtEnd()) return false;
        char quote = Peek();
        if (quote == '"' || quote == '\'') {
            valueStart = s.position + 1;
            void const *close = std::memchr(data + valueStart, quote, size - valueStart);
            if (!close) return false;
            valueLength = uint32_t(static_cast<char const *>(close) - (data + valueStart));
            CountLines(valueStart, valueStart + valueLength);
            s.position = valueStart + valueLength + 1;
        } else if (!Token('>', valueStart, valueLength)) { // a bare value is accepted deliberately
            return false;
        }
        return node->attributes.Add(
            CXMLFile::ATTRIB{Decoded(nameStart, nameLength), Decoded(valueStart, valueLength)});
    }

    // "<!" was read: "--", then the body up to "-->".
    bool Comment(CNode *node) {
        node->type = CNode::COMMENT;
        if (Peek() != '-' || Peek(1) != '-') return false;
        s.position += 2;
        std::string body;
        int dashes = 0;
        while (!AtEnd()) {
            char c = data[s.position++];
            if (c == '-' && dashes < 2) {
                ++dashes;
                continue;
            }
            if (c == '>' && dashes == 2) {
                node->value = xml::Decode(body.data(), uint32_t(body.size()));
                return true;
            }
            if (c == '-') { // a third dash: the oldest held one is text
                body += '-';
                continue;
            }
            body.append(size_t(dashes), '-');
            dashes = 0;
            if (c == '\n') ++s.line;
            body += c;
        }
        return false;
    }

    // Text up to the next '<' or '>', leading white space dropped.
    void Text(CNode *node) {
        SkipSpace();
        uint32_t start = s.position;
        while (!AtEnd() && data[s.position] != '<' && data[s.position] != '>') ++s.position;
        if (s.position == start) return;
        CountLines(start, s.position);
        CString text = Decoded(start, s.position - start);
        if (node->value.IsEmpty()) node->value = text;
        else node->value += text;
        if (!s.keepText) return;
        CNode *textNode = new CNode(CNode::TEXT, u"");
        textNode->value = text;
        tree::AppendChild(node, textNode);
    }

    // "</name>" closing name (without case); otherwise nothing is consumed.
    bool EndTag(CString const &name) {
        uint32_t const position = s.position;
        int32_t const line = s.line;
        if (Peek() == '<' && Peek(1) == '/') {
            s.position += 2;
            uint32_t start = 0, length = 0;
            if (Token('>', start, length) && Peek() == '>' && !AtEnd() && SameName(start, length, name)) {
                ++s.position;
                return true;
            }
        }
        s.position = position;
        s.line = line;
        return false;
    }

    // Plain ASCII names compare in place; anything else decoded.
    bool SameName(uint32_t start, uint32_t length, CString const &name) const {
        char16_t const *wide = name.GetUTF16();
        bool plain = uint32_t(name.GetLength()) == length;
        for (uint32_t i = 0; plain && i < length; ++i) {
            unsigned char c = static_cast<unsigned char>(data[start + i]);
            plain = c < 0x80 && c != '&' && wide[i] < 0x80;
            if (plain && towlower(char16_t(c)) != towlower(wide[i])) return false;
        }
        if (plain) return true;
        return _wcsicmp(Decoded(start, length).GetUTF16(), wide) == 0;
    }

    CXMLFile::SImportant &s;
    char const *data;
    uint32_t size;
};

// The rest of f into the state, once: exactly the bytes the file still has.
bool TakeBytes(IFile *f, CXMLFile::SImportant &s) {
    if (s.loaded) return true;
    int64_t remaining = f->GetRemaining();
    if (remaining < 0 || remaining >= int64_t(UINT32_MAX)) return false;
    s.origin = f->GetPosition();
    if (!s.bytes.SetSize(uint32_t(remaining))) return false;
    if (!f->ReadBytes(s.bytes.GetData(), uint32_t(remaining))) return false;
    s.position = 0;
    s.loaded = true;
    return true;
}

bool OnlySpaceLeft(CXMLFile::SImportant const &s) {
    for (uint32_t i = s.position; i < s.bytes.nItems(); ++i)
        if (!IsSpace(s.bytes.GetAt(i))) return false;
    return true;
}

} // namespace

bool CXMLFile::CNode::Load(IFile *f, SImportant &state) {
    if (!f || !TakeBytes(f, state)) return false;
    bool loaded = Parser(state).Tree(this);
    f->SetPosition(state.origin + state.position);
    return loaded;
}

bool CXMLFile::Load(IFile *f) {
    Destroy();
    if (!f) return false;
    SImportant state;
    state.keepText = keepText;
    if (!TakeBytes(f, state)) return false;
    if (state.bytes.nItems() >= 3 && std::memcmp(state.bytes.GetData(), "\xEF\xBB\xBF", 3) == 0) state.position = 3;
    while (!OnlySpaceLeft(state)) {
        CNode *node = new CNode;
        if (!node->Load(f, state)) {
            delete node;
            Destroy();
            return false;
        }
        cursor.Insert(node, false);
    }
    f->SetPosition(state.origin + state.bytes.nItems());
    return true;
}

} // namespace qv
