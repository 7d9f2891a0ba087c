// SPDX-License-Identifier: MIT
// Any bytes as a rig template: what is read is written back to equal values, and makes a template whose places and
// frames can be asked for.
#include <cstdint>
#include <cstdlib>

#include "plugin/rig/point_frame.h"
#include "plugin/rig/rig_file.h"
#include "plugin/rig/template.h"

using namespace tavrilon;

namespace {
void Require(bool holds) {
  if (!holds) std::abort();
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const RigFileResult read = ReadRigFile({data, data + size});
  Require(read.ok() || read.file == RigFile());
  if (!read.ok()) return 0;
  const RigFileResult again = ReadRigFile(WriteRigFile(read.file));
  Require(again.ok() && again.skipped == 0 && again.file == read.file);
  TemplateParams params;
  for (const RigFileParam& param : read.file.params)
    if (param.id < rig_param::kCount) params.values[param.id] = param.intValue;
  // Large counts are covered by the unit tests; here they would only be slow.
  for (int& value : params.values) value %= 12;
  RigPoints points = BuildTemplate(static_cast<RigType>(params[rig_param::kHelperType]), params, {}, read.file.extras);
  for (const RigFilePoint& point : read.file.points) {
    const int i = FindPoint(points, point.name);
    if (i >= 0) points[i].position = point.position;
  }
  const PointPlaces places(points);
  const PointFrames frames(points, places);
  for (size_t i = 0; i < points.size(); i += 1 + points.size() / 64) frames.PointTM(static_cast<int>(i), 1);
  return 0;
}
