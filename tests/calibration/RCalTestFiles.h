// RCAL files written byte by byte from the file layout, independently of
// CRCalFile::Save, so that loading them checks the reader against the format
// and not against the writer. One page, one additional response, three
// enabled points and one disabled point; each revision is the file cut
// behind its last section, as older writers ended it.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace caltest {

class RCalBytes {
public:
    std::vector<uint8_t> bytes;

    void Raw(void const *p, size_t n) {
        auto const *b = static_cast<uint8_t const *>(p);
        bytes.insert(bytes.end(), b, b + n);
    }
    void U8(uint8_t v) { Raw(&v, 1); }
    void U16(uint16_t v) { Raw(&v, 2); } // the test machines are little-endian
    void U32(uint32_t v) { Raw(&v, 4); }
    void F64(double v) { Raw(&v, 8); }
    void Astr(std::string const &s) {
        U8(uint8_t(s.size()));
        Raw(s.data(), s.size());
    }
    void Str(std::string const &s) {
        U32(uint32_t(s.size()));
        Raw(s.data(), s.size());
    }
    void F64s(std::vector<double> const &v) { Raw(v.data(), v.size() * 8); }
};

// What the built file holds.
struct OldFileValues {
    double tophatStart = 3.0, tophatEnd = 5.0, tophatDelta = 0.01;
    std::vector<double> temps = {20, 60, 100};
    std::vector<double> counts = {4000, 6500, 10000};
    double disabledTemp = 40, disabledCounts = 5200;
    int polyOrder = 1, tempPolyOrder = 4;
    double lookupStart = 0, lookupEnd = 120, lookupDelta = 2;
    // Section 3 onwards.
    std::vector<double> responseX = {3.0, 3.5, 4.0, 4.5, 5.0}, responseY = {0, 1, 1, 1, 0};
    std::vector<double> coefficients = {-0.001, 2.5e-7};
    std::vector<double> tempCoefficients = {-40, 9e5, -1e9, 5e11, -1e14};
    double range = 250, vfov = 12, hfov = 16;
    std::vector<double> usedTemp = {1, 2, 3, 4, 5};
    double background = 17.5;
    double minCounts = 4000, maxCounts = 10000;
};

// The file of a revision (0 to 7).
inline std::vector<uint8_t> BuildOldRCal(int revision, OldFileValues const &v = OldFileValues()) {
    RCalBytes f;
    f.Raw("____RCAL", 8);
    f.U16(0);
    f.Astr("");        // ResponseFile
    f.U32(0);          // UseResponseFile
    f.Astr("");        // ModtranFile
    f.U32(0);          // TransmissionEnabled
    f.U32(0);          // PathRadianceEnabled
    f.U32(1);          // one additional response
    f.Astr("filter.xy");
    f.U32(0);
    f.U32(1); // one page
    f.U8(1);  // Valid
    f.U32(11);
    f.U32(12);
    f.U32(1); // UseTophat
    f.F64(v.tophatStart);
    f.F64(v.tophatEnd);
    f.F64(v.tophatDelta);
    f.U32(uint32_t(v.temps.size()));
    for (size_t i = 0; i < v.temps.size(); ++i) {
        f.F64(v.temps[i]);
        f.F64(1.0);
        f.F64(0.25); // AuxA
        f.F64(0.5);  // AuxB
        f.F64(v.counts[i]);
        f.U8(0); // AuxFlag false: comes back true
    }
    f.F64(13); // ParamC
    f.F64(14); // ParamD
    f.U32(uint32_t(v.polyOrder));
    f.F64(v.lookupStart);
    f.F64(v.lookupEnd);
    f.F64(1.0); // LookupEmissivity
    f.F64(v.lookupDelta);
    f.F64(15); // ParamF
    f.F64(16); // ParamE
    f.U32(uint32_t(v.tempPolyOrder));
    f.U32(0); // no stored lookup
    if (revision < 1) return f.bytes;
    for (size_t i = 0; i < v.temps.size(); ++i) {
        f.U32(0); // no reflected term
        f.F64(1.0);
        f.F64(0);
        f.F64(0);
    }
    if (revision < 2) return f.bytes;
    f.U32(1); // one disabled point
    f.F64(v.disabledTemp);
    f.F64(1.0);
    f.F64(0);
    f.F64(0);
    f.F64(v.disabledCounts);
    f.U8(1);
    f.U32(1); // reflected radiance given
    f.F64(0.9);
    f.F64(25);
    f.F64(1e-4);
    if (revision < 3) return f.bytes;
    f.U32(uint32_t(v.responseX.size()));
    f.F64s(v.responseX);
    f.F64s(v.responseY);
    f.U32(0); // no atmosphere
    f.F64(3.5);
    f.F64(4.5);
    f.U32(2); // the filter's curve
    f.F64s({3.0, 5.0});
    f.F64s({1.0, 1.0});
    for (size_t i = 0; i <= v.temps.size(); ++i)
        f.F64(0.001 * double(i + 1)); // radiances, recomputed for 3 to 5
    f.U32(uint32_t(v.coefficients.size()));
    f.F64s(v.coefficients);
    f.F64(0.99);
    f.U32(uint32_t(v.tempCoefficients.size()));
    f.F64s(v.tempCoefficients);
    f.F64(0.98);
    if (revision < 4) return f.bytes;
    f.U8(0);
    f.F64(3.5);
    f.F64(4.5);
    f.F64(v.range);
    f.U8(1);
    f.F64(v.vfov);
    f.F64(v.hfov);
    f.U8(1);
    f.U8(0); // coefficients not overridden
    f.U32(0);
    f.U32(0);
    f.U8(1); // temperature coefficients overridden
    f.U32(4);
    f.U32(uint32_t(v.usedTemp.size()));
    f.F64s(v.usedTemp);
    f.F64(0.8); // TPFact
    f.U8(1);
    f.U32(2); // BG_Fixed
    f.F64(v.background);
    f.U32(1); // one background image of 2 x 1
    f.U32(0);
    f.U32(0);
    f.U32(2);
    f.U32(1);
    f.U32(2);
    f.F64s({7, 8});
    if (revision < 5) return f.bytes;
    f.U32(1);
    f.Str("Camera");
    f.Str("SC-1");
    f.U32(1);
    f.Str("Lens");
    f.Str("25 mm");
    if (revision < 6) return f.bytes;
    f.U32(7);
    if (revision < 7) return f.bytes;
    f.U8(0); // RangeAuto off: the stored range stands
    f.F64(v.minCounts);
    f.F64(v.maxCounts);
    f.F64(0.01);
    f.F64(0.02);
    f.F64(20);
    f.F64(100);
    return f.bytes;
}

} // namespace caltest
