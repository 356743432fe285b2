/// @file
/// Internal to the path algebra (not installed for callers): building a result
/// in a caller's buffer without ever writing past it, and keeping a source
/// intact while the buffer it may lie in is rewritten.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "qv/core/WideChar.h"
#include "qv/filesystems/PathAlgebra.h"

namespace qv {

/// Text in a buffer of size units (size >= 1), cut at size - 1 units and
/// terminated after every step.
class CPathBuilder {
public:
    /// Starts with n units of initial, which may lie in the buffer itself.
    CPathBuilder(char16_t *buffer, int size, char16_t const *initial, size_t n)
        : buffer(buffer), limit(size_t(size) - 1) {
        Append(initial, n);
    }

    /// Appends n units of s (or c), as many as fit.
    ///@{
    void Append(char16_t const *s, size_t n) {
        size_t take = std::min(n, limit - length);
        std::memmove(buffer + length, s, take * sizeof(char16_t));
        length += take;
        buffer[length] = 0;
    }
    void Append(char16_t c) { Append(&c, 1); }
    ///@}

    /// slash unless the text already ends in a separator (the empty text does
    /// not), then s: the joining rule of MakePath.
    void AppendBehindSeparator(char16_t const *s, size_t n, char16_t slash) {
        if (!EndsWithSeparator()) Append(slash);
        Append(s, n);
    }
    /// An empty text takes the item as it stands; otherwise it joins as above.
    void AddItem(char16_t const *item, size_t n, char16_t slash) {
        if (length == 0)
            Append(item, n);
        else
            AppendBehindSeparator(item, n, slash);
    }

    /// Whether the text ends in '/' or '\\' (the empty text does not).
    bool EndsWithSeparator() const { return length > 0 && CPathAlgebra::IsSeparator(buffer[length - 1]); }
    /// Index of the last separator in front of end, or -1.
    ///@{
    std::ptrdiff_t LastSeparatorBefore(size_t end) const {
        while (end > 0)
            if (CPathAlgebra::IsSeparator(buffer[--end])) return std::ptrdiff_t(end);
        return -1;
    }
    void Truncate(size_t n) {
        length = std::min(n, length);
        buffer[length] = 0;
    }
    size_t Length() const { return length; }
    ///@}

private:
    char16_t *buffer;
    size_t limit;
    size_t length = 0;
};

/// A source text that writing into a buffer of size units at dst cannot
/// disturb: a private copy when the text overlaps the buffer, else the text.
class CStableText {
public:
    /// text (not null) against the buffer of size units at dst.
    CStableText(char16_t const *text, char16_t const *dst, int size) : text(text), length(wcslen(text)) {
        if (!Overlaps(dst, size)) return;
        copy.assign(text, length);
        this->text = copy.c_str();
    }
    CStableText(CStableText const &) = delete;
    CStableText &operator=(CStableText const &) = delete;

    char16_t const *Text() const { return text; } ///< the text or its copy, terminated
    size_t Length() const { return length; }      ///< its length in units

private:
    bool Overlaps(char16_t const *dst, int size) const {
        auto first = uintptr_t(text), last = uintptr_t(text + length); // the terminator counts
        auto bufferFirst = uintptr_t(dst), bufferEnd = uintptr_t(dst + std::max(size, 0));
        return first < bufferEnd && last >= bufferFirst;
    }

    char16_t const *text;
    size_t length;
    std::u16string copy;
};

} // namespace qv
