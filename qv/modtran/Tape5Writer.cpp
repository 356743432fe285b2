// SaveRun, Save and GetCards: the current run as cards, in the order and
// under the conditions the reader expects them.
#include <cstdarg>
#include <cstring>

#include "qv/core/WideFormat.h"
#include "qv/files/File.h"
#include "qv/modtran/ModtranTape5File.h"
#include "qv/modtran/Tape5Rules.h"

namespace qv {

using namespace modtran_detail;

namespace {

// Where the writer's cards go: a file, or a list of named lines.
class ICardSink {
public:
    virtual bool Card(char const *name, char const *text, size_t length) = 0;

protected:
    ~ICardSink() = default;
};

class CFileSink final : public ICardSink {
public:
    explicit CFileSink(IFile &file) : file(file) {}
    bool Card(char const *, char const *text, size_t length) override {
        char line[1100];
        std::memcpy(line, text, length);
        std::memcpy(line + length, "\r\n", 2);
        return file.Write(line, uint32_t(length + 2)) == length + 2;
    }

private:
    IFile &file;
};

class CListSink final : public ICardSink {
public:
    CListSink(TArray<CString> &names, TArray<CString> &lines) : names(names), lines(lines) {}
    bool Card(char const *name, char const *text, size_t) override {
        return names.Add(CString(name)) && lines.Add(CString(text));
    }

private:
    TArray<CString> &names;
    TArray<CString> &lines;
};

char Flag(bool b) {
    return b ? 'T' : 'F';
}

double D(float v) {
    return double(v);
}

char const *Sci(float v) {
    return FormatScientific(double(v), 3);
}

// Fields that a line-of-sight type does not use, cleared before card 3 so
// that the tool never sees stale ones.
void ClearUnusedGeometry(RUN &r) {
    float *const h1 = &r.h1, *const h2 = &r.h2, *const angle = &r.angle, *const range = &r.range,
                 *const beta = &r.beta, *const phi = &r.phi;
    float *const kCleared[10][4] = {{h2, phi, angle, beta},   {range, phi, beta},      {h2, phi, beta},
                                    {phi, angle, beta},       {range, angle, phi},     {range, angle},
                                    {h1, range, angle, beta}, {range, h2, phi, beta},  {phi, range, angle},
                                    {h1, range, angle}};
    if (r.losType < 0 || r.losType > 9) return;
    for (float *field : kCleared[r.losType])
        if (field) *field = 0.0f;
}

// The columns a format fills when every value fits its width; -1 when a
// conversion has no width (free-format cards).
int NominalWidth(char const *format) {
    int width = 0;
    for (char const *p = format; *p; ++p) {
        if (*p != '%') {
            ++width;
            continue;
        }
        if (*++p == '%') {
            ++width;
            continue;
        }
        while (*p == '-' || *p == '+' || *p == ' ' || *p == '0' || *p == '#')
            ++p;
        int field = 0;
        for (; *p >= '0' && *p <= '9'; ++p)
            field = field * 10 + (*p - '0');
        if (*p == '.')
            for (++p; *p >= '0' && *p <= '9'; ++p) {
            }
        if (field == 0 && *p != 'c') return -1;
        width += field ? field : 1;
        if (!*p) break;
    }
    return width;
}

class CRunWriter {
public:
    CRunWriter(CModtranTape5File &owner, RUN &run, ICardSink &sink) : owner(owner), r(run), sink(sink) {}

    bool Write() {
        return Card1() && Card1A() && Card2() && UserAtmosphere() && AerosolRegions() && CloudTables() && Card3() &&
               Card4() && Card4A() && Put("5", "%5d", r.repeat);
    }

private:
    bool Put(char const *name, char const *format, ...) __attribute__((format(printf, 3, 4))) {
        char text[1024];
        va_list args;
        va_start(args, format);
        int n = c_vsnprintf(text, sizeof text, format, args);
        va_end(args);
        if (n < 0 || size_t(n) >= sizeof text) n = int(std::strlen(text));
        // A value wider than its field would shift every later column.
        int nominal = NominalWidth(format);
        if (nominal >= 0 && n != nominal) return Overflow(name);
        if (sink.Card(name, text, size_t(n))) return true;
        owner.SetLastError("The card %s could not be written.", name);
        return false;
    }

