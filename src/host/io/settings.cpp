// SPDX-License-Identifier: MIT
#include "host/io/settings.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <limits>
#include <string>

#include "host/io/ini.h"

namespace corvanta {
namespace {

constexpr std::wstring_view kSection = L"Tavrilon";

std::string Environment(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

std::string HomeFolder() {
  const std::string home = Environment("HOME");
  if (!home.empty()) return home;
  const passwd* user = getpwuid(getuid());
  return user && user->pw_dir ? user->pw_dir : "/";
}

std::string ConfigFolderUtf8() {
  std::string folder = Environment("TAVRILON_CONFIG_DIR");
  if (folder.empty()) {
    // The base directory specification tells to ignore relative paths.
    const std::string base = Environment("XDG_CONFIG_HOME");
    folder = (!base.empty() && base[0] == '/' ? base : HomeFolder() + "/.config") + "/Tavrilon";
  }
  while (folder.size() > 1 && folder.back() == '/') folder.pop_back();
  return folder;
}

/// Makes a folder and what is above it, with the rights that the base directory specification asks for.
bool MakeFolders(const std::string& path) {
  for (size_t slash = path.find('/', 1); slash != path.npos; slash = path.find('/', slash + 1))
    mkdir(path.substr(0, slash).c_str(), 0700);
  struct stat info;
  return mkdir(path.c_str(), 0700) == 0 || (stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode));
}

int ToInt(const std::string& text) {
  const size_t start = text.find_first_not_of(" \t+");
  if (start == text.npos) return 0;
  long long value = 0;
  const auto result = std::from_chars(text.data() + start, text.data() + text.size(), value, 10);
  using Limits = std::numeric_limits<int>;
  if (result.ec == std::errc::result_out_of_range) return text[start] == '-' ? Limits::min() : Limits::max();
  return static_cast<int>(std::min<long long>(Limits::max(), std::max<long long>(Limits::min(), value)));
}

}  // namespace

WStr ConfigFolder() { return FromUtf8(ConfigFolderUtf8()); }

WStr SettingsPath() { return ConfigFolder() + L"/Corvanta.ini"; }

bool MakeConfigFolder() { return MakeFolders(ConfigFolderUtf8()); }

WStr GetIniSetting(const WStr& path, std::wstring_view section, std::wstring_view key) {
  IniFile file;
  if (!file.Load(path).empty()) return {};
  return file.Get(section, key).value_or(WStr());
}

WStr SetIniSetting(const WStr& path, std::wstring_view section, std::wstring_view key, std::wstring_view value) {
  IniFile file;
  // A file that cannot be read is not written either: that would lose what is in it.
  if (WStr error = file.Load(path); !error.empty()) return error;
  if (file.Get(section, key) == value) return {};
  if (!file.Set(section, key, value))
    return Format(L"Cannot write \"%s\": an INI file cannot hold the key \"%s\" of section \"%s\" with this value.",
                  path.c_str(), WStr(key).c_str(), WStr(section).c_str());
  if (path == SettingsPath()) MakeConfigFolder();
  return file.Save(path);
}

WStr RemoveIniSetting(const WStr& path, std::wstring_view section, std::wstring_view key) {
  IniFile file;
  if (WStr error = file.Load(path); !error.empty()) return error;
  return file.Remove(section, key) ? file.Save(path) : WStr();
}

bool ReadIntSetting(std::wstring_view key, int* value) {
  const WStr text = GetIniSetting(SettingsPath(), kSection, key);
  if (text.empty()) return false;
  *value = ToInt(ToUtf8(text));
  return true;
}

bool WriteIntSetting(std::wstring_view key, int value) {
  return SetIniSetting(SettingsPath(), kSection, key, Format(L"%d", value)).empty();
}

WStr EscapeForScript(std::wstring_view text) {
  WStr out;
  for (const wchar_t c : text) {
    if (c == L'"' || c == L'\\') out.push_back(L'\\');
    out.push_back(c);
  }
  return out;
}

int VersionNumber(std::wstring_view text) {
  const std::string bytes = ToUtf8(text);
  const char* at = bytes.data();
  const char* const end = at + bytes.size();
  int number = 0;
  for (int part = 0; part < 3; ++part) {
    int value = 0;
    const auto result = std::from_chars(at, end, value, 10);
    // Three parts of up to 9999, 99 and 99 are what the packed number can hold.
    if (result.ec != std::errc() || value < 0 || value > (part ? 99 : 9999)) return 0;
    at = result.ptr;
    if (part < 2 && (at == end || *at++ != '.')) return 0;
    number = number * 100 + value;
  }
  return at == end ? number : 0;
}

}  // namespace corvanta
