// SPDX-License-Identifier: MIT
#include "host/script/macro_dir.h"

#include "host/script/execute.h"

namespace corvanta {

const MacroEntry* MacroScriptDir::Get(int i) const {
  return i >= 0 && i < Count() ? &entries_[static_cast<size_t>(i)] : nullptr;
}

const MacroEntry* MacroScriptDir::Find(const WStr& category, const WStr& name) const {
  for (const MacroEntry& entry : entries_)
    if (EqualsNoCase(entry.name, name) &&
        (EqualsNoCase(entry.category, category) || EqualsNoCase(entry.internalCategory, category)))
      return &entry;
  return nullptr;
}

int MacroScriptDir::Define(MacroEntry entry) {
  for (MacroEntry& known : entries_) {
    if (!EqualsNoCase(known.name, entry.name) || !EqualsNoCase(known.category, entry.category)) continue;
    entry.id = known.id;
    known = std::move(entry);
    return known.id;
  }
  entry.id = Count() + 1;
  entries_.push_back(std::move(entry));
  return entries_.back().id;
}

WStr MacroScriptDir::LoadFile(const WStr& path) { return RunScriptFile(path, {}).report; }

WStr MacroScriptDir::Run(const WStr& category, const WStr& name) const {
  const MacroEntry* entry = Find(category, name);
  if (!entry) return L"there is no macro \"" + name + L"\" in the category \"" + category + L"\"";
  const WStr body = entry->body;  // the macro may declare macros
  return RunScript(body, L"macro " + entry->name).report;
}

MacroScriptDir& GetMacroScriptDir() {
  static MacroScriptDir directory;
  return directory;
}

}  // namespace corvanta
