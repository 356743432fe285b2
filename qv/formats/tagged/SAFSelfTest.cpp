// The SAF self check: every road of saving under every edit, compared with
// what it must give.
#include "qv/formats/tagged/SAFSelfTest.h"

#include <cstdarg>
#include <cstring>

#include "qv/core/WideChar.h"
#include "qv/files/IFile.h"
#include "qv/filesystems/DiskFileSystem.h"
#include "qv/formats/tagged/SAFFile.h"

namespace qv {

namespace {

constexpr uint32_t kCompareBlock = 0x80000;
constexpr uint32_t kDataBytes = 163480;

enum class Road { New, Save, SaveAs };

class SelfTest {
public:
    explicit SelfTest(TArray<CString> &lines) : log(lines) {}

    bool Run(CString const &stem) {
        bool passed = true;
        for (int run = 0; run < 4; ++run) passed = Scenario(stem, run & 1, run & 2) && passed;
        return passed;
    }

private:
    void Log(char16_t const *format, ...) {
        va_list args;
        va_start(args, format);
        CString line;
        line.FormatV(format, args);
        va_end(args);
        log.Add(line);
    }

    static void MakeBase(CSAFFile &saf) {
        saf.New(true);
        char16_t const *tags[][2] = {{u"KeyWrd", u"IMG"},  {u"Multi", u"NoHeaders"}, {u"BytOrd", u"LH"},
                                     {u"DaType", u"UInt16"}, {u"ADBits", u"14"},       {u"xPixls", u"320"},
                                     {u"yPixls", u"256"},  {u"IMSize", u"163480"},    {u"NumDPs", u""},
                                     {u"8ch", u"12"},      {u"16chars", u"123456"},   {u"26chars", u"1234567891234567"}};
        for (auto &tag : tags) saf.AddTag(tag[0], tag[1]);
    }

    // Appends the data segment: bytes no header text looks like.
    static bool AppendData(char16_t const *path) {
        IFile *f = FileSystem->CreateFileW(path, 0x32);
        if (!f) return false;
        TSimpleArray<uint8_t> bytes;
        bytes.SetSize(kDataBytes);
        uint32_t x = 0x2545F491;
        for (uint32_t i = 0; i < kDataBytes; ++i) bytes[i] = uint8_t((x = x * 1664525u + 1013904223u) >> 24);
        bool ok = f->SeekToEnd() >= 0 && f->WriteBytes(bytes.GetData(), kDataBytes);
        f->Close();
        delete f;
        return ok;
    }

    bool Scenario(CString const &stem, bool pad, bool data) {
        CString base = stem + (pad ? u".pad" : u"") + (data ? u".data" : u"") + u".sfmov";
        CSAFFile saf;
        MakeBase(saf);
        FileSystem->DeleteFileW(base.GetUTF16());
        if (!saf.Save(FileSystem, base.GetUTF16(), pad) || (data && !AppendData(base.GetUTF16()))) {
            Log(u"Could not open file \"%s\".", base.GetUTF16());
            return false;
        }
        bool passed = true;
        int number = 0;
        Road const roads[] = {Road::New, Road::Save, Road::SaveAs};
        char16_t const *suffixes[] = {u".new.test%02d.sfmov", u".save.test%02d.sfmov", u".saveas.test%02d.sfmov"};
        for (int r = 0; r < 3; ++r)
            for (int edit = 0; edit < 9; ++edit) {
                CString target = base.Left(base.GetLength() - 6) + CString::FromFormat(suffixes[r], ++number);
                bool ok = Edit(roads[r], edit, base, target, pad);
                Log(ok ? u"Passed." : u"Failed.");
                passed = passed && ok;
            }
        return passed;
    }

