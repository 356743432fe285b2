// LoadRun: the cards of one run, field by field, into the current run.
// Stops at the first bad field with its message; fields read so far stay.
#include <cstring>

#include "qv/core/WideChar.h"
#include "qv/files/IFile.h"
#include "qv/modtran/LineReader.h"
#include "qv/modtran/ModtranTape5File.h"
#include "qv/modtran/Tape5Rules.h"
#include "qv/numerics/CurveText.h"

namespace qv {

using namespace modtran_detail;

namespace {

// Upper case, with a missing column (NUL) as a blank.
char Upper(char c) {
    if (c == '\0') return ' ';
    return c >= 'a' && c <= 'z' ? char(c - 'a' + 'A') : c;
}

template <size_t N> void StoreText(char (&to)[N], char const *text) {
    std::strncpy(to, text, N - 1);
    to[N - 1] = '\0';
}

class CRunReader {
public:
    CRunReader(CModtranTape5File &owner, IFile &file, RUN &run) : owner(owner), cards(file, kCardBytes), r(run) {}
    ~CRunReader() { cards.Finish(); }

    bool Read() {
        return Card1() && Card1A() && FileNames() && Card2() && Card2Extras() && UserAtmosphere() &&
               AerosolRegions() && CloudTables() && Card3() && Card4() && Card4A() && Card5() && WorkOutLOSType();
    }

private:
    bool Line(char const *card) {
        if (cards.Next()) return true;
        owner.SetLastError(cards.Failed() ? "The file could not be read at card %s." : "Unexpected end of file at card %s.",
                           card);
        return false;
    }
    bool Count(char const *what, int n, int bound) {
        if (n >= 0 && n <= bound) return true;
        owner.SetLastError("%s count %d is out of range.", what, n);
        return false;
    }
    bool Flag(int column, bool &out, char const *message) {
        char c = Upper(cards.Letter(column));
        if (c != 'T' && c != 'F' && c != ' ') {
            owner.SetLastError(message, cards.Letter(column));
            return false;
        }
        out = c == 'T';
        return true;
    }
    // A letter that must be one of allowed (blank included where allowed has one).
    bool Letter(int column, char const *allowed, char &out, char const *message) {
        char c = Upper(cards.Letter(column));
        if (!std::strchr(allowed, c)) {
            owner.SetLastError(message, cards.Letter(column));
            return false;
        }
        out = c;
        return true;
    }
    bool Number(int n, int low, int high, int &out, char const *message) {
        if (n < low || n > high) {
            owner.SetLastError(message, n);
            return false;
        }
        out = n;
        return true;
    }
    template <class E> bool Mapped(bool (*map)(int, E &), int n, E &out, char const *message) {
        if (map(n, out)) return true;
        owner.SetLastError(message, n);
        return false;
    }

    bool Card1() {
        if (!Line("1")) return false;
        switch (Upper(cards.Letter(0))) {
        case ' ': case 'M': case 'T': r.bandModel = MM_MODTRAN; break;
        case 'C': case 'K': r.bandModel = MM_CORRELATED_K; break;
        case 'F': case 'L': r.bandModel = MM_LOWTRAN; break;
        default: owner.SetLastError("Unrecognized modtran model %c.", cards.Letter(0)); return false;
        }
        char speed = Upper(cards.Letter(1));
        if (speed != ' ' && speed != 'S' && speed != 'M') {
            owner.SetLastError("Unrecognized modtran correlation k speed option %c.", cards.Letter(1));
            return false;
        }
        r.speed = speed == 'M' ? CKS_MEDIUM : CKS_SLOW;
        int n;
        if (!Mapped(GetAtmosphereModel, cards.Int(2, 3), r.atmosphereModel, "Unrecognized atmosphere model %d."))
            return false;
        if (!Number(cards.Int(5, 5), 1, 3, n, "Unrecognized LOS Type %d.")) return false;
        r.losPath = LOS_PATH(n);
        if (!Number(cards.Int(10, 5), 0, 3, n, "Unrecognized Execution Mode %d.")) return false;
        r.executionMode = EXECUTION_MODE(n);
        if (!Number(cards.Int(15, 5), -1, 1, n, "Unrecognized Multiple Scattering option %d,")) return false;
        r.multipleScattering = MULTIPLE_SCATTERING(n);
        for (int i = 0; i < 6; ++i)
            if (!Mapped(GetAtmosphereModel, cards.Int(20 + 5 * i, 5), r.userModels[i],
                        "Unrecognized atmosphere model %d."))
                return false;
        if (!Number(cards.Int(50, 5), 0, 2, r.heavySpecies, "Unrecognized Heavy Spiecies option %d.")) return false;
        if (!Number(cards.Int(55, 5), 0, 1, r.atmosphereCache, "Unrecognized Atmosphere Cache option %d."))
            return false;
        r.secondCache = cards.Int(60, 5);
        r.tempAtFirstBoundary = cards.Float(65, 8);
        return SurfaceReflectance(cards.Text(73, 7));
    }

