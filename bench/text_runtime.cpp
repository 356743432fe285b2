// The text runtime's hot paths, each paired in one run with the C library
// doing the same: UTF-16 <-> UTF-8 against iconv, printf and scanf against
// snprintf and sscanf (wide printf against swprintf on wchar_t), and the
// case-blind compare against wcscasecmp. Short calls run in rounds of 1000.
#include <benchmark/benchmark.h>

#include <iconv.h>

#include <cstdio>
#include <cwchar>
#include <string>

#include "PairedTiming.h"
#include "qv/core/CodePage.h"
#include "qv/core/WideChar.h"
#include "qv/core/WideFormat.h"
#include "qv/core/WideScan.h"

using namespace qv;

namespace {

constexpr int kRounds = 1000;

template <class Op> auto Rounds(Op op) {
    return [op]() mutable {
        for (int i = 0; i < kRounds; ++i)
            op();
    };
}

std::u16string Text(bool mixed) {
    std::u16string text;
    while (text.size() < 65536) text += mixed ? u"Temperatur \u00e9t\u00e9 \u20ac 20\u00b0C \u0416 " : u"Temperature 20 C, ";
    return text;
}

size_t Iconv(iconv_t cd, void const *in, size_t inBytes, void *out, size_t outBytes) {
    char *from = static_cast<char *>(const_cast<void *>(in)), *to = static_cast<char *>(out);
    size_t const room = outBytes;
    iconv(cd, nullptr, nullptr, nullptr, nullptr);
    iconv(cd, &from, &inBytes, &to, &outBytes);
    return room - outBytes;
}

void Utf16ToUtf8(benchmark::State &state) {
    std::u16string text = Text(state.range(0));
    std::string out(text.size() * 3, '\0'), reference(out);
    iconv_t cd = iconv_open("UTF-8", "UTF-16LE");
    bench::RunPaired(
        state, {state.range(0) ? "UTF-16 to UTF-8, 64 Ki mixed characters, vs iconv" : "UTF-16 to UTF-8, 64 Ki ASCII characters, vs iconv", 0.0},
        int64_t(text.size()),
        [&] { benchmark::DoNotOptimize(WideCharToMultiByte(CP_UTF8, text.data(), int(text.size()), out.data(), int(out.size()))); },
        [&] { benchmark::DoNotOptimize(Iconv(cd, text.data(), text.size() * 2, reference.data(), reference.size())); });
    iconv_close(cd);
}

void Utf8ToUtf16(benchmark::State &state) {
    std::u16string text = Text(state.range(0));
    std::string utf8(text.size() * 3, '\0');
    utf8.resize(size_t(WideCharToMultiByte(CP_UTF8, text.data(), int(text.size()), utf8.data(), int(utf8.size()))));
    std::u16string out(text.size(), u'\0'), reference(out);
    iconv_t cd = iconv_open("UTF-16LE", "UTF-8");
    bench::RunPaired(
        state, {state.range(0) ? "UTF-8 to UTF-16, 64 Ki mixed characters, vs iconv" : "UTF-8 to UTF-16, 64 Ki ASCII characters, vs iconv", 0.0},
        int64_t(text.size()),
        [&] { benchmark::DoNotOptimize(MultiByteToWideChar(CP_UTF8, utf8.data(), int(utf8.size()), out.data(), int(out.size()))); },
        [&] { benchmark::DoNotOptimize(Iconv(cd, utf8.data(), utf8.size(), reference.data(), reference.size() * 2)); });
    iconv_close(cd);
}

void Format(benchmark::State &state) {
    char buf[128];
    int i = 0;
    bench::RunPaired(
        state, {"c_snprintf \"%d %g %s %.3f\" vs snprintf", 0.0}, kRounds,
        Rounds([&] { benchmark::DoNotOptimize(c_snprintf(buf, sizeof buf, "%d %g %s %.3f", ++i, 1234.5678, "x", 0.25)); }),
        Rounds([&] { benchmark::DoNotOptimize(std::snprintf(buf, sizeof buf, "%d %g %s %.3f", ++i, 1234.5678, "x", 0.25)); }));
}

void FormatWide(benchmark::State &state) {
    char16_t buf[128];
    wchar_t wbuf[128];
    int i = 0;
    bench::RunPaired(
        state, {"swprintf on char16_t vs the C library's swprintf on wchar_t", 0.0}, kRounds,
        Rounds([&] { benchmark::DoNotOptimize(swprintf(buf, 128, u"%d %g %s %.3f", ++i, 1234.5678, u"x", 0.25)); }),
        Rounds([&] { benchmark::DoNotOptimize(std::swprintf(wbuf, 128, L"%d %g %ls %.3f", ++i, 1234.5678, L"x", 0.25)); }));
}

void Scan(benchmark::State &state) {
    int y, m, d, h, mi;
    double s;
    bench::RunPaired(
        state, {"c_sscanf of a date and time vs sscanf", 0.0}, kRounds,
        Rounds([&] { benchmark::DoNotOptimize(c_sscanf("2004-03-01 10:20:30.25", "%d-%d-%d %d:%d:%lf", &y, &m, &d, &h, &mi, &s)); }),
        Rounds([&] { benchmark::DoNotOptimize(std::sscanf("2004-03-01 10:20:30.25", "%d-%d-%d %d:%d:%lf", &y, &m, &d, &h, &mi, &s)); }));
}

void CompareNoCase(benchmark::State &state) {
    std::u16string a = u"C:\\Program Files\\Camera\\Calibration\\\u00c9t\u00e9.rcal";
    std::u16string b = u"c:\\program files\\camera\\calibration\\\u00e9T\u00c9.RCAL";
    std::wstring wa(a.begin(), a.end()), wb(b.begin(), b.end());
    bench::RunPaired(
        state, {"_wcsicmp of two paths vs wcscasecmp", 0.0}, kRounds,
        Rounds([&] { benchmark::DoNotOptimize(_wcsicmp(a.c_str(), b.c_str())); }),
        Rounds([&] { benchmark::DoNotOptimize(wcscasecmp(wa.c_str(), wb.c_str())); }));
}

} // namespace

BENCHMARK(Utf16ToUtf8)->Arg(0)->Arg(1)->UseManualTime();
BENCHMARK(Utf8ToUtf16)->Arg(0)->Arg(1)->UseManualTime();
BENCHMARK(Format)->UseManualTime();
BENCHMARK(FormatWide)->UseManualTime();
BENCHMARK(Scan)->UseManualTime();
BENCHMARK(CompareNoCase)->UseManualTime();