    bool Overflow(char const *name) {
        owner.SetLastError("A value of card %s does not fit its columns.", name);
        return false;
    }

    // One piece of a card made of pieces; false when a value overflows.
    template <class... Args> bool Piece(char const *name, char *line, size_t size, size_t &used,
                                        char const *format, Args... args) {
        int n = c_snprintf(line + used, size - used, format, args...);
        if (n < 0 || n != NominalWidth(format) || used + size_t(n) >= size) return Overflow(name);
        used += size_t(n);
        return true;
    }

    bool Card1() {
        ATMOSPHERE_MODEL const *m = r.userModels;
        char reflectance[CModtranTape5File::kFormattedFieldCapacity];
        std::strcpy(reflectance, CModtranTape5File::FormatSurfaceReflectance(SURFACE_REFLECTANCE(r.surfaceReflectance),
                                                                             r.surfaceValue));
        return Put("1", "%c%c%3d%5d%5d%5d%5d%5d%5d%5d%5d%5d%5d%5d%5d%8.3f%7s", char(r.bandModel), char(r.speed),
                   int(r.atmosphereModel), int(r.losPath), int(r.executionMode), int(r.multipleScattering),
                   int(m[0]), int(m[1]), int(m[2]), int(m[3]), int(m[4]), int(m[5]), r.heavySpecies,
                   r.atmosphereCache, r.secondCache, D(r.tempAtFirstBoundary), reflectance);
    }

    // The solar constant goes behind two blanks, in columns 51-60 where the
    // tool reads it.
    bool Card1A() {
        char columns[2][CModtranTape5File::kFormattedFieldCapacity];
        for (int i = 0; i < 2; ++i)
            std::strcpy(columns[i], CModtranTape5File::FormatVerticalColumnType(r.columnType[i], r.columnValue[i]));
        return Put("1A", "%c%c%3d%c%4d%10.3f%10s%10s %c %c %c %c  %10.3f", char(r.scatteringAlgo),
                   Flag(r.azimuthDependence), r.streams, Flag(r.solarIrradianceFile), r.solarIndex,
                   D(r.co2MixingRatio), columns[0], columns[1], Flag(r.solarUserFile), Flag(r.bandModelFile),
                   Flag(r.instrumentFilterFile), Flag(r.updateH2OAerosol), D(r.solarConstant)) &&
               (!r.solarUserFile || Put("1A1", "%-80s", r.solarUserFileName)) &&
               (!r.bandModelFile || Put("1A2", "%-80s", r.bandModelFileName)) &&
               (!r.instrumentFilterFile || Put("1A3", "%-80s", r.instrumentFilterFileName));
    }

    bool CloudModelWithTables() const { return r.cloudModel >= 1 && r.cloudModel <= 10; }

    bool Card2() {
        float const *v = r.card2;
        if (!Put("2", "%2s%3d%c%4d%3s%2d%5d%5d%5d%10.3f%10.3f%10.3f%10.3f%10.3f", r.aerosolPlus ? "A+" : "  ",
                 int(r.aerosolAttenuation), r.navyFlag ? 'N' : ' ', int(r.aerosolProfile), r.ussFlag ? "USS" : "   ",
                 int(r.volcano), r.coastal, int(r.cloudModel), r.avsa ? 1 : 0, D(v[0]), D(v[1]), D(v[2]), D(v[3]),
                 D(v[4])))
            return false;
        auto const &a = r.adjustments;
        for (int k = 0; r.aerosolPlus && k < 4; k += 2)
            if (!Put("2A+", " %9.0f %9.0f %9.0f                     %9.0f %9.0f %9.0f", D(a[0][k]), D(a[1][k]),
                     D(a[2][k]), D(a[0][k + 1]), D(a[1][k + 1]), D(a[2][k + 1])))
                return false;
        float const *c = r.clouds, *e = r.cloudExtra;
        if ((r.cloudModel == CRM_CIRRUS || r.cloudModel == CRM_THIN_CIRRUS) &&
            !Put("2A", "%8.3f%8.3f%8.3f", D(c[0]), D(c[1]), D(c[2])))
            return false;
        if (CloudModelWithTables() &&
            !Put("2A", "%8.3f%8.3f%8.3f%4d%4d%8.3f%8.3f%8.3f%8.3f%8.3f%8.3f", D(c[0]), D(c[1]), D(c[2]),
                 r.nLayerBoundaries, r.nCloudProfile, D(e[0]), D(e[1]), D(e[2]), D(e[3]), D(e[4]), D(e[5])))
            return false;
        float const *s = r.avsaValues;
        return !r.avsa || Put("2B", "%10.3f%10.3f%10.3f", D(s[0]), D(s[1]), D(s[2]));
    }

