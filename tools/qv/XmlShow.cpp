// qv xml show FILE: the node tree exactly as the library's XML reader builds
// it: elements, processing instructions and comments with their attributes
// and values, entities decoded.
#include <cstdio>

#include "Commands.h"
#include "TreeFiles.h"
#include "qv/formats/tagged/XMLFile.h"

namespace qvtool {

namespace {

using CNode = qv::CXMLFile::CNode;

char const *Kind(CNode const *n) {
    switch (n->type) {
    case CNode::PROCESSING_INSTRUCTION: return "instruction";
    case CNode::TEXT: return "text";
    case CNode::COMMENT: return "comment";
    default: return "element";
    }
}

bool Print(CNode *n, uint32_t depth) {
    std::printf("%s%s %s", Indent(depth).c_str(), Kind(n), n->name.GetUTF8());
    for (uint32_t i = 0; i < n->attributes.nItems(); ++i)
        std::printf(" %s=\"%s\"", n->attributes[i].name.GetUTF8(), n->attributes[i].value.GetUTF8());
    if (!n->value.IsEmpty()) std::printf(" value \"%s\"", n->value.GetUTF8());
    std::printf("\n");
    return true;
}

} // namespace

int RunXmlShow(char *const *args) {
    qv::CMemFile input;
    if (!ReadInput(args[0], input)) return kExitFailed;
    qv::CXMLFile xml;
    if (!xml.Load(&input))
        return Fail("%s is not XML the library reads (unclosed or mismatched tag, bare '>', CDATA or DOCTYPE)",
                    args[0]);
    xml.Root();
    for (CNode *top = xml.GetCurr(); top; top = top->next)
        qv::tree::Walk(top, Print, [](CNode *, uint32_t) { return true; });
    return 0;
}

} // namespace qvtool