    bool SurfaceReflectance(char const *text) {
        r.surfaceValue = 0.0f;
        if (_stricmp(text, "BRDF") == 0 || _stricmp(text, "B") == 0) {
            r.surfaceReflectance = SR_BRDF;
        } else if (_stricmp(text, "LAMBER") == 0 || _stricmp(text, "L") == 0) {
            r.surfaceReflectance = SR_LAMBER;
        } else if (int code = FieldInt(text); code < 0) {
            if (code < -10 && code != -21 && code != -22 && code != -31) {
                owner.SetLastError("Unrecognized Surface Reflectance option %d.", code);
                return false;
            }
            r.surfaceReflectance = code;
        } else {
            r.surfaceReflectance = SR_VALUE;
            r.surfaceValue = FieldFloat(text);
        }
        return true;
    }

    // Empty is none; "a" and "g" lead their units; a number is a plain value,
    // and 0 is none. (A leading "0" alone does not make none: "0.5" is a
    // scale that the tool uses.)
    void VerticalColumn(char const *text, VERTICAL_COLUMN_TYPE &type, float &value) {
        char lead = Upper(*text);
        value = 0.0f;
        if (lead == 'A' || lead == 'G') {
            type = lead == 'A' ? VCT_ATM_CM : VCT_GRAMS;
            value = FieldFloat(text + 1);
        } else {
            value = FieldFloat(text);
            type = value == 0.0f ? VCT_NONE : VCT_VALUE;
        }
    }

    bool Card1A() {
        if (!Line("1A")) return false;
        char algo;
        if (!Letter(0, "FT ", algo, "Unrecognized Scattering Algorithm option %c.")) return false;
        r.scatteringAlgo = algo == 'T' ? SA_DISORT : SA_ISAACS;
        if (!Flag(1, r.azimuthDependence, "Unrecognized Asimuth Dependance option %c.")) return false;
        r.streams = cards.Int(2, 3);
        if (!Flag(5, r.solarIrradianceFile, "Unrecognized bSolarIrradianceFile option %c.")) return false;
        r.solarIndex = cards.Int(6, 4);
        r.co2MixingRatio = cards.Float(10, 10);
        VerticalColumn(cards.Text(20, 10), r.columnType[0], r.columnValue[0]);
        VerticalColumn(cards.Text(30, 10), r.columnType[1], r.columnValue[1]);
        if (!Flag(41, r.solarUserFile, "Unrecognized bSolarIrradianceUserFile option %c.") ||
            !Flag(43, r.bandModelFile, "Unrecognized bBandModelFile option %c.") ||
            !Flag(45, r.instrumentFilterFile, "Unrecognized bInstrumentFilterFile option %c.") ||
            !Flag(47, r.updateH2OAerosol, "Unrecognized bUpdateH2OAerosol option %c."))
            return false;
        r.solarConstant = cards.Float(48, 12);
        return true;
    }

    template <size_t N> bool FileName(bool flag, char const *card, char (&name)[N]) {
        if (!flag) return true;
        if (!Line(card)) return false;
        StoreText(name, cards.Text(0, kModtranNameLength));
        return true;
    }
    bool FileNames() {
        return FileName(r.solarUserFile, "1A1", r.solarUserFileName) &&
               FileName(r.bandModelFile, "1A2", r.bandModelFileName) &&
               FileName(r.instrumentFilterFile, "1A3", r.instrumentFilterFileName);
    }

