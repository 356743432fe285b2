// Import: an include file and the RCAL file it names, then the include's
// tags where they differ from what the RCAL file gave. A text compares equal
// to a double when the double, printed at the text's precision, reads back
// as the text: a value typed with two decimals does not count as a change.
#include <cmath>
#include <string>

#include "qv/calibration/RCalFile.h"
#include "qv/calibration/RCalRevisions.h"
#include "qv/core/FmtFloat.h"
#include "qv/core/FloatConversions.h"
#include "qv/core/WideChar.h"
#include "qv/files/IFile.h"
#include "qv/filesystems/FileSystem.h"
#include "qv/filesystems/Path.h"
#include "qv/formats/tagged/SAFFile.h"

namespace qv {

namespace {

constexpr double kTolerance = 1e-8;
constexpr int kFixedMode = 1, kExponentMode = 2;

std::u16string Trimmed(char16_t const *text) {
    std::u16string s(text);
    size_t first = s.find_first_not_of(u" \t");
    size_t last = s.find_last_not_of(u" \t");
    return first == std::u16string::npos ? std::u16string() : s.substr(first, last - first + 1);
}

size_t DigitsFrom(std::u16string const &s, size_t at) {
    size_t n = 0;
    while (at + n < s.size() && s[at + n] >= u'0' && s[at + n] <= u'9')
        ++n;
    return n;
}

bool TextEquals(char16_t const *text, double v) {
    std::u16string s = Trimmed(text);
    double typed = _wtof(s.c_str());
    size_t point = s.find(u'.');
    if (point == std::u16string::npos) return std::fabs(typed - v) <= kTolerance;
    int precision = int(DigitsFrom(s, point + 1));
    size_t e = s.find_first_of(u"eE");
    int expWidth = 0;
    if (e != std::u16string::npos) {
        size_t digits = e + 1 < s.size() && (s[e + 1] == u'+' || s[e + 1] == u'-') ? e + 2 : e + 1;
        expWidth = int(DigitsFrom(s, digits));
    }
    char16_t buffer[400];
    FmtFloat(buffer, 400, e != std::u16string::npos ? kExponentMode : kFixedMode, v, precision, expWidth);
    return std::fabs(CFlt64::Parse(buffer) - typed) < kTolerance;
}

// Page X's tag: "name_X", else for page 0 the bare name. Null if neither.
char16_t const *PageTag(CSAFFile &saf, char16_t const *name, int page) {
    char16_t const *value = saf.GetTagValue(CString::FromFormat(u"%s_%d", name, page));
    if (!value && page == 0) value = saf.GetTagValue(name);
    return value;
}

class CImporter {
public:
    CImporter(CRCalFile &cal, CSAFFile &saf) : cal_(cal), saf_(saf) {}

    void Run() {
        Bandpass();
        FieldOfView();
        SlantRange();
        for (int page = 0; page < int(cal_.CalPages.GetSize()); ++page) {
            Factor(page);
            Background(page);
            Polynomial(page, u"PolyOrder", u"Coeff", false);
            Polynomial(page, u"TempPolyOrder", u"TempCoeff", true);
        }
    }

private:
    void Bandpass() {
        char16_t const *up = saf_.GetTagValue(u"SBPUp"), *lo = saf_.GetTagValue(u"SBPLo");
        if (!up || !lo || (TextEquals(up, cal_.BandpassHigh) && TextEquals(lo, cal_.BandpassLow))) return;
        cal_.SetUsedBandpass(_wtof(lo), _wtof(up), true);
    }

    void FieldOfView() {
        char16_t const *h = saf_.GetTagValue(u"IHFOV"), *v = saf_.GetTagValue(u"IVFOV");
        if (!h || !v) return;
        if (cal_.FOVSet && TextEquals(h, cal_.HFOV) && TextEquals(v, cal_.VFOV)) return;
        cal_.SetFOV(_wtof(h), _wtof(v), true);
    }

    void SlantRange() {
        char16_t const *range = saf_.GetTagValue(u"SltRng");
        if (!range || (cal_.RangeSet && TextEquals(range, cal_.Range))) return;
        cal_.SetRange(_wtof(range), true);
    }

    void Factor(int page) {
        char16_t const *factor = PageTag(saf_, u"TPFact", page);
        CRCalFile::CAL_PAGE &p = cal_.CalPages[uint32_t(page)];
        if (!factor || (p.TPFactSet && TextEquals(factor, p.TPFact))) return;
        cal_.SetTPFact(page, _wtof(factor), true);
    }

    // "file" images are not read: the type ends as BG_None, which callers
    // of include files rely on.
    void Background(int page) {
        char16_t const *type = PageTag(saf_, u"BgType", page);
        if (!type) return;
        CRCalFile::CAL_PAGE &p = cal_.CalPages[uint32_t(page)];
        std::u16string t = Trimmed(type);
        if (_wcsicmp(t.c_str(), u"file") == 0) {
            p.BackgroundType = BG_None;
        } else if (_wcsicmp(t.c_str(), u"fix") == 0) {
            char16_t const *value = PageTag(saf_, u"BgValu", page);
            if (!value) return;
            p.BackgroundType = BG_Fixed;
            if (!TextEquals(value, p.BackgroundValue)) p.BackgroundValue = _wtof(value);
        } else {
            p.BackgroundType = _wcsicmp(t.c_str(), u"none") == 0 ? BG_None : BG_Unset;
        }
    }

    // An order outside what a file may hold is passed over: the tag is
    // untrusted and would size the coefficient list.
    void Polynomial(int page, char16_t const *orderName, char16_t const *coeffName, bool temperature) {
        char16_t const *orderText = PageTag(saf_, orderName, page);
        if (!orderText) return;
        int order = _wtol(orderText);
        if (order < calibration_detail::kRCalMinOrder || order > calibration_detail::kRCalMaxOrder) return;
        CRCalFile::CAL_PAGE &p = cal_.CalPages[uint32_t(page)];
        int fittedOrder = temperature ? p.TempPolyOrder : p.PolyOrder;
        TArray<double> &fitted = temperature ? p.TempCoefficients : p.Coefficients;
        int n = CRCalFile::GetNumCoeffsForOrder(order);
        TArray<double> values;
        bool same = order == fittedOrder;
        for (int i = 0; i < n; ++i) {
            char16_t const *text = PageTag(saf_, CString::FromFormat(u"%s%d", coeffName, i), page);
            values.Add(text ? _wtof(text) : 0.0);
            same = same && text && uint32_t(i) < fitted.GetSize() && TextEquals(text, fitted[uint32_t(i)]);
        }
        if (same) return;
        if (temperature)
            cal_.SetUsedTempCoefficients(page, order, values.GetData(), true);
        else
            cal_.SetUsedCoefficients(page, order, values.GetData(), true);
    }

    CRCalFile &cal_;
    CSAFFile &saf_;
};

} // namespace

bool CRCalFile::Import(IFileSystem *fs, char16_t const *path) {
    IFileSystem *files = fs ? fs : &GetFileSystem();
    CSAFFile saf;
    if (!saf.Load(files, path)) return false;
    char16_t const *calName = saf.GetTagValue(u"CAFile");
    if (!calName) return false;
    CString calPath = path::MakePath(path::GetDirectory(CString(path)), CString(calName), u'/');
    IFile *file = files->CreateFileW(calPath, 0x212);
    if (!file) return false;
    bool loaded = Load(file, kLoadSkipBackgrounds);
    file->Close();
    delete file;
    if (!loaded) return false;
    CImporter(*this, saf).Run();
    return true;
}

} // namespace qv
