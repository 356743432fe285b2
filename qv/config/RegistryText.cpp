// Reading and writing the registry editor's export text form.
#include "qv/config/RegistryText.h"

#include <cstring>

#include "qv/config/Registry.h"
#include "qv/core/WideChar.h"

namespace qv {

namespace {

constexpr char16_t kHeader[] = u"Windows Registry Editor Version 5.00";
constexpr size_t kHexLineLimit = 76;

// ---- Writing ----

void AppendHexByte(std::u16string &out, uint8_t byte) {
    constexpr char16_t digits[] = u"0123456789abcdef";
    out += digits[byte >> 4];
    out += digits[byte & 15];
}

void AppendEscaped(std::u16string &out, char16_t const *text) {
    for (; *text; ++text) {
        if (*text == u'\\' || *text == u'"') out += u'\\';
        out += *text;
    }
}

// A REG_SZ writes as a quoted string when its data are one terminated text
// without line breaks or embedded NULs; anything else would not read back.
bool IsPlainString(SRegValue const &value, std::u16string &text) {
    if (value.type != REG_SZ || value.data.size() < 2 || value.data.size() % 2) return false;
    size_t units = value.data.size() / 2 - 1;
    text.clear();
    for (size_t i = 0; i <= units; ++i) {
        char16_t c = char16_t(value.data[2 * i] | (value.data[2 * i + 1] << 8));
        if (i == units) return c == 0;
        if (c == 0 || c == u'\r' || c == u'\n') return false;
        text += c;
    }
    return false;
}

void AppendHexList(std::u16string &out, size_t lineStart, std::vector<uint8_t> const &data) {
    for (size_t i = 0; i < data.size(); ++i) {
        AppendHexByte(out, data[i]);
        if (i + 1 == data.size()) break;
        out += u',';
        if (out.size() - lineStart > kHexLineLimit) {
            out += u"\\\r\n  ";
            lineStart = out.size() - 2;
        }
    }
}

void AppendValue(std::u16string &out, SRegValue const &value) {
    size_t lineStart = out.size();
    if (value.name.IsEmpty()) {
        out += u'@';
    } else {
        out += u'"';
        AppendEscaped(out, value.name.GetUTF16());
        out += u'"';
    }
    out += u'=';
    std::u16string text;
    if (IsPlainString(value, text)) {
        out += u'"';
        AppendEscaped(out, text.c_str());
        out += u'"';
    } else if (value.type == REG_DWORD && value.data.size() == 4) {
        out += u"dword:";
        for (int i = 3; i >= 0; --i)
            AppendHexByte(out, value.data[size_t(i)]);
    } else {
        if (value.type == REG_BINARY) {
            out += u"hex:";
        } else {
            std::u16string number;
            uint32_t type = value.type;
            do {
                number.insert(number.begin(), u"0123456789abcdef"[type & 15]);
                type >>= 4;
            } while (type);
            out += u"hex(" + number + u"):";
        }
        AppendHexList(out, lineStart, value.data);
    }
    out += u"\r\n";
}

void AppendKey(std::u16string &out, SRegNode const &key, std::u16string const &path) {
    out += u"[" + path + u"]\r\n";
    for (SRegValue const &value : key.values)
        AppendValue(out, value);
    out += u"\r\n";
    for (auto const &sub : key.keys)
        AppendKey(out, *sub, path + u"\\" + sub->name.GetUTF16());
}

// ---- Reading ----

bool DecodeText(std::string const &bytes, std::u16string &text) {
    auto const *b = reinterpret_cast<uint8_t const *>(bytes.data());
    size_t n = bytes.size();
    if (n > kMaxRegistryFileSize) return false;
    if (n >= 2 && b[0] == 0xFF && b[1] == 0xFE) {
        if (n % 2) return false;
        text.resize((n - 2) / 2);
        for (size_t i = 0; i < text.size(); ++i)
            text[i] = char16_t(b[2 + 2 * i] | (b[3 + 2 * i] << 8));
        return true;
    }
    size_t skip = n >= 3 && b[0] == 0xEF && b[1] == 0xBB && b[2] == 0xBF ? 3 : 0;
    int length = int(n - skip);
    if (length == 0) return true;
    int units = CString::ConvertToUTF16(bytes.data() + skip, length, nullptr, 0);
    if (units <= 0) return false;
    text.resize(size_t(units) + 1);
    CString::ConvertToUTF16(bytes.data() + skip, length, text.data(), units + 1);
    text.resize(size_t(units));
    return true;
}

class CRegistryParser {
public:
    CRegistryParser(std::u16string const &text, char16_t const *rootName, SRegNode &root)
        : text(text), rootName(rootName), root(root) {}

    bool Run() {
        std::u16string line;
        if (!NextLine(line) || line != kHeader) return false;
        while (NextLine(line)) {
            if (line.empty() || line[0] == u';') continue;
            bool ok = line[0] == u'[' ? KeyLine(line) : ValueLine(line);
            if (!ok) return false;
        }
        return true;
    }

private:
    // The next physical line, without its CR LF or LF.
    bool NextLine(std::u16string &line) {
        if (at >= text.size()) return false;
        size_t end = text.find(u'\n', at);
        if (end == std::u16string::npos) end = text.size();
        line.assign(text, at, end - at);
        if (!line.empty() && line.back() == u'\r') line.pop_back();
        at = end + 1;
        return true;
    }

