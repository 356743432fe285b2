// The XML file against Debian's libxml2 on one 10 MB settings-like text in
// memory. Reading: CXMLFile::Load into its node tree against xmlReadMemory
// building libxml2's document (and freeing it); speed_ratio is qv's speed
// over libxml2's (goal 0.5), timed on the thread's CPU clock.
//
// Writing: the tree saved through CXMLFile::Save to a new disk file against
// stdio's buffered fwrite of the same bytes to another, on the wall clock
// (the disk is part of it); speed_ratio shows the cost of formatting.
#include <benchmark/benchmark.h>
#include <libxml/parser.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "PairedTiming.h"
#include "qv/filesystems/DiskFileSystem.h"
#include "qv/files/File.h"
#include "qv/files/MemFile.h"
#include "qv/formats/tagged/XMLFile.h"

namespace {

constexpr size_t kTextBytes = 10 << 20;

// Cameras with settings: attributes, text with entities, some nesting.
std::string MakeText() {
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<settings version=\"2\">\n";
    for (int i = 0; text.size() < kTextBytes; ++i) {
        std::string n = std::to_string(i);
        text += "\t<camera id=\"" + n + "\" model=\"IR-640 &amp; lens\" serial='SN" + n + "'>\n";
        text += "\t\t<lens focal=\"25\" fnumber=\"1.0\">wide angle &lt;" + n + "&gt;</lens>\n";
        text += "\t\t<detector width=\"640\" height=\"512\" pitch=\"17\"/>\n";
        text += "\t\t<note>caf\xc3\xa9 calibration on day " + n + ", range -20 to 350</note>\n";
        text += "\t</camera>\n";
    }
    return text + "</settings>\n";
}

std::string const &Text() {
    static std::string const text = MakeText();
    return text;
}

// An IFile that takes every byte and keeps none.
class Sink : public qv::IFile {
public:
    char16_t *GetFilename(char16_t *buf, int size) override {
        if (size > 0) buf[0] = 0;
        return buf;
    }
    qv::IFileSystem &GetFileSystem() override { return *qv::FileSystem; }
    uint32_t Write(void const *, uint32_t n) override {
        size += n;
        return n;
    }
    uint32_t Read(void *, uint32_t) override { return 0; }
    int64_t GetSize() override { return size; }
    int64_t GetPosition() override { return size; }
    int64_t Seek(int64_t, uint32_t) override { return size; }
    bool SetSize(int64_t) override { return false; }
    void Flush() override {}
    void Close() override {}

private:
    int64_t size = 0;
};

void Read(benchmark::State &state) {
    std::string const &text = Text();
    qv::CMemFile file;
    file.Attach(reinterpret_cast<unsigned char *>(const_cast<char *>(text.data())), uint32_t(text.size()), false);
    bench::RunPaired(
        state, {"reading 10 MB of XML into a tree against libxml2's xmlReadMemory", 0.5}, 1,
        [&] {
            qv::CXMLFile xml;
            file.SeekToBegin();
            if (!xml.Load(&file)) state.SkipWithError("qv could not read the text");
            benchmark::DoNotOptimize(xml.GetCurr());
        },
        [&] {
            xmlDocPtr doc = xmlReadMemory(text.data(), int(text.size()), "bench.xml", nullptr, 0);
            if (!doc) state.SkipWithError("libxml2 could not read the text");
            xmlFreeDoc(doc);
        });
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(text.size()));
}

std::string ScratchPath(char const *name) {
    char const *dir = std::getenv("TMPDIR");
    return std::string(dir && *dir ? dir : "/tmp") + "/qv_bench_xml_" + name;
}

void Write(benchmark::State &state) {
    qv::CMemFile file;
    std::string const &text = Text();
    file.Attach(reinterpret_cast<unsigned char *>(const_cast<char *>(text.data())), uint32_t(text.size()), false);
    qv::CXMLFile xml;
    if (!xml.Load(&file)) return state.SkipWithError("qv could not read the text");
    Sink measure;
    xml.Save(&measure);
    std::string saved(size_t(measure.GetSize()), 'x');
    std::string const qvPath = ScratchPath("qv.xml"), plainPath = ScratchPath("plain.xml");
    qv::CString const qvWide(qvPath.c_str());
    bench::RunPaired(
        state, {"writing the tree back to disk against fwrite of the same bytes", 0.25, true}, 1,
        [&] {
            qv::CFile out;
            if (!out.Open(qvWide.GetUTF16(), 0x08 | 0x20) || !xml.Save(&out)) state.SkipWithError("qv could not write");
            out.Close();
        },
        [&] {
            std::FILE *out = std::fopen(plainPath.c_str(), "wb");
            if (!out || std::fwrite(saved.data(), 1, saved.size(), out) != saved.size())
                state.SkipWithError("the plain write failed");
            if (out) std::fclose(out);
        });
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(saved.size()));
    std::remove(qvPath.c_str());
    std::remove(plainPath.c_str());
}

} // namespace

BENCHMARK(Read)->Name("XMLFile/Read10MB")->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(Write)->Name("XMLFile/Write10MB")->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(2.0);
