// Number texts of the tape5 writer: scientific fields, the surface
// reflectance and vertical column fields.
#include <cstring>

#include "qv/core/WideFormat.h"
#include "qv/modtran/LineReader.h"
#include "qv/modtran/ModtranTape5File.h"
#include "qv/modtran/Tape5Rules.h"

namespace qv {

namespace modtran_detail {

char const *FormatScientific(double value, int decimals) {
    static char ring[32][128];
    static unsigned next = 0;
    char *out = ring[next++ % 32];
    // The digits come correctly rounded from %E; the card's exponent has two
    // digits (three only where a double needs them), where the run-time's
    // %E writes at least three.
    int n = c_snprintf(out, 128, "%.*E", decimals, value);
    char *e = n > 0 ? std::strchr(out, 'E') : nullptr;
    if (!e || (e[1] != '+' && e[1] != '-')) return out;
    int exponent = FieldInt(e + 2);
    c_snprintf(e + 2, size_t(128 - (e + 2 - out)), "%02d", exponent);
    return out;
}

} // namespace modtran_detail

char *CModtranTape5File::FormatSurfaceReflectance(SURFACE_REFLECTANCE kind, float value) {
    static char text[kFormattedFieldCapacity];
    if (kind == SR_BRDF)
        c_snprintf(text, sizeof text, "   BRDF");
    else if (kind == SR_LAMBER)
        c_snprintf(text, sizeof text, " LAMBER");
    else if (kind == SR_VALUE)
        c_snprintf(text, sizeof text, "%7.2f", double(value));
    else
        c_snprintf(text, sizeof text, "%7d", int(kind));
    return text;
}

char *CModtranTape5File::FormatVerticalColumnType(VERTICAL_COLUMN_TYPE kind, float value) {
    static char text[kFormattedFieldCapacity];
    if (kind == VCT_NONE)
        c_snprintf(text, sizeof text, "         0");
    else if (kind == VCT_ATM_CM)
        c_snprintf(text, sizeof text, "a %8.3f", double(value));
    else if (kind == VCT_GRAMS)
        c_snprintf(text, sizeof text, "g %8.3f", double(value));
    else
        c_snprintf(text, sizeof text, "%10.5f", double(value));
    return text;
}

} // namespace qv
