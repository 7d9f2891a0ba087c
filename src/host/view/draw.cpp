// SPDX-License-Identifier: MIT
#include "host/view/draw.h"

namespace corvanta {

GraphicsWindow::~GraphicsWindow() = default;

void GraphicsWindow::Segment(const Point3& a, const Point3& b) {
  const Point3 points[] = {a, b};
  Polyline(points);
}

void GraphicsWindow::BoxEdges(const Box3& box) {
  if (box.IsEmpty()) return;
  // Corners by bits, so an edge joins two that differ in one bit.
  for (int corner = 0; corner < 8; ++corner)
    for (int bit = 1; bit < 8; bit *= 2)
      if (!(corner & bit)) Segment(box.Corner(corner), box.Corner(corner | bit));
}

}  // namespace corvanta
