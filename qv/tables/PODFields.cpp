#include "qv/tables/PODFields.h"

namespace qv {

namespace {

bool IsSeparator(char c) {
    return c == '\t' || c == ' ' || c == ',' || c == ';' || c == '|' || c == '\r' || c == '\n';
}

// A CR is a separator when bare, data inside quotes.
bool NeedsQuotes(std::string_view value) {
    return value.find_first_of("\t,|; \r") != std::string_view::npos;
}

} // namespace

uint32_t SplitPODLine(char *line, size_t length, char const **fields, uint32_t count) {
    // The line end is no data, also under an unclosed quote: kept, a save
    // would write it back inside the row and split the row in two.
    if (length && line[length - 1] == '\n') --length;
    if (length && line[length - 1] == '\r') --length;
    char *p = line;
    char *const end = line + length;
    *end = 0;
    uint32_t found = 0;
    for (; found < count; ++found) {
        while (p < end && IsSeparator(*p)) ++p;
        if (p == end) break;
        char *start = p;
        bool quoted = false;
        while (p < end) {
            if (*p == '"') {
                if (quoted) break;
                quoted = true;
                start = p + 1;
            } else if (!quoted && IsSeparator(*p)) {
                break;
            }
            ++p;
        }
        if (p < end) *p++ = 0; // the separator or closing quote ends the field
        fields[found] = start;
    }
    for (uint32_t i = found; i < count; ++i) fields[i] = end; // *end is 0
    return found;
}

void AppendPODField(std::string &out, std::string_view value) {
    bool quote = value.empty() || NeedsQuotes(value);
    if (quote) out += '"';
    out += value;
    if (quote) out += '"';
}

} // namespace qv
