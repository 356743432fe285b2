/// @file
/// The enumerations of a MODTRAN tape5 run. Values with letters are the
/// character's code, and the card holds that character; the others are the
/// numbers the card holds. Reading maps a number to an enumeration with the
/// Get... helpers, false for a number out of range. Every enumeration is
/// int-based so that a code a deck holds beyond the named values (a negative
/// surface code, an aerosol model 1 to 10) is a valid value of its type.
///
/// Threads: pure functions, no state.
#pragma once

#include "qv/core/Export.h"

namespace qv {

/// The band model of the run (card 1): MODTRAN, correlated-k or LOWTRAN.
enum MODTRAN_MODEL : int { MM_MODTRAN = 'M', MM_CORRELATED_K = 'K', MM_LOWTRAN = 'L' };
/// The speed of the correlated-k option (card 1): slow or medium.
enum CORRELATIONK_SPEED : int { CKS_SLOW = 'S', CKS_MEDIUM = 'M' };
/// The model atmosphere (card 1): one of the six standard ones, or user
/// data.
enum ATMOSPHERE_MODEL : int {
    AM_USER_HORIZONTAL = 0,
    AM_TROPICAL = 1,
    AM_MIDLATITUDE_SUMMER = 2,
    AM_MIDLATITUDE_WINTER = 3,
    AM_SUBARCTIC_SUMMER = 4,
    AM_SUBARCTIC_WINTER = 5,
    AM_US_STANDARD = 6,
    AM_USER_DEFINED = 7
};
/// The kind of line-of-sight path (card 1): horizontal, slant between two
/// altitudes, or slant to space.
enum LOS_PATH : int { LP_HORIZONTAL = 1, LP_SLANT = 2, LP_SLANT_TO_SPACE = 3 };
/// What the run computes (card 1): transmittance, thermal radiance,
/// radiance with the sun, or the directly transmitted sun.
enum EXECUTION_MODE : int { EM_TRANSMITTANCE = 0, EM_THERMAL_RADIANCE = 1, EM_RADIANCE_WITH_SUN = 2, EM_DIRECT_SUN = 3 };
/// Multiple scattering (card 1): off (0), on (1), or -1 (MS_WITH_OUTPUT),
/// as the card holds it.
enum MULTIPLE_SCATTERING : int { MS_WITH_OUTPUT = -1, MS_NONE = 0, MS_ON = 1 };
/// The multiple-scattering algorithm: Isaacs ('F') or DISORT ('T').
enum SCATTERING_ALGO : int { SA_ISAACS = 'F', SA_DISORT = 'T' };
/// How the surface reflectance is given: a value, Lambertian spectra from a
/// file, or a BRDF.
enum SURFACE_REFLECTANCE : int { SR_VALUE = 0, SR_LAMBER = 2, SR_BRDF = 3 }; ///< or a negative code, kept as the number
/// How a vertical column amount is given: not at all, as a plain value, in
/// grams, or in atm-cm.
enum VERTICAL_COLUMN_TYPE : int { VCT_NONE = 0, VCT_VALUE = 1, VCT_GRAMS = 2, VCT_ATM_CM = 3 };
/// The boundary-layer aerosol model (card 2), -1 for user extinction.
enum AEROSOL_ATTENUATION : int {
    AA_USER_EXTINCTION = -1,
    AA_NONE = 0,
    AA_RURAL = 1,
    AA_RURAL_5KM = 2,
    AA_NAVY_MARITIME = 3,
    AA_MARITIME = 4,
    AA_URBAN = 5,
    AA_TROPOSPHERIC = 6,
    AA_USER = 7,
    AA_ADVECTION_FOG = 8,
    AA_RADIATION_FOG = 9,
    AA_DESERT = 10
};
/// The seasonal aerosol profile (card 2): the model's default, spring and
/// summer, or fall and winter.
enum AEROSOL_PROFILE : int { AP_DEFAULT = 0, AP_SPRING_SUMMER = 1, AP_FALL_WINTER = 2 };
/// The stratospheric (volcanic) aerosol profile, 1 to 8.
enum VOLCANO_INFO : int { VI_BACKGROUND = 1, VI_EXTREME_FRESH = 8 }; ///< 1 to 8 as the numbers
/// The cloud or rain model (card 2): none, the numbered models 1 to 10,
/// user aerosol, or cirrus.
enum CLOUD_RAIN_MODEL : int { CRM_NONE = 0, CRM_USER_AEROSOL = 11, CRM_CIRRUS = 18, CRM_THIN_CIRRUS = 19 }; ///< and 1 to 10
/// Whether the user atmosphere carries aerosol data per level (card 2C3),
/// and in which of its two forms.
enum AEROSOL_MODEL_TYPE : int { AMT_NONE = 0, AMT_PER_LEVEL = 1, AMT_PER_LEVEL_2 = 2 };
/// A line-of-sight geometry type, the numbers 0 to 9.
enum LOS_TYPE : int { LT_0, LT_1, LT_2, LT_3, LT_4, LT_5, LT_6, LT_7, LT_8, LT_9 };
/// Which of the two possible paths to take: the short or the long one.
enum PATH_LENGTH : int { PL_SHORT = 0, PL_LONG = 1 };
/// The extraterrestrial source: the sun or the moon.
enum SOLAR_LUNAR_SOURCE : int { SLS_SUN = 0, SLS_MOON = 1 };
using SL_LOS_TYPE = int; ///< a plain number, kept as read
/// The aerosol phase function: Mie, user-defined, or Henyey-Greenstein.
enum PHASE_FUNCTION_TYPE : int { PFT_MIE = 0, PFT_USER = 1, PFT_HENYEY_GREENSTEIN = 2 };
/// The unit of the spectral range (card 4): blank, wavenumber, microns or
/// nanometers.
enum INPUT_X_UNIT : int { IXU_BLANK = ' ', IXU_WAVENUMBER = 'W', IXU_MICRONS = 'M', IXU_NANOMETERS = 'N' };
/// The shape of the instrument slit function (card 4); blank for the default.
enum SLIT_FUNCTION : int {
    SF_BLANK = ' ',
    SF_TRIANGLE = 'T',
    SF_RECTANGLE = 'R',
    SF_GAUSSIAN = 'G',
    SF_SINC = 'S',
    SF_SINC2 = 'C',
    SF_HAMMING = 'H',
    SF_USER = 'U'
};
/// Whether the slit's full width at half maximum is absolute or relative
/// (card 4); blank for the default.
enum FWHM_TYPE : int { FT_BLANK = ' ', FT_ABSOLUTE = 'A', FT_RELATIVE = 'R' };
/// The BRDF models, by the numbers the cards use (see GetBRDFFunction).
enum BRDF_FUNCTION : int {
    BF_WALTHALL = 2,
    BF_WALTHALL_A = 51,
    BF_SINE_WALTHALL = 11,
    BF_SINE_WALTHALL_A = 52,
    BF_RAHMAN = 5,
    BF_ROUJEAN = 6,
    BF_PINTY_VERSTRAETE = 10,
    BF_ROSS_LI = 12
};
/// 0 a blank, 1 to 6 the digits, 10 to 17 the letters "A" to "H".
enum AB_UNITS : int { ABU_BLANK = 0, ABU_1 = 1, ABU_6 = 6, ABU_A = 10, ABU_H = 17 };

/// The enumeration value of the number a card holds; false, with out
/// untouched, for a number out of range.
///@{
QV_API bool GetAtmosphereModel(int n, ATMOSPHERE_MODEL &out);
QV_API bool GetAerosolAttenuation(int n, AEROSOL_ATTENUATION &out);
QV_API bool GetAerosolProfile(int n, AEROSOL_PROFILE &out);
QV_API bool GetVolcanoInfo(int n, VOLCANO_INFO &out); ///< 0 is read as 1
QV_API bool GetCloudRainModel(int n, CLOUD_RAIN_MODEL &out);
///@}
/// Either case; false for anything else.
QV_API bool GetABUnits(char c, AB_UNITS &out);
/// The upper case; 0 for an unknown value.
QV_API char ABUnits2char(AB_UNITS units);
/// The BRDF function of a number or a name (any case): "walthall",
/// "walthall(a)", "sine-walthall", "sine-walthall(a)", "rahman", "roujean",
/// "pinty-verstraete", "ross-li".
QV_API bool GetBRDFFunction(char const *text, BRDF_FUNCTION &out);

} // namespace qv
