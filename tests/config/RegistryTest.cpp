// The registry: the export text form byte for byte, hostile texts, the Reg
// helpers with their designed oddities, CRegStore's paths, writers in several
// processes and saves that fail half-way.
#include "config/ConfigTestSupport.h"

#include <fstream>
#include <sys/wait.h>
#include <unistd.h>

#include "qv/config/Registry.h"
#include "qv/filesystems/DiskFileSystem.h"
#include "support/FaultInjection.h"

namespace qv::test {
namespace {

using namespace std::string_literals;

std::string ToUtf16Bytes(std::u16string const &text) {
    std::string bytes("\xFF\xFE", 2);
    for (char16_t c : text) {
        bytes += char(c & 0xFF);
        bytes += char(c >> 8);
    }
    return bytes;
}

class Registry : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(RegSetRootDirectory(HKEY_CURRENT_USER, dir.Text("reg"))); }
    void TearDown() override { RegSetRootDirectory(HKEY_CURRENT_USER, nullptr); }

    std::string RootFile() { return dir.Path("reg") + "/user.reg"; }
    std::string RootBytes() { return ReadWhole(*FileSystem, CString(RootFile().c_str())); }
    void WriteRoot(std::string const &bytes) {
        std::filesystem::create_directories(dir.Path("reg"));
        std::ofstream(RootFile(), std::ios::binary | std::ios::trunc) << bytes;
    }

    ScratchDir dir;
};

TEST_F(Registry, TheRootFileIsTheExportTextForm) {
    std::vector<uint8_t> binary(40);
    for (size_t i = 0; i < binary.size(); ++i)
        binary[i] = uint8_t(i * 7);
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, u"Software\\qv", KEY_ALL_ACCESS, &key, nullptr), ERROR_SUCCESS);
    EXPECT_EQ(RegSetValueStr(key, nullptr, u"name", u"say \"hi\" \\ there"), ERROR_SUCCESS);
    EXPECT_EQ(RegSetValueDWORD(key, nullptr, u"count", 10), ERROR_SUCCESS);
    EXPECT_EQ(RegSetValueExW(key, u"bin", REG_BINARY, binary.data(), uint32_t(binary.size())), ERROR_SUCCESS);
    uint8_t expand[] = {'%', 0, 'A', 0, '%', 0, 0, 0};
    EXPECT_EQ(RegSetValueExW(key, u"path", REG_EXPAND_SZ, expand, sizeof expand), ERROR_SUCCESS);
    uint8_t multi[] = {'a', 0, 0, 0, 'b', 0, 0, 0, 0, 0};
    EXPECT_EQ(RegSetValueExW(key, u"list", REG_MULTI_SZ, multi, sizeof multi), ERROR_SUCCESS);
    uint8_t qword[] = {1, 2, 3, 4, 5, 6, 7, 8};
    EXPECT_EQ(RegSetValueExW(key, u"big", REG_QWORD, qword, sizeof qword), ERROR_SUCCESS);
    EXPECT_EQ(RegSetValueStr(key, nullptr, u"", u"default"), ERROR_SUCCESS);
    EXPECT_EQ(RegSetValueStr(key, u"Sub", u"lines", u"one\ntwo"), ERROR_SUCCESS);
    EXPECT_EQ(RegSetValueStr(key, u"a-first", u"x", u"1"), ERROR_SUCCESS);
    RegCloseKey(key);
    std::u16string expected = u"Windows Registry Editor Version 5.00\r\n"
                              u"\r\n"
                              u"[HKEY_CURRENT_USER]\r\n"
                              u"\r\n"
                              u"[HKEY_CURRENT_USER\\Software]\r\n"
                              u"\r\n"
                              u"[HKEY_CURRENT_USER\\Software\\qv]\r\n"
                              u"\"name\"=\"say \\\"hi\\\" \\\\ there\"\r\n"
                              u"\"count\"=dword:0000000a\r\n"
                              u"\"bin\"=hex:00,07,0e,15,1c,23,2a,31,38,3f,46,4d,54,5b,62,69,70,77,7e,85,8c,93,9a,\\\r\n"
                              u"  a1,a8,af,b6,bd,c4,cb,d2,d9,e0,e7,ee,f5,fc,03,0a,11\r\n"
                              u"\"path\"=hex(2):25,00,41,00,25,00,00,00\r\n"
                              u"\"list\"=hex(7):61,00,00,00,62,00,00,00,00,00\r\n"
                              u"\"big\"=hex(b):01,02,03,04,05,06,07,08\r\n"
                              u"@=\"default\"\r\n"
                              u"\r\n"
                              u"[HKEY_CURRENT_USER\\Software\\qv\\a-first]\r\n"
                              u"\"x\"=\"1\"\r\n"
                              u"\r\n"
                              u"[HKEY_CURRENT_USER\\Software\\qv\\Sub]\r\n"
                              u"\"lines\"=hex(1):6f,00,6e,00,65,00,0a,00,74,00,77,00,6f,00,00,00\r\n"
                              u"\r\n";
    EXPECT_EQ(RootBytes(), ToUtf16Bytes(expected));
    // And it reads back as written, from a fresh look at the file.
    WriteRoot(RootBytes());
    char16_t text[64];
    EXPECT_EQ(RegGetValueStr(HKEY_CURRENT_USER, u"Software\\qv\\Sub", u"lines", text, 64, u""), ERROR_SUCCESS);
    EXPECT_EQ(std::u16string(text), u"one\ntwo");
    uint8_t back[64];
    uint32_t size = sizeof back, type = 0;
    HKEY qv = nullptr;
    ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, u"Software/qv", KEY_READ, &qv), ERROR_SUCCESS);
    EXPECT_EQ(RegQueryValueExW(qv, u"bin", &type, back, &size), ERROR_SUCCESS);
    EXPECT_EQ(type, REG_BINARY);
    EXPECT_EQ(std::vector<uint8_t>(back, back + size), binary);
    size = 4;
    EXPECT_EQ(RegQueryValueExW(qv, u"bin", &type, back, &size), ERROR_MORE_DATA);
    EXPECT_EQ(size, 40u);
    RegCloseKey(qv);
}