    bool UserAtmosphere() {
        if (r.atmosphereCache != 1 || (r.atmosphereModel != AM_USER_HORIZONTAL && r.atmosphereModel != AM_USER_DEFINED))
            return true;
        int count = r.nLevels < 0 ? 0 : r.nLevels > kModtranMaxLevels ? kModtranMaxLevels : r.nLevels;
        if (!Put("2C", "%5d%5d%5d%65s", count, r.extended ? 1 : 0, int(r.aerosolModelType), r.userTitle)) return false;
        for (int i = 0; i < count; ++i)
            if (!Level(r.levels[i])) return false;
        return true;
    }

    bool Level(USER_LEVEL const &l) {
        float const *v = l.values;
        char u[15];
        for (int i = 0; i < 15; ++i)
            u[i] = ABUnits2char(l.units[i]) ? ABUnits2char(l.units[i]) : ' ';
        if (!Put("2C1", "%10.3f%10s%10s%10s%10s%10s%c%c%c%c%c%c%c%c%c%c%c%c%c%c %c", D(l.altitude), Sci(v[0]),
                 Sci(v[1]), Sci(v[2]), Sci(v[3]), Sci(v[4]), u[0], u[1], u[2], u[3], u[4], u[5], u[6], u[7], u[8],
                 u[9], u[10], u[11], u[12], u[13], u[14]))
            return false;
        float const *x = l.extended, *h = l.heavy;
        if (r.extended && !(Put("2C2", "%10s%10s%10s%10s%10s%10s%10s%10s", Sci(x[0]), Sci(x[1]), Sci(x[2]), Sci(x[3]),
                                Sci(x[4]), Sci(x[5]), Sci(x[6]), Sci(x[7])) &&
                            Put("2C2", "%10s", Sci(x[8]))))
            return false;
        if (r.extended && r.heavySpecies == 2 &&
            !(Put("2C2X", "%10s%10s%10s%10s%10s%10s%10s%10s", Sci(h[0]), Sci(h[1]), Sci(h[2]), Sci(h[3]), Sci(h[4]),
                  Sci(h[5]), Sci(h[6]), Sci(h[7])) &&
              Put("2C2X", "%10s%10s%10s%10s%10s", Sci(h[8]), Sci(h[9]), Sci(h[10]), Sci(h[11]), Sci(h[12]))))
            return false;
        float const *a = l.aerosol;
        if (r.aerosolModelType == AMT_PER_LEVEL)
            return Put("2C3", "          %10.3f%10.3f%10.3f%5d%5d%5d%5d%5d", D(a[0]), D(a[1]), D(a[2]),
                       int(l.attenuation), int(l.cloud), int(l.volcano), int(l.profile), l.flag ? 1 : 0);
        if (r.aerosolModelType == AMT_PER_LEVEL_2)
            return Put("2C3", "          %10.3f          %10.3f%10.3f%10.3f%10.3f", D(a[0]), D(a[1]), D(a[2]), D(a[3]),
                       D(a[4]));
        return true;
    }

