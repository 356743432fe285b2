// Module resources: the registry, the language fallback, ids, packed data,
// and the resource tool's handling of bad scripts. test_core carries its own
// table (tests/core/resources.qvrc).
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include <sys/wait.h>
#include <unistd.h>

#include "qv/core/ModuleResources.h"
#include "qv/core/ResourceId.h"
#include "qv/files/ResourceFile.h"

namespace qv {
namespace {

SResourceId const kRCData = SResourceId::Number(kResourceTypeRCData);

std::string Bytes(HRSRC resource) {
    return resource ? std::string(reinterpret_cast<char const *>(resource->data), resource->size) : "(none)";
}

std::string FoundFor(char16_t const *name, uint16_t language) {
    return Bytes(FindResource(GetProgramModule(), kRCData, SResourceId::Name(name), language));
}

TEST(ModuleResources, ModulesAreRegisteredByKindAndName) {
    HINSTANCE program = GetProgramModule();
    HINSTANCE library = GetLibraryModule();
    ASSERT_NE(program, nullptr);
    ASSERT_NE(library, nullptr);
    EXPECT_EQ(std::u16string(program->name), u"test_core");
    EXPECT_EQ(library->kind, EResourceModuleKind::Library);
    EXPECT_EQ(FindResourceModule(u"QV"), library);
    EXPECT_EQ(FindResourceModule(nullptr), program);
    EXPECT_EQ(FindResourceModule(u"nothing"), nullptr);

    // A table registers for its object's lifetime; an unknown handle finds nothing.
    static unsigned char const bytes[] = "abc";
    static SResourceEntry const entries[] = {{SResourceId::Number(10), SResourceId::Number(1), 0, 3, bytes}};
    static SResourceModule const plugin = {u"plugin", EResourceModuleKind::Library, entries, 1};
    {
        CResourceRegistration registration(plugin);
        EXPECT_TRUE(IsResourceModule(&plugin));
        EXPECT_EQ(FindResourceModule(u"plugin"), &plugin);
        EXPECT_EQ(Bytes(FindResource(&plugin, kRCData, SResourceId::Number(1), 0x0409)), "abc");
    }
    EXPECT_FALSE(IsResourceModule(&plugin));
    EXPECT_EQ(FindResource(&plugin, kRCData, SResourceId::Number(1), 0x0409), nullptr);
    EXPECT_EQ(GetResourceCount(&plugin), 0u);
    EXPECT_EQ(GetResourceAt(&plugin, 0), nullptr);
    EXPECT_FALSE(IsResourceModule(nullptr));
}

TEST(ModuleResources, LanguageFallbackOrder) {
    EXPECT_EQ(FoundFor(u"ORDER1", 0x0407), "0407"); // exact
    EXPECT_EQ(FoundFor(u"ORDER1", 0x0C07), "0007"); // primary language, neutral form
    EXPECT_EQ(FoundFor(u"ORDER4", 0x0C07), "0407"); // primary language, default form
    EXPECT_EQ(FoundFor(u"ORDER2", 0x0C07), "0807"); // primary language, any sublanguage
    EXPECT_EQ(FoundFor(u"ORDER1", 0x0410), "0000"); // neutral
    EXPECT_EQ(FoundFor(u"ORDER2", 0x0410), "0409"); // US English
    EXPECT_EQ(FoundFor(u"ORDER3", 0x0410), "040C"); // first in table order (lowest language)
    EXPECT_EQ(FoundFor(u"order1", 0x0411), "0411"); // names ignore case
    EXPECT_EQ(FoundFor(u"ORDER9", 0x0409), "(none)");

    HINSTANCE program = GetProgramModule();
    EXPECT_EQ(FindResourceExact(program, kRCData, SResourceId::Name(u"ORDER2"), 0x0407), nullptr);
    EXPECT_EQ(Bytes(FindResourceExact(program, kRCData, SResourceId::Name(u"ORDER2"), 0x0411)), "0411");
    TArray<uint16_t> languages;
    EXPECT_EQ(GetResourceLanguages(program, kRCData, SResourceId::Name(u"ORDER1"), languages), 6u);
    uint16_t const sorted[] = {0x0000, 0x0007, 0x0407, 0x0409, 0x0411, 0x0807};
    for (uint32_t i = 0; i < 6; ++i)
        EXPECT_EQ(languages.GetAt(i), sorted[i]) << i;
}

TEST(ModuleResources, IdsAsNumbersHashTextAndNames) {
    EXPECT_TRUE(SResourceId::FromText(MakeIntResource(10)).Matches(kRCData));
    EXPECT_TRUE(SResourceId::FromText(u"#10").Matches(kRCData));
    EXPECT_FALSE(SResourceId::FromText(u"#70000").IsNumeric());
    EXPECT_FALSE(SResourceId::FromText(u"#1a").IsNumeric());
    EXPECT_FALSE(SResourceId::FromText(u"10").IsNumeric());
    EXPECT_FALSE(SResourceId::Name(u"7").Matches(SResourceId::Number(7)));

    HINSTANCE program = GetProgramModule();
    EXPECT_EQ(
        Bytes(FindResource(program, SResourceId::FromText(MakeIntResource(10)), SResourceId::FromText(u"#7"), 0x0407)),
        "seven");
    HRSRC empty = FindResource(program, SResourceId::Name(u"custom type"), SResourceId::Name(u"EMPTY NAME"), 0x0409);
    ASSERT_NE(empty, nullptr);
    EXPECT_EQ(empty->size, 0u);

    // Table order: named types first, then numbers ascending.
    ASSERT_GT(GetResourceCount(program), 2u);
    EXPECT_FALSE(GetResourceAt(program, 0)->type.IsNumeric());
    uint32_t last = GetResourceCount(program) - 1;
    EXPECT_EQ(GetResourceAt(program, last)->type.id, kResourceTypeRCData);
    EXPECT_EQ(GetResourceAt(program, last + 1), nullptr);
}

TEST(ModuleResources, PackedResourceUnpacksOnReading) {
    HRSRC packed = FindResource(GetProgramModule(), kRCData, SResourceId::Name(u"DATA.GZ"), 0x0409);
    ASSERT_NE(packed, nullptr);
    ASSERT_GE(packed->size, 14u);
    EXPECT_EQ(std::string(reinterpret_cast<char const *>(packed->data), 4), "TGZF");

    std::string const plain = "Hello from a packed resource.\nSecond line of the packed text.\n";
    IFile *file = CreateResourceFile(packed, true);
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(file->GetSize(), int64_t(plain.size()));
    std::string read(plain.size() + 8, '\0');
    read.resize(file->Read(read.data(), uint32_t(read.size())));
    EXPECT_EQ(read, plain);
    delete file;

    IFile *stored = CreateResourceFile(packed, false);
    ASSERT_NE(stored, nullptr);
    EXPECT_EQ(stored->GetSize(), int64_t(packed->size));
    delete stored;
    EXPECT_EQ(CreateResourceFile(nullptr, true), nullptr);
}

// The resource tool over scripts in a scratch directory.
class ResourceTool : public testing::Test {
protected:
    void SetUp() override {
        dir = std::filesystem::path(testing::TempDir()) / ("qvrc_" + std::to_string(::getpid()));
        std::filesystem::create_directories(dir);
        std::ofstream(dir / "blob.bin") << "blob";
    }
    void TearDown() override { std::filesystem::remove_all(dir); }

