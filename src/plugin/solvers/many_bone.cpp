// SPDX-License-Identifier: MIT
// Four joints or more. Each middle joint bends by an angle about an axis of its own, both read off the preferred pose;
// one common factor for all angles is sought that puts the end at the goal's distance, and joint 0 aims the whole.
#include <algorithm>

#include "plugin/frame/rig_maths.h"
#include "plugin/solvers/detail/limb_space.h"
#include "plugin/solvers/soft_reach.h"
#include "plugin/solvers/turn.h"

namespace tavrilon {

using namespace corvanta;

namespace {

/// One step of the search: 5 degrees.
constexpr float kStep = 0.0872665f;
/// How far a biased joint bends at most: 179 degrees.
constexpr float kMostBent = 3.1241395f;
/// Sine of a bend too small to tell its axis: some times the noise of a preferred pose taken from world matrices.
constexpr float kStraight = 1e-5f;
/// The gap that counts as closed, as a part of the limb's length: the noise of its sum in single precision.
constexpr float kClosed = 3e-7f;
/// Passes that close the gap once the goal lies between two steps, however few the search has left.
constexpr int kClosingPasses = 16;

Quat Turn(const LimbWork::Joint& joint, float angle) {
  const float half = angle * 0.5f, s = std::sin(half);
  return {joint.axis.x * s, joint.axis.y * s, joint.axis.z * s, std::cos(half)};
}

class BendSearch {
 public:
  /// Reads axes and angles off the preferred pose; `poses` hold the places.
  BendSearch(const LimbIn& in, std::span<const JointPose> poses, LimbWork& work);

  /// From root to end in joint 0's own frame, with the angles at `part` of the way from the saved to the present ones.
  Point3 End(float part) const;
  /// Changes the angles until the end is `distance` away from the root.
  void Run(float length, float distance, int passes);
  Quat Rotation(size_t joint) const {
    return work_.joints[joint].base * Turn(work_.joints[joint], work_.joints[joint].angle);
  }
  /// The side that the first middle joint leaves for when the limb bends, in joint 0's own frame.
  Point3 Side() const { return Cross(work_.joints[1].axis, poses_[1].pos); }

 private:
  struct Probe {
    float part, length;
  };
  std::span<LimbWork::Joint> Middle() const { return std::span(work_.joints).subspan(1, poses_.size() - 2); }
  float Distance(float part) const { return Length(End(part)); }
  void SaveAngles() {
    for (LimbWork::Joint& joint : Middle()) joint.saved = joint.angle;
  }
  void SetAngles(float part) {
    for (LimbWork::Joint& joint : Middle()) joint.angle = joint.saved + (joint.angle - joint.saved) * part;
  }
  bool Straighten();
  void Fold();
  void Close(Probe a, Probe b, float distance, float closed, int passes);

