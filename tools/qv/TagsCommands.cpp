// qv tags show FILE: a tag dictionary in any of its forms (binary TAGF, SBF,
// XML), one entry a line. qv tags convert IN OUT: the dictionary in the form
// OUT's extension names: ".xml" XML, ".sbf" SBF, anything else (and "-")
// binary TAGF.
//
// qv tags show --json prints one object: {"file": FILE, "entries": [{"name",
// "description", "dataType", "category", "units", "writeMode", "location"
// (texts), "useNumericBounds" (bool), "lowBound", "highBound" (numbers),
// "textValuesMode" (text), "textValues": [texts]}, ...]}.
#include <cstdio>
#include <cstring>
#include <strings.h>

#include "Commands.h"
#include "Output.h"
#include "TreeFiles.h"
#include "qv/formats/tagged/TagFile.h"

namespace qvtool {

namespace {

bool LoadTags(char const *path, qv::CTagFile &tags) {
    qv::CMemFile input;
    if (!ReadInput(path, input)) return false;
    if (tags.Load(&input)) return true;
    Fail("%s is not a tag dictionary in any of its forms (TAGF, SBF or XML)", InputName(path).c_str());
    return false;
}

std::string Utf8(char16_t const *text) {
    return qv::CString(text ? text : u"").GetUTF8();
}

bool EndsWith(char const *path, char const *suffix) {
    size_t n = std::strlen(path), m = std::strlen(suffix);
    return n >= m && strcasecmp(path + n - m, suffix) == 0;
}

void PrintJson(char const *path, qv::CTagFile &tags) {
    using E = qv::CTagEntry;
    CJsonWriter json(stdout);
    json.BeginObject();
    json.String("file", path);
    json.BeginArray("entries");
    for (uint32_t i = 0; i < tags.nTagEntries(); ++i) {
        E &e = tags[i];
        bool use = false;
        double low = 0, high = 0;
        e.GetNumericBounds(use, low, high);
        json.BeginObject();
        json.String("name", Utf8(e.GetName()));
        json.String("description", Utf8(e.GetDescription()));
        json.String("dataType", Utf8(E::DataTypeToStr(e.GetDataType())));
        json.String("category", Utf8(E::CategoryToStr(e.GetCategory())));
        json.String("units", Utf8(E::UnitsToStr(e.GetUnits())));
        json.String("writeMode", Utf8(E::WriteModeToStr(e.GetWriteMode())));
        json.String("location", Utf8(E::LocationToStr(e.GetLocation())));
        json.Bool("useNumericBounds", use);
        json.Number("lowBound", low);
        json.Number("highBound", high);
        json.String("textValuesMode", Utf8(E::TextValuesModeToStr(e.GetTextValuesMode())));
        json.BeginArray("textValues");
        for (uint32_t t = 0; t < e.nTextValues(); ++t)
            json.String(nullptr, Utf8(e.GetTextValue(t)));
        json.EndArray();
        json.EndObject();
    }
    json.EndArray();
    json.EndObject();
}

} // namespace

int RunTagsShow(char *const *args) {
    qv::CTagFile tags;
    if (!LoadTags(args[0], tags)) return kExitFailed;
    if (GivenOptions().json) {
        PrintJson(args[0], tags);
        return 0;
    }
    using E = qv::CTagEntry;
    for (uint32_t i = 0; i < tags.nTagEntries(); ++i) {
        E &e = tags[i];
        bool use = false;
        double low = 0, high = 0;
        e.GetNumericBounds(use, low, high);
        std::printf("%s: type %s, category %s, units %s, write %s, location %s", Escaped(Utf8(e.GetName())).c_str(),
                    Utf8(E::DataTypeToStr(e.GetDataType())).c_str(), Utf8(E::CategoryToStr(e.GetCategory())).c_str(),
                    Utf8(E::UnitsToStr(e.GetUnits())).c_str(), Utf8(E::WriteModeToStr(e.GetWriteMode())).c_str(),
                    Utf8(E::LocationToStr(e.GetLocation())).c_str());
        if (use)
            std::printf(", bounds %s to %s", Utf8(qv::CString::FromFormat(u"%g", low)).c_str(),
                        Utf8(qv::CString::FromFormat(u"%g", high)).c_str());
        if (e.GetTextValuesMode() != E::TVM_DISABLED || e.nTextValues()) {
            std::printf(", texts (%s)", Utf8(E::TextValuesModeToStr(e.GetTextValuesMode())).c_str());
            for (uint32_t t = 0; t < e.nTextValues(); ++t)
                std::printf(" \"%s\"", Escaped(Utf8(e.GetTextValue(t))).c_str());
        }
        if (*e.GetDescription()) std::printf(": %s", Escaped(Utf8(e.GetDescription())).c_str());
        std::printf("\n");
    }
    std::printf("entries: %u\n", tags.nTagEntries());
    return 0;
}

int RunTagsConvert(char *const *args) {
    qv::CTagFile tags;
    if (!LoadTags(args[0], tags)) return kExitFailed;
    qv::CMemFile out;
    out.SetGrowthRate(0xFFFF);
    bool made = EndsWith(args[1], ".xml")   ? tags.SaveXML(&out)
                : EndsWith(args[1], ".sbf") ? tags.SaveSBF(&out)
                                            : tags.SaveBinary(&out);
    if (!made) return Fail("cannot build the dictionary's new form");
    return CopyToOutput(out, args[1]) ? 0 : kExitFailed;
}

} // namespace qvtool