TEST_F(Registry, ReadsTheFormInUtf8AndOtherLineBreaking) {
    WriteRoot("\xEF\xBB\xBFWindows Registry Editor Version 5.00\n\n; a comment\n[HKEY_CURRENT_USER\\A]\n"
              "\"n\"=dword:FFFFFFFF\n\"h\"=hex:01,\\\n   02,03\n@=\"d\"\n\n[hkey_current_user\\A\\B]\n\"s\"=\"ü\"\n");
    EXPECT_EQ(RegGetValueDWORD(HKEY_CURRENT_USER, u"A", u"n", 0u), 0xFFFFFFFFu);
    uint32_t type = 0;
    EXPECT_EQ(RegGetValueType(HKEY_CURRENT_USER, u"A", u"h", type), ERROR_SUCCESS);
    EXPECT_EQ(type, REG_BINARY);
    char16_t text[16];
    RegGetValueStr(HKEY_CURRENT_USER, u"a\\b", u"S", text, 16, u"");
    EXPECT_EQ(std::u16string(text), u"ü") << "names are blind to case";
    RegGetValueStr(HKEY_CURRENT_USER, u"A", u"", text, 16, u"");
    EXPECT_EQ(std::u16string(text), u"d");
}

TEST_F(Registry, BrokenTextsMakeTheRootUnreadableAndAreNeverOverwritten) {
    std::string deep = "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER";
    for (int i = 0; i < 600; ++i)
        deep += "\\k";
    deep += "]\r\n";
    std::vector<std::string> broken = {
        "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\A]\r\n",
        "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\A]\r\n\"bad\\q\"=\"x\"\r\n",
        "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\A]\r\n\"v\"=\"unterminated\r\n",
        "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\A]\r\n\"v\"=\"x\\\"\r\n",
        "Windows Registry Editor Version 5.00\r\n\r\n\"v\"=\"outside a key\"\r\n",
        "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_LOCAL_MACHINE\\A]\r\n",
        "Windows Registry Editor Version 5.00\r\n\r\n[-HKEY_CURRENT_USER\\A]\r\n",
        "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\A]\r\n\"v\"=hex:1,02\r\n",
        "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\A]\r\n\"v\"=hex:01,\\\r\n",
        "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\A]\r\n\"v\"=dword:123456789\r\n",
        "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\A]\r\n\"v\"=-\r\n",
        "\xFF\xFEW\0i\0n",
        // a NUL inside a key or value name would be written back as another name
        "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\A\\\0\\B]\r\n"s,
        "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\A]\r\n\"a\0b\"=\"x\"\r\n"s,
        deep,
    };
    for (std::string const &text : broken) {
        SCOPED_TRACE(text.substr(0, 80));
        WriteRoot(text);
        char16_t out[16];
        EXPECT_EQ(RegGetValueStr(HKEY_CURRENT_USER, u"A", u"v", out, 16, u"dflt"), ERROR_BADDB);
        EXPECT_EQ(std::u16string(out), u"dflt");
        EXPECT_EQ(RegSetValueStr(HKEY_CURRENT_USER, u"A", u"v", u"new"), ERROR_BADDB);
        CRegStore store;
        store.SetRoot(HKEY_CURRENT_USER, u"A");
        EXPECT_EQ(store.GetLong(u"/n", 5), 5);
        EXPECT_FALSE(store.SetLong(u"/n", 6));
        EXPECT_EQ(RootBytes(), text) << "an unreadable root is never overwritten";
    }
}