    // Applies edit number `edit` to saf; what it adds before saving.
    static void Change(CSAFFile &saf, int edit, bool adding) {
        static char16_t const *const added[][2] = {{u"a8", u"123"}, {u"a16", u"1234567890"},
                                                   {u"a26", u"12345678901234567890"}};
        static char16_t const *const removed[] = {u"8ch", u"16chars", u"26chars"};
        if (edit >= 1 && edit <= 6) {
            int size = (edit - 1) / 2;
            if (edit % 2) saf.AddTag(added[size][0], added[size][1]);
            else saf.RemoveTag(removed[size]);
        } else if (edit >= 7) {
            for (int i = 0; i < 64; ++i) {
                CString name = CString::FromFormat(u"%03d", i);
                if (adding) saf.AddTag(name.GetUTF16(), u"000000000000000000000000000000000000000000000000000000000");
                else saf.RemoveTag(name.GetUTF16());
            }
            if (edit == 8 && adding) saf.AddTag(u"a8", u"123");
            if (edit == 8 && !adding) saf.RemoveTag(u"a8");
        }
    }

    bool Edit(Road road, int edit, CString const &base, CString const &target, bool pad) {
        static char16_t const *const messages[] = {
            u"Not modifying anything.", u"Adding 8 characters of data.", u"Removing 8 characters of data.",
            u"Adding 16 characters of data.", u"Removing 16 characters of data.", u"Adding 26 characters of data.",
            u"Removing 26 characters of data.", u"Adding, Saving, then Removing 4k characters of data.",
            u"Adding, Saving, then Removing 4k + 8 characters of data."};
        Log(u"%s", messages[edit]);
        FileSystem->DeleteFileW(target.GetUTF16());
        CSAFFile saf, expected;
        if (!saf.Load(FileSystem, base.GetUTF16()) || !expected.Load(FileSystem, base.GetUTF16())) {
            Log(u"Could not load header for file \"%s\".", base.GetUTF16());
            return false;
        }
        Change(expected, edit, true);
        if (edit >= 7) Change(expected, edit, false);
        if (!Apply(road, edit, saf, base, target, pad)) {
            Log(u"Could not open file \"%s\".", target.GetUTF16());
            return false;
        }
        return Compare(expected, base, target);
    }

    // Saves saf by the road, with the edit applied (the large ones saved in
    // between, as an application growing and shrinking its header does).
    bool Apply(Road road, int edit, CSAFFile &saf, CString const &base, CString const &target, bool pad) {
        if (road == Road::Save && !IFileSystem::CopyFileW(FileSystem, base.GetUTF16(), FileSystem,
                                                          target.GetUTF16(), true, nullptr, nullptr))
            return false;
        if (road == Road::Save && !saf.Load(FileSystem, target.GetUTF16())) return false;
        if (road == Road::New) saf.DropData();
        Change(saf, edit, true);
        char16_t const *path = road == Road::Save ? nullptr : target.GetUTF16();
        if (!saf.Save(FileSystem, path, pad)) return false;
        if (edit >= 7) {
            Change(saf, edit, false);
            if (!saf.Save(FileSystem, nullptr, pad)) return false;
        }
        // A new file has no data segment of its own: the application writes it.
        return road != Road::New || CopyData(base, target);
    }

    static bool CopyData(CString const &from, CString const &to) {
        CSAFFile header;
        if (!header.Load(FileSystem, from.GetUTF16())) return false;
        IFile *src = FileSystem->CreateFileW(from.GetUTF16(), 0x12);
        IFile *dst = FileSystem->CreateFileW(to.GetUTF16(), 0x32);
        bool ok = src && dst && src->Seek(header.GetDataPosition(), 1) >= 0 && dst->SeekToEnd() >= 0 &&
                  IFileSystem::CopyFileW(src, dst, src->GetSize() - header.GetDataPosition(), nullptr, nullptr);
        for (IFile *f : {src, dst})
            if (f) f->Close(), delete f;
        return ok;
    }

    bool Compare(CSAFFile &expected, CString const &base, CString const &target) {
        CSAFFile result;
        if (!result.Load(FileSystem, target.GetUTF16())) {
            Log(u"Could not load header for file \"%s\".", target.GetUTF16());
            return false;
        }
        Log(u"Comparing %s to %s.", base.GetUTF16(), target.GetUTF16());
        bool same = Contains(expected, result, base, target) && Contains(result, expected, target, base);
        if (!same) return false;
        Log(u"Tag values match.");
        return CompareData(base, expected.GetDataPosition(), target, result.GetDataPosition());
    }

