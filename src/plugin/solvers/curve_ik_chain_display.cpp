// SPDX-License-Identifier: MIT
// The lines of a curve chain in the viewport.
#include "host/maths/box3.h"
#include "host/view/draw.h"
#include "plugin/solvers/curve_ik_chain.h"

namespace tavrilon {

using namespace corvanta;
using namespace curve_ik_chain;

namespace {

constexpr Colour kSelectedColour{1, 1, 1};
constexpr Colour kPlainColour{0.496f, 0.564f, 0.661f};

// Values of the two display parameters.
enum Shown : int { kNever = 0, kWhenSelected = 1, kAlways = 2 };

}  // namespace

bool CurveIKChain::IsPartSelected() const {
  for (const ParamID id : {ParamID{kPoints}, ParamID{kInTangents}, ParamID{kOutTangents}})
    for (int i = 0; i < block_->Count(id); ++i)
      if (const INode* node = block_->GetINode(id, 0, i))
        if (node->Selected()) return true;
  return false;
}

bool CurveIKChain::IsShown(ParamID id, const INode* node) const {
  const int shown = block_->GetInt(id);
  return shown == kAlways || (shown == kWhenSelected && ((node && node->Selected()) || IsPartSelected()));
}

void CurveIKChain::Display(TimeValue t, INode* node, GraphicsWindow& view) {
  if (!block_) return;
  const Cache& cache = Evaluate(t);
  const DrawScope scope(view);
  view.SetColour(node && node->Selected() ? kSelectedColour : kPlainColour);
  if (IsShown(kDisplayCurve, node)) {
    view.SetTransform(cache.spaceTM);
    std::vector<Point3> line;
    for (const CurveSample& sample : cache.curve.samples) line.push_back(sample.pos);
    if (line.size() > 1) view.Polyline(line);
  }
  if (!IsShown(kDisplayTangents, node)) return;
  view.SetTransform({});
  for (const int row : cache.pointRows) {
    INode* point = GetPoint(row);
    const int type = GetPointType(row);
    if (!point || (type != kBezier && type != kBezierCorner) || !GetUseTangentNodes(row)) continue;
    for (const ParamID id : {ParamID{kInTangents}, ParamID{kOutTangents}})
      if (INode* tangent = TangentNode(id, row))
        view.Segment(point->GetNodeTM(t).GetTrans(), tangent->GetNodeTM(t).GetTrans());
  }
}

void CurveIKChain::GetWorldBoundBox(TimeValue t, INode* node, Box3& box) {
  if (!block_ || !IsShown(kDisplayCurve, node)) return;
  const Cache& cache = Evaluate(t);
  for (const CurveSample& sample : cache.curve.samples) box += sample.pos * cache.spaceTM;
}

}  // namespace tavrilon
