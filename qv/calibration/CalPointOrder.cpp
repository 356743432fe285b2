// The order of a page's points: sorted by temperature.
//
// The sort is stable (TArray::Sort): points of equal temperature keep their
// relative order, so a point added at an existing temperature lands after the
// points already there, and re-sorting an unchanged page never moves a point.
// Files written from sorted pages are therefore deterministic.
#include "qv/calibration/RCalFile.h"

namespace qv {

namespace {

struct SORT_HELPER {
    double Temperature;
    int Index; // before the sort
};

int sortByTemp(SORT_HELPER const *a, SORT_HELPER const *b) {
    if (a->Temperature < b->Temperature) return -1;
    if (a->Temperature > b->Temperature) return 1;
    return 0;
}

} // namespace

int CRCalFile::SortCalPoints(int page, int point) {
    if (page == -1 && point == -1) {
        for (int p = 0; p < int(CalPages.GetSize()); ++p)
            SortCalPoints(p, -1);
        return 0;
    }
    CAL_PAGE *p = PageInRange(page);
    if (!p) return -1;
    uint32_t n = p->Points.GetSize();
    TArray<SORT_HELPER> helper;
    // Room for all at once: growing five at a time would make a large page
    // cost the square of its size.
    helper.SetCapacity(n);
    for (uint32_t i = 0; i < n; ++i)
        helper.Add(SORT_HELPER{p->Points.GetAt(i).Temperature, int(i)});
    helper.Sort(&sortByTemp);

    bool reordered = false;
    int found = point == -1 ? 0 : -1;
    for (uint32_t i = 0; i < helper.GetSize(); ++i) {
        int before = helper.GetAt(i).Index;
        if (before != int(i)) reordered = true;
        if (before == point) found = int(i);
    }
    if (reordered) {
        TArray<CAL_POINT> sorted;
        sorted.SetCapacity(n);
        for (uint32_t i = 0; i < helper.GetSize(); ++i)
            sorted.Add(p->Points.GetAt(uint32_t(helper.GetAt(i).Index)));
        p->Points = sorted;
        RaisePointsReordered(page);
    }
    return found;
}

void CRCalFile::RaisePointsReordered(int page) {
    PointsReordered.Fire(this, page);
}

} // namespace qv
