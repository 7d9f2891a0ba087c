// SPDX-License-Identifier: MIT
// Where the user's settings live, and the integer keys of the section "Tavrilon". Nothing is kept in memory: each call
// reads the file, so a change made by hand or by another process counts at once.
#pragma once

#include <string_view>

#include "host/core/wstr.h"

namespace corvanta {

/// The folder of the user's settings, without a slash at its end: the environment variable TAVRILON_CONFIG_DIR if set,
/// else "Tavrilon" in XDG_CONFIG_HOME or in ~/.config. It need not exist yet.
WStr ConfigFolder();
/// "Corvanta.ini" in ConfigFolder.
WStr SettingsPath();
/// Makes ConfigFolder, readable by its owner only, with what is above it. False when that fails.
bool MakeConfigFolder();

/// The text of a key, or an empty text when file, section or key is missing.
WStr GetIniSetting(const WStr& path, std::wstring_view section, std::wstring_view key);
/// Writes a key; the file is made when missing. Gives an empty text, or what is wrong.
[[nodiscard]] WStr SetIniSetting(const WStr& path, std::wstring_view section, std::wstring_view key,
                                 std::wstring_view value);
/// Removes a key. Gives an empty text, also when there was none, or what is wrong.
[[nodiscard]] WStr RemoveIniSetting(const WStr& path, std::wstring_view section, std::wstring_view key);

/// Reads an integer of the section "Tavrilon". False, and `value` as before, when the key is missing or empty. A text
/// that is no number gives 0, one that is too large the nearest integer.
bool ReadIntSetting(std::wstring_view key, int* value);
/// Writes one; false when the file cannot be written.
bool WriteIntSetting(std::wstring_view key, int value);

/// The text with a backslash before each quote and backslash, to stand between quotes in script text.
WStr EscapeForScript(std::wstring_view text);

/// "a.b.c" as (a * 100 + b) * 100 + c, so "2.02.02" is 20202; 0 for any other text.
int VersionNumber(std::wstring_view text);
/// The version of this build.
inline constexpr const wchar_t* kVersionText = L"2.02.02";

}  // namespace corvanta
