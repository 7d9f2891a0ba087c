// SPDX-License-Identifier: MIT
// The mesh object: polygons on a node; and the state of a mesh on its way up through modifiers.
#pragma once

#include "host/mesh/mesh.h"
#include "host/scene/object.h"

namespace corvanta {

/// What a modifier gets from below and hands on: shared topology and moved points.
struct MeshState {
  std::shared_ptr<const Mesh> mesh;
  /// One for each point of `mesh`, in the object's space.
  std::vector<Point3> points;
  Interval valid = FOREVER;
};

class MeshObject final : public GeomObject {
 public:
  static constexpr Class_ID kClassId{kHostClassWord, 0x130};
  Class_ID ClassID() const override { return kClassId; }
  WStr GetClassName() const override { return L"Mesh"; }

  const Mesh& GetMesh() const { return *mesh_; }
  std::shared_ptr<const Mesh> SharedMesh() const { return mesh_; }
  /// Refuses a mesh with a fault (see FaultOf). Undoable; the mesh is shared, never copied.
  bool SetMesh(std::shared_ptr<const Mesh> mesh);

  bool EvalMesh(TimeValue t, INode* node, MeshState& state) override;
  int NumPoints(TimeValue t) override { return mesh_->NumPoints(); }
  void Display(TimeValue t, INode* node, GraphicsWindow& view) override;
  Box3 GetLocalBoundBox(TimeValue t, INode* node) override;
  IOResult Save(ISave& save) override;
  IOResult Load(ILoad& load) override;
  void CopyStateFrom(ReferenceTarget& source, RemapDir& remap) override;
  void StateRestored();

 protected:
  MeshKeeping KeepsMesh() const override { return MeshKeeping::ForAllNodes; }

 private:
  std::shared_ptr<const Mesh> mesh_ = std::make_shared<Mesh>();
};

/// The node's mesh with all modifiers at `t`; null for a node without one. The state belongs to the node's object and
/// holds until the next call for it or the next change.
const MeshState* EvaluatedMesh(INode* node, TimeValue t);

}  // namespace corvanta
