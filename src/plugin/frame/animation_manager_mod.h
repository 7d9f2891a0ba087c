// SPDX-License-Identifier: MIT
// The modifier that makes a node a member of a rig: its tag, its group and its mirror. It passes the object through.
#pragma once

#include "host/core/block_owner.h"
#include "host/scene/object.h"
#include "plugin/frame/class_table.h"

namespace tavrilon {

class AnimationManagerMod final : public corvanta::BlockOwner<corvanta::Modifier> {
 public:
  enum Param : corvanta::ParamID {
    kTags = 0,
    kRoot = 1,
    kUseMirrorPos = 2,
    kUseMirrorRot = 3,
    kMirrorPosAxis = 4,
    kMirrorRotAxis = 5,
    kMirrorNode = 6,
    kUseMirrorNode = 7,
    kGroup = 8,
    kLayerStack = 9,
    kLocalWeights = 10,
  };
  explicit AnimationManagerMod(bool loading = false);

  static constexpr corvanta::Class_ID kClassId = ClassIdOf(TavrilonClass::AnimationManagerMod);
  corvanta::Class_ID ClassID() const override { return kClassId; }
  corvanta::WStr GetClassName() const override { return DescOf(TavrilonClass::AnimationManagerMod).className; }
  static const corvanta::ParamBlockDesc2& BlockDesc();

  corvanta::ParamBlock2* GetParamBlock() override { return block_; }
  int SubNumToRefNum(int i) override { return i; }
};

}  // namespace tavrilon
