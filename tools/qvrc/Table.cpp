// Turning a parsed script into the module's table: string blocks, order,
// duplicates.
#include <algorithm>

#include "Script.h"

namespace qvrc {

namespace {

constexpr uint32_t kStringsPerBlock = 16;

void PutUnit(std::vector<unsigned char> &out, char16_t unit) {
    out.push_back(static_cast<unsigned char>(unit & 0xFF));
    out.push_back(static_cast<unsigned char>(unit >> 8));
}

// Block b holds ids (b - 1) * 16 .. b * 16 - 1: each a length and its units.
Resource MakeBlock(uint16_t language, uint32_t block, std::map<uint16_t, StringEntry> const &table) {
    Resource resource;
    resource.type.number = 6;
    resource.name.number = uint16_t(block);
    resource.language = language;
    resource.line = 0;
    for (uint32_t i = 0; i < kStringsPerBlock; ++i) {
        auto found = table.find(uint16_t((block - 1) * kStringsPerBlock + i));
        std::u16string const empty;
        std::u16string const &text = found == table.end() ? empty : found->second.text;
        if (found != table.end() && resource.line == 0) resource.line = found->second.line;
        PutUnit(resource.bytes, char16_t(text.size()));
        for (char16_t unit : text)
            PutUnit(resource.bytes, unit);
    }
    return resource;
}

char16_t Upper(char16_t c) {
    return c >= u'a' && c <= u'z' ? char16_t(c - 32) : c;
}

// Names before numbers; names by upper-cased units, numbers ascending.
int CompareIds(Id const &a, Id const &b) {
    if (a.IsNumeric() != b.IsNumeric()) return a.IsNumeric() ? 1 : -1;
    if (a.IsNumeric()) return int(a.number) - int(b.number);
    size_t n = std::min(a.text.size(), b.text.size());
    for (size_t i = 0; i < n; ++i)
        if (Upper(a.text[i]) != Upper(b.text[i])) return int(Upper(a.text[i])) - int(Upper(b.text[i]));
    return a.text.size() < b.text.size() ? -1 : a.text.size() > b.text.size() ? 1 : 0;
}

int CompareResources(Resource const &a, Resource const &b) {
    if (int c = CompareIds(a.type, b.type)) return c;
    if (int c = CompareIds(a.name, b.name)) return c;
    return int(a.language) - int(b.language);
}

} // namespace

void FinishTable(Script &script) {
    for (auto const &[language, table] : script.strings) {
        uint32_t previous = 0;
        for (auto const &[id, entry] : table) {
            uint32_t block = (uint32_t(id) >> 4) + 1;
            if (block != previous) script.resources.push_back(MakeBlock(language, block, table));
            previous = block;
        }
    }
    std::stable_sort(script.resources.begin(), script.resources.end(),
                     [](Resource const &a, Resource const &b) { return CompareResources(a, b) < 0; });
    for (size_t i = 1; i < script.resources.size(); ++i) {
        Resource const &first = script.resources[i - 1], &again = script.resources[i];
        if (CompareResources(first, again) == 0)
            throw ScriptError(std::max(first.line, again.line), "resource defined twice (other at line " +
                                                                    std::to_string(std::min(first.line, again.line)) +
                                                                    ")");
    }
}

} // namespace qvrc
