// Writing an RCAL file: the base section and every later section, always all
// of them, so a saved file is of the current revision.
#include "qv/calibration/RCalFile.h"
#include "qv/calibration/RCalRevisions.h"
#include "qv/calibration/RCalStream.h"
#include "qv/filesystems/AtomicSave.h"

namespace qv {

using namespace calibration_detail;

namespace {

using CAL_PAGE = CRCalFile::CAL_PAGE;
using CAL_POINT = CRCalFile::CAL_POINT;

uint32_t CountPoints(CAL_PAGE const &page, bool enabled) {
    uint32_t n = 0;
    for (uint32_t i = 0; i < page.Points.GetSize(); ++i)
        n += page.Points.GetAt(i).Enabled == enabled;
    return n;
}

// Calls visit for the enabled points in order, then the disabled ones: the
// order the file keeps them in.
template <class Visit> void ForPointsInFileOrder(CAL_PAGE const &page, Visit &&visit) {
    for (bool enabled : {true, false})
        for (uint32_t i = 0; i < page.Points.GetSize(); ++i)
            if (page.Points.GetAt(i).Enabled == enabled) visit(page.Points.GetAt(i));
}

void WriteMeasured(CRCalWriter &w, CAL_POINT const &p) {
    w.F64(p.Temperature);
    w.F64(p.Emissivity);
    w.F64(p.AuxA);
    w.F64(p.AuxB);
    w.F64(p.Measurement);
    w.Bool(p.AuxFlag);
}

void WriteReflected(CRCalWriter &w, CAL_POINT const &p) {
    w.U32(uint32_t(p.ReflectedType));
    w.F64(p.ReflectedEmissivity);
    w.F64(p.ReflectedTemperature);
    w.F64(p.ReflectedRadiance);
}

void WriteBasePage(CRCalWriter &w, CRCalFile const &cal, CAL_PAGE const &page) {
    w.Bool(page.Valid);
    w.I32(page.ParamA);
    w.I32(page.ParamB);
    // The top hat is file-wide; every page carries a copy of it.
    w.BOOL(cal.UseTophat);
    w.F64(cal.TophatStart);
    w.F64(cal.TophatEnd);
    w.F64(cal.TophatDelta);
    w.U32(CountPoints(page, true));
    for (uint32_t i = 0; i < page.Points.GetSize(); ++i)
        if (page.Points.GetAt(i).Enabled) WriteMeasured(w, page.Points.GetAt(i));
    w.F64(page.ParamC);
    w.F64(page.ParamD);
    w.U32(uint32_t(page.PolyOrder));
    w.F64(page.LookupStart);
    w.F64(page.LookupEnd);
    w.F64(page.LookupEmissivity);
    w.F64(page.LookupDelta);
    w.F64(page.ParamF);
    w.F64(page.ParamE);
    w.U32(uint32_t(page.TempPolyOrder));
    w.U32(page.LookupRadiance.GetSize());
    w.Doubles(page.LookupRadiance);
    w.Doubles(page.LookupTemperature);
}

void WriteBase(CRCalWriter &w, CRCalFile const &cal) {
    w.Bytes(kRCalMagic, 8);
    w.U16(0);
    w.ArchiveString(cal.ResponseFile);
    w.BOOL(cal.UseResponseFile);
    w.ArchiveString(cal.ModtranFile);
    w.BOOL(cal.TransmissionEnabled);
    w.BOOL(cal.PathRadianceEnabled);
    w.U32(cal.AdditionalResponse.GetSize());
    for (uint32_t i = 0; i < cal.AdditionalResponse.GetSize(); ++i) {
        w.ArchiveString(cal.AdditionalResponse.GetAt(i).File);
        w.BOOL(cal.AdditionalResponse.GetAt(i).Enabled);
    }
    w.U32(cal.CalPages.GetSize());
    for (uint32_t i = 0; i < cal.CalPages.GetSize(); ++i)
        WriteBasePage(w, cal, cal.CalPages.GetAt(i));
}

void WriteReflectedSection(CRCalWriter &w, CRCalFile const &cal) {
    for (uint32_t i = 0; i < cal.CalPages.GetSize(); ++i) {
        CAL_PAGE const &page = cal.CalPages.GetAt(i);
        for (uint32_t j = 0; j < page.Points.GetSize(); ++j)
            if (page.Points.GetAt(j).Enabled) WriteReflected(w, page.Points.GetAt(j));
    }
}

void WriteDisabledSection(CRCalWriter &w, CRCalFile const &cal) {
    for (uint32_t i = 0; i < cal.CalPages.GetSize(); ++i) {
        CAL_PAGE const &page = cal.CalPages.GetAt(i);
        w.U32(CountPoints(page, false));
        for (uint32_t j = 0; j < page.Points.GetSize(); ++j)
            if (!page.Points.GetAt(j).Enabled) {
                WriteMeasured(w, page.Points.GetAt(j));
                WriteReflected(w, page.Points.GetAt(j));
            }
    }
}

void WriteCurve(CRCalWriter &w, CRCalFile::SResponse const &curve) {
    w.U32(curve.X.GetSize());
    w.Doubles(curve.X);
    w.Doubles(curve.Y);
}

void WriteCurvesSection(CRCalWriter &w, CRCalFile const &cal) {
    WriteCurve(w, cal.RawResponse);
    WriteCurve(w, cal.RawTransmission);
    w.Doubles(cal.RawPathRadiance.Y);
    w.F64(cal.BandpassLow);
    w.F64(cal.BandpassHigh);
    for (uint32_t i = 0; i < cal.AdditionalResponse.GetSize(); ++i)
        WriteCurve(w, cal.AdditionalResponse.GetAt(i).Raw);
    for (uint32_t i = 0; i < cal.CalPages.GetSize(); ++i) {
        CAL_PAGE const &page = cal.CalPages.GetAt(i);
        ForPointsInFileOrder(page, [&](CAL_POINT const &p) { w.F64(p.Radiance); });
        w.CountedDoubles(page.Coefficients);
        w.F64(page.R2);
        w.CountedDoubles(page.TempCoefficients);
        w.F64(page.TempR2);
    }
}

void WriteBackgrounds(CRCalWriter &w, CAL_PAGE const &page, bool withImages) {
    uint32_t n = withImages ? page.BackgroundFiles.GetSize() : 0;
    w.U32(n);
    for (uint32_t i = 0; i < n; ++i) {
        CRCalFile::BACKGROUND_FILE const &b = page.BackgroundFiles.GetAt(i);
        w.U32(b.ReservedA);
        w.U32(b.ReservedB);
        w.U32(b.Width);
        w.U32(b.Height);
        w.CountedDoubles(b.Values);
    }
}

void WriteOverridesSection(CRCalWriter &w, CRCalFile const &cal, bool withImages) {
    w.Bool(cal.BandpassOverridden);
    w.F64(cal.UsedBandpassLow);
    w.F64(cal.UsedBandpassHigh);
    w.F64(cal.Range);
    w.Bool(cal.RangeSet);
    w.F64(cal.VFOV);
    w.F64(cal.HFOV);
    w.Bool(cal.FOVSet);
    for (uint32_t i = 0; i < cal.CalPages.GetSize(); ++i) {
        CAL_PAGE const &page = cal.CalPages.GetAt(i);
        w.Bool(page.CoeffsOverridden);
        w.I32(page.UsedPolyOrder);
        w.CountedDoubles(page.UsedCoefficients);
        w.Bool(page.TempCoeffsOverridden);
        w.I32(page.UsedTempPolyOrder);
        w.CountedDoubles(page.UsedTempCoefficients);
        w.F64(page.TPFact);
        w.Bool(page.TPFactSet);
        w.I32(page.BackgroundType);
        w.F64(page.BackgroundValue);
        WriteBackgrounds(w, page, withImages);
    }
}

void WriteTagList(CRCalWriter &w, TArray<SNameValuePair> const &tags) {
    w.U32(tags.GetSize());
    for (uint32_t i = 0; i < tags.GetSize(); ++i) {
        w.String(tags.GetAt(i).Name);
        w.String(tags.GetAt(i).Value);
    }
}

void WriteTagsSection(CRCalWriter &w, CRCalFile const &cal) {
    WriteTagList(w, cal.Tags);
    for (uint32_t i = 0; i < cal.CalPages.GetSize(); ++i)
        WriteTagList(w, cal.CalPages.GetAt(i).Tags);
}

void WriteRangesSection(CRCalWriter &w, CRCalFile const &cal) {
    for (uint32_t i = 0; i < cal.CalPages.GetSize(); ++i) {
        CAL_PAGE const &page = cal.CalPages.GetAt(i);
        w.Bool(page.RangeAuto);
        w.F64(page.MinCounts);
        w.F64(page.MaxCounts);
        w.F64(page.MinRadiance);
        w.F64(page.MaxRadiance);
        w.F64(page.MinTemperature);
        w.F64(page.MaxTemperature);
    }
}

} // namespace

bool CRCalFile::Save(IFile *file, uint32_t flags) {
    if (!file) return false;
    CRCalWriter w(*file);
    WriteBase(w, *this);
    WriteReflectedSection(w, *this);
    WriteDisabledSection(w, *this);
    WriteCurvesSection(w, *this);
    WriteOverridesSection(w, *this, (flags & kSaveWithoutBackgrounds) == 0);
    WriteTagsSection(w, *this);
    w.U32(kRCalMarkValue);
    WriteRangesSection(w, *this);
    return w.Finish();
}

bool CRCalFile::Save(IFileSystem *fs, char16_t const *path, uint32_t flags) {
    return SaveAtomically(fs, path, [&](IFile &file) { return Save(&file, flags); });
}

} // namespace qv
