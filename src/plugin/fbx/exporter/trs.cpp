// SPDX-License-Identifier: MIT
#include "plugin/fbx/exporter/trs.h"

#include <algorithm>

namespace tavrilon::fbx_export {

using namespace fbx;

namespace {

constexpr double kShearTolerance = 1e-4;
constexpr double kLargestValue = 1e15;
/// An axis that is this much shorter than the longest has a direction of rounding errors only.
constexpr double kShortestAxis = 1e-10;

/// Signs of a mirrored matrix, in the order of preference.
constexpr Vector3 kFlips[] = {{-1, 1, 1}, {1, -1, 1}, {1, 1, -1}, {-1, -1, -1}};

bool IsInRange(const Vector3& v) {
  return std::abs(v.x) <= kLargestValue && std::abs(v.y) <= kLargestValue && std::abs(v.z) <= kLargestValue;
}

bool IsSheared(const Affine& m, const Vector3& lengths) {
  for (size_t i = 0; i < 3; ++i) {
    const size_t j = (i + 1) % 3;
    if (std::abs(Dot(m.row[i], m.row[j])) > kShearTolerance * lengths[i] * lengths[j]) return true;
  }
  return false;
}

/// Rows j and k of a right-handed frame whose row i is given, near to `like`.
void CompleteFrame(Affine& axes, size_t i, const Affine& like) {
  const size_t j = (i + 1) % 3, k = (i + 2) % 3;
  Vector3 second = like.row[j] - axes.row[i] * Dot(like.row[j], axes.row[i]);
  // Half a right angle keeps one of the two candidates well away from the given row.
  if (Length(second) < 0.5) second = Cross(like.row[k], axes.row[i]);
  axes.row[j] = second * (1 / Length(second));
  axes.row[k] = Cross(axes.row[i], axes.row[j]);
}

/// Unit rows of `m`; those of no length are completed, right-handed and near to `like`.
Affine UnitAxes(const Affine& m, const Vector3& lengths, const Affine& like) {
  const double shortest = kShortestAxis * std::max({lengths.x, lengths.y, lengths.z});
  Affine axes;
  bool has[3];
  int count = 0;
  for (size_t i = 0; i < 3; ++i) {
    has[i] = lengths[i] > shortest;
    if (has[i]) axes.row[i] = m.row[i] * (1 / lengths[i]), ++count;
  }
  for (size_t i = 0; i < 3; ++i) {
    if (count == 2 && !has[i]) axes.row[i] = Cross(axes.row[(i + 1) % 3], axes.row[(i + 2) % 3]);
    if (count == 1 && has[i]) CompleteFrame(axes, i, like);
    if (count == 0) axes.row[i] = like.row[i];
  }
  return axes;
}

/// One step of Newton's iteration to the polar factor: what shear is tolerated is spread evenly over the axes. Source:
/// Higham, "Computing the polar decomposition" (1986).
Affine NearerRotation(const Affine& m) {
  const double k = 0.5 / Determinant(m);
  Affine r;
  for (size_t i = 0; i < 3; ++i) r.row[i] = m.row[i] * 0.5 + Cross(m.row[(i + 1) % 3], m.row[(i + 2) % 3]) * k;
  return r;
}

Affine Flipped(const Affine& axes, const Vector3& signs) {
  Affine r;
  for (size_t i = 0; i < 3; ++i) r.row[i] = axes.row[i] * signs[i];
  return r;
}

}  // namespace

int TrsTrack::ChooseFlip(const Affine& axes) const {
  if (flip_ >= 0) return flip_;
  int best = 0;
  double bestAgreement = -4;
  for (int i = 0; i < 4; ++i) {
    const Affine flipped = Flipped(axes, kFlips[i]);
    double agreement = 0;
    for (size_t r = 0; r < 3; ++r) agreement += Dot(flipped.row[r], axes_.row[r]);
    // A later choice must be clearly better, so that rounding errors decide nothing.
    if (agreement > bestAgreement + 1e-6) best = i, bestAgreement = agreement;
  }
  return best;
}

TrsFault TrsTrack::Split(const Affine& local) {
  if (!IsFinite(local)) return TrsFault::NotFinite;
  const Vector3 lengths{Length(local.row[0]), Length(local.row[1]), Length(local.row[2])};
  if (IsSheared(local, lengths)) return TrsFault::Shear;
  if (!IsInRange(local.row[3]) || !IsInRange(lengths)) return TrsFault::OutOfRange;

  Affine axes = UnitAxes(local, lengths, axes_);
  Trs next{local.row[3], {}, lengths};
  int flip = -1;
  if (Determinant(axes) < 0) {
    flip = ChooseFlip(axes);
    const Vector3& signs = kFlips[flip];
    axes = Flipped(axes, signs);
    for (size_t i = 0; i < 3; ++i) next.scaling[i] *= signs[i];
  }
  axes = NearerRotation(axes);
  next.rotation = RotationToEuler(axes, last_.rotation);
  if (!IsFinite(next.rotation) || !IsInRange(next.rotation)) return TrsFault::OutOfRange;
  last_ = next;
  axes_ = axes;
  flip_ = flip;
  return TrsFault::None;
}

}  // namespace tavrilon::fbx_export
