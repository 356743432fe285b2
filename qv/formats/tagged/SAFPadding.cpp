// Padding lines reserve room in a SAF header so that tags can be added or
// removed without moving the data segment. Existing readers skip them by their
// first word; the texts are fixed so that headers come out byte for byte alike.
#include "qv/formats/tagged/SAFLayout.h"

namespace qv::saf {

namespace {

constexpr char kPrefix[] = "saf_padding ";
constexpr uint32_t kPrefixSize = sizeof(kPrefix) - 1;
constexpr uint32_t kTextSize = 26;
constexpr uint32_t kLineSize = kPrefixSize + kTextSize + 2; // 40
constexpr uint32_t kLineOverhead = kPrefixSize + 2;         // 14
constexpr char const *kTexts[] = {
    "The pad tag is used to    ", "reserve space for newly   ", "added tags which limits   ",
    "the need for file rewrites", "and improves performance  ",
};
constexpr uint32_t kTextCount = sizeof(kTexts) / sizeof(kTexts[0]);

void AppendLine(std::string &out, uint32_t index, uint32_t textBytes, uint32_t blanks) {
    out.append(kPrefix, kPrefixSize);
    out.append(kTexts[index % kTextCount], textBytes);
    out.append(blanks, ' ');
    out.append("\r\n", 2);
}

} // namespace

void AppendPadding(std::string &out, uint32_t bytes) {
    uint32_t fullLines = bytes / kLineSize;
    uint32_t rest = bytes % kLineSize;
    bool shortLine = rest > kLineOverhead;
    for (uint32_t i = 0; i < fullLines; ++i) {
        bool last = i + 1 == fullLines;
        AppendLine(out, i, kTextSize, last && !shortLine ? rest : 0);
    }
    if (shortLine) AppendLine(out, fullLines, rest - kLineOverhead, 0);
}

} // namespace qv::saf
