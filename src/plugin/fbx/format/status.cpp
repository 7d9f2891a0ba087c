// SPDX-License-Identifier: MIT
#include "plugin/fbx/format/status.h"

namespace tavrilon::fbx {

namespace {
constexpr size_t kNamesKept = 3;
constexpr size_t kKindsKept = 200;
}  // namespace

void ReadLog::Note(const std::string& kind, const std::string& where) {
  for (Finding& finding : findings_) {
    if (finding.kind != kind) continue;
    if (finding.names.size() < kNamesKept) finding.names.push_back(where);
    ++finding.count;
    return;
  }
  if (findings_.size() < kKindsKept) findings_.push_back({kind, {where}, 1});
}

std::vector<std::string> ReadLog::Lines() const {
  std::vector<std::string> lines;
  for (const Finding& finding : findings_) {
    std::string line = finding.kind;
    for (size_t i = 0; i < finding.names.size(); ++i) line += (i == 0 ? ": " : ", ") + finding.names[i];
    const int more = finding.count - static_cast<int>(finding.names.size());
    if (more > 0) line += " and " + std::to_string(more) + " more";
    lines.push_back(line);
  }
  return lines;
}

}  // namespace tavrilon::fbx
