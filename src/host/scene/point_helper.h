// SPDX-License-Identifier: MIT
// The point helper: a place with a size, drawn as a box, a cross, an axis tripod or a centre mark.
#pragma once

#include "host/core/block_owner.h"
#include "host/scene/object.h"

namespace corvanta {

class PointHelper final : public BlockOwner<HelperObject> {
 public:
  enum Param : ParamID {
    kSize = 0,
    kCenterMarker = 1,
    kAxisTripod = 2,
    kCross = 3,
    kBox = 4,
    kConstantScreenSize = 5,
    kDrawOnTop = 6
  };
  explicit PointHelper(bool loading = false);

  static constexpr Class_ID kClassId{0x2013, 0};
  Class_ID ClassID() const override { return kClassId; }
  WStr GetClassName() const override { return L"Point"; }
  static const ParamBlockDesc2& BlockDesc();

  void Display(TimeValue t, INode* node, GraphicsWindow& view) override;
  Box3 GetLocalBoundBox(TimeValue t, INode* node) override;
  ParamBlock2* GetParamBlock() override { return block_; }
};

}  // namespace corvanta
