// CRCalFile as a whole: construction, defaults, copies, extraction, merging,
// presets and the page access every other part of the class goes through.
#include "qv/calibration/RCalFile.h"

namespace qv {

CRCalFile::CRCalFile() : Pages(*this), SpectralResponse(*this), Modtran(*this), AdditionalResponses(*this) {
    DefaultCal();
}

CRCalFile::CRCalFile(CRCalFile const &other) : CRCalFile() {
    Copy(other);
}

CRCalFile &CRCalFile::operator=(CRCalFile const &other) {
    Copy(other);
    return *this;
}

CRCalFile::~CRCalFile() = default;

void CRCalFile::Destroy() {
    CalPages.Empty();
    AdditionalResponse.Empty();
    FileRevision = 0;
}

void CRCalFile::DefaultCal() {
    LookupUpdates = true;
    ResponseFile.Empty();
    ModtranFile.Empty();
    UseResponseFile = false;
    ResponseStatus = ModtranStatus = RS_NotLoaded;
    TophatStart = BandpassLow = UsedBandpassLow = 3.0;
    TophatEnd = BandpassHigh = UsedBandpassHigh = 5.0;
    TophatDelta = 0.001;
    UseTophat = false;
    BandpassOverridden = false;
    Range = 1.0;
    RangeSet = false;
    TransmissionEnabled = PathRadianceEnabled = false;
    HFOV = VFOV = 0;
    FOVSet = false;
    AdditionalResponse.Empty();
    CalPages.Empty();
    Tags.Empty();
    FileRevision = 7;
}

void CRCalFile::Copy(CRCalFile const &src) {
    if (&src == this) return;
    Destroy();
    ResponseFile = src.ResponseFile;
    UseResponseFile = src.UseResponseFile;
    RawResponse = src.RawResponse;
    FinalResponse = src.FinalResponse;
    ResponseStatus = src.ResponseStatus;
    ModtranFile = src.ModtranFile;
    TransmissionEnabled = src.TransmissionEnabled;
    PathRadianceEnabled = src.PathRadianceEnabled;
    RawTransmission = src.RawTransmission;
    FinalTransmission = src.FinalTransmission;
    RawPathRadiance = src.RawPathRadiance;
    FinalPathRadiance = src.FinalPathRadiance;
    ModtranStatus = src.ModtranStatus;
    UseTophat = src.UseTophat;
    TophatStart = src.TophatStart;
    TophatEnd = src.TophatEnd;
    TophatDelta = src.TophatDelta;
    BandpassLow = src.BandpassLow;
    BandpassHigh = src.BandpassHigh;
    BandpassOverridden = src.BandpassOverridden;
    UsedBandpassLow = src.UsedBandpassLow;
    UsedBandpassHigh = src.UsedBandpassHigh;
    Range = src.Range;
    RangeSet = src.RangeSet;
    VFOV = src.VFOV;
    HFOV = src.HFOV;
    FOVSet = src.FOVSet;
    Tags = src.Tags;
    AdditionalResponse = src.AdditionalResponse;
    CalPages = src.CalPages;
}

bool CRCalFile::RemoveAllExcept(int page) {
    if (!PageInRange(page)) return false;
    for (int i = int(CalPages.GetSize()) - 1; i >= 0; --i)
        if (i != page) CalPages.Remove(uint32_t(i));
    return true;
}

bool CRCalFile::Extract(CRCalFile &out, int page) {
    if (!PageInRange(page)) return false;
    CAL_PAGE kept = CalPages[uint32_t(page)];
    out.Copy(*this);
    out.CalPages.Empty();
    out.CalPages.Add(kept);
    return true;
}

bool CRCalFile::Merge(CRCalFile &a, CRCalFile &b, CRCalFile &c, CRCalFile &d, int which) {
    // Page 0 of each source is taken first: a source may be this object.
    // Reaching page 0 of a source without pages grows it a default page.
    TArray<CAL_PAGE> merged;
    for (CRCalFile *source : {&a, &b, &c, &d})
        merged.Add(source->CalPages[0]);
    CRCalFile *scalars = which == 1 ? &b : which == 2 ? &c : which == 3 ? &d : &a;
    Copy(*scalars);
    CalPages = merged;
    return true;
}

bool CRCalFile::ImportPreset(CRCalFile &src, int srcPage, int dstPage) {
    if (srcPage < 0 || srcPage > int(src.CalPages.GetSize()) || dstPage < 0 || dstPage > 3) return false;
    CAL_PAGE preset = src.CalPages[uint32_t(srcPage)];
    CalPages[uint32_t(dstPage)] = preset;
    UpdateCalPage(dstPage);
    if (!LookupUpdates) UpdateCalPageLookup(dstPage);
    return true;
}

int CRCalFile::GetNumCoeffsForOrder(int order) {
    if (order == -1 || order == -2) return 2;
    return order > 0 ? order + 1 : 0;
}

CRCalFile::CAL_PAGE *CRCalFile::PageInRange(int page) {
    if (page < 0 || page >= int(CalPages.GetSize())) return nullptr;
    return &CalPages[uint32_t(page)];
}

CRCalFile::CAL_PAGE *CRCalFile::ReachPage(int page) {
    if (page < 0 || page > int(CalPages.GetSize())) return nullptr;
    uint32_t index = uint32_t(page);
    if (index == CalPages.GetSize() && !CalPages.SetSize(index + 1)) return nullptr;
    return &CalPages[index];
}

CRCalFile::CAL_POINT *CRCalFile::PointInRange(int page, int point) {
    CAL_PAGE *p = PageInRange(page);
    if (!p || point < 0 || point >= int(p->Points.GetSize())) return nullptr;
    return &p->Points[uint32_t(point)];
}

CRCalFile::RESPONCE *CRCalFile::ReachResponse(int index) {
    if (index < 0 || index > int(AdditionalResponse.GetSize())) return nullptr;
    uint32_t i = uint32_t(index);
    if (i == AdditionalResponse.GetSize() && !AdditionalResponse.SetSize(i + 1)) return nullptr;
    return &AdditionalResponse[i];
}

} // namespace qv
