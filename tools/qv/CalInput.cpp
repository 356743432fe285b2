// Reading and checking the points and counts of `qv cal`.
#include "CalInput.h"

#include <cctype>
#include <cmath>
#include <cstring>
#include <set>
#include <vector>

#include "CurveInput.h"
#include "qv/core/WideChar.h"

namespace qvtool {

namespace {

using CAL_POINT = qv::CRCalFile::CAL_POINT;

std::vector<std::string> SplitFields(std::string const &line) {
    std::vector<std::string> fields;
    size_t start = 0;
    for (;;) {
        size_t comma = line.find(',', start);
        std::string field = line.substr(start, comma == std::string::npos ? std::string::npos : comma - start);
        size_t first = field.find_first_not_of(" \t\r"), last = field.find_last_not_of(" \t\r");
        fields.push_back(first == std::string::npos ? "" : field.substr(first, last - first + 1));
        if (comma == std::string::npos) return fields;
        start = comma + 1;
    }
}

bool Integer(std::string const &field, int &value) {
    double number = 0;
    if (!FiniteNumber(field, number) || number != std::floor(number) || std::fabs(number) > 1e6) return false;
    value = int(number);
    return true;
}

bool Within(std::string const &field, double low, double high, double &value) {
    return FiniteNumber(field, value) && value >= low && value <= high;
}

bool ReflectedType(std::string const &field, qv::EReflectedRadianceType &type) {
    static char const *const names[] = {"none", "radiance", "temperature"};
    for (int i = 0; i < 3; ++i)
        if (field == names[i] || field == std::to_string(i)) {
            type = qv::EReflectedRadianceType(i);
            return true;
        }
    return false;
}

bool Skipped(std::string const &line) {
    size_t first = line.find_first_not_of(" \t\r");
    return first == std::string::npos || line[first] == '#';
}

bool StartsWithLetter(std::vector<std::string> const &fields) {
    return std::isalpha(static_cast<unsigned char>(fields[0][0]));
}

bool IsHeader(std::vector<std::string> const &fields) {
    return fields[0] == "page";
}

std::string Where(std::string const &name, int line) {
    return name + ":" + std::to_string(line) + ": ";
}

// Each field of a point with its rule, checked in turn.
bool ParsePoint(std::vector<std::string> const &f, int &page, CAL_POINT &point, std::string &why) {
    if (f.size() != 9) return why = "a point has 9 fields, this line " + std::to_string(f.size()), false;
    int enabled = 0;
    if (!Integer(f[0], page) || page < 0 || page > 3) return why = "the page must be 0 to 3", false;
    if (!Within(f[1], kMinCelsius, kMaxCelsius, point.Temperature))
        return why = "the temperature must be a number from -273.15 to 1000000", false;
    if (!Within(f[2], 0, 1, point.Emissivity)) return why = "the emissivity must be a number from 0 to 1", false;
    if (!FiniteNumber(f[3], point.Measurement)) return why = "the counts must be a finite number", false;
    if (!ReflectedType(f[4], point.ReflectedType))
        return why = "reflected must be none, radiance or temperature", false;
    if (!Within(f[5], kMinCelsius, kMaxCelsius, point.ReflectedTemperature))
        return why = "the reflected temperature must be a number from -273.15 to 1000000", false;
    if (!Within(f[6], 0, 1, point.ReflectedEmissivity))
        return why = "the reflected emissivity must be a number from 0 to 1", false;
    if (!Within(f[7], 0, HUGE_VAL, point.ReflectedRadiance))
        return why = "the reflected radiance must be a finite number of 0 or more", false;
    if (!Integer(f[8], enabled) || (enabled != 0 && enabled != 1)) return why = "enabled must be 0 or 1", false;
    point.Enabled = enabled == 1;
    return true;
}

struct SSetting {
    std::vector<std::string> fields;
    int page;
    int line;
};

bool ParseSetting(std::vector<std::string> const &f, SSetting &setting, std::string &why) {
    bool known = f[0] == "order" || f[0] == "temporder" || f[0] == "lookup";
    if (!known) return why = "unknown setting '" + f[0] + "' (the settings are order, temporder and lookup)", false;
    size_t wanted = f[0] == "lookup" ? 5 : 3;
    if (f.size() != wanted) return why = f[0] + " takes " + (wanted == 5 ? "PAGE,START,END,STEP" : "PAGE,N"), false;
    if (!Integer(f[1], setting.page) || setting.page < 0 || setting.page > 3)
        return why = "the page must be 0 to 3", false;
    setting.fields = f;
    return true;
}

// The points of each page and the settings, as read.
struct SPointsFile {
    std::vector<CAL_POINT> pages[4];
    std::vector<SSetting> settings;
    int highestPage = -1;
};

bool ReadPointsFile(std::string const &name, std::string const &text, SPointsFile &file, std::string &error) {
    bool dataSeen = false;
    int number = 0;
    for (size_t start = 0; start < text.size(); ++number) {
        size_t end = text.find('\n', start);
        std::string line = text.substr(start, end == std::string::npos ? std::string::npos : end - start);
        start = end == std::string::npos ? text.size() : end + 1;
        if (Skipped(line)) continue;
        std::vector<std::string> fields = SplitFields(line);
        std::string why;
        bool header = !dataSeen && IsHeader(fields);
        dataSeen = true;
        if (header) continue;
        int page = 0;
        CAL_POINT point;
        SSetting setting{{}, 0, number + 1};
        if (StartsWithLetter(fields) ? !ParseSetting(fields, setting, why) : !ParsePoint(fields, page, point, why))
            return error = Where(name, number + 1) + why, false;
        if (StartsWithLetter(fields)) {
            file.settings.push_back(setting);
            page = setting.page;
        } else {
            file.pages[page].push_back(point);
        }
        file.highestPage = std::max(file.highestPage, page);
    }
    if (file.highestPage < 0) return error = name + " holds no points", false;
    for (int page = 0; page <= file.highestPage; ++page)
        if (file.pages[page].empty()) return error = name + ": page " + std::to_string(page) + " has no points", false;
    return true;
}

// How many different counts and temperatures the enabled points have.
void CountDistinct(std::vector<CAL_POINT> const &points, size_t &counts, size_t &temperatures) {
    std::set<double> c, t;
    for (CAL_POINT const &p : points)
        if (p.Enabled) {
            c.insert(p.Measurement);
            t.insert(p.Temperature);
        }
    counts = c.size();
    temperatures = t.size();
}

std::string PageName(int page) {
    return "page " + std::to_string(page);
}

bool ApplySetting(qv::CRCalFile &cal, SPointsFile const &file, std::string const &name, SSetting const &s,
                  std::string &error) {
    qv::CCalPage page = cal.Pages[s.page];
    std::vector<std::string> const &f = s.fields;
    int order = 0;
    if (f[0] == "order") {
        size_t counts = 0, temperatures = 0;
        CountDistinct(file.pages[s.page], counts, temperatures);
        if (!Integer(f[2], order) || order < 1)
            return error = Where(name, s.line) + "the order must be a whole number of 1 or more", false;
        if (size_t(order) + 1 > counts)
            return error = Where(name, s.line) + "a fit of order " + f[2] + " needs " + std::to_string(order + 1) +
                           " enabled points with different counts; " + PageName(s.page) + " has " +
                           std::to_string(counts),
                   false;
        page.setPolyOrder(order);
        return true;
    }
    if (f[0] == "temporder") {
        if (!Integer(f[2], order) || order < 1 || order > 6)
            return error = Where(name, s.line) + "temporder must be a whole number from 1 to 6", false;
        page.setTempPolyOrder(order);
        return true;
    }
    double start = 0, end = 0, step = 0;
    if (!Within(f[2], kMinCelsius, kMaxCelsius, start) || !Within(f[3], kMinCelsius, kMaxCelsius, end) || end <= start)
        return error = Where(name, s.line) + "the lookup needs START below END, both from -273.15 to 1000000", false;
    if (!FiniteNumber(f[4], step) || step <= 0 || (end - start) / step > kMaxLookupEntries)
        return error = Where(name, s.line) + "the lookup STEP must be above 0 and make at most 100000 entries", false;
    page.Lookup.setStart(start);
    page.Lookup.setEnd(end);
    page.Lookup.setDelta(step);
    return true;
}

// What a page's default order 1 needs as much as any: two enabled points at
// different counts and temperatures (one point, or all alike, fits nothing).
bool CheckFitPoints(std::vector<CAL_POINT> const &points, int page, int order, std::string const &name,
                    std::string &error) {
    size_t counts = 0, temperatures = 0;
    CountDistinct(points, counts, temperatures);
    if (temperatures < 2)
        return error = name + ": " + PageName(page) +
                       " needs enabled points at 2 or more different temperatures; it has " +
                       std::to_string(temperatures),
               false;
    if (counts < size_t(order) + 1)
        return error = name + ": the fit of " + PageName(page) + " (order " + std::to_string(order) + ") needs " +
                       std::to_string(order + 1) + " enabled points with different counts; it has " +
                       std::to_string(counts),
               false;
    return true;
}

} // namespace

bool LoadCalPoints(char const *path, qv::CRCalFile &cal, std::string &error) {
    std::string text, name = InputName(path);
    SPointsFile file;
    if (!ReadTextInput(path, text, error) || !ReadPointsFile(name, text, file, error)) return false;
    // The lookups are built once at the end, not after every setting.
    cal.LookupUpdates = false;
    for (int page = 0; page <= file.highestPage; ++page) {
        qv::TArray<CAL_POINT> points;
        if (cal.Pages.Add() != page || !points.SetSize(uint32_t(file.pages[page].size())))
            return error = "out of memory", false;
        for (size_t i = 0; i < file.pages[page].size(); ++i)
            points[uint32_t(i)] = file.pages[page][i];
        if (!cal.Pages[page].Points.AddAll(points)) return error = "out of memory", false;
    }
    for (SSetting const &s : file.settings)
        if (!ApplySetting(cal, file, name, s, error)) return false;
    for (int page = 0; page <= file.highestPage; ++page) {
        if (!CheckFitPoints(file.pages[page], page, cal.Pages[page].getPolyOrder(), name, error)) return false;
        cal.Pages[page].Range.setAuto(true); // AddAll leaves the range, as Add does
    }
    cal.LookupUpdates = true;
    cal.UpdateCalPageLookup(-1);
    return true;
}

bool CCountsSource::Open(char const *text, std::string &error) {
    std::vector<std::string> fields = SplitFields(text);
    bool numbers = true;
    for (std::string const &field : fields) {
        char const *end = nullptr;
        double value = qv::c_strtod(field.c_str(), &end);
        numbers = numbers && !field.empty() && *end == '\0';
        if (numbers) list_.push_back({-1, value, NAN});
    }
    name_ = numbers ? "the counts list" : InputName(text);
    for (SCountsRow const &row : list_)
        if (numbers && !std::isfinite(row.counts))
            return error = "the counts list holds a number that is not finite", false;
    if (numbers) return true;
    list_.clear();
    lines_ = std::make_unique<CLineReader>();
    return lines_->Open(text, error);
}

bool CCountsSource::Next(SCountsRow &row, std::string &error) {
    error.clear();
    if (!lines_) {
        if (next_ == list_.size()) return false;
        row = list_[next_++];
        return true;
    }
    for (std::string line; lines_->Next(line, error);) {
        if (Skipped(line)) continue;
        std::vector<std::string> f = SplitFields(line);
        bool header = !dataSeen_ && IsHeader(f);
        dataSeen_ = true;
        if (header) continue;
        row = {0, 0, NAN};
        if (f.size() < 2 || f.size() > 3 || !Integer(f[0], row.page) || row.page < 0 || row.page > 3 ||
            !FiniteNumber(f[1], row.counts) || (f.size() == 3 && !Within(f[2], kMinCelsius, kMaxCelsius, row.truth)))
            return error = Where(name_, lines_->LineNumber()) +
                           "expected page,counts[,truth]: a page of 0 to 3, finite counts and a truth in degrees "
                           "Celsius from -273.15 up",
                   false;
        return true;
    }
    return false;
}

} // namespace qvtool
