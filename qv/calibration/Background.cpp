// A page's background: a type, a fixed value and per-pixel images keyed by
// their size. The class only stores them; image pipelines decide their use.
#include <cstring>

#include "qv/calibration/RCalFile.h"

namespace qv {

CRCalFile::BACKGROUND_FILE *CRCalFile::FindBackgroundFile(CAL_PAGE &page, uint32_t width, uint32_t height) {
    for (uint32_t i = 0; i < page.BackgroundFiles.GetSize(); ++i) {
        BACKGROUND_FILE &file = page.BackgroundFiles[i];
        if (file.Width == width && file.Height == height) return &file;
    }
    return nullptr;
}

bool CRCalFile::GetBackgroundType(int page, BACKGROUND_TYPE &type) {
    CAL_PAGE *p = ReachPage(page);
    if (!p) return false;
    type = p->BackgroundType;
    return true;
}

bool CRCalFile::SetBackgroundType(int page, BACKGROUND_TYPE type) {
    CAL_PAGE *p = ReachPage(page);
    if (!p) return false;
    p->BackgroundType = type;
    return true;
}

bool CRCalFile::GetBackgroundValue(int page, double &value) {
    CAL_PAGE *p = ReachPage(page);
    if (!p) return false;
    value = p->BackgroundValue;
    return true;
}

bool CRCalFile::SetBackgroundValue(int page, double value) {
    CAL_PAGE *p = ReachPage(page);
    if (!p) return false;
    p->BackgroundValue = value;
    return true;
}

bool CRCalFile::GetBackgroundValueEx(int page, double &value) {
    CAL_PAGE *p = ReachPage(page);
    if (!p) return false;
    value = p->BackgroundType == BG_Fixed ? p->BackgroundValue : 0;
    return true;
}

bool CRCalFile::AddBackgroundFile(int page, uint32_t width, uint32_t height, double *values) {
    CAL_PAGE *p = ReachPage(page);
    uint64_t n = uint64_t(width) * height;
    if (!p || n > UINT32_MAX || (n && !values)) return false;
    BACKGROUND_FILE *image = FindBackgroundFile(*p, width, height);
    if (!image) {
        BACKGROUND_FILE added;
        added.Width = width;
        added.Height = height;
        if (!p->BackgroundFiles.Add(added)) return false;
        image = &p->BackgroundFiles[p->BackgroundFiles.GetSize() - 1];
    }
    image->Values.Empty();
    if (n && !image->Values.SetSize(uint32_t(n))) return false;
    if (n) std::memcpy(image->Values.GetData(), values, size_t(n) * sizeof(double));
    return true;
}

bool CRCalFile::GetBackgroundFile(int page, uint32_t width, uint32_t height, double *values) {
    CAL_PAGE *p = ReachPage(page);
    BACKGROUND_FILE *image = p ? FindBackgroundFile(*p, width, height) : nullptr;
    // A key from a file may name more values than any image can hold (32-bit
    // product wrapped): no caller's buffer is that size, so none is written.
    uint64_t n = uint64_t(width) * height;
    if (!image || !values || n > UINT32_MAX) return false;
    // Width * Height values; a stored image may hold fewer (read from a
    // file), the rest of the caller's buffer then reads 0.
    uint32_t have = image->Values.GetSize();
    for (uint32_t i = 0; i < uint32_t(n); ++i)
        values[i] = i < have ? image->Values.GetAt(i) : 0;
    return true;
}

bool CRCalFile::HasBackgroundFile(int page, uint32_t width, uint32_t height) {
    CAL_PAGE *p = ReachPage(page);
    return p && FindBackgroundFile(*p, width, height);
}

bool CRCalFile::RemoveBackgroundFile(int page, uint32_t width, uint32_t height) {
    CAL_PAGE *p = ReachPage(page);
    if (!p) return false;
    for (uint32_t i = 0; i < p->BackgroundFiles.GetSize(); ++i)
        if (p->BackgroundFiles[i].Width == width && p->BackgroundFiles[i].Height == height) {
            p->BackgroundFiles.Remove(i);
            break;
        }
    return true;
}

bool CRCalFile::ClearBackgroundFiles(int page) {
    CAL_PAGE *p = ReachPage(page);
    if (!p) return false;
    p->BackgroundFiles.Empty();
    return true;
}

} // namespace qv
