// SPDX-License-Identifier: MIT
// The macros that scripts have declared: what menus and buttons run.
#pragma once

#include <vector>

#include "host/core/wstr.h"

namespace corvanta {

struct MacroEntry {
  /// Given once, from 1; a macro that is declared again keeps it.
  int id = 0;
  WStr name, category, internalCategory, toolTip, buttonText, iconName;
  /// The file or text that declared it.
  WStr sourcePath;
  /// The script that runs.
  WStr body;
};

class MacroScriptDir {
 public:
  int Count() const { return static_cast<int>(entries_.size()); }
  /// Null beyond the end.
  const MacroEntry* Get(int i) const;
  /// By category and name, case ignored; the internal category counts too. Null when there is none.
  const MacroEntry* Find(const WStr& category, const WStr& name) const;
  /// Adds a macro, or replaces the one of the same category and name. Gives its ID.
  int Define(MacroEntry entry);
  /// Runs the declarations of a script file again. Gives an empty text, or what is wrong.
  [[nodiscard]] WStr LoadFile(const WStr& path);
  /// Runs a macro. Gives an empty text, or what is wrong.
  [[nodiscard]] WStr Run(const WStr& category, const WStr& name) const;

 private:
  std::vector<MacroEntry> entries_;
};

MacroScriptDir& GetMacroScriptDir();

}  // namespace corvanta
