// CString's record: sharing, detaching, growth, and the plain accessors.
#include "qv/core/String.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <string>

#include "qv/core/StringBlock.h"
#include "qv/core/WideChar.h"

namespace qv {

namespace {

CStringRep *NewRep() {
    auto *rep = new CStringRep;
    rep->refCount.store(1, std::memory_order_relaxed);
    rep->text = nullptr;
    rep->length = 0;
    rep->capacity = 0;
    rep->narrow = nullptr;
    rep->narrowSize = 0;
    return rep;
}

void Release(CStringRep *rep) {
    if (!rep || rep->refCount.fetch_sub(1, std::memory_order_acq_rel) - 1 >= 1) return;
    detail::FreeText(rep->text);
    ::operator delete(rep->narrow);
    delete rep;
}

CStringRep *Share(CStringRep *rep) {
    if (rep) rep->refCount.fetch_add(1, std::memory_order_relaxed);
    return rep;
}

CStringRep *Clone(CStringRep const *rep) {
    CStringRep *copy = NewRep();
    if (rep->text) {
        copy->text = detail::AllocateText(rep->capacity);
        std::memcpy(copy->text, rep->text, size_t(rep->capacity + 1) * sizeof(char16_t));
    }
    copy->length = rep->length;
    copy->capacity = rep->capacity;
    if (rep->narrow) {
        copy->narrow = static_cast<char *>(::operator new(size_t(rep->narrowSize)));
        std::memcpy(copy->narrow, rep->narrow, size_t(rep->narrowSize));
        copy->narrowSize = rep->narrowSize;
    }
    return copy;
}

// Length of s, stopping at limit units (s may lack a terminator there).
int64_t LengthUpTo(char16_t const *s, int64_t limit) {
    char16_t const *end = std::char_traits<char16_t>::find(s, size_t(limit), u'\0');
    return end ? end - s : limit;
}

// The units of s a Copy or Concatenate takes: all of it for a negative n.
int64_t TakenLength(char16_t const *s, int n) {
    if (!s) return 0;
    return n < 0 ? int64_t(wcslen(s)) : LengthUpTo(s, n);
}

// Makes capacity >= need; a block with enough room is reused as it stands,
// otherwise a new one of the given room replaces it. The capacity becomes
// exactly need whenever it grows.
void Fit(CStringRep *rep, int64_t need, bool keepText, int64_t room) {
    if (need < 0) need = 0;
    if (rep->text && rep->capacity >= need) return;
    if (!rep->text || detail::TextRoom(rep->text) < need) {
        char16_t *block = detail::AllocateText(std::max(room, need));
        if (keepText && rep->text) std::memcpy(block, rep->text, size_t(rep->capacity + 1) * sizeof(char16_t));
        detail::FreeText(rep->text);
        rep->text = block;
    }
    rep->text[need] = 0;
    rep->capacity = int32_t(need);
}

} // namespace

void CString::Unshare() {
    if (!rep) {
        rep = NewRep();
        return;
    }
    // A sole owner is the only one who could add another: a plain read is enough.
    if (rep->refCount.load(std::memory_order_acquire) == 1) return;
    CStringRep *copy = Clone(rep);
    Release(rep);
    rep = copy;
}

void CString::Reserve(int64_t need, bool keepText) {
    Fit(rep, need, keepText, need);
}

// Spare room makes repeated appends amortized; the capacity stays exact.
void CString::Grow(int64_t need) {
    Fit(rep, need, true, std::min<int64_t>(need + need / 2, std::numeric_limits<int32_t>::max() - 1));
}

bool CString::Aliases(char16_t const *s) const {
    if (!rep || !rep->text || !s) return false;
    auto at = reinterpret_cast<uintptr_t>(s), begin = reinterpret_cast<uintptr_t>(rep->text);
    return at >= begin && at <= begin + size_t(detail::TextRoom(rep->text)) * sizeof(char16_t);
}

char16_t const *CString::TextOrEmpty() const {
    return rep && rep->text ? rep->text : u"";
}

CString CString::Detached(char16_t const *s, int64_t n) {
    CString copy{NullTag{}};
    copy.Assign(s, n);
    return copy;
}

void CString::Assign(char16_t const *s, int64_t n) {
    if (Aliases(s)) return Assign(Detached(s, n).rep->text, n);
    Unshare();
    Reserve(n, false);
    if (n) std::memcpy(rep->text, s, size_t(n) * sizeof(char16_t));
    rep->text[n] = 0;
    rep->length = int32_t(n);
}

void CString::Append(char16_t const *s, int64_t n) {
    if (Aliases(s)) return Append(Detached(s, n).rep->text, n);
    Unshare();
    int64_t length = rep->length;
    Grow(length + n);
    if (n) std::memcpy(rep->text + length, s, size_t(n) * sizeof(char16_t));
    rep->text[length + n] = 0;
    rep->length = int32_t(length + n);
}

void CString::Adopt(char16_t *block, int64_t capacity) {
    if (!rep || rep->refCount.load(std::memory_order_acquire) != 1) {
        Release(rep);
        rep = NewRep();
    }
    detail::FreeText(rep->text);
    rep->text = block;
    rep->capacity = int32_t(capacity);
    rep->length = int32_t(LengthUpTo(block, capacity));
}

CString::CString() : rep(nullptr) {
    Copy(u"", -1);
}
CString::CString(char const *utf8) : rep(nullptr) {
    Copy(utf8, -1);
}
CString::CString(char16_t const *text) : rep(nullptr) {
    Copy(text, -1);
}
CString::CString(CString const &other) : rep(Share(other.rep)) {}
CString::CString(CString &&other) noexcept : rep(other.rep) {
    other.rep = nullptr;
}
CString::~CString() {
    Release(rep);
}

CString &CString::operator=(char const *utf8) {
    Copy(utf8, -1);
    return *this;
}

CString &CString::operator=(char16_t const *text) {
    Copy(text, -1);
    return *this;
}

CString &CString::operator=(CString const &other) {
    if (other.rep == rep) return *this;
    Share(other.rep);
    Release(rep);
    rep = other.rep;
    return *this;
}

CString &CString::operator=(CString &&other) noexcept {
    if (&other == this) return *this;
    Release(rep);
    rep = other.rep;
    other.rep = nullptr;
    return *this;
}

void CString::Copy(char16_t const *s, int n) {
    Assign(s ? s : u"", TakenLength(s, n));
}

void CString::Alloc(int n) {
    Unshare();
    Reserve(n, true);
}

char16_t *CString::GetBuffer(int n) {
    Unshare();
    Reserve(n < 0 ? rep->length : n, true);
    return rep->text;
}

void CString::ReleaseBuffer() {
    if (!rep) return;
    Unshare();
    if (!rep->text) return;
    rep->length = int32_t(LengthUpTo(rep->text, rep->capacity)); // a full buffer ends at the capacity
    rep->text[rep->length] = 0;
}

void CString::Destroy() {
    Release(rep);
    rep = nullptr;
}

void CString::Empty() {
    Destroy();
}

int CString::GetLength() const {
    return rep ? rep->length : 0;
}
bool CString::IsEmpty() const {
    return GetLength() == 0;
}
char16_t const *CString::GetTChar() const {
    return rep ? rep->text : nullptr;
}
CString::operator char16_t const *() const {
    return GetTChar();
}
char16_t const *CString::GetUTF16() const {
    return TextOrEmpty();
}

char16_t *CString::ConvertToUTF16() {
    static char16_t empty[1];
    empty[0] = 0;
    return rep && rep->text ? rep->text : empty;
}

char16_t &CString::operator[](int i) {
    thread_local char16_t scratch;
    scratch = 0;
    if (!rep || i < 0 || i > rep->length) return scratch;
    if (i == rep->length) Insert(i, u'\0');
    return rep->text[i];
}

char16_t CString::operator[](int i) const {
    return rep && i >= 0 && i < rep->length ? rep->text[i] : u'\0';
}

void CString::Concatenate(char16_t const *s, int n) {
    Append(s ? s : u"", TakenLength(s, n));
}

CString &CString::operator+=(char16_t const *s) {
    Concatenate(s, -1);
    return *this;
}

CString &CString::operator+=(char16_t c) {
    Append(&c, 1);
    return *this;
}

// One block of exactly the joined length; each text is copied once.
CString CString::Joined(char16_t const *a, int64_t aLength, char16_t const *b) {
    int64_t bLength = b ? int64_t(wcslen(b)) : 0;
    CString out{NullTag{}};
    out.Unshare();
    out.Reserve(aLength + bLength, false);
    out.Append(a, aLength);
    out.Append(b, bLength);
    return out;
}

CString operator+(CString const &a, char16_t const *b) {
    return CString::Joined(a.TextOrEmpty(), a.GetLength(), b);
}
CString operator+(CString const &a, CString const &b) {
    return CString::Joined(a.TextOrEmpty(), a.GetLength(), b);
}

CString operator+(char16_t const *a, CString const &b) {
    return CString::Joined(a ? a : u"", a ? int64_t(wcslen(a)) : 0, b.TextOrEmpty());
}

} // namespace qv
