// SPDX-License-Identifier: MIT
// Limbs for the tests of this folder: known ones and random ones.
#pragma once

#include <random>
#include <vector>

#include "plugin/frame/rig_maths.h"
#include "plugin/solvers/limb.h"

namespace tavrilon {

/// A limb that owns its joints and keeps what it solved.
struct Limb : LimbIn {
  std::vector<LimbJoint> bones;
  std::vector<JointPose> pose;
  LimbWork work;
  float stretch = 1;

  explicit Limb(size_t count = 0) : bones(count) {}
  const std::vector<JointPose>& Solve() {
    joints = bones;
    pose.resize(bones.size());
    stretch = SolveLimb(*this, pose, work);
    return pose;
  }
  size_t Last() const { return bones.size() - 1; }
  float Length() const {
    float length = 0;
    for (size_t i = 1; i < bones.size(); ++i) length += corvanta::Length(bones[i].pos);
    return length;
  }
  float ParentScale() const { return corvanta::Length(parentTM.row[0]); }
  Point3 Root() const { return bones[0].pos * parentTM; }
  Point3 End() const { return pose.back().tm.GetTrans(); }
  /// How far the end lies off the goal, as a part of the limb's length.
  float Gap() const { return corvanta::Length(End() - goalTM.GetTrans()) / (Length() * ParentScale()); }
};

/// Two bones along X of length 2 from the origin, bent by 45 degrees, the goal at (3, 0, 0).
inline Limb EvenLimb() {
  Limb limb(3);
  limb.bones[1].pos = limb.bones[2].pos = {2, 0, 0};
  limb.bones[1].preferred = corvanta::QuatFromMatrix(corvanta::RotateZMatrix(-45 * corvanta::kDegToRad));
  limb.goalTM = corvanta::TransMatrix({3, 0, 0});
  return limb;
}

struct RandomLimbs {
  std::mt19937 rng{19};  // fixed: a failure must come back
  std::uniform_real_distribution<float> unit{-1, 1}, length{0.2f, 5}, part{0.05f, 0.95f};

  Quat Turn() { return Normalize(Quat{unit(rng), unit(rng), unit(rng), unit(rng) + 0.1f}); }
  Point3 Place() { return Point3{unit(rng), unit(rng), unit(rng)} * 20.0f; }
  void PutGoal(Limb& limb, float distance) {
    limb.goalTM = corvanta::MakeMatrix(Turn());
    limb.goalTM.SetTrans((limb.bones[0].pos + Normalize(Place()) * distance) * limb.parentTM);
  }
  /// Bones along X whose preferred pose bends in one plane, under a turned and uniformly scaled parent, in a random FK
  /// pose; the goal in reach.
  Limb Next(size_t count) {
    Limb limb(count);
    limb.parentTM = corvanta::ScaleMatrix(Point3{1, 1, 1} * (0.5f + part(rng))) * corvanta::MakeMatrix(Turn());
    limb.parentTM.SetTrans(Place());
    for (LimbJoint& joint : limb.bones) {
      // A goal nearer than the longest bone's surplus over the others is out of reach: longer limbs get even bones.
      joint.pos = {count > 3 ? 1 + 1.5f * part(rng) : length(rng), 0, 0};
      joint.rot = Turn();
      joint.preferred = corvanta::QuatFromMatrix(corvanta::RotateZMatrix(-0.2f - 0.8f * part(rng)));
    }
    limb.bones[0].pos = Place();
    limb.bones[0].preferred = Turn();
    limb.swivel = 3 * unit(rng);
    const float longest = limb.Length();
    const float nearest = count == 3 ? std::abs(limb.bones[1].pos.x - limb.bones[2].pos.x) : 0.45f * longest;
    const float farthest = count == 3 ? longest : 0.97f * longest;
    PutGoal(limb, count == 2 ? longest : nearest + (farthest - nearest) * part(rng));
    return limb;
  }
};

}  // namespace tavrilon
