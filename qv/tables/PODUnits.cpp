#include "qv/tables/PODUnits.h"

#include "qv/core/WideChar.h"

namespace qv {

namespace {

constexpr char16_t const *kLongNames[kPODUnitCount] = {
    u"meters", u"milimeters", u"kilometers", u"inches", u"feet", u"miles", u"radians", u"degrees",
    u"miliseconds", u"seconds", u"minutes", u"hours", u"centimeters", u"miliradians", u"microradians"};
constexpr char16_t const *kShortNames[kPODUnitCount] = {
    u"m", u"mm", u"km", u"in", u"ft", u"mi", u"rad", u"deg", u"ms", u"sec", u"min", u"hrs", u"cm", u"mrad", u"umrad"};

// Rows are from-units, columns to-units; 0 between kinds.
constexpr double kFactors[kPODUnitCount][kPODUnitCount] = {
    // to: m, mm, km, in, ft, mi, rad, deg, ms, sec, min, hrs, cm, mrad, umrad
    {1, 1000, 0.001, 39.408, 3.284, 0.000622, 0, 0, 0, 0, 0, 0, 100, 0, 0},
    {0.001, 1, 1e-06, 0.039408, 0.003284, 6.22e-07, 0, 0, 0, 0, 0, 0, 0.1, 0, 0},
    {1000, 1000000, 1, 39408, 3284, 0.622, 0, 0, 0, 0, 0, 0, 100000, 0, 0},
    {0.02538, 25.38, 2.538e-05, 1, 0.0833, 1.57e-05, 0, 0, 0, 0, 0, 0, 2.538, 0, 0},
    {0.3048, 304.8, 0.0003048, 12, 1, 0.0001894, 0, 0, 0, 0, 0, 0, 30.48, 0, 0},
    {1609, 1609000, 1.609, 63360, 5280, 1, 0, 0, 0, 0, 0, 0, 160900, 0, 0},
    {0, 0, 0, 0, 0, 0, 1, 57.2957795, 0, 0, 0, 0, 0, 1000, 1000000},
    {0, 0, 0, 0, 0, 0, 0.01745329, 1, 0, 0, 0, 0, 0, 17.45329, 17453.29},
    {0, 0, 0, 0, 0, 0, 0, 0, 1, 1000, 60000, 3600000, 0, 0, 0},
    {0, 0, 0, 0, 0, 0, 0, 0, 0.001, 1, 60, 3600, 0, 0, 0},
    {0, 0, 0, 0, 0, 0, 0, 0, 1.667e-05, 0.01667, 1, 60, 0, 0, 0},
    {0, 0, 0, 0, 0, 0, 0, 0, 2.778e-07, 0.0002778, 0.01667, 1, 0, 0, 0},
    {0.01, 10, 1e-05, 0.39408, 0.03284, 6.22e-06, 0, 0, 0, 0, 0, 0, 1, 0, 0},
    {0, 0, 0, 0, 0, 0, 0.001, 0.05729577, 0, 0, 0, 0, 0, 1, 1000},
    {0, 0, 0, 0, 0, 0, 1e-06, 5.729577e-05, 0, 0, 0, 0, 0, 0.001, 1},
};

struct SPeriod {
    char16_t const *unit;
    double period;
};
constexpr SPeriod kPeriods[] = {
    {u"IRIG", 86400}, {u"radians", 6.283185307179}, {u"microradians", 6283185.307179}, {u"degrees", 360}};

int FindName(char16_t const *const (&names)[kPODUnitCount], char16_t const *unit) {
    for (int i = 0; i < kPODUnitCount; ++i)
        if (_wcsicmp(names[i], unit) == 0) return i;
    return -1;
}

} // namespace

int GetPODUnitIndex(char16_t const *unit) {
    if (!unit) return -1;
    int index = FindName(kLongNames, unit);
    return index >= 0 ? index : FindName(kShortNames, unit);
}

double GetPODUnitFactor(int fromIndex, int toIndex) {
    if (fromIndex < 0 || toIndex < 0 || fromIndex >= kPODUnitCount || toIndex >= kPODUnitCount) return 0;
    return kFactors[fromIndex][toIndex];
}

bool GetPODUnitPeriod(char16_t const *unit, double &period) {
    if (!unit) return false;
    for (SPeriod const &p : kPeriods) {
        if (_wcsicmp(p.unit, unit) == 0) {
            period = p.period;
            return true;
        }
    }
    return false;
}

} // namespace qv
