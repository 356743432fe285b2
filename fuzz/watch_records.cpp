// The portable translation of directory-watcher records into monitor events,
// fed made-up records: each takes a watch key, a kind, a directory bit, a
// cookie and a name from the input. The translator must never fault nor
// report a null path.
#include <cstddef>
#include <cstdint>
#include <string>

#include "qv/core/String.h"
#include "qv/core/WideChar.h"
#include "qv/filesystems/WatchTranslator.h"

namespace {

void Require(bool condition) {
    if (!condition) __builtin_trap();
}

// Watches what it is asked to, with fresh keys, as a monitor would.
class CListener : public qv::IWatchListener {
public:
    explicit CListener(qv::CWatchTranslator &translator) : translator(translator) {}
    void FileAdded(char16_t const *path) override { Require(path != nullptr); }
    void FileRemoved(char16_t const *path) override { Require(path != nullptr); }
    void FileModified(char16_t const *path) override { Require(path != nullptr); }
    void FileRenamed(char16_t const *from, char16_t const *to) override { Require(from && to); }
    void WatchTree(char16_t const *path, EReport) override {
        if (translator.Table().Count() < 64) translator.Table().Add(nextKey++, qv::CString(path));
    }
    void Unwatch(int32_t) override {}
    void Overflowed() override {}

private:
    qv::CWatchTranslator &translator;
    int32_t nextKey = 10;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    if (size < 1) return 0;
    qv::CWatchTranslator translator(data[0] & 7);
    translator.Table().Add(1, u"");
    translator.Table().Add(2, u"sub");
    translator.Table().Add(3, u"sub/deep");
    CListener listener(translator);
    size_t at = 1;
    while (at + 4 <= size) {
        uint8_t key = data[at], kind = data[at + 1], cookie = data[at + 2], length = data[at + 3] % 16;
        at += 4;
        std::u16string name;
        for (; length > 0 && at < size; --length, ++at)
            name += char16_t(data[at] ? data[at] : u'_');
        qv::SWatchRecord record;
        record.watch = int32_t(key % 12);
        record.kind = qv::EWatchRecord(kind % 8);
        record.directory = (kind & 0x80) != 0;
        record.cookie = cookie % 4;
        record.name = name.c_str();
        translator.Feed(record, listener);
    }
    translator.Flush(listener);
    return 0;
}
