// SPDX-License-Identifier: MIT
// The bone: a tapered solid along X with optional fins. Taper is in percent: 90 ends almost in a point, 0 is a box.
#pragma once

#include "host/core/block_owner.h"
#include "host/scene/object.h"

namespace corvanta {

class BoneObject final : public BlockOwner<GeomObject> {
 public:
  enum Param : ParamID { kWidth = 0, kHeight = 1, kTaper = 2, kLength = 3, kSideFins = 4, kFrontFin = 5, kBackFin = 6 };
  explicit BoneObject(bool loading = false);

  static constexpr Class_ID kClassId{0x28BF6E8D, 0x2ECCA840};
  Class_ID ClassID() const override { return kClassId; }
  WStr GetClassName() const override { return L"Bone"; }
  static const ParamBlockDesc2& BlockDesc();

  /// A bone of zero width or height is drawn as a slim octahedron of a tenth of its length.
  void Display(TimeValue t, INode* node, GraphicsWindow& view) override;
  Box3 GetLocalBoundBox(TimeValue t, INode* node) override;
  ParamBlock2* GetParamBlock() override { return block_; }
};

}  // namespace corvanta
