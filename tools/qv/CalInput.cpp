// Reading the points and counts files of `qv cal`.
#include "CalInput.h"

#include <cctype>
#include <cmath>
#include <cstring>
#include <fstream>

#include "qv/core/WideChar.h"

namespace qvtool {

namespace {

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

// A whole field as a number, without regard to the process locale.
bool Number(std::string const &field, double &value) {
    char const *end = nullptr;
    value = qv::c_strtod(field.c_str(), &end);
    return !field.empty() && end && *end == '\0';
}

bool Integer(std::string const &field, int &value) {
    double number = 0;
    if (!Number(field, number) || number != std::floor(number) || std::fabs(number) > 1e6) return false;
    value = int(number);
    return true;
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

std::string Where(char const *path, int line) {
    return std::string(path) + ":" + std::to_string(line) + ": ";
}

struct SSetting {
    std::vector<std::string> fields;
    int line;
};

bool ReachPage(qv::CRCalFile &cal, int page) {
    if (page < 0 || page > 3) return false;
    while (cal.Pages.getCount() <= page)
        if (cal.Pages.Add() < 0) return false;
    return true;
}

bool AddPoint(qv::CRCalFile &cal, std::vector<std::string> const &f) {
    int page = 0, enabled = 0;
    double t = 0, e = 0, counts = 0, rt = 0, re = 0, rr = 0;
    qv::EReflectedRadianceType type = qv::RRT_None;
    if (f.size() != 9 || !Integer(f[0], page) || !Number(f[1], t) || !Number(f[2], e) || !Number(f[3], counts) ||
        !ReflectedType(f[4], type) || !Number(f[5], rt) || !Number(f[6], re) || !Number(f[7], rr) ||
        !Integer(f[8], enabled) || !ReachPage(cal, page))
        return false;
    int at = cal.Pages[page].Points.Add(t, e, counts, enabled != 0);
    qv::CCalPoint point = cal.Pages[page].Points[at];
    point.setReflectedTemperature(rt);
    point.setReflectedEmissivity(re);
    point.setReflectedRadiance(rr);
    point.setReflectedRadianceType(type);
    return at >= 0;
}

bool ApplySetting(qv::CRCalFile &cal, std::vector<std::string> const &f) {
    int page = 0, order = 0;
    if (f.size() < 2 || !Integer(f[1], page) || !ReachPage(cal, page)) return false;
    qv::CCalPage target = cal.Pages[page];
    if (f[0] == "order" && f.size() == 3 && Integer(f[2], order)) return target.setPolyOrder(order), true;
    if (f[0] == "temporder" && f.size() == 3 && Integer(f[2], order)) return target.setTempPolyOrder(order), true;
    double start = 0, end = 0, step = 0;
    if (f[0] != "lookup" || f.size() != 5 || !Number(f[2], start) || !Number(f[3], end) || !Number(f[4], step))
        return false;
    target.Lookup.setStart(start);
    target.Lookup.setEnd(end);
    target.Lookup.setDelta(step);
    return true;
}

} // namespace

bool LoadCalPoints(char const *path, qv::CRCalFile &cal, std::string &error) {
    std::ifstream in(path);
    if (!in) return error = std::string("cannot open ") + path, false;
    // The lookups are built once at the end, not after every setting.
    cal.LookupUpdates = false;
    std::vector<SSetting> settings;
    int number = 0;
    for (std::string line; std::getline(in, line);) {
        ++number;
        if (Skipped(line)) continue;
        std::vector<std::string> fields = SplitFields(line);
        bool word = std::isalpha(static_cast<unsigned char>(fields[0][0]));
        if (word && (fields[0] == "order" || fields[0] == "temporder" || fields[0] == "lookup")) {
            settings.push_back({fields, number});
            continue;
        }
        if (word) continue; // the header
        if (!AddPoint(cal, fields)) return error = Where(path, number) + "not a point (or page beyond 3)", false;
    }
    for (SSetting const &s : settings)
        if (!ApplySetting(cal, s.fields)) return error = Where(path, s.line) + "not a setting", false;
    cal.LookupUpdates = true;
    cal.UpdateCalPageLookup(-1);
    return true;
}

bool LoadCounts(char const *text, std::vector<SCountsRow> &rows, std::string &error) {
    std::vector<std::string> list = SplitFields(text);
    bool numbers = true;
    for (std::string const &field : list) {
        double value = 0;
        numbers = numbers && Number(field, value);
        if (numbers) rows.push_back({-1, value, NAN});
    }
    if (numbers) return true;
    rows.clear();
    std::ifstream in(text);
    if (!in) return error = std::string("cannot open ") + text + " (nor is it a list of numbers)", false;
    int number = 0;
    for (std::string line; std::getline(in, line);) {
        ++number;
        if (Skipped(line)) continue;
        std::vector<std::string> f = SplitFields(line);
        if (std::isalpha(static_cast<unsigned char>(f[0][0]))) continue; // the header
        SCountsRow row{0, 0, NAN};
        if (f.size() < 2 || f.size() > 3 || !Integer(f[0], row.page) || !Number(f[1], row.counts) ||
            (f.size() == 3 && !Number(f[2], row.truth)))
            return error = Where(text, number) + "expected page,counts[,truth]", false;
        rows.push_back(row);
    }
    return true;
}

} // namespace qvtool
