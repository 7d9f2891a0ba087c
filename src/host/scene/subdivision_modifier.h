// SPDX-License-Identifier: MIT
// Subdivision: a smooth surface over a mesh.
#pragma once

#include "host/core/block_owner.h"
#include "host/scene/mesh_object.h"

namespace corvanta {

class SubdivisionModifier final : public BlockOwner<Modifier> {
 public:
  enum Param : ParamID { kLevels = 0, kEnabled = 1 };
  static constexpr int kMaxLevels = 5;
  explicit SubdivisionModifier(bool loading = false);

  static constexpr Class_ID kClassId{kHostClassWord, 0x134};
  Class_ID ClassID() const override { return kClassId; }
  WStr GetClassName() const override { return L"Subdivision"; }
  static const ParamBlockDesc2& BlockDesc();

  /// 0 to kMaxLevels; 0 leaves the mesh as it is.
  int GetLevels() const;
  void ModifyMesh(TimeValue t, INode* node, MeshState& state) override;
  ParamBlock2* GetParamBlock() override { return block_; }

 private:
  // The topology made for the mesh below, kept while that and the levels stay.
  std::shared_ptr<const Mesh> source_;
  int sourceLevels_ = 0;
  Subdivision subdivision_;
  std::vector<Point3> points_;
};

}  // namespace corvanta
