// Line checks of response and MODTRAN tables.
#include "CurveInput.h"

#include <cmath>
#include <cstring>
#include <vector>

#include "qv/core/WideChar.h"

namespace qvtool {

namespace {

constexpr size_t kLongestLine = 511; // what the library's readers take whole

bool IsBlank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

// The fields of a line split at any run of the separators.
std::vector<std::string> Words(std::string const &line, char const *separators) {
    std::vector<std::string> words;
    size_t at = 0;
    while ((at = line.find_first_not_of(separators, at)) != std::string::npos) {
        size_t end = line.find_first_of(separators, at);
        words.push_back(line.substr(at, end == std::string::npos ? std::string::npos : end - at));
        at = end;
    }
    return words;
}

std::string Trimmed(std::string const &line) {
    size_t first = 0, last = line.size();
    while (first < last && IsBlank(line[first]))
        ++first;
    while (last > first && IsBlank(line[last - 1]))
        --last;
    return line.substr(first, last - first);
}

// Calls visit(number, line) for each line as the library's readers see it:
// up to its first CR (they read a CR as the end of the text). Stops at false.
template <class Visit>
bool EachLine(std::string const &name, std::string const &text, std::string &error, Visit visit) {
    int number = 0;
    for (size_t start = 0; start < text.size();) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos) end = text.size();
        ++number;
        if (end - start > kLongestLine) // the LF does not count; a CR before it does
            return error = name + ":" + std::to_string(number) + ": the line is longer than 511 bytes", false;
        std::string line = text.substr(start, end - start);
        if (!visit(number, line.substr(0, line.find('\r')))) return false;
        start = end + 1;
    }
    return true;
}

std::string Quoted(std::string const &line) {
    return "'" + (line.size() > 60 ? line.substr(0, 60) + "..." : line) + "'";
}

bool NumbersFirst(std::vector<std::string> const &words, size_t count) {
    double value = 0;
    if (words.size() < count) return false;
    for (size_t i = 0; i < count; ++i)
        if (!FiniteNumber(words[i], value)) return false;
    return true;
}

} // namespace

bool FiniteNumber(std::string const &field, double &value) {
    char const *end = nullptr;
    value = qv::c_strtod(field.c_str(), &end);
    return !field.empty() && end && *end == '\0' && std::isfinite(value);
}

bool HasModtranHeading(std::string const &text) {
    std::string error;
    bool found = false;
    EachLine("", text, error, [&](int, std::string const &line) {
        found = strncasecmp(Trimmed(line).c_str(), "FREQ", 4) == 0;
        return !found;
    });
    return found;
}

bool CheckResponseText(std::string const &name, std::string const &text, std::string &error) {
    // A comment's # comes first on its line; a line of blanks ends the
    // library's reading, so it is no empty line here.
    return EachLine(name, text, error, [&](int number, std::string const &line) {
        if (line.empty() || line[0] == '#' || NumbersFirst(Words(Trimmed(line), ", \t"), 2)) return true;
        error = name + ":" + std::to_string(number) +
                ": expected two numbers (wavelength in microns, response), found " + Quoted(line) +
                "; comments begin with #";
        return false;
    });
}

bool CheckModtranText(std::string const &name, std::string const &text, std::string &error) {
    bool inTable = false, ended = false;
    bool ok = EachLine(name, text, error, [&](int number, std::string const &raw) {
        std::string line = Trimmed(raw);
        if (line.empty()) return true;
        if (!inTable) {
            inTable = strncasecmp(line.c_str(), "FREQ", 4) == 0;
            return true;
        }
        if (line.compare(0, 6, "-9999.") == 0) return !(ended = true); // the reader stops here
        if (NumbersFirst(Words(line, " \t"), 3)) return true;
        error = name + ":" + std::to_string(number) +
                ": expected a row of frequency, transmission and path radiance, found " + Quoted(line);
        return false;
    });
    if (!ok && !ended) return false;
    if (!inTable) return error = name + " is not a MODTRAN table: it has no FREQ heading line", false;
    if (!ended) return error = name + ": the MODTRAN table has no -9999. end line (is it cut short?)", false;
    return true;
}

std::string ResponseStatusMessage(std::string const &name, qv::EResponseStatus status) {
    if (status == qv::RS_TooFewPoints) return name + " holds fewer than 2 rows of wavelength and response";
    if (status == qv::RS_FileNotFound) return "cannot open " + name + ": No such file or directory";
    return name + " is not a usable response: wavelengths must be above 0 and rise or fall, responses must be 0 "
                  "or more with a peak above 0";
}

std::string AtmosphereStatusMessage(std::string const &name, qv::EResponseStatus status) {
    if (status == qv::RS_TooFewPoints) return name + " holds fewer than 2 rows of the MODTRAN table";
    if (status == qv::RS_FileNotFound) return "cannot open " + name + ": No such file or directory";
    return name + " is not a usable MODTRAN table: frequencies must be above 0 and rise or fall, transmissions "
                  "lie in 0..1 and path radiances are 0 or more";
}

} // namespace qvtool
