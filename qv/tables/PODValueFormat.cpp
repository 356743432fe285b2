#include "qv/tables/PODValueFormat.h"

#include <bit>
#include <cmath>
#include <cstdint>

#include "qv/core/WideChar.h"
#include "qv/core/WideFormat.h"

namespace qv {

namespace {

constexpr size_t kNumberUnits = 64;

bool IsDigit(char16_t c) { return c >= u'0' && c <= u'9'; }

// Copies the number's run into buf (cut at 63 units) and moves p past it;
// false when the run holds no digit, which is no number rather than 0.
bool TakeNumberRun(char16_t const *&p, char16_t (&buf)[kNumberUnits], bool allowFraction) {
    size_t n = 0;
    bool digits = false;
    auto keep = [&](char16_t c) {
        if (n + 1 < kNumberUnits) buf[n++] = c;
        ++p;
    };
    if (*p == u'+' || *p == u'-') keep(*p);
    while (*p) {
        if (IsDigit(*p)) {
            digits = true;
            keep(*p);
        } else if (allowFraction && *p == u'.') {
            keep(*p);
        } else if (allowFraction && (*p == u'e' || *p == u'E')) {
            keep(*p);
            if (*p == u'+' || *p == u'-') keep(*p);
        } else {
            break;
        }
    }
    buf[n] = 0;
    return digits;
}

bool TakeFloat(char16_t const *&p, double &out) {
    char16_t buf[kNumberUnits];
    if (!TakeNumberRun(p, buf, true)) return false;
    out = _wtof(buf);
    return true;
}

bool TakeInteger(char16_t const *&p, double &out) {
    char16_t buf[kNumberUnits];
    if (!TakeNumberRun(p, buf, false)) return false;
    out = _wtol(buf);
    return true;
}

// At "%": reads the kind and "(scale)", moving f past the token.
bool TakeToken(char16_t const *&f, char16_t &kind, double &scale) {
    kind = f[1];
    if (kind != u'f' && kind != u'd') return false;
    f += 2;
    if (*f != u'(') return false;
    ++f;
    if (!TakeFloat(f, scale) || *f != u')') return false;
    ++f;
    return true;
}

} // namespace

bool ParsePODValue(double &out, char16_t const *text, char16_t const *format) {
    out = 0;
    if (!text || !format) return false;
    char16_t const *t = text;
    for (char16_t const *f = format; *f;) {
        if (*f != u'%') {
            if (*t != *f) return false;
            ++t;
            ++f;
            continue;
        }
        char16_t kind;
        double scale;
        // The number is read before the token's scale, as the text comes first.
        double number = 0;
        if (f[1] == u'f' ? !TakeFloat(t, number) : f[1] != u'd' || !TakeInteger(t, number)) return false;
        if (!TakeToken(f, kind, scale)) return false;
        out += scale * number;
    }
    return true;
}

bool FormatPODValue(double value, char16_t *out, size_t outSize, char16_t const *format) {
    if (!out || outSize == 0 || !format) return false;
    size_t n = 0;
    out[0] = 0;
    double running = value;
    for (char16_t const *f = format; *f;) {
        if (*f != u'%') {
            if (n + 1 >= outSize) return false;
            out[n++] = *f++;
            out[n] = 0;
            continue;
        }
        char16_t kind;
        double scale;
        if (!TakeToken(f, kind, scale)) return false;
        double q = running / scale;
        running -= std::trunc(q) * scale;
        int written = kind == u'f'
                          ? swprintf(out + n, outSize - n, u"%0.10g", q)
                          : swprintf(out + n, outSize - n, u"%I64d", static_cast<long long>(std::bit_cast<int64_t>(q)));
        if (written < 0 || size_t(written) >= outSize - n) {
            out[n] = 0;
            return false;
        }
        n += size_t(written);
    }
    return true;
}

} // namespace qv
