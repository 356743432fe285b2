// The include file (".inc"): a SAF header that names the RCAL file and
// carries as text what other software reads without a binary parser: band
// pass, field of view, slant range, and per page the background, the fit
// orders and both polynomials.
#include "qv/calibration/RCalFile.h"
#include "qv/filesystems/FileSystem.h"
#include "qv/filesystems/Path.h"
#include "qv/formats/tagged/SAFFile.h"

namespace qv {

namespace {

CString Number(double v) {
    return CString::FromFormat(u"%e", v);
}

CString PageName(char16_t const *name, int page) {
    return CString::FromFormat(u"%s_%d", name, page);
}

// Which rows a writer sets: Export all of them, with stand-in values where
// the object holds none; UpdateInclude only those the object holds, so an
// include file's own values survive.
enum class EIncludeRows { kAll, kHeld };

class CIncludeWriter {
public:
    CIncludeWriter(CRCalFile &cal, CSAFFile &saf, EIncludeRows rows) : cal_(cal), saf_(saf), all_(rows == EIncludeRows::kAll) {}

    bool Write(CString const &calName) {
        Set(u"CAFile", calName);
        double lo = 0, hi = 0;
        cal_.GetBandpass(lo, hi);
        Set(u"SBPLo", Number(lo));
        Set(u"SBPUp", Number(hi));
        if (all_ || cal_.FOVSet) {
            Set(u"IHFOV", cal_.FOVSet ? Number(cal_.HFOV) : CString(u"0"));
            Set(u"IVFOV", cal_.FOVSet ? Number(cal_.VFOV) : CString(u"0"));
        }
        if (all_ || cal_.RangeSet) Set(u"SltRng", cal_.RangeSet ? Number(cal_.Range) : CString(u"1.0"));
        for (uint32_t i = 0; i < cal_.Tags.GetSize(); ++i)
            Set(cal_.Tags[i].Name, cal_.Tags[i].Value);
        for (int page = 0; page < int(cal_.CalPages.GetSize()); ++page)
            WritePage(page);
        return ok_;
    }

private:
    void Set(CString const &name, CString const &value) {
        // SetTagValue replaces the first of that name; AddTag appends.
        uint32_t index = 0;
        bool done = saf_.FindTag(name, index) ? saf_.SetTagValue(index, value) : saf_.AddTag(name, value);
        ok_ = ok_ && done;
    }

    // A page is usable when its enabled points can carry its fit.
    bool Usable(CRCalFile::CAL_PAGE const &page) {
        int enabled = 0;
        for (uint32_t i = 0; i < page.Points.GetSize(); ++i)
            enabled += page.Points.GetAt(i).Enabled;
        return enabled >= page.PolyOrder + 1;
    }

    // "Name%d_X" for each coefficient, and the bare "Name%d" for page 0.
    void SetPolynomial(char16_t const *orderName, char16_t const *coeffName, int page, int order,
                       TArray<double> &values) {
        Set(PageName(orderName, page), CString::FromFormat(u"%d", order));
        int n = CRCalFile::GetNumCoeffsForOrder(order);
        for (int i = 0; i < n; ++i) {
            double v = i < int(values.GetSize()) ? values[uint32_t(i)] : 0.0;
            CString name = CString::FromFormat(u"%s%d", coeffName, i);
            Set(PageName(name, page), Number(v));
            if (page == 0) Set(name, Number(v));
        }
    }

    void WritePage(int page) {
        CRCalFile::CAL_PAGE &p = cal_.CalPages[uint32_t(page)];
        if (Usable(p)) {
            Set(PageName(u"EuRaw", page), CString(u"Raw"));
            Set(PageName(u"StdUnt", page), CString(u"17"));
            Set(PageName(u"DaUnit", page), CString(u"W/(sr-cm^2)"));
            bool fixed = p.BackgroundType == BG_Fixed;
            Set(PageName(u"BgType", page), CString(fixed ? u"fix" : u"none"));
            Set(PageName(u"BgValu", page), fixed ? Number(p.BackgroundValue) : CString(u"0"));
            Set(PageName(u"BgFile", page), CString(u""));
            if (all_ || p.TPFactSet) {
                CString factor = p.TPFactSet ? Number(p.TPFact) : CString(u"1.0");
                Set(PageName(u"TPFact", page), factor);
                if (page == 0) Set(u"TPFact", factor);
            }
            int order = 0;
            TArray<double> values;
            cal_.GetPolyOrder(page, order);
            cal_.GetCoefficients(page, values);
            SetPolynomial(u"PolyOrder", u"Coeff", page, order, values);
            cal_.GetTempPolyOrder(page, order);
            cal_.GetTempCoefficients(page, values);
            SetPolynomial(u"TempPolyOrder", u"TempCoeff", page, order, values);
        }
        // A page's own tags go out whether or not it is usable.
        for (uint32_t i = 0; i < p.Tags.GetSize(); ++i)
            Set(PageName(p.Tags[i].Name, page), p.Tags[i].Value);
    }

    CRCalFile &cal_;
    CSAFFile &saf_;
    bool all_;
    bool ok_ = true;
};

// An existing include file is loaded when asked to (a failed load is
// false); otherwise a new one is started.
bool StartInclude(CSAFFile &saf, IFileSystem *fs, CString const &incPath, bool useExisting) {
    if (useExisting && fs->FileExists(incPath)) return saf.Load(fs, incPath);
    return saf.New(true);
}

} // namespace

bool CRCalFile::Export(IFileSystem *fs, char16_t const *path, bool merge) {
    IFileSystem *files = fs ? fs : &GetFileSystem();
    CString incPath = path::ChangeExtension(CString(path), CString(u".inc"));
    CString calPath = path::ChangeExtension(CString(path), CString(u".cal"));
    CSAFFile saf;
    if (!StartInclude(saf, files, incPath, merge)) return false;
    CIncludeWriter writer(*this, saf, EIncludeRows::kAll);
    if (!writer.Write(path::GetFilename(calPath))) return false;
    saf.SortByGroups(true);
    if (!saf.Save(files, incPath, false)) return false;
    // The RCAL half never carries background images.
    return Save(files, calPath, kSaveWithoutBackgrounds);
}

bool CRCalFile::UpdateInclude(IFileSystem *fs, char16_t const *incPath, char16_t const *calPath) {
    IFileSystem *files = fs ? fs : &GetFileSystem();
    CSAFFile saf;
    if (!StartInclude(saf, files, CString(incPath), true)) return false;
    CIncludeWriter writer(*this, saf, EIncludeRows::kHeld);
    if (!writer.Write(path::GetFilename(CString(calPath)))) return false;
    saf.SortByGroups(true);
    return saf.Save(files, incPath, false);
}

} // namespace qv
