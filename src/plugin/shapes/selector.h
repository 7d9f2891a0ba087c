// SPDX-License-Identifier: MIT
// The selector of a control: faces of a mesh that act as the control's clickable surface.
#pragma once

#include <array>
#include <vector>

#include "host/core/bit_array.h"
#include "host/core/wstr.h"
#include "host/maths/interval.h"
#include "host/maths/point.h"

namespace corvanta {
class INode;
}

namespace tavrilon {

using Face = std::array<int, 3>;

/// A mesh as the selector reads it, in its object's space.
struct SelectorMesh {
  std::vector<corvanta::Point3> points;
  std::vector<Face> faces;
};

/// Where a selector's mesh comes from. Any node with a mesh is one as it shows, with its modifiers; an object that
/// wants to be one in another way returns its own from `GetInterface(kSelectorMeshRequest)`.
class SelectorMeshSource {
 public:
  virtual ~SelectorMeshSource() = default;
  /// The mesh at `t`; `valid` is narrowed to the time in which it stays.
  virtual void ReadMesh(corvanta::TimeValue t, corvanta::INode* node, SelectorMesh& mesh,
                        corvanta::Interval& valid) = 0;
};
inline constexpr uint32_t kSelectorMeshRequest = 0x54560001;

/// The source behind a node; null when the node gives no mesh.
SelectorMeshSource* FindMeshSource(corvanta::INode* node);

/// Moves each point by `distance` along its normal, the normalised sum of its faces' area vectors. Points without a
/// face, and faces with an index out of range, stay out of it.
void PushAlongNormals(SelectorMesh& mesh, float distance);

/// The faces of one state of selection, with their numbers in the mesh.
struct FaceSet {
  std::vector<Face> faces;
  std::vector<int> numbers;
};
FaceSet FacesWhere(const SelectorMesh& mesh, const corvanta::BitArray& selection, bool selected);

/// "3 Polygons Selected".
corvanta::WStr PolygonCountText(int count);

}  // namespace tavrilon
