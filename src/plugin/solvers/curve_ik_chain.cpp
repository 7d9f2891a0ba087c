// SPDX-License-Identifier: MIT
// Evaluation of a curve chain, its messages and its lifecycle. The points are in curve_ik_chain_points.cpp, the joints
// in curve_ik_chain_joints.cpp.
#include "plugin/solvers/curve_ik_chain.h"

#include "host/core/remap.h"
#include "plugin/frame/guard.h"
#include "plugin/frame/lock_chunk.h"
#include "plugin/frame/rig_maths.h"
#include "plugin/solvers/curve_ik_control.h"

namespace tavrilon {

using namespace corvanta;
using namespace curve_ik_chain;

namespace {

// Rows that are orthonormal but for rounding: taken as a pure rotation.
constexpr float kRounding = 1e-6f;

bool IsOrthonormal(const Matrix3& m) {
  for (int i = 0; i < 3; ++i) {
    if (std::abs(LengthSquared(m.row[i]) - 1) > kRounding) return false;
    if (std::abs(Dot(m.row[i], m.row[(i + 1) % 3])) > kRounding) return false;
  }
  return true;
}

// Rotation and scale along the frame's own axes; shear is left out.
void ReadFrame(const Matrix3& tm, PointFrame& frame) {
  if (IsOrthonormal(tm)) {
    frame.rot = QuatFromMatrix(tm);
    frame.scale = {1, 1, 1};
    return;
  }
  frame.rot = OrthoQuat(tm);
  frame.scale = {Length(tm.row[0]), Length(tm.row[1]), Length(tm.row[2])};
}

}  // namespace

ReferenceTarget* CreateCurveIKChain(bool loading) { return new CurveIKChain(loading); }

CurveIKChain::CurveIKChain(bool loading) {
  if (!loading) BindReference(0, new ParamBlock2(BlockDesc()));
}

CurveIKChain* CurveIKChain::Of(const INode* node) {
  Control* control = node ? node->GetTMController() : nullptr;
  return IsOfClass(control, TavrilonClass::CurveIKChain) ? static_cast<CurveIKChain*>(control) : nullptr;
}

// Evaluation.

void CurveIKChain::ReadSpace(TimeValue t, bool useRotation, Interval& valid) {
  INode* space = nullptr;
  switch (block_->GetInt(kParentSpace)) {
    case kChainParentSpace:
      if (INode* first = Joint(0)) space = first->GetParentNode();
      break;
    case kNodeSpace:
      space = block_->GetINode(kParentSpaceNode);
      break;
    default:
      break;
  }
  cache_.spaceTM = space ? space->GetNodeTM(t, valid) : Matrix3();
  if (!useRotation)
    cache_.spaceTM = AxisMatrix(block_->GetInt(kAlignAxis), block_->GetBool(kAlignAxisFlip)) * cache_.spaceTM;
  cache_.spaceInverse = Inverse(cache_.spaceTM);
}

void CurveIKChain::ReadTangents(int row, TimeValue t, const Matrix3& tm, PointFrame& frame, Interval& valid) const {
  const auto fromNode = [&](ParamID id, Point3& tangent, bool& has) {
    INode* node = TangentNode(id, row);
    has = node != nullptr;
    if (node) tangent = node->GetNodeTM(t, valid).GetTrans() * cache_.spaceInverse - frame.pos;
  };
  const auto fromInner = [&](ParamID id, Point3& tangent, bool& has) {
    const Point3 inner = row < block_->Count(id) ? block_->GetPoint3(id, t, row) : Point3();
    has = inner != Point3();
    if (has) tangent = VectorTransform(tm, inner);
  };
  if (GetUseTangentNodes(row)) {
    fromNode(kInTangents, frame.in, frame.hasIn);
    fromNode(kOutTangents, frame.out, frame.hasOut);
  } else {
    fromInner(kInnerInTangents, frame.in, frame.hasIn);
    fromInner(kInnerOutTangents, frame.out, frame.hasOut);
  }
}

void CurveIKChain::ReadPoints(TimeValue t, Flags use, Interval& valid) {
  cache_.pointFrames.clear();
  cache_.pointRows.clear();
  const int n = NumPoints();
  const int types = block_->Count(kPointsTypes), twists = block_->Count(kPointsTwist);
  const int amplitudes = block_->GetBool(kUseWave) ? block_->Count(kPointsWaveAmplitude) : 0;
  for (int i = 0; i < n; ++i) {
    INode* node = block_->GetINode(kPoints, t, i);
    if (!node) continue;
    cache_.pointRows.push_back(i);
    PointFrame& frame = cache_.pointFrames.emplace_back();
    const Matrix3 tm = node->GetNodeTM(t, valid) * cache_.spaceInverse;
    frame.pos = tm.GetTrans();
    if (use.rotation || use.scale) ReadFrame(tm, frame);
    if (i < types) frame.type = block_->GetInt(kPointsTypes, t, i);
    if (i < twists) frame.twist = block_->GetFloat(kPointsTwist, t, valid, i);
    if (i < amplitudes) frame.amplitude = block_->GetFloat(kPointsWaveAmplitude, t, valid, i);
    if (frame.type == kBezier || frame.type == kBezierCorner) ReadTangents(i, t, tm, frame, valid);
    if (!use.rotation) frame.rot = {};
  }
}

CurveWave CurveIKChain::ReadWave(TimeValue t, Interval& valid) const {
  CurveWave wave;
  if (!block_->GetBool(kUseWave)) return wave;
  wave.amplitude = block_->GetFloat(kWaveAmplitude, t, valid);
  wave.length = block_->GetFloat(kWaveLength, t, valid);
  wave.orientation = block_->GetFloat(kWaveOrientation, t, valid);
  wave.phase = block_->GetFloat(kWavePhase, t, valid);
  return wave;
}

void CurveIKChain::ReadJoints(TimeValue t, Interval& valid) {
  const int n = NumJoints();
  cache_.joints.clear();
  for (int i = 0; i < n; ++i) {
    CurveJoint& joint = cache_.joints.emplace_back();
    if (const CurveIKControl* control = CurveIKControl::Of(Joint(i)))
      joint = {control->Percent(t, valid), control->Squash(t, valid)};
    else
      joint.percent = n > 1 ? static_cast<float>(i) / static_cast<float>(n - 1) : 0;
  }
}

void CurveIKChain::Pose(TimeValue t, Flags use, Interval& valid) {
  CurvePoseIn in{cache_.curve, cache_.pointFrames, cache_.joints};
  in.percent = block_->GetFloat(kPercent, t, valid);
  in.rotation = block_->GetFloat(kRotation, t, valid);
  in.twist = block_->GetFloat(kTwist, t, valid);
  in.manualStretch = block_->GetFloat(kManualStretch, t, valid);
  in.autoStretch = block_->GetFloat(kAutoStretch, t, valid);
  in.squash = block_->GetFloat(kSquash, t, valid);
  in.backwards = block_->GetFloat(kBackwards, t, valid);
  in.slide = block_->GetFloat(kSlideJoints, t, valid);
  in.chainLength = block_->GetFloat(kChainLength, t, valid);
  in.usePointsRotation = use.rotation;
  in.usePointsScale = use.scale;
  in.followType = block_->GetInt(kFollowType);
  in.aimAxis = block_->GetInt(kAimAxis);
  in.aimAxisFlip = block_->GetBool(kAimAxisFlip);
  in.spaceTM = cache_.spaceTM;
  cache_.jointTM.resize(cache_.joints.size());
  PoseJoints(in, cache_.jointTM);
}

const CurveIKChain::Cache& CurveIKChain::Evaluate(TimeValue t) {
  if (IsCurrent(t) || !block_) return cache_;
  const ReentryGuard guard(evaluating_);
  if (guard.Reentered()) return cache_;
  ++evaluations_;
  Interval valid = FOREVER;
  const Flags use{block_->GetBool(kUsePointsRotation), block_->GetBool(kUsePointsScale)};
  ReadSpace(t, use.rotation, valid);
  ReadPoints(t, use, valid);
  ReadJoints(t, valid);
  const bool closed = block_->GetBool(kClosedLoop);
  ResolveTangents(cache_.pointFrames, closed);
  if (block_->GetBool(kAdditiveTwist)) SumTwists(cache_.pointFrames);
  SampleCurve(cache_.pointFrames, closed, block_->GetInt(kSteps), ReadWave(t, valid), cache_.curve);
  Pose(t, use, valid);
  cache_.evaluatedTime = t;
  cache_.valid = valid;
  cache_.dirty = false;
  return cache_;
}

Matrix3 CurveIKChain::GetJointTM(TimeValue t, int index, Interval& valid) {
  const Cache& cache = Evaluate(t);
  // Asked while it evaluates, it gives what it had, and that holds for no time but this.
  valid &= evaluating_ ? Interval::Instant(t) : cache.valid;
  return index >= 0 && index < static_cast<int>(cache.jointTM.size()) ? cache.jointTM[static_cast<size_t>(index)]
                                                                      : Matrix3();
}

void CurveIKChain::AddFootprint(EvaluationFootprint& footprint) const {
  footprint.Add(cache_.pointFrames);
  footprint.Add(cache_.curve.samples);
  footprint.Add(cache_.joints);
  footprint.Add(cache_.jointTM);
}

void CurveIKChain::GetValue(TimeValue t, ValueRef value, Interval& valid, GetSetMethod) {
  if (NumJoints() > 0) value.Matrix3() = GetJointTM(t, NumJoints() - 1, valid);
}

// Messages.

RefResult CurveIKChain::NotifyRefChanged(const Interval&, ReferenceTarget*, PartID& part, RefMessage message, bool) {
  if (message == REFMSG_BLOCK_QUESTION) return REF_STOP;
  if (message == REFMSG_CHANGE) {
    cache_.dirty = true;
    part |= PART_TM;
  }
  return REF_SUCCEED;
}

// What a joint tells may be a change of its percent, or of the parent that the curve is read in. That it has heard of
// the chain itself costs nothing here: the message is the one that is on its way, and each link passes it once.
bool CurveIKChain::PassesOn(ParamID, int, const RefNotice& notice) {
  if (notice.message != REFMSG_CHANGE) return notice.message == REFMSG_DISPLAY_PROPERTY;
  if (!(notice.part & PART_TM)) return false;
  cache_.dirty = true;
  return true;
}

void CurveIKChain::SetReference(int which, ReferenceTarget* target) {
  if (which != 0) return;
  block_ = static_cast<ParamBlock2*>(target);
  cache_.dirty = true;
}

void* CurveIKChain::GetInterface(uint32_t request) {
  if (request == I_LOCKED) return static_cast<ILockedTrack*>(this);
  return request == kRequest ? static_cast<WeakRefOwner*>(this) : nullptr;
}

// Clone, save, load.

ReferenceTarget* CurveIKChain::Clone(RemapDir& remap) {
  auto* clone = static_cast<CurveIKChain*>(Control::Clone(remap));
  if (!clone) return nullptr;
  // After the block's own patch, which sends each slot to the clone of its node if there is one.
  remap.AddPostPatchProc([this, clone](RemapDir&) {
    for (int i = 0; i < clone->NumJoints(); ++i)
      if (clone->Joint(i) && clone->Joint(i) == Joint(i)) clone->block_->LoadTarget(kJoints, i, nullptr);
    clone->RememberJoints();
    clone->cache_.dirty = true;
  });
  return clone;
}

void CurveIKChain::CopyStateFrom(ReferenceTarget& source, RemapDir&) {
  locked_ = static_cast<CurveIKChain&>(source).locked_;
}

IOResult CurveIKChain::Save(ISave& save) { return SaveLockChunk(save, locked_); }

IOResult CurveIKChain::Load(ILoad& load) { return LoadLockChunk(load, locked_); }

}  // namespace tavrilon