    bool Card2() {
        if (!Line("2")) return false;
        r.aerosolPlus = _stricmp(cards.Text(0, 2), "A+") == 0;
        if (!Mapped(GetAerosolAttenuation, cards.Int(2, 3), r.aerosolAttenuation,
                    "Unknown AerosolAttenuation option %d."))
            return false;
        r.navyFlag = Upper(cards.Letter(5)) == 'N';
        if (!Mapped(GetAerosolProfile, cards.Int(6, 4), r.aerosolProfile, "Unknown Season option %d.")) return false;
        r.ussFlag = _stricmp(cards.Text(10, 3), "USS") == 0;
        if (!Mapped(GetVolcanoInfo, cards.Int(13, 2), r.volcano, "Unknown VolcanoInfo option %d.")) return false;
        r.coastal = cards.Int(15, 5);
        if (!Mapped(GetCloudRainModel, cards.Int(20, 5), r.cloudModel, "Unrecognized CloudRainModel option %d."))
            return false;
        r.avsa = cards.Int(25, 5) != 0;
        for (int i = 0; i < 5; ++i)
            r.card2[i] = cards.Float(30 + 10 * i, 10);
        return true;
    }

    bool CloudModelWithTables() const { return r.cloudModel >= 1 && r.cloudModel <= 10; }

    bool Card2Extras() {
        if (r.aerosolPlus)
            for (int line = 0; line < 2; ++line) {
                if (!Line("2A+")) return false;
                static constexpr int kColumns[6] = {1, 11, 21, 51, 61, 71};
                for (int k = 0; k < 6; ++k)
                    r.adjustments[k % 3][2 * line + k / 3] = cards.Float(kColumns[k], 9);
            }
        if (r.cloudModel == CRM_CIRRUS || r.cloudModel == CRM_THIN_CIRRUS || CloudModelWithTables()) {
            if (!Line("2A")) return false;
            for (int i = 0; i < 3; ++i)
                r.clouds[i] = cards.Float(8 * i, 8);
            if (CloudModelWithTables()) {
                r.nLayerBoundaries = cards.Int(24, 4);
                r.nCloudProfile = cards.Int(28, 4);
                if (!Count("Layer boundary", r.nLayerBoundaries, kModtranMaxCloudRows) ||
                    !Count("Cloud profile", r.nCloudProfile, kModtranMaxCloudRows))
                    return false;
                for (int i = 0; i < 6; ++i)
                    r.cloudExtra[i] = cards.Float(32 + 8 * i, 8);
            }
        }
        if (r.avsa) {
            if (!Line("2B")) return false;
            for (int i = 0; i < 3; ++i)
                r.avsaValues[i] = cards.Float(10 * i, 10);
        }
        return true;
    }

    bool UserAtmosphere() {
        if (r.atmosphereCache != 1 || (r.atmosphereModel != AM_USER_HORIZONTAL && r.atmosphereModel != AM_USER_DEFINED))
            return true;
        if (!Line("2C")) return false;
        r.nLevels = cards.Int(0, 5);
        if (!Count("Level", r.nLevels, kModtranMaxLevels)) return false;
        r.extended = cards.Int(5, 5) != 0;
        int type;
        if (!Number(cards.Int(10, 5), 0, 2, type, "Unknown AerosolModelType option %d.")) return false;
        r.aerosolModelType = AEROSOL_MODEL_TYPE(type);
        StoreText(r.userTitle, cards.Text(15, 65));
        for (int i = 0; i < r.nLevels; ++i)
            if (!Level(r.levels[i])) return false;
        return true;
    }

    bool Values(char const *card, float *values, int count, int perLine) {
        for (int i = 0; i < count; ++i) {
            if (i % perLine == 0 && !Line(card)) return false;
            values[i] = cards.Float(10 * (i % perLine), 10);
        }
        return true;
    }

