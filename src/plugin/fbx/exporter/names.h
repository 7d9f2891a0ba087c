// SPDX-License-Identifier: MIT
// Names in a file: UTF-8, never empty and each but once, since readers find things by them.
#pragma once

#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "host/core/wstr.h"

namespace tavrilon::fbx_export {

class UniqueNames {
 public:
  /// Names that will be asked for are kept from the numbered ones.
  void Reserve(const corvanta::WStr& name) { wanted_.insert(Cleaned(name)); }
  /// `name`, or with a number behind it when it was given before: "arm_1". Control characters become "_", and an empty
  /// name `otherwise`. `changed` tells whether the name is another one now.
  std::string Take(const corvanta::WStr& name, const char* otherwise, bool* changed = nullptr);

 private:
  static std::string Cleaned(const corvanta::WStr& name);
  std::unordered_set<std::string> wanted_, taken_;
  std::unordered_map<std::string, int> lastNumber_;
};

}  // namespace tavrilon::fbx_export
