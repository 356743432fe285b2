// qv config get / set / dump over every kind of store, run as a program.
#include "config/ConfigTestSupport.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sys/wait.h>

namespace qv::test {
namespace {

struct ToolRun {
    int status;
    std::string out;
    std::string err;
};

class ConfigTool : public testing::Test {
protected:
    void SetUp() override { setenv("XDG_CONFIG_HOME", dir.path.c_str(), 1); }
    void TearDown() override { unsetenv("XDG_CONFIG_HOME"); }

    ToolRun Run(std::string const &arguments) {
        std::string errFile = dir.Path("stderr");
        std::string command = std::string(QV_TOOL) + " " + arguments + " 2>'" + errFile + "'";
        ToolRun run{-1, "", ""};
        if (FILE *pipe = popen(command.c_str(), "r")) {
            char buffer[512];
            while (size_t got = fread(buffer, 1, sizeof buffer, pipe))
                run.out.append(buffer, got);
            int status = pclose(pipe);
            run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        }
        std::ifstream err(errFile);
        run.err.assign(std::istreambuf_iterator<char>(err), {});
        return run;
    }

    std::string Quoted(char const *name) { return "'" + dir.Path(name) + "'"; }

    ScratchDir dir;
};

TEST_F(ConfigTool, SetGetAndDumpEveryKindOfStore) {
    for (std::string store : {Quoted("t.ini"), Quoted("t.xml"), Quoted("t.db"), std::string("reg:user")}) {
        SCOPED_TRACE(store);
        EXPECT_EQ(Run("config set " + store + " /Camera/Lens/focus 12").status, 0);
        EXPECT_EQ(Run("config set " + store + " /Camera/name \"it's a camera\"").status, 0);
        ToolRun got = Run("config get " + store + " /Camera/Lens/focus");
        EXPECT_EQ(got.status, 0) << got.err;
        EXPECT_EQ(got.out, "12\n");
        ToolRun dump = Run("config dump " + store);
        EXPECT_EQ(dump.status, 0) << dump.err;
        EXPECT_NE(dump.out.find("/Camera/Lens/focus=12\n"), std::string::npos) << dump.out;
        EXPECT_NE(dump.out.find("/Camera/name=it's a camera\n"), std::string::npos) << dump.out;
        ToolRun json = Run("config dump --json " + store);
        EXPECT_EQ(json.status, 0) << json.err;
        EXPECT_NE(json.out.find("\"/Camera/Lens/focus\":\"12\""), std::string::npos) << json.out;
        ToolRun missing = Run("config get " + store + " /Camera/none");
        EXPECT_EQ(missing.status, 1);
        EXPECT_EQ(missing.out, "") << "never a value that is not there";
        EXPECT_NE(missing.err.find("no value"), std::string::npos);
    }
    EXPECT_TRUE(std::filesystem::exists(dir.Path("qv/registry/user.reg")));
}

TEST_F(ConfigTool, RefusesWhatIsNotAStore) {
    ToolRun wrong = Run("config get " + Quoted("t.txt") + " /x");
    EXPECT_EQ(wrong.status, 1);
    EXPECT_NE(wrong.err.find("not a settings store"), std::string::npos);
    EXPECT_EQ(Run("config get " + Quoted("absent.ini") + " /x").status, 1);
    EXPECT_EQ(Run("config dump " + Quoted("absent.db")).status, 1);
    std::ofstream(dir.Path("junk.db")) << std::string(2048, 'j');
    ToolRun junk = Run("config set " + Quoted("junk.db") + " /x 1");
    EXPECT_EQ(junk.status, 1);
    EXPECT_NE(junk.err.find("SQLite"), std::string::npos);
    EXPECT_EQ(Run("config get " + Quoted("t.ini")).status, 2) << "a missing argument";
}

} // namespace
} // namespace qv::test