    bool Level(USER_LEVEL &level) {
        if (!Line("2C1")) return false;
        level.altitude = cards.Float(0, 10);
        for (int i = 0; i < 5; ++i)
            level.values[i] = cards.Float(10 + 10 * i, 10);
        for (int i = 0; i < 15; ++i) {
            char c = Upper(cards.Letter(i < 14 ? 60 + i : 75));
            if (!GetABUnits(c, level.units[i])) {
                owner.SetLastError("Unrecognized AB unit %c.", c);
                return false;
            }
        }
        if (r.extended && !Values("2C2", level.extended, 9, 8)) return false;
        if (r.extended && r.heavySpecies == 2 && !Values("2C2X", level.heavy, 13, 8)) return false;
        if (r.aerosolModelType == AMT_PER_LEVEL) {
            if (!Line("2C3")) return false;
            for (int i = 0; i < 3; ++i)
                level.aerosol[i] = cards.Float(10 + 10 * i, 10);
            if (!Mapped(GetAerosolAttenuation, cards.Int(40, 5), level.attenuation,
                        "Unknown AerosolAttenuation option %d.") ||
                !Mapped(GetCloudRainModel, cards.Int(45, 5), level.cloud, "Unrecognized CloudRainModel option %d.") ||
                !Mapped(GetVolcanoInfo, cards.Int(50, 5), level.volcano, "Unknown VolcanoInfo option %d.") ||
                !Mapped(GetAerosolProfile, cards.Int(55, 5), level.profile, "Unknown Season option %d."))
                return false;
            level.flag = cards.Int(60, 5) != 0;
        } else if (r.aerosolModelType == AMT_PER_LEVEL_2) {
            if (!Line("2C3")) return false;
            static constexpr int kColumns[5] = {10, 30, 40, 50, 60};
            for (int i = 0; i < 5; ++i)
                level.aerosol[i] = cards.Float(kColumns[i], 10);
        }
        return true;
    }

    bool AerosolRegions() {
        if (r.cloudModel != CRM_USER_AEROSOL && r.aerosolAttenuation != 7) return true;
        if (!Line("2D")) return false;
        for (int i = 0; i < 4; ++i)
            r.regions[i].nSpectra = cards.Int(5 * i, 5);
        for (int i = 0; i < 4; ++i) {
            AEROSOL_REGION &region = r.regions[i];
            if (region.nSpectra <= 0) continue;
            int spectra = SpectraOfRegion(owner, r, i);
            if (spectra < 0) return false;
            if (!Line("2D1")) return false;
            region.value = cards.Float(0, 10);
            StoreText(region.title, cards.Text(10, 72));
            for (int k = 0; k < spectra; ++k) {
                if (k % 3 == 0 && !Line("2D2")) return false;
                int column = 26 * (k % 3);
                float *v = region.spectra[k];
                v[0] = cards.Float(column, 6);
                v[1] = cards.Float(column + 6, 7);
                v[2] = cards.Float(column + 13, 7);
                v[3] = cards.Float(column + 20, 6);
            }
        }
        return true;
    }

    bool Rows(char const *card, float *rows, int count, int width) {
        for (int i = 0; i < count; ++i) {
            if (!Line(card)) return false;
            for (int k = 0; k < width; ++k)
                rows[i * width + k] = cards.Float(10 * k, 10);
        }
        return true;
    }

    bool CloudTables() {
        if (!CloudModelWithTables()) return true;
        if (r.nLayerBoundaries > 2 && !Rows("2E1", &r.layerBoundaries[0][0], r.nLayerBoundaries, 4)) return false;
        return r.nCloudProfile <= 1 || Rows("2E2", &r.cloudProfile[0][0], r.nCloudProfile, 7);
    }

    bool Card3() {
        if (!Line("3")) return false;
        r.h1 = cards.Float(0, 10);
        r.h2 = cards.Float(10, 10);
        r.angle = cards.Float(20, 10);
        int n;
        if (r.executionMode == EM_DIRECT_SUN) {
            r.solarDay = cards.Int(30, 5);
            r.r0 = cards.Float(40, 10);
            if (!Number(cards.Int(50, 5), 0, 1, n, "Unknown Source option %d.")) return false;
            r.source = SOLAR_LUNAR_SOURCE(n);
            r.solarAngle = cards.Float(55, 10);
            return true;
        }
        r.range = cards.Float(30, 10);
        r.beta = cards.Float(40, 10);
        r.r0 = cards.Float(50, 10);
        if (!Number(cards.Int(60, 5), 0, 1, n, "Unknown PathLength option %d.")) return false;
        r.pathLength = PATH_LENGTH(n);
        r.phi = cards.Float(65, 15);
        return r.executionMode != EM_RADIANCE_WITH_SUN || (Card3A() && PhaseFunction());
    }

