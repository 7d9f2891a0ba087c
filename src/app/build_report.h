// SPDX-License-Identifier: MIT
// What `tavrilon build` tells about its work, for people and as JSON.
#pragma once

#include <string>
#include <vector>

#include "app/node_kind.h"

namespace app {

struct BuildReport {
  std::string type, name;
  float height = 0;
  /// Nodes by kind.
  int counts[kNodeKinds] = {};
  /// Remarks of the build: what the parameters ask for and this build does not make.
  std::vector<std::string> notes;
  /// What the picker panel shows, one line each.
  std::vector<std::string> panel;
  /// Points of the loaded template that the rig does not have.
  std::vector<std::string> unknownPoints;
  std::string templateFile;
  /// Controls found in the rest pose; -1 when nobody looked.
  int restControls = -1;
  std::vector<std::string> files;
};

void PrintReport(const BuildReport& report);
void PrintReportAsJson(const BuildReport& report);

}  // namespace app