    // Every tag of a is in b with the same value (case not mattering).
    bool Contains(CSAFFile &a, CSAFFile &b, CString const &aName, CString const &bName) {
        for (uint32_t i = 0; i < a.nTags(); ++i) {
            char16_t const *name = a[i].name.GetUTF16();
            char16_t const *mine = a[i].value.GetUTF16();
            char16_t const *theirs = b.GetTagValue(name);
            if (!theirs) {
                Log(u"Tag %s exists in %s, but not in %s.", name, aName.GetUTF16(), bName.GetUTF16());
                return false;
            }
            if (_wcsicmp(mine ? mine : u"", theirs) != 0) {
                Log(u"Tag %s is different (%s vs. %s).", name, mine ? mine : u"", theirs);
                return false;
            }
        }
        return true;
    }

    bool CompareData(CString const &aPath, uint32_t aStart, CString const &bPath, uint32_t bStart) {
        IFile *a = FileSystem->CreateFileW(aPath.GetUTF16(), 0x212);
        IFile *b = FileSystem->CreateFileW(bPath.GetUTF16(), 0x212);
        bool ok = CompareOpenData(a, aStart, b, bStart, aPath, bPath);
        for (IFile *f : {a, b})
            if (f) f->Close(), delete f;
        return ok;
    }

    bool CompareOpenData(IFile *a, uint32_t aStart, IFile *b, uint32_t bStart, CString const &aPath,
                         CString const &bPath) {
        if (!a || !b) {
            Log(u"Could not open file \"%s\".", (a ? bPath : aPath).GetUTF16());
            return false;
        }
        int64_t size = a->GetSize() - aStart;
        if (size != b->GetSize() - bStart) {
            Log(u"Data segment sizes do not match.");
            return false;
        }
        TSimpleArray<uint8_t> blockA, blockB;
        if (!blockA.SetSize(kCompareBlock) || !blockB.SetSize(kCompareBlock) || a->Seek(aStart, 1) != aStart ||
            b->Seek(bStart, 1) != bStart) {
            Log(u"FileIO error.");
            return false;
        }
        for (int64_t done = 0; done < size;) {
            uint32_t n = uint32_t(size - done < kCompareBlock ? size - done : kCompareBlock);
            if (!a->ReadBytes(blockA.GetData(), n) || !b->ReadBytes(blockB.GetData(), n)) {
                Log(u"FileIO error.");
                return false;
            }
            if (std::memcmp(blockA.GetData(), blockB.GetData(), n) != 0) {
                Log(u"Data segments are different.");
                return false;
            }
            done += n;
        }
        Log(u"Data segments match.");
        return true;
    }

    TArray<CString> &log;
};

CString TempDirectory() {
    CString probe = FileSystem->GetTempFilename();
    FileSystem->DeleteFileW(probe.GetUTF16());
    int slash = probe.ReverseFindChar(u'/');
    return slash > 0 ? probe.Left(slash) : CString(u"/tmp");
}

void WriteLog(CString const &path, TArray<CString> const &log) {
    IFile *f = FileSystem->CreateFileW(path.GetUTF16(), 0x28);
    if (!f) return;
    for (uint32_t i = 0; i < log.nItems(); ++i) f->WriteFormattedString("%S\r\n", log.GetAt(i).GetUTF16());
    f->Close();
    delete f;
}

} // namespace

bool safTest(TArray<CString> &log) {
    CString temp = TempDirectory();
    CString dir = temp + u"/safTest";
    FileSystem->CreateDirectoryW(dir.GetUTF16(), true);
    bool passed = SelfTest(log).Run(dir + u"/safTest");
    log.Add(CString(passed ? u"Test passed." : u"Test failed."));
    WriteLog(temp + u"/safTest.log", log);
    return passed;
}

bool safTest() {
    TArray<CString> log;
    return safTest(log);
}

} // namespace qv