TEST_F(Registry, DeletingAKeyPassesOverEverySecondEntry) {
    for (char16_t const *sub : {u"T\\a", u"T\\b", u"T\\c", u"T\\d"})
        RegSetValueDWORD(HKEY_CURRENT_USER, sub, u"v", 1);
    EXPECT_NE(RegDeleteKeyExW(HKEY_CURRENT_USER, u"T"), ERROR_SUCCESS) << "b and d were passed over";
    HKEY t = nullptr;
    ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, u"T", KEY_READ, &t), ERROR_SUCCESS);
    char16_t name[16];
    uint32_t units = 16;
    EXPECT_EQ(RegEnumKeyExW(t, 0, name, &units), ERROR_SUCCESS);
    EXPECT_EQ(std::u16string(name), u"b");
    RegCloseKey(t);
    EXPECT_NE(RegDeleteKeyExW(HKEY_CURRENT_USER, u"T"), ERROR_SUCCESS);
    EXPECT_EQ(RegDeleteKeyExW(HKEY_CURRENT_USER, u"T"), ERROR_SUCCESS) << "the third call takes the last";
    EXPECT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, u"T", KEY_READ, &t), ERROR_FILE_NOT_FOUND);
}

TEST_F(Registry, CopyTakesValuesAndSubkeys) {
    RegSetValueStr(HKEY_CURRENT_USER, u"From", u"s", u"text");
    RegSetValueDWORD(HKEY_CURRENT_USER, u"From\\Deep", u"n", 42);
    std::vector<uint8_t> large(3000, 1);
    HKEY from = nullptr;
    RegOpenKeyExW(HKEY_CURRENT_USER, u"From", KEY_ALL_ACCESS, &from);
    RegSetValueExW(from, u"zlarge", REG_BINARY, large.data(), uint32_t(large.size()));
    RegCloseKey(from);
    EXPECT_EQ(RegCopy(HKEY_CURRENT_USER, u"From", HKEY_CURRENT_USER, u"To"), ERROR_SUCCESS);
    EXPECT_EQ(RegGetValueDWORD(HKEY_CURRENT_USER, u"To\\Deep", u"n", 0u), 42u);
    uint32_t type = 0;
    EXPECT_EQ(RegGetValueType(HKEY_CURRENT_USER, u"To", u"s", type), ERROR_SUCCESS);
    EXPECT_EQ(RegGetValueType(HKEY_CURRENT_USER, u"To", u"zlarge", type), ERROR_FILE_NOT_FOUND)
        << "a value above 2,048 bytes ends the value enumeration";
}

TEST_F(Registry, StorePathsStayBelowTheBase) {
    CRegStore store;
    store.SetRoot(HKEY_CURRENT_USER, u"Software\\qv");
    EXPECT_TRUE(store.SetString(u"/inside", u"1"));
    EXPECT_EQ(Utf8(store.GetString(u"/..", u"dflt")), "dflt");
    EXPECT_FALSE(store.SetString(u"/..", u"x"));
    EXPECT_FALSE(store.SetDWORD(u"../..", 1));
    EXPECT_EQ(store.GetDWORD(u"/../..", 9), 9u);
    // A ".." at the store's root stays there, so this lands inside.
    EXPECT_TRUE(store.SetString(u"/../inside2", u"x"));
    uint32_t type = 0;
    EXPECT_EQ(RegGetValueType(HKEY_CURRENT_USER, u"Software\\qv", u"inside2", type), ERROR_SUCCESS);
    EXPECT_EQ(RegGetValueType(HKEY_CURRENT_USER, u"Software", u"inside2", type), ERROR_FILE_NOT_FOUND);
    CRegStore unset;
    EXPECT_EQ(Utf8(unset.GetString(u"/x", u"no root")), "no root");
    EXPECT_FALSE(unset.SetString(u"/x", u"1"));
}

TEST_F(Registry, StoreTypesListsAndUnlinks) {
    CRegStore store;
    store.SetRoot(HKEY_CURRENT_USER, u"S");
    store.SetDWORD(u"/k/number", 7);
    store.SetLong(u"/k/negative", -7);
    store.SetDouble(u"/k/real", 0.5);
    store.SetString(u"/k/sub/text", u"t");
    uint32_t type = 0;
    RegGetValueType(HKEY_CURRENT_USER, u"S\\k", u"number", type);
    EXPECT_EQ(type, REG_DWORD);
    RegGetValueType(HKEY_CURRENT_USER, u"S\\k", u"real", type);
    EXPECT_EQ(type, REG_SZ);
    EXPECT_EQ(store.GetLong(u"/k/negative", 0), -7);
    EXPECT_EQ(Utf8(store.GetString(u"/k/number", u"")), "7") << "a DWORD reads as text";
    TArray<CString> names;
    names.Add(CString(u"dropped"));
    EXPECT_TRUE(store.list(names, u"/k"));
    ASSERT_EQ(names.GetSize(), 4u) << "emptied first; subkeys, then values";
    EXPECT_EQ(Utf8(names[0]), "sub");
    EXPECT_EQ(Utf8(names[1]), "number");
    CMemStore copy;
    EXPECT_TRUE(store.copy(copy, u"/c", u"/k"));
    EXPECT_EQ(copy.GetDWORD(u"/c/number", 0), 7u);
    EXPECT_EQ(Utf8(copy.GetString(u"/c/sub/text", u"")), "t");
    EXPECT_TRUE(store.unlink(u"/k/number"));
    EXPECT_FALSE(store.isLeaf(u"/k/number"));
    EXPECT_TRUE(store.unlink(u"/k/sub"));
    EXPECT_FALSE(store.isEntry(u"/k/sub"));
    EXPECT_FALSE(store.unlink(u"/k/nothing"));
}

