// Reading an RCAL file of any revision. The file is parsed into a fresh
// object first, so a file that fails half-way leaves this one at the
// defaults rather than half loaded; then what older revisions lack is
// rebuilt (curves from the named files, radiances, fits, ranges).
#include "qv/calibration/RCalFile.h"
#include "qv/calibration/RCalRevisions.h"
#include "qv/calibration/RCalStream.h"
#include "qv/filesystems/FileSystem.h"

#include <cstring>

namespace qv {

using namespace calibration_detail;

namespace {

using CAL_PAGE = CRCalFile::CAL_PAGE;
using CAL_POINT = CRCalFile::CAL_POINT;

// The stored AuxFlag byte is read and dropped: every loaded point has it
// set, as files written by older tools expect.
CAL_POINT ReadMeasured(CRCalReader &r, bool enabled) {
    CAL_POINT p;
    p.Temperature = r.F64();
    p.Emissivity = r.F64();
    p.AuxA = r.F64();
    p.AuxB = r.F64();
    p.Measurement = r.F64();
    r.Bool();
    p.AuxFlag = true;
    p.Enabled = enabled;
    return p;
}

void ReadReflected(CRCalReader &r, CAL_POINT &p) {
    p.ReflectedType = EReflectedRadianceType(r.U32());
    p.ReflectedEmissivity = r.F64();
    p.ReflectedTemperature = r.F64();
    p.ReflectedRadiance = r.F64();
    if (p.ReflectedType < RRT_None || p.ReflectedType > RRT_Temperature) r.Fail();
}

int32_t ReadOrder(CRCalReader &r) {
    int32_t order = r.I32();
    if (order < kRCalMinOrder || order > kRCalMaxOrder) r.Fail();
    return order;
}

// The top hat is repeated in every page; only page 0's copy counts.
void ReadBasePage(CRCalReader &r, CRCalFile &cal, CAL_PAGE &page, bool first) {
    page.Valid = r.Bool();
    page.ParamA = r.I32();
    page.ParamB = r.I32();
    bool useTophat = r.BOOL();
    double start = r.F64(), end = r.F64(), delta = r.F64();
    if (first) {
        cal.UseTophat = useTophat;
        cal.TophatStart = start;
        cal.TophatEnd = end;
        cal.TophatDelta = delta;
    }
    uint32_t enabled = r.Count(kRCalEnabledPoint);
    if (r.Ok()) page.Points.SetCapacity(enabled);
    for (uint32_t i = 0; i < enabled && r.Ok(); ++i)
        page.Points.Add(ReadMeasured(r, true));
    page.ParamC = r.F64();
    page.ParamD = r.F64();
    page.PolyOrder = ReadOrder(r);
    page.LookupStart = r.F64();
    page.LookupEnd = r.F64();
    page.LookupEmissivity = r.F64();
    page.LookupDelta = r.F64();
    page.ParamF = r.F64();
    page.ParamE = r.F64();
    page.TempPolyOrder = ReadOrder(r);
    uint32_t lookup = r.Count(16);
    r.Doubles(page.LookupRadiance, lookup, true);
    r.Doubles(page.LookupTemperature, lookup, true);
}

void ReadBase(CRCalReader &r, CRCalFile &cal) {
    cal.ResponseFile = r.ArchiveString();
    cal.UseResponseFile = r.BOOL();
    cal.ModtranFile = r.ArchiveString();
    cal.TransmissionEnabled = r.BOOL();
    cal.PathRadianceEnabled = r.BOOL();
    uint32_t responses = r.Count(kRCalMinAdditionalResponse);
    for (uint32_t i = 0; i < responses && r.Ok(); ++i) {
        CRCalFile::RESPONCE response;
        response.File = r.ArchiveString();
        response.Enabled = r.BOOL();
        cal.AdditionalResponse.Add(response);
    }
    uint32_t pages = r.Count(kRCalMinPage);
    for (uint32_t i = 0; i < pages && r.Ok(); ++i) {
        CAL_PAGE page;
        ReadBasePage(r, cal, page, i == 0);
        cal.CalPages.Add(page);
    }
}

void ReadReflectedSection(CRCalReader &r, CRCalFile &cal) {
    for (uint32_t i = 0; i < cal.CalPages.GetSize(); ++i) {
        CAL_PAGE &page = cal.CalPages[i];
        for (uint32_t j = 0; j < page.Points.GetSize() && r.Ok(); ++j)
            ReadReflected(r, page.Points[j]);
    }
}

// Disabled points go behind the enabled ones of their page.
void ReadDisabledSection(CRCalReader &r, CRCalFile &cal) {
    for (uint32_t i = 0; i < cal.CalPages.GetSize() && r.Ok(); ++i) {
        CAL_PAGE &page = cal.CalPages[i];
        uint32_t disabled = r.Count(kRCalDisabledPoint);
        for (uint32_t j = 0; j < disabled && r.Ok(); ++j) {
            CAL_POINT p = ReadMeasured(r, false);
            ReadReflected(r, p);
            page.Points.Add(p);
        }
    }
}

void ReadCurve(CRCalReader &r, CRCalFile::SResponse &curve) {
    uint32_t n = r.Count(16);
    r.Doubles(curve.X, n, true);
    r.Doubles(curve.Y, n, true);
}

// The curves are in the file now: the named files are no longer needed.
void ReadCurvesSection(CRCalReader &r, CRCalFile &cal) {
    ReadCurve(r, cal.RawResponse);
    ReadCurve(r, cal.RawTransmission);
    r.Doubles(cal.RawPathRadiance.Y, cal.RawTransmission.X.GetSize(), true);
    cal.RawPathRadiance.X = cal.RawTransmission.X;
    cal.BandpassLow = r.F64();
    cal.BandpassHigh = r.F64();
    for (uint32_t i = 0; i < cal.AdditionalResponse.GetSize(); ++i)
        ReadCurve(r, cal.AdditionalResponse[i].Raw);
    for (uint32_t i = 0; i < cal.CalPages.GetSize() && r.Ok(); ++i) {
        CAL_PAGE &page = cal.CalPages[i];
        for (uint32_t j = 0; j < page.Points.GetSize(); ++j)
            page.Points[j].Radiance = r.F64();
        r.CountedDoubles(page.Coefficients, true);
        page.R2 = r.F64();
        r.CountedDoubles(page.TempCoefficients, true);
        page.TempR2 = r.F64();
    }
    cal.ResponseStatus = cal.ModtranStatus = RS_OK;
}

void ReadBackgrounds(CRCalReader &r, CAL_PAGE &page, bool skipImages) {
    uint32_t n = r.Count(kRCalMinBackground);
    for (uint32_t i = 0; i < n && r.Ok(); ++i) {
        CRCalFile::BACKGROUND_FILE b;
        b.ReservedA = r.U32();
        b.ReservedB = r.U32();
        b.Width = r.U32();
        b.Height = r.U32();
        if (skipImages) {
            r.Skip(int64_t(r.Count(8)) * 8);
            continue;
        }
        r.CountedDoubles(b.Values, false);
        if (r.Ok()) page.BackgroundFiles.Add(b);
    }
}

void ReadOverridesSection(CRCalReader &r, CRCalFile &cal, bool skipImages) {
    cal.BandpassOverridden = r.Bool();
    cal.UsedBandpassLow = r.F64();
    cal.UsedBandpassHigh = r.F64();
    cal.Range = r.F64();
    cal.RangeSet = r.Bool();
    cal.VFOV = r.F64();
    cal.HFOV = r.F64();
    cal.FOVSet = r.Bool();
    for (uint32_t i = 0; i < cal.CalPages.GetSize() && r.Ok(); ++i) {
        CAL_PAGE &page = cal.CalPages[i];
        page.CoeffsOverridden = r.Bool();
        page.UsedPolyOrder = ReadOrder(r);
        r.CountedDoubles(page.UsedCoefficients, true);
        page.TempCoeffsOverridden = r.Bool();
        page.UsedTempPolyOrder = ReadOrder(r);
        r.CountedDoubles(page.UsedTempCoefficients, true);
        page.TPFact = r.F64();
        page.TPFactSet = r.Bool();
        page.BackgroundType = BACKGROUND_TYPE(r.I32());
        page.BackgroundValue = r.F64();
        ReadBackgrounds(r, page, skipImages);
    }
}

void ReadTagList(CRCalReader &r, TArray<SNameValuePair> &tags) {
    uint32_t n = r.Count(kRCalMinTag);
    for (uint32_t i = 0; i < n && r.Ok(); ++i) {
        SNameValuePair tag;
        tag.Name = r.String();
        tag.Value = r.String();
        tags.Add(tag);
    }
}

void ReadTagsSection(CRCalReader &r, CRCalFile &cal) {
    ReadTagList(r, cal.Tags);
    for (uint32_t i = 0; i < cal.CalPages.GetSize() && r.Ok(); ++i)
        ReadTagList(r, cal.CalPages[i].Tags);
}

void ReadRangesSection(CRCalReader &r, CRCalFile &cal) {
    for (uint32_t i = 0; i < cal.CalPages.GetSize() && r.Ok(); ++i) {
        CAL_PAGE &page = cal.CalPages[i];
        page.RangeAuto = r.Bool();
        page.MinCounts = r.F64();
        page.MaxCounts = r.F64();
        page.MinRadiance = r.F64();
        page.MaxRadiance = r.F64();
        page.MinTemperature = r.F64();
        page.MaxTemperature = r.F64();
    }
}

// Bytes 0 to 3 are not compared: files exist with other bytes there.
bool ReadHeader(CRCalReader &r) {
    char magic[8];
    r.Bytes(magic, 8);
    if (!r.Ok() || std::memcmp(magic + 4, kRCalMagic + 4, 4) != 0) return false;
    return r.U16() == 0 && r.Ok();
}

// The base and each later section present; the revision read, or -1.
int ReadSections(IFile &file, CRCalFile &cal, uint32_t flags) {
    CRCalReader r(file);
    if (!ReadHeader(r)) return -1;
    ReadBase(r, cal);
    int revision = kRCalBase;
    for (int section = kRCalReflected; section <= kRCalCurrentRevision && r.More(); ++section) {
        switch (section) {
        case kRCalReflected: ReadReflectedSection(r, cal); break;
        case kRCalDisabled: ReadDisabledSection(r, cal); break;
        case kRCalCurves: ReadCurvesSection(r, cal); break;
        case kRCalOverrides: ReadOverridesSection(r, cal, (flags & CRCalFile::kLoadSkipBackgrounds) != 0); break;
        case kRCalTags: ReadTagsSection(r, cal); break;
        case kRCalMark: r.U32(); break;
        case kRCalRanges: ReadRangesSection(r, cal); break;
        }
        revision = section;
    }
    return r.Finish() ? revision : -1;
}

// Fits recomputed for an older file can come out NaN (a top hat that starts
// at 0 microns, say): such a calibration would convert every count to NaN.
bool FitsFinite(CRCalFile const &cal) {
    for (uint32_t i = 0; i < cal.CalPages.GetSize(); ++i) {
        CAL_PAGE const &page = cal.CalPages.GetAt(i);
        if (!AllFinite(page.Coefficients) || !AllFinite(page.TempCoefficients)) return false;
    }
    return true;
}

} // namespace

bool CRCalFile::Load(IFile *file, uint32_t flags) {
    CRCalFile loaded;
    int revision = file ? ReadSections(*file, loaded, flags) : -1;
    if (revision >= 0) {
        Copy(loaded);
        FileRevision = revision;
        RepairLoaded();
        if (FitsFinite(*this)) return true;
    }
    Copy(CRCalFile());
    LookupUpdates = true;
    return false;
}

bool CRCalFile::Load(IFileSystem *fs, char16_t const *path, uint32_t flags) {
    IFileSystem &files = fs ? *fs : GetFileSystem();
    IFile *file = files.CreateFileW(path, 0x212);
    if (!file) return Load(static_cast<IFile *>(nullptr), flags); // the defaults, false
    bool loaded = Load(file, flags);
    file->Close();
    delete file;
    return loaded;
}

// What a file of an older revision lacks is rebuilt from what it holds.
void CRCalFile::RepairLoaded() {
    if (!UseResponseFile && !UseTophat) UseTophat = true;
    bool withCurves = FileRevision >= kRCalCurves;
    if (!withCurves) {
        SetupTophat(false);
        LoadSpectralResponse(false);
        LoadModtran(false);
        LoadAdditionalSpectralResponse(-1, false);
    }
    AdjustAllResponses(false);
    if (!withCurves) {
        UpdateCalPoint(-1, -1, false);
        UpdateCalPageCoeffs(-1);
        UpdateCalPageTempCoeffs(-1);
    } else if (FileRevision <= kRCalTags) {
        UpdateCalPoint(-1, -1, false);
    }
    if (FileRevision < kRCalRanges) UpdateCalPageRange(-1);
    SortCalPoints(-1, -1);
    LookupUpdates = true;
}

} // namespace qv
