// Tag groups of a SAF header: group headers to the front, and each tag
// behind the header of its dictionary category, in dictionary order.
#include "qv/core/WideChar.h"
#include "qv/formats/tagged/SAFFile.h"
#include "qv/formats/tagged/TagFile.h"

namespace qv {

namespace {

constexpr int kGroups = 17; // categories 0..16; 17 marks comment lines
constexpr char16_t kGroup[] = u"group";
constexpr char16_t kGroupComment[] = u"groupcomment";

bool Named(SAF_TAG const &tag, char16_t const *name) {
    return _wcsicmp(tag.name.GetUTF16(), name) == 0;
}

// The group a "group" tag's value names, or -1.
int GroupOf(SAF_TAG const &tag) {
    for (int g = 0; g < kGroups; ++g)
        if (_wcsicmp(tag.value.GetUTF16(), CTagEntry::CategoryToStr(g)) == 0) return g;
    return -1;
}

// Where each group's tags begin and end (one past them), -1 while absent.
struct GroupRanges {
    int32_t first[kGroups];
    int32_t end[kGroups];

    GroupRanges() {
        for (int g = 0; g < kGroups; ++g) first[g] = end[g] = -1;
    }
    // A tag went in at the place of group g: later ranges move up by one.
    void Grew(int g) {
        int32_t const atFirst = first[g], atEnd = end[g];
        for (int k = 0; k < kGroups; ++k) {
            if (first[k] > atFirst) ++first[k];
            if (end[k] >= atEnd) ++end[k];
        }
    }
    int32_t LastEnd() const {
        int32_t last = 1;
        for (int g = 0; g < kGroups; ++g)
            if (end[g] > last) last = end[g];
        return last;
    }
};

// The first pass of both: group headers and their comments to the front.
// Returns the slot behind them; ranges (if given) learn where groups end.
uint32_t Bubble(TArray<SAF_TAG> &tags, GroupRanges *ranges) {
    uint32_t slot = 1;
    int current = -1;
    for (uint32_t i = 1; i + 1 < tags.nItems(); ++i) {
        if (Named(tags[i], kGroup)) {
            current = GroupOf(tags[i]);
            if (current < 0) continue;
            tags.Swap(i, slot);
            if (ranges) ranges->end[current] = int32_t(slot) + 1;
            ++slot;
        } else if (Named(tags[i], kGroupComment) && current >= 0) {
            tags.Swap(i, slot);
            if (ranges)
                for (int g = 0; g < kGroups; ++g)
                    if (ranges->end[g] >= ranges->end[current]) ++ranges->end[g];
            ++slot;
        }
    }
    return slot;
}

} // namespace

bool CSAFFile::BubbleGroups() {
    Bubble(tags, nullptr);
    return true;
}

bool CSAFFile::SortByGroups(bool addGroups) {
    GroupRanges ranges;
    uint32_t slot = Bubble(tags, &ranges);
    for (int g = 0; g < kGroups; ++g) ranges.first[g] = ranges.end[g];
    CTagFile const &dictionary = *tagFile;
    uint32_t comments = 0;
    for (uint32_t i = slot; i + 1 < tags.nItems(); ++i) {
        char16_t const *name = tags[i].name.GetUTF16();
        uint32_t index = 0;
        int category = dictionary.FindTag(name, index) ? dictionary.GetAt(index).GetCategory() : 0;
        if (category == CTagEntry::CAT_COMMENT) {
            ++comments; // comments go with the first real tag behind them
            continue;
        }
        int g = category >= 0 && category < kGroups ? category : 0;
        if (ranges.first[g] < 0) {
            if (!addGroups) {
                comments = 0;
                continue;
            }
            int32_t at = ranges.LastEnd();
            tags.Insert(SAF_TAG{CString(u"Group"), CString(CTagEntry::CategoryToStr(g))}, uint32_t(at));
            ranges.first[g] = ranges.end[g] = at + 1;
            ++i;
            name = tags[i].name.GetUTF16();
        }
        // In front of the first tag of the group that does not sort before it.
        uint32_t place = uint32_t(ranges.first[g]);
        for (uint32_t j = place; j < uint32_t(ranges.end[g]); ++j) {
            if (dictionary.IsComment(tags[j].name.GetUTF16())) continue;
            if (dictionary.CompareTags(name, tags[j].name.GetUTF16()) < 1) break;
            place = j + 1;
        }
        for (uint32_t k = i - comments; k < i; ++k) {
            tags.Swap(k, place++);
            ranges.Grew(g);
        }
        comments = 0;
        tags.Move(i, place);
        ranges.Grew(g);
    }
    return true;
}

} // namespace qv