TEST_F(Registry, WritersInSeveralProcessesLoseNothing) {
    constexpr int kProcesses = 4, kWrites = 200;
    MemoryScratchDir shared;
    RegSetRootDirectory(HKEY_CURRENT_USER, shared.Text("reg"));
    std::vector<pid_t> children;
    for (int p = 0; p < kProcesses; ++p) {
        pid_t pid = fork();
        if (pid == 0) {
            CRegStore store;
            store.SetRoot(HKEY_CURRENT_USER, u"Software\\shared");
            bool ok = true;
            for (int i = 0; i < kWrites; ++i)
                ok = store.SetDWORD(CString::FromFormat(u"/p%d/v%d", p, i), uint32_t(p * 1000 + i)) && ok;
            _exit(ok ? 0 : 1);
        }
        children.push_back(pid);
    }
    for (pid_t pid : children) {
        int status = 0;
        waitpid(pid, &status, 0);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
    CRegStore store;
    store.SetRoot(HKEY_CURRENT_USER, u"Software\\shared");
    int found = 0;
    for (int p = 0; p < kProcesses; ++p)
        for (int i = 0; i < kWrites; ++i)
            found += store.GetDWORD(CString::FromFormat(u"/p%d/v%d", p, i), 0xFFFFFFFF) == uint32_t(p * 1000 + i);
    EXPECT_EQ(found, kProcesses * kWrites);
}

TEST_F(Registry, ASaveThatFailsHalfWayLeavesThePreviousFile) {
    FaultBytes before, after;
    RunUnderFaults(
        [&] {
            RegSetRootDirectory(HKEY_CURRENT_USER, dir.Text("reg"));
            std::filesystem::remove(RootFile());
            RegSetValueStr(HKEY_CURRENT_USER, u"Keep", u"old", u"value");
            before = FileBytes(RootFile());
        },
        // One registry call, one save (the key exists already).
        [&] { return RegSetValueStr(HKEY_CURRENT_USER, u"Keep", u"new", u"added") == ERROR_SUCCESS; },
        [&](FaultRun const &run) {
            FaultBytes now = FileBytes(RootFile());
            if (run.IsClean()) {
                after = now;
                return;
            }
            if (now != after) ExpectFailureReported(run);
            ExpectBeforeOrAfter(run, now, before, after);
            char16_t out[16];
            RegGetValueStr(HKEY_CURRENT_USER, u"Keep", u"old", out, 16, u"");
            EXPECT_EQ(std::u16string(out), u"value");
        });
}

TEST(RegistryRoots, LiveInTheUserConfigDirectoryAndAConfigurableOne) {
    char16_t file[512];
    RegSetRootDirectory(HKEY_CURRENT_USER, nullptr); // whatever an earlier case set
    setenv("XDG_CONFIG_HOME", "/tmp/qv-xdg-test", 1);
    ASSERT_TRUE(RegGetRootFile(HKEY_CURRENT_USER, file, 512));
    EXPECT_EQ(std::u16string(file), u"/tmp/qv-xdg-test/qv/registry/user.reg");
    ASSERT_TRUE(RegGetRootFile(HKEY_LOCAL_MACHINE, file, 512));
    EXPECT_EQ(std::u16string(file), u"/etc/qv/registry/machine.reg");
    RegSetRootDirectory(HKEY_LOCAL_MACHINE, u"/srv/qv");
    ASSERT_TRUE(RegGetRootFile(HKEY_LOCAL_MACHINE, file, 512));
    EXPECT_EQ(std::u16string(file), u"/srv/qv/machine.reg");
    RegSetRootDirectory(HKEY_LOCAL_MACHINE, nullptr);
    EXPECT_FALSE(RegGetRootFile(HKEY_CURRENT_USER, file, 8)) << "too small a buffer";
    unsetenv("XDG_CONFIG_HOME");
}

} // namespace
} // namespace qv::test