    bool Card3A() {
        if (!Line("3A1")) return false;
        int n;
        r.slLosType = cards.Int(0, 5);
        if (!Number(cards.Int(5, 5), 0, 2, n, "Unknown PhaseFunctionType %d.")) return false;
        r.phaseFunctionType = PHASE_FUNCTION_TYPE(n);
        r.solarDay = cards.Int(10, 5);
        if (!Number(cards.Int(15, 5), 0, 1, n, "Unknown Source option %d.")) return false;
        r.source = SOLAR_LUNAR_SOURCE(n);
        if (!Line("3A2")) return false;
        for (int i = 0; i < 7; ++i)
            r.solarParameters[i] = cards.Float(10 * i, 10);
        return true;
    }

    // Eight values to a line, each in ten columns; a new series starts a line.
    bool Series(char const *card, float *values, int count) {
        for (int i = 0; i < count; ++i) {
            if (i % 8 == 0 && !Line(card)) return false;
            values[i] = cards.Float(10 * (i % 8), 10);
        }
        return true;
    }

    bool PhaseFunction() {
        if (r.phaseFunctionType != PFT_USER) return true;
        if (!Line("3B1")) return false;
        r.nPhaseAngles = cards.Int(0, 5);
        r.nPhaseWavelengths = cards.Int(5, 5);
        if (!Count("Phase angle", r.nPhaseAngles, kModtranMaxPhaseAngles) ||
            !Count("Phase wavelength", r.nPhaseWavelengths, kModtranMaxPhaseWavelengths))
            return false;
        if (r.nPhaseWavelengths == 0) return Rows("3B2", &r.phaseRows[0][0], r.nPhaseAngles, 5);
        if (!Series("3C1", r.phaseAngles, r.nPhaseAngles) ||
            !Series("3C2", r.phaseWavelengths, r.nPhaseWavelengths))
            return false;
        float values[kModtranMaxPhaseAngles * kModtranMaxPhaseWavelengths * 4];
        int count = r.nPhaseAngles * r.nPhaseWavelengths * 4;
        if (!Series("3C3", values, count)) return false;
        float const *next = values;
        for (int a = 0; a < r.nPhaseAngles; ++a)
            for (int w = 0; w < r.nPhaseWavelengths; ++w, next += 4)
                std::memcpy(r.phaseTable[a][w], next, sizeof r.phaseTable[a][w]);
        return true;
    }

    bool Card4() {
        if (!Line("4")) return false;
        r.start = cards.Float(0, 10);
        r.end = cards.Float(10, 10);
        r.step = cards.Float(20, 10);
        r.fwhm = cards.Float(30, 10);
        char c;
        if (!Letter(40, "TR ", r.outputYUnit, "Unrecognized output y unit %c.") ||
            !Letter(41, "WMN ", r.outputXUnit, "Unrecognized output x unit %c."))
            return false;
        StoreText(r.delimiter, cards.Text(42, 8));
        if (!Letter(50, "WMN ", c, "Urecognized input x unit %c.")) return false;
        r.inputXUnit = INPUT_X_UNIT(c);
        if (!Letter(51, "TRGSCHU1234567 ", c, "Urecognized slit function %c.")) return false;
        r.slit = SLIT_FUNCTION(c >= '1' && c <= '7' ? "TRGSCHU"[c - '1'] : c);
        if (!Letter(52, "AR ", c, "Urecognized FWHMType %c.")) return false;
        r.fwhmType = FWHM_TYPE(c);
        if (!Letter(53, "A ", r.degradeType, "Urecognized DegradeType %c.")) return false;
        if (!Letter(54, "S ", c, "Urecognized bSaveNonDegraded %c.")) return false;
        r.saveNonDegraded = c == 'S';
        if (!Letter(55, "R ", c, "Urecognized bUseSavedDegraded %c.")) return false;
        r.useSavedDegraded = c == 'R';
        return Letter(56, "FT ", r.fluxTableType, "Urecognized FluxTableType %c.");
    }

