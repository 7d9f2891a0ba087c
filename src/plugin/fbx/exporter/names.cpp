// SPDX-License-Identifier: MIT
#include "plugin/fbx/exporter/names.h"

namespace tavrilon::fbx_export {

std::string UniqueNames::Cleaned(const corvanta::WStr& name) {
  std::string text = corvanta::ToUtf8(name);
  // Binary files part name and class by bytes 0 and 1, and names in ASCII files stand on one line.
  for (char& c : text)
    if (static_cast<unsigned char>(c) < 0x20) c = '_';
  return text;
}

std::string UniqueNames::Take(const corvanta::WStr& name, const char* otherwise, bool* changed) {
  std::string text = Cleaned(name);
  if (text.empty()) text = otherwise;
  if (!taken_.insert(text).second) {
    int& number = lastNumber_[text];
    std::string numbered;
    do {
      numbered = text + "_" + std::to_string(++number);
    } while (wanted_.count(numbered) || !taken_.insert(numbered).second);
    text = std::move(numbered);
  }
  if (changed) *changed = text != corvanta::ToUtf8(name);
  return text;
}

}  // namespace tavrilon::fbx_export
