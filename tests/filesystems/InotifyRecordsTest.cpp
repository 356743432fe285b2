#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <sys/inotify.h>
#include <vector>

#include "qv/core/String.h"
#include "qv/platform/Inotify.h"

namespace qv {
namespace {

// Writes each record down as "kind watch cookie dir name".
class CRecordLines : public IWatchRecordSink {
public:
    std::vector<std::string> lines;
    size_t takeAtMost = SIZE_MAX;

    bool Take(SWatchRecord const &record) override {
        lines.push_back(std::to_string(int(record.kind)) + " " + std::to_string(record.watch) + " " +
                        std::to_string(record.cookie) + (record.directory ? " dir " : " - ") +
                        CString(record.name).GetUTF8());
        return lines.size() < takeAtMost;
    }
};

// One record as the system lays it out: header, then len bytes of name.
void Append(std::vector<char> &buffer, int32_t wd, uint32_t mask, uint32_t cookie, std::string const &name,
            uint32_t len) {
    inotify_event header{wd, mask, cookie, len};
    char const *bytes = reinterpret_cast<char const *>(&header);
    buffer.insert(buffer.end(), bytes, bytes + sizeof header);
    std::string padded = name;
    padded.resize(len, '\0');
    buffer.insert(buffer.end(), padded.begin(), padded.end());
}

std::string Line(EWatchRecord kind, std::string const &rest) {
    return std::to_string(int(kind)) + " " + rest;
}

TEST(InotifyRecordsTest, PassesWhatAMonitorUsesAndNeverReadsPastTheBuffer) {
    std::vector<char> buffer;
    Append(buffer, 1, IN_CREATE, 0, "a", 16);
    Append(buffer, 2, IN_ATTRIB, 0, "", 0); // about the watched directory itself
    Append(buffer, -1, IN_Q_OVERFLOW, 0, "", 0);
    Append(buffer, 3, IN_MOVED_FROM | IN_ISDIR, 77, "d", 16);
    Append(buffer, 3, IN_MOVED_TO | IN_ISDIR, 77, "e", 16);
    Append(buffer, 4, IN_CLOSE_WRITE, 0, "x", 16); // not asked for
    Append(buffer, 4, IN_IGNORED, 0, "", 0);
    Append(buffer, 5, IN_MODIFY, 0, "full", 4); // a name that fills its record, no terminator
    Append(buffer, 6, IN_DELETE, 0, std::string(255, 'n'), 256);
    std::vector<char> exact = buffer; // vector storage ends where the bytes end
    CRecordLines sink;
    EXPECT_TRUE(platform::PassInotifyRecords(exact.data(), exact.size(), sink));
    EXPECT_EQ(sink.lines, (std::vector<std::string>{
                              Line(EWatchRecord::Created, "1 0 - a"),
                              Line(EWatchRecord::Overflow, "-1 0 - "),
                              Line(EWatchRecord::MovedFrom, "3 77 dir d"),
                              Line(EWatchRecord::MovedTo, "3 77 dir e"),
                              Line(EWatchRecord::WatchGone, "4 0 - "),
                              Line(EWatchRecord::ContentChanged, "5 0 - full"),
                              Line(EWatchRecord::Deleted, "6 0 - " + std::string(255, 'n')),
                          }));

    // A record whose name runs past the end, and a header cut short.
    std::vector<char> cut;
    Append(cut, 1, IN_CREATE, 0, "a", 16);
    Append(cut, 1, IN_CREATE, 0, "long", 4096);
    cut.resize(cut.size() - 4000);
    CRecordLines cutSink;
    EXPECT_TRUE(platform::PassInotifyRecords(cut.data(), cut.size(), cutSink));
    EXPECT_EQ(cutSink.lines, std::vector<std::string>{Line(EWatchRecord::Created, "1 0 - a")});
    std::vector<char> shortHeader(buffer.begin(), buffer.begin() + sizeof(inotify_event) + 16 + 5);
    CRecordLines shortSink;
    EXPECT_TRUE(platform::PassInotifyRecords(shortHeader.data(), shortHeader.size(), shortSink));
    EXPECT_EQ(shortSink.lines.size(), 1u);

    // A sink that wants no more ends the walk.
    CRecordLines stopping;
    stopping.takeAtMost = 2;
    EXPECT_FALSE(platform::PassInotifyRecords(exact.data(), exact.size(), stopping));
    EXPECT_EQ(stopping.lines.size(), 2u);
}

} // namespace
} // namespace qv
