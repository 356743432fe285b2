// qv xml show FILE: the node tree exactly as the library's XML reader builds
// it: elements, processing instructions and comments with their attributes
// and values, entities decoded.
//
// --json prints one object: {"file": FILE, "nodes": [{"type": T, "name": N,
// "attributes": [{"name": N, "value": V}, ...], "value": V, "children": [...]},
// ...]}, T one of element, instruction, text, comment.
#include <cstdio>

#include "Commands.h"
#include "Output.h"
#include "TreeFiles.h"
#include "qv/formats/tagged/XMLFile.h"

namespace qvtool {

namespace {

using CNode = qv::CXMLFile::CNode;

char const *Kind(CNode const *n) {
    switch (n->type) {
    case CNode::PROCESSING_INSTRUCTION:
        return "instruction";
    case CNode::TEXT:
        return "text";
    case CNode::COMMENT:
        return "comment";
    default:
        return "element";
    }
}

bool Print(CNode *n, uint32_t depth) {
    std::printf("%s%s %s", Indent(depth).c_str(), Kind(n), Escaped(n->name.GetUTF8()).c_str());
    for (uint32_t i = 0; i < n->attributes.nItems(); ++i)
        std::printf(" %s=\"%s\"", Escaped(n->attributes[i].name.GetUTF8()).c_str(),
                    Escaped(n->attributes[i].value.GetUTF8()).c_str());
    if (!n->value.IsEmpty()) std::printf(" value \"%s\"", Escaped(n->value.GetUTF8()).c_str());
    std::printf("\n");
    return true;
}

// Nested objects written as the walk enters and leaves nodes: no recursion.
void PrintJson(char const *path, CNode *root) {
    CJsonWriter json(stdout);
    json.BeginObject();
    json.String("file", path);
    json.BeginArray("nodes");
    for (CNode *top = root; top; top = top->next)
        qv::tree::Walk(
            top,
            [&](CNode *n, uint32_t) {
                json.BeginObject();
                json.String("type", Kind(n));
                json.String("name", n->name.GetUTF8());
                json.BeginArray("attributes");
                for (uint32_t i = 0; i < n->attributes.nItems(); ++i) {
                    json.BeginObject();
                    json.String("name", n->attributes[i].name.GetUTF8());
                    json.String("value", n->attributes[i].value.GetUTF8());
                    json.EndObject();
                }
                json.EndArray();
                json.String("value", n->value.GetUTF8());
                json.BeginArray("children");
                return true;
            },
            [&](CNode *, uint32_t) {
                json.EndArray();
                json.EndObject();
                return true;
            });
    json.EndArray();
    json.EndObject();
}

} // namespace

int RunXmlShow(char *const *args) {
    qv::CMemFile input;
    if (!ReadInput(args[0], input)) return kExitFailed;
    qv::CXMLFile xml;
    if (!xml.Load(&input))
        return Fail("%s is not XML the library reads (unclosed or mismatched tag, bare '>', CDATA or DOCTYPE)",
                    InputName(args[0]).c_str());
    xml.Root();
    if (GivenOptions().json) {
        PrintJson(args[0], xml.GetCurr());
        return 0;
    }
    for (CNode *top = xml.GetCurr(); top; top = top->next)
        qv::tree::Walk(top, Print, [](CNode *, uint32_t) { return true; });
    return 0;
}

} // namespace qvtool