  std::span<const JointPose> poses_;
  LimbWork& work_;
  size_t best_ = 1;
};

BendSearch::BendSearch(const LimbIn& in, std::span<const JointPose> poses, LimbWork& work)
    : poses_(poses), work_(work) {
  const size_t count = poses.size();
  if (work.joints.size() < count) work.joints.resize(count);
  for (size_t i = 1; i + 1 < count; ++i) {
    LimbWork::Joint& joint = work.joints[i];
    const Quat& preferred = in.joints[i].preferred;
    const Point3 before = Normalize(poses[i].pos);
    const Point3 after = TurnVector(Normalize(poses[i + 1].pos), preferred);
    const Point3 across = Cross(after, before);
    const float sine = Length(across), cosine = Dot(before, after);
    // A straight joint bends about its local Z, as hinges do.
    const bool straight = sine < kStraight && cosine >= 0;
    joint.axis = sine < kStraight ? Point3{0, 0, 1} : across / sine;
    joint.angle = straight ? 0 : std::atan2(sine, cosine);
    joint.base = preferred * Conjugate(Turn(joint, joint.angle));
    joint.saved = joint.angle;
  }
}

Point3 BendSearch::End(float part) const {
  Point3 end = poses_.back().pos;
  for (size_t i = poses_.size() - 2; i > 0; --i) {
    const LimbWork::Joint& joint = work_.joints[i];
    const float angle = joint.saved + (joint.angle - joint.saved) * part;
    end = TurnVector(TurnVector(end, joint.base), Turn(joint, angle)) + poses_[i].pos;
  }
  return end;
}

// Takes 5 degrees from the most bent joint and as large a part from the others; false when all are straight.
bool BendSearch::Straighten() {
  const float most = work_.joints[best_].angle;
  const float part = most > kStep ? kStep / most : 1;
  for (LimbWork::Joint& joint : Middle()) joint.angle -= part * joint.angle;
  return part < 1;
}

void BendSearch::Fold() {
  for (LimbWork::Joint& joint : Middle()) joint.angle = std::min(joint.angle + kStep, kPi);
}

// Secant steps that never leave the bracket, so that they land whatever the bends.
void BendSearch::Close(Probe a, Probe b, float distance, float closed, int passes) {
  Probe low = a, high = b;
  while (passes-- > 0 && std::abs(b.length - distance) > closed) {
    float part = b.length != a.length ? a.part + (b.part - a.part) * (distance - a.length) / (b.length - a.length) : -1;
    if (!(part > std::min(low.part, high.part) && part < std::max(low.part, high.part)))
      part = (low.part + high.part) * 0.5f;
    a = b;
    b = {part, Distance(part)};
    ((b.length < distance) == (low.length < distance) ? low : high) = b;
  }
  SetAngles(b.part);
}

void BendSearch::Run(float length, float distance, int passes) {
  const auto middle = Middle();
  const auto more = [](const auto& a, const auto& b) { return a.angle < b.angle; };
  best_ = 1 + static_cast<size_t>(std::max_element(middle.begin(), middle.end(), more) - middle.begin());
  if (passes > 0 && !(distance < length)) {
    for (LimbWork::Joint& joint : middle) joint.angle = 0;
    passes = 0;
  }
  SaveAngles();
  const float closed = kClosed * length;
  float before = Distance(1);
  const bool shorter = before < distance;
  if (std::abs(before - distance) <= closed) return;
  for (; passes > 0; --passes) {
    SaveAngles();
    bool goesOn = true;
    shorter ? void(goesOn = Straighten()) : Fold();
    const float now = Distance(1);
    if (shorter ? now >= distance : now <= distance)
      return Close({0, before}, {1, now}, distance, closed, std::max(passes - 1, kClosingPasses));
    // Folded past the shortest: the step before was the nearest.
    if (!shorter && now > before) return SetAngles(0);
    if (!goesOn) return;
    before = now;
  }
}

// Joint i of n - 2 middle ones, i from 1: the bias adds fully to the first, takes fully from the last.
void AddBias(const LimbIn& in, LimbWork& work) {
  const size_t count = in.joints.size();
  for (size_t i = 1; i + 1 < count; ++i) {
    const float f = static_cast<float>(i - 1) / static_cast<float>(count - 3);
    float& angle = work.joints[i].angle;
    angle = work.joints[i].saved = ClampValue(angle + (1 - 2 * f) * in.flexionBias, -kMostBent, kMostBent);
  }
}

}  // namespace

float BendManyBones(const LimbIn& in, const LimbSpace& space, std::span<JointPose> out, LimbWork& work) {
  const size_t last = out.size() - 1;
  const float stretch = in.blend * in.autoStretch;
  float length = 0;
  for (size_t i = 1; i <= last; ++i) length += Length(out[i].pos);
  const SoftReachOut soft = SoftenReach({space.distance, length, in.softness, stretch});
  for (size_t i = 1; i <= last; ++i) out[i].pos *= soft.boneScale;
  length *= soft.boneScale;

  BendSearch search(in, out, work);
  const Point3 preferredEnd = search.End(1);
  AddBias(in, work);
  search.Run(length, soft.distance, in.iterations);
  for (size_t i = 1; i < last; ++i) out[i].rot = search.Rotation(i);

  // Joint 0 lays the limb along X, its bend in the preferred plane, and then carries it to the goal.
  Quat lay = in.joints[0].preferred * in.preferredSpace;
  if (space.hasPlane) {
    const bool planeless = LengthSquared(Cross(Normalize(preferredEnd), Normalize(out[1].pos))) < kStraight * kStraight;
    lay = Conjugate(FrameTurn(Normalize(preferredEnd), planeless ? search.Side() : out[1].pos));
  }
  const Point3 end = Normalize(TurnVector(search.End(1), lay));
  lay = lay * Conjugate(TurnBetween({1, 0, 0}, end));
  const Quat twist = in.hasTarget ? Quat() : TwistQuat(in.swivel);
  out[0].rot = lay * (space.hasPlane ? space.plane : twist * TurnBetween({1, 0, 0}, space.aim));

  const float grown = StretchToReach(length, soft.distance, stretch);
  for (size_t i = 1; i <= last; ++i) out[i].pos *= grown;
  return soft.boneScale * grown;
}

}  // namespace tavrilon