    bool KeyLine(std::u16string const &line) {
        if (line.back() != u']' || line.size() < 3 || line[1] == u'-') return false;
        std::u16string path = line.substr(1, line.size() - 2);
        size_t rootLength = std::char_traits<char16_t>::length(rootName);
        if (path.size() < rootLength || _wcsnicmp(path.c_str(), rootName, rootLength) != 0) return false;
        if (path.size() > rootLength && path[rootLength] != u'\\') return false;
        key = &root;
        size_t depth = 0;
        for (size_t start = rootLength; start < path.size();) {
            size_t end = path.find(u'\\', start + 1);
            if (end == std::u16string::npos) end = path.size();
            std::u16string name = path.substr(start + 1, end - start - 1);
            // A NUL would cut the name short and leave a key that cannot be written back.
            if (name.empty() || name.find(u'\0') != name.npos || ++depth > kMaxKeyDepth) return false;
            key = key->AddKey(name.c_str());
            start = end;
        }
        return true;
    }

    // A quoted text at line[pos] with \\ and \" escapes; pos ends behind it.
    static bool Quoted(std::u16string const &line, size_t &pos, std::u16string &out) {
        if (pos >= line.size() || line[pos] != u'"') return false;
        out.clear();
        for (++pos; pos < line.size(); ++pos) {
            char16_t c = line[pos];
            if (c == u'"') {
                ++pos;
                return true;
            }
            if (c == u'\\') {
                if (++pos >= line.size() || (line[pos] != u'\\' && line[pos] != u'"')) return false;
                c = line[pos];
            }
            out += c;
        }
        return false;
    }

    static int HexDigit(char16_t c) {
        if (c >= u'0' && c <= u'9') return c - u'0';
        if (c >= u'a' && c <= u'f') return c - u'a' + 10;
        if (c >= u'A' && c <= u'F') return c - u'A' + 10;
        return -1;
    }

    // Hex digits from line[pos] up to a ':' or ')' (at most 8); pos ends on it.
    static bool Number(std::u16string const &line, size_t &pos, uint32_t &out) {
        out = 0;
        size_t start = pos;
        for (; pos < line.size() && HexDigit(line[pos]) >= 0; ++pos) {
            if (pos - start == 8) return false;
            out = out << 4 | uint32_t(HexDigit(line[pos]));
        }
        return pos > start;
    }

    // A byte list "xx,xx,..." that may go on over lines ending in '\'.
    bool HexList(std::u16string rest, std::vector<uint8_t> &data) {
        for (;;) {
            size_t end = rest.size();
            while (end && (rest[end - 1] == u' ' || rest[end - 1] == u'\t'))
                --end;
            bool more = end && rest[end - 1] == u'\\';
            if (more) --end;
            for (size_t i = 0; i < end;) {
                while (i < end && (rest[i] == u' ' || rest[i] == u'\t'))
                    ++i;
                if (i == end) break;
                if (i + 1 >= end || HexDigit(rest[i]) < 0 || HexDigit(rest[i + 1]) < 0) return false;
                data.push_back(uint8_t(HexDigit(rest[i]) << 4 | HexDigit(rest[i + 1])));
                i += 2;
                if (i < end && rest[i] != u',') return false;
                if (i < end) ++i;
            }
            if (!more) return true;
            if (!NextLine(rest)) return false;
        }
    }

    bool ValueLine(std::u16string const &line) {
        if (!key) return false;
        size_t pos = 0;
        std::u16string name;
        if (line[0] == u'@')
            pos = 1;
        else if (!Quoted(line, pos, name) || name.find(u'\0') != name.npos)
            return false;
        if (pos >= line.size() || line[pos] != u'=') return false;
        ++pos;
        std::vector<uint8_t> data;
        uint32_t type = REG_SZ;
        std::u16string rest = line.substr(pos);
        if (!rest.empty() && rest[0] == u'"') {
            std::u16string value;
            size_t at = pos;
            if (!Quoted(line, at, value) || at != line.size()) return false;
            for (char16_t c : value) {
                data.push_back(uint8_t(c & 0xFF));
                data.push_back(uint8_t(c >> 8));
            }
            data.push_back(0);
            data.push_back(0);
        } else if (rest.compare(0, 6, u"dword:") == 0) {
            size_t at = 6;
            uint32_t number = 0;
            if (!Number(rest, at, number) || at != rest.size()) return false;
            type = REG_DWORD;
            for (int i = 0; i < 4; ++i)
                data.push_back(uint8_t(number >> (8 * i)));
        } else if (rest.compare(0, 4, u"hex:") == 0) {
            type = REG_BINARY;
            if (!HexList(rest.substr(4), data)) return false;
        } else if (rest.compare(0, 4, u"hex(") == 0) {
            size_t at = 4;
            if (!Number(rest, at, type) || rest.compare(at, 2, u"):") != 0) return false;
            if (!HexList(rest.substr(at + 2), data)) return false;
        } else {
            return false;
        }
        key->SetValue(name.c_str(), type, std::move(data));
        return true;
    }

    std::u16string const &text;
    char16_t const *rootName;
    SRegNode &root;
    SRegNode *key = nullptr;
    size_t at = 0;
};

} // namespace

bool ParseRegistryText(std::string const &bytes, char16_t const *rootName, SRegNode &root) {
    root.values.clear();
    root.keys.clear();
    std::u16string text;
    if (bytes.empty()) return true; // a root with no file yet
    if (!DecodeText(bytes, text) || !CRegistryParser(text, rootName, root).Run()) {
        root.values.clear();
        root.keys.clear();
        return false;
    }
    return true;
}

std::string FormatRegistryText(SRegNode const &root, char16_t const *rootName) {
    std::u16string text = kHeader;
    text += u"\r\n\r\n";
    AppendKey(text, root, rootName);
    std::string bytes("\xFF\xFE", 2);
    bytes.reserve(2 + text.size() * 2);
    for (char16_t c : text) {
        bytes += char(c & 0xFF);
        bytes += char(c >> 8);
    }
    return bytes;
}

} // namespace qv
