// SPDX-License-Identifier: MIT
// The modifier that makes a node a member of a rig: its tag, its group and its mirror. It passes the object through.
#pragma once

#include "host/scene/object.h"
#include "plugin/frame/class_table.h"

namespace tavrilon {

class AnimationManagerMod final : public corvanta::Modifier {
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
  int NumRefs() const override { return 1; }
  corvanta::ReferenceTarget* GetReference(int which) const override { return which == 0 ? block_ : nullptr; }
  int NumSubs() const override { return 1; }
  corvanta::Animatable* SubAnim(int i) override { return i == 0 ? block_ : nullptr; }
  corvanta::WStr SubAnimName(int i) override { return L"Parameters"; }
  int SubNumToRefNum(int i) override { return i; }

 protected:
  void SetReference(int which, corvanta::ReferenceTarget* target) override {
    if (which == 0) block_ = static_cast<corvanta::ParamBlock2*>(target);
  }

 private:
  corvanta::ParamBlock2* block_ = nullptr;
};

}  // namespace tavrilon
