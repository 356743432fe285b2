// Writing the XML file: tab indentation, CR LF line ends, entities; the text
// gathers in a buffer that goes out in large writes.
#include <string>

#include "qv/files/IFile.h"
#include "qv/filesystems/AtomicSave.h"
#include "qv/formats/tagged/XMLFile.h"
#include "qv/formats/tagged/XMLText.h"

namespace qv {

namespace {

using CNode = CXMLFile::CNode;

// Large writes: a save is one system call per mebibyte, not per node.
constexpr size_t kFlushSize = 1 << 20;

class Writer {
public:
    explicit Writer(IFile *file) : f(file) {}

    // One node and all below, the top one at depth.
    bool Node(CNode *top, uint32_t depth) {
        return tree::Walk(
            top, [&](CNode *n, uint32_t level) { return Enter(n, depth + level); },
            [&](CNode *n, uint32_t level) { return Leave(n, depth + level); });
    }

    bool Finish() { return Flush(); }

private:
    bool Enter(CNode *n, uint32_t depth) {
        bool instruction = n->type == CNode::PROCESSING_INSTRUCTION;
        out.append(depth, '\t');
        out += instruction ? "<?" : "<";
        xml::AppendEncoded(out, n->name, false);
        for (uint32_t i = 0; i < n->attributes.nItems(); ++i) {
            out += ' ';
            xml::AppendEncoded(out, n->attributes[i].name, false);
            out += "=\"";
            xml::AppendEncoded(out, n->attributes[i].value, true);
            out += '"';
        }
        if (!n->firstChild && n->value.IsEmpty()) {
            out += instruction ? " ?>\r\n" : " />\r\n";
            return out.size() < kFlushSize || Flush();
        }
        out += '>';
        if (!n->value.IsEmpty()) {
            if (n->firstChild) {
                out += "\r\n";
                out.append(depth, '\t');
            }
            xml::AppendEncoded(out, n->value, false);
        }
        if (n->firstChild) out += "\r\n";
        else EndTag(n);
        return out.size() < kFlushSize || Flush();
    }

    bool Leave(CNode *n, uint32_t depth) {
        if (!n->firstChild) return true;
        out.append(depth, '\t');
        EndTag(n);
        return out.size() < kFlushSize || Flush();
    }

    void EndTag(CNode *n) {
        out += "</";
        xml::AppendEncoded(out, n->name, false);
        out += ">\r\n";
    }

    bool Flush() {
        bool written = f->WriteBytes(out.data(), uint32_t(out.size()));
        out.clear();
        return written;
    }

    IFile *f;
    std::string out;
};

} // namespace

bool CXMLFile::CNode::Save(IFile *f, int depth) {
    if (!f) return false;
    Writer writer(f);
    return writer.Node(this, uint32_t(depth < 0 ? 0 : depth)) && writer.Finish();
}

bool CXMLFile::Save(IFile *f) {
    if (!f) return false;
    Writer writer(f);
    for (CNode *n = cursor.root; n; n = n->next)
        if (!writer.Node(n, 0)) return false;
    return writer.Finish();
}

bool CXMLFile::Save(IFileSystem *fs, char16_t const *path) {
    return SaveAtomically(fs, path, [&](IFile &f) { return Save(&f); });
}

bool CXMLFile::Save(char16_t const *path) {
    return Save(nullptr, path);
}

} // namespace qv
