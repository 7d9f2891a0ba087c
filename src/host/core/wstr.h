// SPDX-License-Identifier: MIT
// Text. WStr inside the program, UTF-8 at every edge: files, terminal, JSON.
#pragma once

#include <string>
#include <string_view>

namespace corvanta {

using WStr = std::wstring;

/// Code points outside Unicode become U+FFFD.
std::string ToUtf8(std::wstring_view text);
/// Malformed bytes become U+FFFD, so any bytes give a text.
WStr FromUtf8(std::string_view bytes);
/// True when `bytes` is well-formed UTF-8.
bool IsUtf8(std::string_view bytes);

/// printf for wide text with %s (const wchar_t*), %d, %i, %02d, %03d, %x, %g, %f and %%; does not depend on the locale.
WStr Format(const wchar_t* pattern, ...);

/// Lower case for comparison of names: ASCII letters, and other letters by the C++ classic rules that do not
/// depend on the locale (Latin-1, Greek and Cyrillic).
WStr ToLower(std::wstring_view text);
bool EqualsNoCase(std::wstring_view a, std::wstring_view b);

}  // namespace corvanta
