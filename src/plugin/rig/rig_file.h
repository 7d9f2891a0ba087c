// SPDX-License-Identifier: MIT
// Rig template files (.rig): points, parameters and extras as plain values, to bytes and back.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "plugin/rig/rig_point.h"

namespace tavrilon {

/// One parameter. Numbers of ids and types are the parameter block's own; the type tells which value counts.
struct RigFileParam {
  uint16_t id = 0;
  int type = 0;
  int intValue = 0;
  float floatValue = 0;
  Point3 pointValue;
  WStr text;
  bool operator==(const RigFileParam&) const = default;
};

struct RigFilePoint {
  WStr name;
  /// Template units.
  Point3 position;
  bool operator==(const RigFilePoint&) const = default;
};

/// What a file holds. Of an extra it keeps name, parent, side and number of controls; the number of bones and
/// the use of bones come back as 2 and off.
struct RigFile {
  std::vector<RigFilePoint> points;
  std::vector<RigFileParam> params;
  std::vector<RigExtra> extras;
  bool operator==(const RigFile&) const = default;
};

/// Equal contents give equal bytes.
std::vector<uint8_t> WriteRigFile(const RigFile& file);

struct RigFileResult {
  RigFile file;
  /// Empty when the file was read; else what is wrong with it, in words for the user. `file` is empty then.
  std::string error;
  /// Points and parameters left out because a number in them is infinite or not a number.
  int skipped = 0;
  bool ok() const { return error.empty(); }
};

inline constexpr size_t kMaxRigFileBytes = 64u << 20;
inline constexpr size_t kMaxRigFileExtras = 1000;
inline constexpr size_t kMaxRigNameBytes = 4096;

/// Checks the whole buffer before anything is read from it; any bytes at all are safe input.
RigFileResult ReadRigFile(const std::vector<uint8_t>& bytes);

}  // namespace tavrilon
