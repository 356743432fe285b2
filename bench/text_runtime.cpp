// The text runtime's hot paths: UTF-8 conversion, printf and scanf, against
// the C library's own printf and scanf as a yardstick.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

#include "qv/core/CodePage.h"
#include "qv/core/WideChar.h"
#include "qv/core/WideFormat.h"
#include "qv/core/WideScan.h"

using namespace qv;

namespace {

std::u16string Text(bool mixed) {
    std::u16string text;
    while (text.size() < 65536) text += mixed ? u"Temperatur \u00e9t\u00e9 \u20ac 20\u00b0C \u0416 " : u"Temperature 20 C, ";
    return text;
}

void Utf16ToUtf8(benchmark::State &state) {
    std::u16string text = Text(state.range(0));
    std::string out(text.size() * 3, '\0');
    for (auto _ : state)
        benchmark::DoNotOptimize(
            WideCharToMultiByte(CP_UTF8, text.data(), int(text.size()), out.data(), int(out.size())));
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(text.size() * 2));
}
BENCHMARK(Utf16ToUtf8)->Arg(0)->Arg(1);

void Utf8ToUtf16(benchmark::State &state) {
    std::u16string text = Text(state.range(0));
    std::string utf8(text.size() * 3, '\0');
    utf8.resize(size_t(WideCharToMultiByte(CP_UTF8, text.data(), int(text.size()), utf8.data(), int(utf8.size()))));
    std::u16string out(text.size(), u'\0');
    for (auto _ : state)
        benchmark::DoNotOptimize(MultiByteToWideChar(CP_UTF8, utf8.data(), int(utf8.size()), out.data(), int(out.size())));
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(utf8.size()));
}
BENCHMARK(Utf8ToUtf16)->Arg(0)->Arg(1);

void FormatQv(benchmark::State &state) {
    char buf[128];
    int i = 0;
    for (auto _ : state) benchmark::DoNotOptimize(c_snprintf(buf, sizeof buf, "%d %g %s %.3f", ++i, 1234.5678, "x", 0.25));
}
BENCHMARK(FormatQv);

void FormatLibc(benchmark::State &state) {
    char buf[128];
    int i = 0;
    for (auto _ : state) benchmark::DoNotOptimize(std::snprintf(buf, sizeof buf, "%d %g %s %.3f", ++i, 1234.5678, "x", 0.25));
}
BENCHMARK(FormatLibc);

void FormatWide(benchmark::State &state) {
    char16_t buf[128];
    int i = 0;
    for (auto _ : state) benchmark::DoNotOptimize(swprintf(buf, 128, u"%d %g %s %.3f", ++i, 1234.5678, u"x", 0.25));
}
BENCHMARK(FormatWide);

void ScanQv(benchmark::State &state) {
    int y, m, d, h, mi;
    double s;
    for (auto _ : state)
        benchmark::DoNotOptimize(c_sscanf("2004-03-01 10:20:30.25", "%d-%d-%d %d:%d:%lf", &y, &m, &d, &h, &mi, &s));
}
BENCHMARK(ScanQv);

void ScanLibc(benchmark::State &state) {
    int y, m, d, h, mi;
    double s;
    for (auto _ : state)
        benchmark::DoNotOptimize(std::sscanf("2004-03-01 10:20:30.25", "%d-%d-%d %d:%d:%lf", &y, &m, &d, &h, &mi, &s));
}
BENCHMARK(ScanLibc);

void CompareNoCase(benchmark::State &state) {
    std::u16string a = u"C:\\Program Files\\Camera\\Calibration\\\u00c9t\u00e9.rcal";
    std::u16string b = u"c:\\program files\\camera\\calibration\\\u00e9T\u00c9.RCAL";
    for (auto _ : state) benchmark::DoNotOptimize(_wcsicmp(a.c_str(), b.c_str()));
}
BENCHMARK(CompareNoCase);

} // namespace
