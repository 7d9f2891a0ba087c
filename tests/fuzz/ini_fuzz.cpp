// SPDX-License-Identifier: MIT
// The first byte tells what is written; the rest is the file. Untouched files keep their bytes, and what was written is
// read back.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "host/io/ini.h"

using corvanta::IniFile;
using corvanta::WStr;

namespace {
void Require(bool holds) {
  if (!holds) std::abort();
}
const wchar_t* const kNames[] = {L"Tavrilon", L"a", L"", L"key", L"B", L"\x00E4", L"x=y", L"]"};
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
  IniFile file(bytes);
  Require(file.Bytes() == bytes);
  const WStr section = kNames[data[0] & 7], key = kNames[(data[0] >> 3) & 7];
  const WStr value = corvanta::FromUtf8(bytes.substr(bytes.size() / 2));
  const bool written = file.Set(section, key, value);
  IniFile again(file.Bytes());
  Require(again.Bytes() == file.Bytes());
  if (written) {
    Require(again.Get(section, key) == value);
    Require(again.Remove(section, key) && !again.Get(section, key));
  } else {
    Require(file.Bytes() == bytes);
  }
  for (const WStr& name : again.Sections()) again.Keys(name);
  return 0;
}
