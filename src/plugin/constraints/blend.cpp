// SPDX-License-Identifier: MIT
#include "plugin/constraints/blend.h"

namespace tavrilon {

using namespace corvanta;

void TransformBlend::Add(const AffineParts& parts, float weight) {
  total_ += weight;
  position_ += parts.t * weight;
  scale_ += parts.k * (parts.f * weight);
  const float f = total_ == 0 ? 0 : weight / total_;
  rotation_ = Normalize(Slerp(rotation_, MakeClosest(Normalize(parts.q), rotation_), f));
  stretch_ = Normalize(Slerp(stretch_, MakeClosest(Normalize(parts.u), stretch_), f));
}

AffineParts TransformBlend::Result() const {
  AffineParts parts;
  parts.t = position_ / total_;
  parts.k = scale_ / total_;
  parts.q = MakeClosest(rotation_, stretch_);
  parts.u = stretch_;
  return parts;
}

ScaleValue ScaleOf(const Matrix3& tm) {
  const AffineParts parts = decomp_affine(tm);
  return {parts.k * parts.f, parts.u};
}

}  // namespace tavrilon
