/// @file
/// The XML file's text rules: the seven entities it decodes and what it
/// encodes on writing. Internal to the library.
#pragma once

#include <cstdint>
#include <string>

#include "qv/core/String.h"

namespace qv::xml {

/// n bytes of UTF-8 with the seven entities (&quot; &apos; &lt; &gt; &amp;
/// &#13; &#10;, any case) replaced; any other "&..." run, up to its ';' or for
/// at most 15 bytes, is kept as written.
CString Decode(char const *bytes, uint32_t n);
/// The same for text that is already wide.
CString Decode(char16_t const *text);

/// Appends text as UTF-8 with & < > " ' as entities, and CR and LF as &#13;
/// and &#10; when lineEnds is set (attribute values).
void AppendEncoded(std::string &out, CString const &text, bool lineEnds);

} // namespace qv::xml