    bool AerosolRegions() {
        if (r.cloudModel != CRM_USER_AEROSOL && r.aerosolAttenuation != 7) return true;
        AEROSOL_REGION const *g = r.regions;
        if (!Put("2D", "%5d%5d%5d%5d", g[0].nSpectra, g[1].nSpectra, g[2].nSpectra, g[3].nSpectra)) return false;
        for (int i = 0; i < 4; ++i) {
            if (g[i].nSpectra <= 0) continue;
            int spectra = SpectraOfRegion(owner, r, i);
            if (spectra < 0 || !Put("2D1", "%10s%-72s", Sci(g[i].value), g[i].title)) return false;
            for (int k = 0; k < spectra; k += 3) {
                char line[128] = "";
                size_t n = 0;
                for (int j = k; j < k + 3 && j < spectra; ++j) {
                    float const *s = g[i].spectra[j];
                    if (!Piece("2D2", line, sizeof line, n, "%6.2f%7.4f%7.4f%6.3f", D(s[0]), D(s[1]), D(s[2]),
                               D(s[3])))
                        return false;
                }
                if (!Put("2D2", "%s", line)) return false;
            }
        }
        return true;
    }

    bool CloudTables() {
        if (!CloudModelWithTables()) return true;
        for (int i = 0; r.nLayerBoundaries > 2 && i < r.nLayerBoundaries && i < kModtranMaxCloudRows; ++i) {
            float const *v = r.layerBoundaries[i];
            if (!Put("2E1", "%10.5f%10.5f%10.5f%10.5f", D(v[0]), D(v[1]), D(v[2]), D(v[3]))) return false;
        }
        for (int i = 0; r.nCloudProfile > 1 && i < r.nCloudProfile && i < kModtranMaxCloudRows; ++i) {
            float const *v = r.cloudProfile[i];
            if (!Put("2E2", "%10.5f%10.5f%10.5f%10.5f%10.5f%10.5f%10.5f", D(v[0]), D(v[1]), D(v[2]), D(v[3]),
                     D(v[4]), D(v[5]), D(v[6])))
                return false;
        }
        return true;
    }

    // Phi goes behind five blanks, in columns 71-80 where the tool reads it.
    bool Card3() {
        ClearUnusedGeometry(r);
        if (r.executionMode == EM_DIRECT_SUN)
            return Put("3", "%10.3f%10.3f%10.3f%5d     %10.3f%5d%10.3f", D(r.h1), D(r.h2), D(r.angle), r.solarDay,
                       D(r.r0), int(r.source), D(r.solarAngle));
        if (!Put("3", "%10.3f%10.3f%10.3f%10.3f%10.3f%10.3f%5d     %10.3f", D(r.h1), D(r.h2), D(r.angle), D(r.range),
                 D(r.beta), D(r.r0), int(r.pathLength), D(r.phi)))
            return false;
        if (r.executionMode != EM_RADIANCE_WITH_SUN) return true;
        float const *p = r.solarParameters;
        return Put("3A1", "%5d%5d%5d%5d", r.slLosType, int(r.phaseFunctionType), r.solarDay, int(r.source)) &&
               Put("3A2", "%10.3f%10.3f%10.3f%10.3f%10.3f%10.3f%10.3f", D(p[0]), D(p[1]), D(p[2]), D(p[3]), D(p[4]),
                   D(p[5]), D(p[6])) &&
               PhaseFunction();
    }

    // Eight values to a line, each " %9.0f" or " %9s"; a series starts a line.
    bool Series(char const *name, float const *values, int count, bool scientific) {
        char line[128] = "";
        size_t n = 0;
        for (int i = 0; i < count; ++i) {
            if (!(scientific ? Piece(name, line, sizeof line, n, " %9s", Sci(values[i]))
                             : Piece(name, line, sizeof line, n, " %9.0f", D(values[i]))))
                return false;
            if ((i + 1) % 8 == 0 || i + 1 == count) {
                if (!Put(name, "%s", line)) return false;
                n = 0;
                line[0] = '\0';
            }
        }
        return true;
    }

