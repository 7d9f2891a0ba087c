// SPDX-License-Identifier: MIT
#include "plugin/fbx/exporter/curves.h"

#include <algorithm>

namespace tavrilon::fbx_export {

using namespace fbx;

bool FindConstant(std::span<const float> values, double tolerance, double neat, float& constant) {
  const auto [least, most] = std::minmax_element(values.begin(), values.end());
  if (double{*most} - *least > tolerance) return false;
  const double middle = (double{*most} + *least) / 2;
  constant = static_cast<float>(std::abs(middle - neat) <= tolerance ? neat : middle);
  return true;
}

FbxAnimCurve MakeCurve(const std::vector<int64_t>& times, std::span<const float> values, double tolerance,
                       double neat) {
  FbxAnimCurve curve;
  curve.shapes.resize(1);
  float constant = 0;
  if (FindConstant(values, tolerance, neat, constant)) {
    curve.times = {times.front()};
    curve.values = {constant};
  } else {
    curve.times = times;
    curve.values.assign(values.begin(), values.end());
  }
  return curve;
}

}  // namespace tavrilon::fbx_export
