// The pixel-type registry: a TArray of rows behind one std::mutex (the
// library's own lock classes live in qv/threads, above this subsystem).
#include <mutex>

#include "qv/core/Array.h"
#include "qv/core/WideChar.h"
#include "qv/numerics/PixelType.h"

namespace qv {

namespace {

class CPixelTypeRegistry {
public:
    CPixelTypeRegistry() {
        rows.Add({PixelCode("UI16"), CString(u"Grayscale (UInt16)"), 2, DT_UInt16});
        rows.Add({PixelCode("YUY2"), CString(u"YUV (YUY2)"), 2, DT_Packed});
        rows.Add({PixelCode("UYVY"), CString(u"YUV (UYVY)"), 2, DT_Packed});
        rows.Add({PixelCode("RGB8"), CString(u"RGB (24-Bit)"), 3, DT_Packed});
    }

    bool Register(uint32_t code, char16_t const *name, uint8_t width, EDataType type) {
        std::lock_guard<std::mutex> hold(lock);
        if (FindCode(code)) return false;
        rows.Add({code, CString(name), width, type});
        return true;
    }

    // f(row) under the lock for the first row with the code; fallback if none.
    template <class R, class F> R WithCode(uint32_t code, R fallback, F f) {
        std::lock_guard<std::mutex> hold(lock);
        SPixelTypeInfo const *row = FindCode(code);
        return row ? f(*row) : fallback;
    }

    uint32_t FindName(char16_t const *name) {
        std::lock_guard<std::mutex> hold(lock);
        for (uint32_t i = 0; i < rows.GetSize(); ++i)
            if (_wcsicmp(NameOf(rows.GetAt(i)), name) == 0) return rows.GetAt(i).Code;
        return 0;
    }

    static char16_t const *NameOf(SPixelTypeInfo const &row) {
        char16_t const *name = row.Name.GetTChar();
        return name ? name : u"";
    }

private:
    SPixelTypeInfo const *FindCode(uint32_t code) const {
        for (uint32_t i = 0; i < rows.GetSize(); ++i)
            if (rows.GetAt(i).Code == code) return &rows.GetAt(i);
        return nullptr;
    }

    std::mutex lock;
    TArray<SPixelTypeInfo> rows;
};

// Made at first use (thread-safe static initialisation) and never destroyed,
// so that code running at exit can still ask.
CPixelTypeRegistry &Registry() {
    static CPixelTypeRegistry *registry = new CPixelTypeRegistry;
    return *registry;
}

} // namespace

bool RegisterPixelType(uint32_t code, char16_t const *name, uint8_t width, EDataType type) {
    return Registry().Register(code, name, width, type);
}

int PixelWidth(uint32_t code) {
    return Registry().WithCode(code, -1, [](SPixelTypeInfo const &row) { return int(row.Width); });
}

char16_t const *PixelTypeToString(uint32_t code) {
    return Registry().WithCode(code, static_cast<char16_t const *>(u"I AM ERROR"), &CPixelTypeRegistry::NameOf);
}

EDataType PixelTypeToDataType(uint32_t code) {
    return Registry().WithCode(code, DT_Unknown, [](SPixelTypeInfo const &row) { return row.Type; });
}

uint32_t ParsePixelType(char16_t const *name) {
    if (!name) return 0;
    if (_wcsicmp(name, u"Grayscale") == 0) return PixelCode("UI16");
    if (_wcsicmp(name, u"YUV") == 0) return PixelCode("YUY2");
    if (_wcsicmp(name, u"RGB") == 0) return PixelCode("RGB8");
    return Registry().FindName(name);
}

uint32_t OldPixelTypeToNewPixelType(uint8_t old) {
    constexpr uint32_t codes[] = {PixelCode("UI16"), PixelCode("YUY2"), PixelCode("RGB8")};
    return old < 3 ? codes[old] : 0;
}

} // namespace qv
