// Settings stores against their references, measured in one run:
// - 100,000 SetString then GetString on CsqliteStore (writes batched in one
//   Lock/Unlock transaction) against raw prepared statements doing the same
//   inserts and lookups in one transaction; speed_ratio is qv's speed over
//   the raw speed, the goal 0.8.
// - Loading a 1 MB INI file with CINIStore against Python's configparser
//   (Debian's /usr/bin/python3, timed by itself in a child process before the
//   benchmark; noted, not a goal): qv_time_over_configparser.
#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <unistd.h>

#include "PairedTiming.h"
#include "qv/config/INIStore.h"
#include "qv/config/SqliteStore.h"
#include "qv/core/WideFormat.h"
#include "qv/files/MemFile.h"

namespace {

constexpr int kKeys = 100000;

std::string ScratchName(char const *name) {
    char const *base = access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp";
    return std::string(base) + "/qv_bench_" + std::to_string(getpid()) + "_" + name;
}

void RunQvStore(std::string const &file) {
    std::remove(file.c_str());
    qv::CsqliteStore store;
    if (!store.Open(qv::CString(file.c_str()))) std::abort();
    char16_t path[64];
    store.Lock();
    for (int i = 0; i < kKeys; ++i) {
        qv::swprintf(path, 64, u"/bench/k%06d", i);
        store.SetString(path, u"a value of some thirty bytes..");
    }
    store.Unlock();
    size_t total = 0;
    for (int i = 0; i < kKeys; ++i) {
        qv::swprintf(path, 64, u"/bench/k%06d", i);
        total += size_t(store.GetString(path, u"").GetLength());
    }
    benchmark::DoNotOptimize(total);
}

void Exec(sqlite3 *db, char const *sql) {
    if (sqlite3_exec(db, sql, nullptr, nullptr, nullptr) != SQLITE_OK) std::abort();
}

void RunRawStatements(std::string const &file) {
    std::remove(file.c_str());
    sqlite3 *db = nullptr;
    if (sqlite3_open(file.c_str(), &db) != SQLITE_OK) std::abort();
    Exec(db, "CREATE TABLE IF NOT EXISTS nodes(id INTEGER PRIMARY KEY, name TEXT, path TEXT UNIQUE, parent INTEGER, "
             "type INTEGER, value);");
    Exec(db, "INSERT INTO nodes VALUES(NULL, '', '/', 0, 0, NULL);");
    Exec(db, "INSERT INTO nodes VALUES(NULL, 'bench', '/bench', 1, 0, NULL);");
    sqlite3_stmt *insert = nullptr, *select = nullptr;
    sqlite3_prepare_v2(db, "INSERT INTO nodes VALUES(NULL, ?1, ?2, 2, 10, ?3);", -1, &insert, nullptr);
    sqlite3_prepare_v2(db, "SELECT value FROM nodes WHERE path = ?1;", -1, &select, nullptr);
    char path[64];
    Exec(db, "BEGIN IMMEDIATE TRANSACTION;");
    for (int i = 0; i < kKeys; ++i) {
        int n = std::snprintf(path, sizeof path, "/bench/k%06d", i);
        sqlite3_bind_text(insert, 1, path + 7, n - 7, SQLITE_TRANSIENT);
        sqlite3_bind_text(insert, 2, path, n, SQLITE_TRANSIENT);
        sqlite3_bind_text(insert, 3, "a value of some thirty bytes..", -1, SQLITE_STATIC);
        if (sqlite3_step(insert) != SQLITE_DONE) std::abort();
        sqlite3_reset(insert);
    }
    Exec(db, "COMMIT TRANSACTION;");
    size_t total = 0;
    for (int i = 0; i < kKeys; ++i) {
        int n = std::snprintf(path, sizeof path, "/bench/k%06d", i);
        sqlite3_bind_text(select, 1, path, n, SQLITE_TRANSIENT);
        if (sqlite3_step(select) == SQLITE_ROW) total += size_t(sqlite3_column_bytes(select, 0));
        sqlite3_reset(select);
    }
    benchmark::DoNotOptimize(total);
    sqlite3_finalize(insert);
    sqlite3_finalize(select);
    sqlite3_close(db);
}

void BM_SqliteStoreAgainstRawStatements(benchmark::State &state) {
    std::string qvFile = ScratchName("qv.db"), rawFile = ScratchName("raw.db");
    bench::RunPaired(state, bench::SPair{"100,000 SetString + GetString, SQLite store vs raw statements", 0.8},
                     2 * kKeys, [&] { RunQvStore(qvFile); }, [&] { RunRawStatements(rawFile); });
    std::remove(qvFile.c_str());
    std::remove(rawFile.c_str());
}
BENCHMARK(BM_SqliteStoreAgainstRawStatements)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

// A 1 MB INI file: 1,000 sections of 25 keys.
std::string MakeIni() {
    std::string text;
    char line[128];
    for (int s = 0; s < 1000; ++s) {
        std::snprintf(line, sizeof line, "[/Section%04d/Sub]\r\n", s);
        text += line;
        for (int k = 0; k < 25; ++k) {
            std::snprintf(line, sizeof line, "key_%02d=value number %d of section %d\r\n", k, k, s);
            text += line;
        }
    }
    return text;
}

// Seconds per configparser load of the file, or 0 when Python is missing.
double ConfigparserSeconds(std::string const &file) {
    std::string script = "import configparser, time\n"
                         "t = time.perf_counter()\n"
                         "for _ in range(5):\n"
                         "    c = configparser.ConfigParser(interpolation=None)\n"
                         "    c.read(\"" +
                         file +
                         "\")\n"
                         "print((time.perf_counter() - t) / 5)\n";
    std::string command = "/usr/bin/python3 -c '" + script + "' 2>/dev/null";
    double seconds = 0;
    if (FILE *pipe = popen(command.c_str(), "r")) {
        if (std::fscanf(pipe, "%lf", &seconds) != 1) seconds = 0;
        pclose(pipe);
    }
    return seconds;
}

void BM_INILoadAgainstConfigparser(benchmark::State &state) {
    std::string text = MakeIni();
    std::string file = ScratchName("load.ini");
    std::ofstream(file, std::ios::binary) << text;
    double python = ConfigparserSeconds(file);
    qv::CMemFile input;
    input.Write(text.data(), uint32_t(text.size()));
    double qvSeconds = 0;
    for (auto _ : state) {
        input.SeekToBegin();
        qv::CINIStore store;
        auto start = std::chrono::steady_clock::now();
        if (!store.Load(&input)) std::abort();
        double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        qvSeconds += seconds;
        state.SetIterationTime(seconds);
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(text.size()));
    state.counters["configparser_seconds"] = python;
    if (python > 0) state.counters["qv_time_over_configparser"] = qvSeconds / double(state.iterations()) / python;
    std::remove(file.c_str());
}
BENCHMARK(BM_INILoadAgainstConfigparser)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);

} // namespace