    // Runs the tool on text; its exit status, with its error output in errors.
    int Run(std::string const &text) {
        std::ofstream(dir / "test.qvrc", std::ios::binary) << text;
        std::filesystem::remove(dir / "out.cpp");
        std::string command = std::string(QV_RC_TOOL) + " " + (dir / "test.qvrc").string() + " " +
                              (dir / "out.cpp").string() + " 2>" + (dir / "errors.txt").string();
        int status = std::system(command.c_str());
        std::ifstream in(dir / "errors.txt");
        errors.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    std::filesystem::path dir;
    std::string errors;
};

TEST_F(ResourceTool, AcceptsAGoodScript) {
    std::ofstream(dir / "packed.bin") << "TGZFxyz";
    EXPECT_EQ(Run("RCDATA 5 0x0409 blob.bin // comment\n"
                  "RCDATA \"a.gz\" 0 blob.bin\n"
                  "RCDATA b.GZ 0 packed.bin\n"
                  "STRINGTABLE 0x0409\n{\n 1 \"a\\tb\"\n}\n"),
              0)
        << errors;
    std::ifstream in(dir / "out.cpp");
    std::string const source((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    EXPECT_NE(source.find("EResourceModuleKind::Program"), std::string::npos);
    EXPECT_NE(source.find("{0x74, 0x65, 0x73, 0x74, 0}"), std::string::npos); // module "test", from the file name
    // ".gz" names: plain bytes are packed (head with size 4), TGZF bytes stay as they are.
    EXPECT_NE(source.find("\\x54\\x47\\x5a\\x46\\x00\\x00\\x04\\x00"), std::string::npos);
    EXPECT_NE(source.find("\"\\x54\\x47\\x5a\\x46\\x78\\x79\\x7a\""), std::string::npos);
    // Block 1: id 0 empty, id 1 "a<TAB>b", 14 empty ids.
    EXPECT_NE(source.find("\"\\x00\\x00\\x03\\x00\\x61\\x00\\x09\\x00\\x62\\x00\\x00\\x00"), std::string::npos);
}

TEST_F(ResourceTool, RefusesBadScriptsWithTheLine) {
    struct Case {
        std::string script;
        int line;
        char const *message;
    } const cases[] = {
        {"RCDATA 5 0x0409\n", 1, "expected 'type name language file'"},
        {"// fine\nRCDATA 5 0x0409 missing.bin\n", 2, "no such file"},
        {"RCDATA 5 0x10000 blob.bin\n", 1, "the language must be a number"},
        {"RCDATA 0 0x0409 blob.bin\n", 1, "must not be 0"},
        {"RCDATA 99999 0x0409 blob.bin\n", 1, "the name must be a number"},
        {"STRING 1 0x0409 blob.bin\n", 1, "STRINGTABLE"},
        {"RCDATA A 0x0409 blob.bin\nrcdata a 1033 blob.bin\n", 2, "defined twice"},
        {"STRINGTABLE 0x0409 {\n1 \"a\"\n1 \"b\"\n}\n", 3, "defined twice"},
        {"STRINGTABLE 0x0409 {\n1 \"open\n}\n", 2, "unterminated string"},
        {"STRINGTABLE 0x0409 {\n1 \"\\q\"\n}\n", 2, "unknown escape"},
        {"STRINGTABLE 0x0409 {\n1 \"\\uD800\"\n}\n", 2, "names no character"},
        {"STRINGTABLE 0x0409 {\n1 \"\xC3\x28\"\n}\n", 2, "not valid UTF-8"},
        {"STRINGTABLE 0x0409 {\n70000 \"x\"\n}\n", 2, "the string id must be"},
        {"STRINGTABLE 0x0409 {\n1 unquoted\n}\n", 2, "expected 'id \"text\"'"},
        {"\n\nSTRINGTABLE 0x0409 {\n1 \"x\"\n", 3, "not closed"},
        {"STRINGTABLE 0x0409\n1 \"x\"\n}\n", 2, "expected '{'"},
        {"STRINGTABLE\n", 1, "needs a language"},
        {std::string("RCDATA 5 0x0409 blob.bin\nRC\0DATA 6 0x0409 blob.bin\n", 51), 2, "control character"},
    };
    for (Case const &c : cases) {
        EXPECT_EQ(Run(c.script), 1) << c.script;
        EXPECT_NE(errors.find("test.qvrc:" + std::to_string(c.line) + ": error: "), std::string::npos) << errors;
        EXPECT_NE(errors.find(c.message), std::string::npos) << errors;
        EXPECT_FALSE(std::filesystem::exists(dir / "out.cpp")) << c.script;
    }
}

TEST_F(ResourceTool, RefusesWrongArguments) {
    std::string command = std::string(QV_RC_TOOL) + " --bogus 2>/dev/null";
    int status = std::system(command.c_str());
    EXPECT_EQ(WIFEXITED(status) ? WEXITSTATUS(status) : -1, 2);
}

} // namespace
} // namespace qv
