#include "qv/core/LanguageTags.h"

#include <cstring>

#include "qv/core/WideChar.h"

namespace qv {

namespace {

struct SLanguageTag {
    char language[4];
    char territory[3];
    uint16_t id;
};

// The first row of a language is its main territory (a name without a known
// territory takes it).
constexpr SLanguageTag kTags[] = {
    {"af", "ZA", 0x0436}, {"ar", "SA", 0x0401}, {"ar", "EG", 0x0C01}, {"ar", "AE", 0x3801}, {"be", "BY", 0x0423},
    {"bg", "BG", 0x0402}, {"bn", "IN", 0x0445}, {"bn", "BD", 0x0845}, {"bs", "BA", 0x141A}, {"ca", "ES", 0x0403},
    {"cs", "CZ", 0x0405}, {"cy", "GB", 0x0452}, {"da", "DK", 0x0406}, {"de", "DE", 0x0407}, {"de", "CH", 0x0807},
    {"de", "AT", 0x0C07}, {"de", "LU", 0x1007}, {"de", "LI", 0x1407}, {"el", "GR", 0x0408}, {"en", "US", 0x0409},
    {"en", "GB", 0x0809}, {"en", "AU", 0x0C09}, {"en", "CA", 0x1009}, {"en", "NZ", 0x1409}, {"en", "IE", 0x1809},
    {"en", "ZA", 0x1C09}, {"en", "IN", 0x4009}, {"en", "SG", 0x4809}, {"es", "ES", 0x0C0A}, {"es", "MX", 0x080A},
    {"es", "CO", 0x240A}, {"es", "AR", 0x2C0A}, {"es", "CL", 0x340A}, {"es", "US", 0x540A}, {"et", "EE", 0x0425},
    {"eu", "ES", 0x042D}, {"fa", "IR", 0x0429}, {"fi", "FI", 0x040B}, {"fr", "FR", 0x040C}, {"fr", "BE", 0x080C},
    {"fr", "CA", 0x0C0C}, {"fr", "CH", 0x100C}, {"fr", "LU", 0x140C}, {"ga", "IE", 0x083C}, {"gl", "ES", 0x0456},
    {"he", "IL", 0x040D}, {"hi", "IN", 0x0439}, {"hr", "HR", 0x041A}, {"hu", "HU", 0x040E}, {"hy", "AM", 0x042B},
    {"id", "ID", 0x0421}, {"is", "IS", 0x040F}, {"it", "IT", 0x0410}, {"it", "CH", 0x0810}, {"ja", "JP", 0x0411},
    {"ka", "GE", 0x0437}, {"kk", "KZ", 0x043F}, {"ko", "KR", 0x0412}, {"lt", "LT", 0x0427}, {"lv", "LV", 0x0426},
    {"mk", "MK", 0x042F}, {"mr", "IN", 0x044E}, {"ms", "MY", 0x043E}, {"nb", "NO", 0x0414}, {"nl", "NL", 0x0413},
    {"nl", "BE", 0x0813}, {"nn", "NO", 0x0814}, {"no", "NO", 0x0414}, {"pl", "PL", 0x0415}, {"pt", "BR", 0x0416},
    {"pt", "PT", 0x0816}, {"ro", "RO", 0x0418}, {"ru", "RU", 0x0419}, {"sk", "SK", 0x041B}, {"sl", "SI", 0x0424},
    {"sq", "AL", 0x041C}, {"sr", "RS", 0x281A}, {"sv", "SE", 0x041D}, {"sv", "FI", 0x081D}, {"sw", "KE", 0x0441},
    {"ta", "IN", 0x0449}, {"te", "IN", 0x044A}, {"th", "TH", 0x041E}, {"tr", "TR", 0x041F}, {"uk", "UA", 0x0422},
    {"ur", "PK", 0x0420}, {"vi", "VN", 0x042A}, {"zh", "CN", 0x0804}, {"zh", "TW", 0x0404}, {"zh", "HK", 0x0C04},
    {"zh", "SG", 0x1004},
};

// Primary languages written right to left: Arabic, Hebrew, Urdu, Persian,
// Yiddish, Sindhi, Syriac, Pashto, Divehi, Uyghur.
constexpr uint16_t kRightToLeft[] = {0x01, 0x0D, 0x20, 0x29, 0x3D, 0x59, 0x5A, 0x63, 0x65, 0x80};

// Copies the letters of one part of a locale name, cut at any of stops.
size_t TakePart(char const *&p, char const *stops, char *out, size_t capacity) {
    size_t n = 0;
    for (; *p && !std::strchr(stops, *p); ++p)
        if (n + 1 < capacity) out[n++] = *p;
    out[n] = 0;
    return n;
}

} // namespace

uint32_t LcidFromLocaleName(char const *name) {
    if (!name) return 0;
    char language[8], territory[8];
    char const *p = name;
    size_t languageLength = TakePart(p, "_-.@", language, sizeof language);
    if (*p == '_' || *p == '-') ++p;
    TakePart(p, ".@", territory, sizeof territory);
    if (languageLength == 0 || languageLength > 3) return 0;
    SLanguageTag const *main = nullptr;
    for (SLanguageTag const &tag : kTags) {
        if (_stricmp(tag.language, language) != 0) continue;
        if (_stricmp(tag.territory, territory) == 0) return tag.id;
        if (!main) main = &tag;
    }
    return main ? main->id : 0;
}

bool LocaleTagFromLanguage(uint16_t language, CString &tag) {
    for (SLanguageTag const &row : kTags) {
        if (row.id != language) continue;
        tag = CString::FromFormat(u"%S-%S", row.language, row.territory);
        return true;
    }
    return false;
}

bool IsRightToLeftLanguage(uint16_t language) {
    for (uint16_t primary : kRightToLeft)
        if ((language & 0x03FF) == primary) return true;
    return false;
}

} // namespace qv