    // Blank-separated values of the line, as strtok cuts them; missing ones 0.
    void Tokens(float *values, int count) {
        char text[kCardBytes];
        std::memcpy(text, cards.Line(), kCardBytes);
        char *cursor = text;
        for (int i = 0; i < count; ++i) {
            char const *token = numerics_detail::NextToken(&cursor, " \t");
            values[i] = token ? FieldFloat(token) : 0.0f;
        }
    }

    bool Card4A() {
        if (r.surfaceReflectance != SR_BRDF && r.surfaceReflectance != SR_LAMBER) return true;
        if (!Line("4A")) return false;
        r.nSurfaces = cards.Int(0, 1);
        r.surfaceTemperature = cards.Float(1, 9);
        if (!Count("Surface", r.nSurfaces, kModtranMaxSurfaces)) return false;
        for (int i = 0; i < r.nSurfaces; ++i)
            if (!(r.surfaceReflectance == SR_BRDF ? BRDFSurface(r.surfaces[i]) : LamberSurface(r.surfaces[i])))
                return false;
        return true;
    }

    bool BRDFSurface(SURFACE &surface) {
        if (!Line("4B1")) return false;
        char const *name = cards.Text(0, kCardBytes);
        if (!GetBRDFFunction(name, surface.function)) {
            owner.SetLastError("Unrecognized BRDF function %s.", name);
            return false;
        }
        if (!Line("4B2")) return false;
        float heading[3];
        Tokens(heading, 3);
        surface.nRows = int(heading[0]);
        if (!(heading[0] >= 0.0f && heading[0] <= float(kModtranMaxBRDFRows))) {
            owner.SetLastError("BRDF row count %g is out of range.", double(heading[0]));
            return false;
        }
        surface.zenith = heading[1];
        surface.azimuth = heading[2];
        for (int i = 0; i < surface.nRows; ++i) {
            if (!Line("4B3")) return false;
            Tokens(surface.rows[i], 6);
        }
        return true;
    }

    bool LamberSurface(SURFACE &surface) {
        for (auto &file : surface.files) {
            if (!Line("4L")) return false;
            StoreText(file, cards.Text(0, kModtranNameLength));
        }
        return true;
    }

    bool Card5() {
        if (!Line("5")) return false;
        int n = cards.Int(0, 5);
        switch (n) {
        case -4: case 4: r.repeat = 4; return true;
        case -3: case 3: r.repeat = 3; return true;
        case -2: case 0: case 2: r.repeat = 0; return true;
        case -1: case 1: r.repeat = 1; return true;
        default: owner.SetLastError("Unknown repeat flag option %d.", n); return false;
        }
    }

    bool WorkOutLOSType() {
        if (r.losPath == LP_HORIZONTAL)
            r.losType = LT_0;
        else if (r.losPath == LP_SLANT)
            r.losType = r.phi > 0   ? (r.range > 0 ? LT_6 : LT_5)
                        : r.beta > 0  ? LT_4
                        : r.range > 0 ? (r.angle > 0 ? LT_2 : LT_3)
                                      : LT_1;
        else
            r.losType = r.phi > 0 ? LT_9 : r.h2 == 0 ? LT_7 : LT_8;
        return true;
    }

    CModtranTape5File &owner;
    CLineReader cards;
    RUN &r;
};

} // namespace

namespace modtran_detail {

int SpectraOfRegion(CModtranTape5File &owner, RUN const &run, int region) {
    int count = run.regions[region].nSpectra;
    if (count == 1) return kModtranSpectraPerRegion;
    if (count <= 0 || !run.ussFlag) {
        owner.SetLastError(
            "The number of spectra for an aresol region is specified but user supplied spectra is not set.");
        return -1;
    }
    if (count > kModtranSpectraPerRegion) {
        owner.SetLastError("Spectrum count %d is out of range.", count);
        return -1;
    }
    return count;
}

} // namespace modtran_detail

bool CModtranTape5File::LoadRun(IFile &file, int) {
    RUN *run = Current();
    if (!run) return false;
    CRunReader reader(*this, file, *run);
    return reader.Read();
}

} // namespace qv
