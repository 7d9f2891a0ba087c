// SPDX-License-Identifier: MIT
#include "plugin/shapes/control_helper.h"
#include "plugin/shapes/control_interface.h"
#include "plugin/shapes/control_shape.h"

namespace tavrilon {

using namespace corvanta;

ControlShape::ControlShape(bool loading) : ControlObject(ControlShapeBlock(), ControlShapeInterface(), loading) {}

ControlHelper::ControlHelper(bool loading) : ControlObject(ControlHelperBlock(), ControlHelperInterface(), loading) {}

namespace {

// A corner of the host gets handles of its own, which is right only where both spans are lines.
bool IsBetweenLines(const Spline& spline, int i) {
  const int count = static_cast<int>(spline.knots.size());
  const bool lineAfter = i >= spline.SpanCount() || SpanOf(spline, i).IsStraight();
  const bool lineBefore = (!spline.closed && i == 0) || SpanOf(spline, (i + count - 1) % count).IsStraight();
  return lineBefore && lineAfter;
}

}  // namespace

const std::vector<Spline3D>& ControlShape::GetSplines(TimeValue t) {
  const Outline& outline = core_.GetOutline(t);
  splines_.resize(outline.size());
  for (size_t s = 0; s < outline.size(); ++s) {
    Spline3D& spline = splines_[s];
    spline.closed = outline[s].closed;
    spline.knots.resize(outline[s].knots.size());
    for (int i = 0; i < spline.KnotCount(); ++i) {
      const Knot& knot = outline[s].knots[static_cast<size_t>(i)];
      spline.SetKnotPoint(i, knot.point);
      spline.SetInVec(i, knot.inVec);
      spline.SetOutVec(i, knot.outVec);
      spline.SetKnotType(i, IsBetweenLines(outline[s], i) ? KnotType::Corner : KnotType::Curve);
    }
    spline.ComputeBezPoints();
  }
  return splines_;
}

ReferenceTarget* CreateControlShape(bool loading) { return new ControlShape(loading); }
ReferenceTarget* CreateControlHelper(bool loading) { return new ControlHelper(loading); }

}  // namespace tavrilon