    bool PhaseFunction() {
        if (r.phaseFunctionType != PFT_USER) return true;
        int angles = r.nPhaseAngles < 0 ? 0 : r.nPhaseAngles > kModtranMaxPhaseAngles ? kModtranMaxPhaseAngles : r.nPhaseAngles;
        int wavelengths = r.nPhaseWavelengths < 0                           ? 0
                          : r.nPhaseWavelengths > kModtranMaxPhaseWavelengths ? kModtranMaxPhaseWavelengths
                                                                            : r.nPhaseWavelengths;
        if (!Put("3B1", "%5d%5d", angles, wavelengths)) return false;
        if (wavelengths == 0) {
            for (int i = 0; i < angles; ++i) {
                float const *v = r.phaseRows[i];
                if (!Put("3B2", "%10s%10s%10s%10s%10s", Sci(v[0]), Sci(v[1]), Sci(v[2]), Sci(v[3]), Sci(v[4])))
                    return false;
            }
            return true;
        }
        float values[kModtranMaxPhaseAngles * kModtranMaxPhaseWavelengths * 4];
        int count = 0;
        for (int a = 0; a < angles; ++a)
            for (int w = 0; w < wavelengths; ++w)
                for (float v : r.phaseTable[a][w])
                    values[count++] = v;
        return Series("3C1", r.phaseAngles, angles, false) && Series("3C2", r.phaseWavelengths, wavelengths, false) &&
               Series("3C3", values, count, true);
    }

    bool Card4() {
        return Put("4", "%10.3f%10.3f%10.3f%10.3f%c%c%8s%c%c%c%c%c%c%c", D(r.start), D(r.end), D(r.step), D(r.fwhm),
                   r.outputYUnit, r.outputXUnit, r.delimiter, char(r.inputXUnit), char(r.slit), char(r.fwhmType),
                   r.degradeType, r.saveNonDegraded ? 'S' : ' ', r.useSavedDegraded ? 'R' : ' ', r.fluxTableType);
    }

    bool Card4A() {
        if (r.surfaceReflectance != SR_BRDF && r.surfaceReflectance != SR_LAMBER) return true;
        int count = r.nSurfaces < 0 ? 0 : r.nSurfaces > kModtranMaxSurfaces ? kModtranMaxSurfaces : r.nSurfaces;
        if (!Put("4A", "%1d%9.0f", count, D(r.surfaceTemperature))) return false;
        for (int i = 0; i < count; ++i)
            if (!(r.surfaceReflectance == SR_BRDF ? BRDFSurface(r.surfaces[i]) : LamberSurface(r.surfaces[i])))
                return false;
        return true;
    }

    bool BRDFSurface(SURFACE const &s) {
        int rows = s.nRows < 0 ? 0 : s.nRows > kModtranMaxBRDFRows ? kModtranMaxBRDFRows : s.nRows;
        if (!Put("4B1", "%80d", int(s.function)) || !Put("4B2", "%d %f %f", rows, D(s.zenith), D(s.azimuth)))
            return false;
        for (int i = 0; i < rows; ++i) {
            float const *v = s.rows[i];
            if (!Put("4B3", "%f %f %f %f %f %f", D(v[0]), D(v[1]), D(v[2]), D(v[3]), D(v[4]), D(v[5]))) return false;
        }
        return true;
    }

    bool LamberSurface(SURFACE const &s) { return Put("4L", "%80s", s.files[0]) && Put("4L", "%80s", s.files[1]); }

    CModtranTape5File &owner;
    RUN &r;
    ICardSink &sink;
};

} // namespace

bool CModtranTape5File::SaveRun(IFile &file, int) {
    RUN *run = Current();
    if (!run) return false;
    CFileSink sink(file);
    return CRunWriter(*this, *run, sink).Write();
}

bool CModtranTape5File::GetCards(TArray<CString> &names, TArray<CString> &lines) {
    names.Empty();
    lines.Empty();
    RUN *run = Current();
    if (!run) return false;
    CListSink sink(names, lines);
    return CRunWriter(*this, *run, sink).Write();
}

bool CModtranTape5File::Save(IFile &file) {
    for (int i = 0; i < nRuns(); ++i)
        runs[uint32_t(i)].repeat = i + 1 < nRuns() ? 1 : 0;
    for (int i = 0; i < nRuns(); ++i)
        if (!UseRun(i) || !SaveRun(file, i ? 1 : 0)) return false;
    return true;
}

} // namespace qv
