// Numbers and letters of the tape5 cards to their enumerations.
#include "qv/modtran/ModtranEnums.h"

#include <cstring>

#include "qv/core/WideChar.h"
#include "qv/core/WideFormat.h"

namespace qv {

bool GetAtmosphereModel(int n, ATMOSPHERE_MODEL &out) {
    if (n < 0 || n > 7) return false;
    out = ATMOSPHERE_MODEL(n);
    return true;
}

bool GetAerosolAttenuation(int n, AEROSOL_ATTENUATION &out) {
    if (n < -1 || n > 10) return false;
    out = AEROSOL_ATTENUATION(n);
    return true;
}

bool GetAerosolProfile(int n, AEROSOL_PROFILE &out) {
    if (n < 0 || n > 2) return false;
    out = AEROSOL_PROFILE(n);
    return true;
}

bool GetVolcanoInfo(int n, VOLCANO_INFO &out) {
    if (n < 0 || n > 8) return false;
    out = VOLCANO_INFO(n == 0 ? 1 : n);
    return true;
}

bool GetCloudRainModel(int n, CLOUD_RAIN_MODEL &out) {
    if ((n < 0 || n > 11) && n != 18 && n != 19) return false;
    out = CLOUD_RAIN_MODEL(n);
    return true;
}

bool GetABUnits(char c, AB_UNITS &out) {
    if (c == ' ') {
        out = ABU_BLANK;
    } else if (c >= '1' && c <= '6') {
        out = AB_UNITS(c - '0');
    } else if ((c | 0x20) >= 'a' && (c | 0x20) <= 'h') {
        out = AB_UNITS(ABU_A + ((c | 0x20) - 'a'));
    } else {
        return false;
    }
    return true;
}

char ABUnits2char(AB_UNITS units) {
    if (units == ABU_BLANK) return ' ';
    if (units >= ABU_1 && units <= ABU_6) return char('0' + units);
    if (units >= ABU_A && units <= ABU_H) return char('A' + (units - ABU_A));
    return 0;
}

bool GetBRDFFunction(char const *text, BRDF_FUNCTION &out) {
    static constexpr struct {
        char const *name;
        BRDF_FUNCTION function;
    } kNames[] = {{"walthall", BF_WALTHALL},         {"walthall(a)", BF_WALTHALL_A},
                  {"sine-walthall", BF_SINE_WALTHALL}, {"sine-walthall(a)", BF_SINE_WALTHALL_A},
                  {"rahman", BF_RAHMAN},             {"roujean", BF_ROUJEAN},
                  {"pinty-verstraete", BF_PINTY_VERSTRAETE}, {"ross-li", BF_ROSS_LI}};
    for (auto const &entry : kNames) {
        char number[8];
        c_snprintf(number, sizeof number, "%d", int(entry.function));
        if (_stricmp(text, entry.name) == 0 || std::strcmp(text, number) == 0) {
            out = entry.function;
            return true;
        }
    }
    return false;
}

} // namespace qv
