// SPDX-License-Identifier: MIT
#include "plugin/solvers/curve_pose.h"

#include <algorithm>
#include <cmath>

#include "plugin/frame/rig_maths.h"
#include "plugin/solvers/curve_lookup.h"
#include "plugin/solvers/frame_blend.h"

namespace tavrilon {

using namespace corvanta;
using namespace curve_ik_chain;

namespace {

// A manual stretch nearer to 0 than this has no inverse worth squashing by.
constexpr float kLeastStretch = 1e-6f;
// Squash stays within what a matrix can hold and invert.
constexpr float kMostSquash = 1e4f;

struct Span {
  float length, start;
};

// The part of the curve that the joints take, as fractions of it.
Span JointSpan(const CurvePoseIn& in) {
  const float atRest = in.curve.length > 0 ? in.chainLength / in.curve.length : 1;
  const float length = (atRest * (1 - in.autoStretch) + in.autoStretch) * in.manualStretch;
  return {length, (1 - length) * in.backwards + in.percent};
}

// The base of every joint's squash; 1 for none.
float SquashBase(const CurvePoseIn& in) {
  const float m = std::abs(in.manualStretch);
  if (in.squash == 0 || m < kLeastStretch || !(in.curve.length > 0) || !(in.chainLength > 0)) return 1;
  const float base = (in.chainLength / in.curve.length * in.autoStretch + (1 - in.autoStretch)) / m;
  return base > 0 ? base : 1;
}

// `RotationFromX` of a unit vector, in closed form where it is well conditioned: half way to the vector lies the axis
// of half a turn, so the cosine of half the angle is half the length of X + v.
Quat TurnToUnit(const Point3& v) {
  if (!(v.x > -0.5f)) return RotationFromX(v);
  const float length = std::sqrt(2 * (1 + v.x));
  const float k = 1 / length;
  return {0, v.z * k, -v.y * k, length * 0.5f};
}

class JointPoser {
 public:
  JointPoser(const CurvePoseIn& in, std::span<Matrix3> out)
      : in_(in), out_(out), lookup_(in.curve), frames_(in.points, in.usePointsRotation) {}

  void Run() {
    const Span span = JointSpan(in_);
    const int n = static_cast<int>(in_.joints.size());
    // Who follows the next joint needs its place first, so turning goes one joint behind placing.
    At before, now;
    for (int i = 0; i < n; ++i) {
      now = Place(i, span);
      if (i > 0) Finish(i - 1, before, Direction(before, now.pos - before.pos));
      if (i == n - 1) Finish(i, now, Direction(now, i > 0 ? now.pos - before.pos : lookup_.TangentAt(now.place)));
      before = now;
    }
  }

 private:
  struct At {
    CurvePlace place;
    Point3 pos;
  };

  At Place(int i, const Span& span) {
    float u = span.length * in_.joints[static_cast<size_t>(i)].percent + span.start;
    if (in_.curve.closed) u -= std::floor(u);
    const CurvePlace place = lookup_.ParamAt(u, in_.slide);
    return {place, lookup_.PointAt(place)};
  }

  Point3 Direction(const At& at, const Point3& chord) const {
    if (in_.followType == kFollowChild) return Normalize(chord);
    return in_.followType == kFollowTangent ? Normalize(lookup_.TangentAt(at.place)) : Point3();
  }

  void Finish(int i, const At& at, const Point3& along) {
    const CurveJoint& joint = in_.joints[static_cast<size_t>(i)];
    frames_.Enter(in_.curve.samples[static_cast<size_t>(at.place.sample)].point);
    const float f = lookup_.SpanFraction(at.place);
    Matrix3& tm = out_[static_cast<size_t>(i)];
    tm = QuatMatrix(Turn(joint, along, f));
    if (turnsAxes_) tm = axes_ * tm;
    if (in_.usePointsScale) tm.PreScale(frames_.Scale(f));
    if (squashBase_ != 1) Squash(joint, tm);
    tm.SetTrans(at.pos);
    tm = tm * in_.spaceTM;
  }

  Quat Turn(const CurveJoint& joint, const Point3& along, float f) const {
    Quat turn = in_.usePointsRotation ? frames_.Rotation(f) : Quat();
    if (along != Point3()) {
      // In the frame of the points, so that the joint turns from it by the least it must.
      const Point3 seen = in_.usePointsRotation ? VectorTransform(QuatMatrix(Conjugate(turn)), along) : along;
      turn = TurnToUnit(seen) * turn;
    }
    const float twist = in_.rotation + in_.twist * ClampValue(joint.percent, 0.0f, 1.0f) + frames_.Twist(f);
    return twist == 0 ? turn : TwistQuat(twist) * turn;
  }

  void Squash(const CurveJoint& joint, Matrix3& tm) const {
    // The chain's squash counts twice: in the joint's share, and in the exponent.
    const float share = in_.squash * joint.squash * in_.squash;
    if (share == 0) return;
    const float k = ClampValue(std::pow(squashBase_, share), 1 / kMostSquash, kMostSquash);
    tm.PreScale({k, k, k});
  }

  const CurvePoseIn& in_;
  std::span<Matrix3> out_;
  CurveLookup lookup_;
  FrameBlend frames_;
  const float squashBase_ = SquashBase(in_);
  const bool turnsAxes_ = in_.aimAxis != 0 || in_.aimAxisFlip;
  const Matrix3 axes_ = turnsAxes_ ? AxisMatrix(in_.aimAxis, in_.aimAxisFlip) : Matrix3();
};

}  // namespace

Matrix3 AxisMatrix(int axis, bool flip) {
  constexpr Point3 kX{1, 0, 0}, kY{0, 1, 0}, kZ{0, 0, 1};
  constexpr Point3 kRows[3][3] = {{kX, kY, kZ}, {kZ, kX, kY}, {kY, kZ, kX}};
  Matrix3 m;
  if (axis < 0 || axis > 2) axis = 0;
  std::copy_n(kRows[axis], 3, m.row);
  if (flip)
    for (const int row : {axis, (axis + 1) % 3}) m.row[row] = -m.row[row];
  return m;
}

void PoseJoints(const CurvePoseIn& in, std::span<Matrix3> out) {
  if (in.curve.samples.empty()) {
    std::fill(out.begin(), out.end(), Matrix3());
    return;
  }
  JointPoser(in, out).Run();
}

float RestLength(float curveLength, float chainLength, float autoStretch) {
  const float length = chainLength * (1 - autoStretch) + curveLength * autoStretch;
  return length > 0 ? length : curveLength;
}

}  // namespace tavrilon
