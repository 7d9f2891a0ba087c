// SPDX-License-Identifier: MIT
// The control points of a curve chain: parallel tabs of the block, edited as one.
#include "host/core/hold.h"
#include "host/scene/core_interface.h"
#include "plugin/frame/loop_validator.h"
#include "plugin/solvers/curve_ik_chain.h"

namespace tavrilon {

using namespace corvanta;
using namespace curve_ik_chain;

namespace {

constexpr ParamID kPointTabs[] = {kPoints,          kPointsTypes,     kInTangents,
                                  kOutTangents,     kInnerInTangents, kInnerOutTangents,
                                  kUseTangentNodes, kPointsTwist,     kPointsWaveAmplitude};

bool IsPointType(int type) { return type >= kBezierCorner && type <= kSmooth; }

}  // namespace

int CurveIKChain::NumPoints() const { return block_ ? block_->Count(kPoints) : 0; }

bool CurveIKChain::MayUse(INode* node) const { return !node || MayFollow(this, node); }

// The tabs run in parallel, but a script may have filled some of them only.
void CurveIKChain::NeedRow(ParamID id, int index) {
  block_->GetINode(kPoints, 0, index);  // throws beyond the points
  if (block_->Count(id) <= index) block_->SetCount(id, index + 1);
}

bool CurveIKChain::AddPoint(INode* point, const CurvePointOptions& options) {
  if (!block_ || !point || !IsPointType(options.type)) return false;
  if (!MayUse(point) || !MayUse(options.inTangent) || !MayUse(options.outTangent)) return false;
  const HoldScope hold(L"Add Point");
  const int i = NumPoints();
  for (const ParamID id : kPointTabs) block_->SetCount(id, i + 1);
  block_->SetValue(kPointsTypes, 0, options.type, i);
  block_->SetValue(kInTangents, 0, options.inTangent, i);
  block_->SetValue(kOutTangents, 0, options.outTangent, i);
  block_->SetValue(kUseTangentNodes, 0, options.useTangentNodes, i);
  block_->SetValue(kPointsTwist, 0, options.twist, i);
  block_->SetValue(kPointsWaveAmplitude, 0, options.amplitude, i);
  return block_->SetValue(kPoints, 0, point, i);
}

bool CurveIKChain::RemovePoint(int index) {
  GetPoint(index);  // throws beyond the points
  const HoldScope hold(L"Remove Point");
  for (const ParamID id : kPointTabs)
    if (index < block_->Count(id)) block_->Delete(id, index);
  return true;
}

INode* CurveIKChain::GetPoint(int index) const {
  if (!block_) throw CorvantaSDK::Util::TabOutOfRangeException();
  return block_->GetINode(kPoints, 0, index);
}

bool CurveIKChain::SetPoint(int index, INode* point) {
  GetPoint(index);
  return MayUse(point) && block_->SetValue(kPoints, 0, point, index);
}

bool CurveIKChain::SetPointType(int index, int type) {
  GetPoint(index);
  if (!IsPointType(type)) return false;
  const HoldScope hold;
  NeedRow(kPointsTypes, index);
  return block_->SetValue(kPointsTypes, 0, type, index);
}

int CurveIKChain::GetPointType(int index) const {
  GetPoint(index);
  return index < block_->Count(kPointsTypes) ? block_->GetInt(kPointsTypes, 0, index) : kSmooth;
}

INode* CurveIKChain::TangentNode(ParamID id, int index) const {
  return index < block_->Count(id) ? block_->GetINode(id, 0, index) : nullptr;
}

bool CurveIKChain::SetTangentNode(ParamID id, int index, INode* node) {
  GetPoint(index);
  if (!MayUse(node)) return false;
  const HoldScope hold;
  NeedRow(id, index);
  return block_->SetValue(id, 0, node, index);
}

bool CurveIKChain::SetInTangent(int index, INode* node) { return SetTangentNode(kInTangents, index, node); }
bool CurveIKChain::SetOutTangent(int index, INode* node) { return SetTangentNode(kOutTangents, index, node); }

INode* CurveIKChain::GetInTangent(int index) const {
  GetPoint(index);
  return TangentNode(kInTangents, index);
}
INode* CurveIKChain::GetOutTangent(int index) const {
  GetPoint(index);
  return TangentNode(kOutTangents, index);
}

bool CurveIKChain::SetTwist(int index, float twist, TimeValue t) {
  GetPoint(index);
  const HoldScope hold;
  NeedRow(kPointsTwist, index);
  return block_->SetValue(kPointsTwist, t, twist, index);
}

float CurveIKChain::GetTwist(int index, TimeValue t) const {
  GetPoint(index);
  return index < block_->Count(kPointsTwist) ? block_->GetFloat(kPointsTwist, t, index) : 0;
}

bool CurveIKChain::SetAmplitude(int index, float amplitude, TimeValue t) {
  GetPoint(index);
  const HoldScope hold;
  NeedRow(kPointsWaveAmplitude, index);
  return block_->SetValue(kPointsWaveAmplitude, t, amplitude, index);
}

float CurveIKChain::GetAmplitude(int index, TimeValue t) const {
  GetPoint(index);
  return index < block_->Count(kPointsWaveAmplitude) ? block_->GetFloat(kPointsWaveAmplitude, t, index) : 1;
}

bool CurveIKChain::GetUseTangentNodes(int index) const {
  return index >= block_->Count(kUseTangentNodes) || block_->GetBool(kUseTangentNodes, 0, index);
}

// An inner tangent is kept in the space of its point, so that it turns with it.
void CurveIKChain::TakeInnerTangent(ParamID nodes, ParamID inner, int index) {
  INode* point = GetPoint(index);
  INode* tangent = TangentNode(nodes, index);
  if (!point || !tangent) return;
  const TimeValue now = GetCOREInterface()->GetTime();
  NeedRow(inner, index);
  block_->SetValue(inner, now, tangent->GetNodeTM(now).GetTrans() * Inverse(point->GetNodeTM(now)), index);
}

bool CurveIKChain::SetUseTangentNodes(int index, bool on) {
  GetPoint(index);
  const HoldScope hold;
  if (!on && GetUseTangentNodes(index)) {
    TakeInnerTangent(kInTangents, kInnerInTangents, index);
    TakeInnerTangent(kOutTangents, kInnerOutTangents, index);
  }
  NeedRow(kUseTangentNodes, index);
  return block_->SetValue(kUseTangentNodes, 0, on, index);
}

void CurveIKChain::ResetLength() {
  if (!block_) return;
  const HoldScope hold(L"Reset Length");
  const TimeValue now = GetCOREInterface()->GetTime();
  const float length =
      RestLength(GetCurveLength(now), block_->GetFloat(kChainLength, now), block_->GetFloat(kAutoStretch, now));
  block_->SetValue(kChainLength, now, length);
}

// `offset` is in the chain's space.
void CurveIKChain::PutTangent(ParamID nodes, ParamID inner, int row, const Matrix3& pointTM, const Point3& offset) {
  const TimeValue now = GetCOREInterface()->GetTime();
  const Point3 place = pointTM.GetTrans() + VectorTransform(cache_.spaceTM, offset);
  if (INode* node = TangentNode(nodes, row)) {
    Matrix3 tm = node->GetNodeTM(now);
    tm.SetTrans(place);
    node->SetNodeTM(now, tm);
  }
  if (GetUseTangentNodes(row)) return;
  NeedRow(inner, row);
  block_->SetValue(inner, now, place * Inverse(pointTM), row);
}

void CurveIKChain::ResetTangents() {
  if (!block_) return;
  const HoldScope hold(L"Reset Tangents");
  const TimeValue now = GetCOREInterface()->GetTime();
  // A copy: moving the first node already makes the chain evaluate anew.
  std::vector<PointFrame> points = Evaluate(now).pointFrames;
  const std::vector<int> rows = cache_.pointRows;
  for (PointFrame& point : points) point.type = kSmooth;
  ResolveTangents(points, block_->GetBool(kClosedLoop));
  for (size_t i = 0; i < points.size(); ++i) {
    INode* node = GetPoint(rows[i]);
    if (!node) continue;
    const Matrix3 pointTM = node->GetNodeTM(now);
    PutTangent(kInTangents, kInnerInTangents, rows[i], pointTM, points[i].in);
    PutTangent(kOutTangents, kInnerOutTangents, rows[i], pointTM, points[i].out);
  }
}

}  // namespace tavrilon
