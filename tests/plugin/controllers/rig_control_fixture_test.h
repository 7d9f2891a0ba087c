// SPDX-License-Identifier: MIT
// Nodes with rig controls, single and as mirror pairs.
#pragma once

#include "plugin/controllers/control_values_test.h"
#include "plugin/controllers/rig_control.h"
#include "plugin/frame/rig_nodes_test.h"

namespace tavrilon {

class RigControlTest : public RigNodesTest {
 protected:
  struct Made {
    corvanta::INode* node = nullptr;
    RigControl* control = nullptr;
    corvanta::ParamBlock2* manager = nullptr;

    void Move(const corvanta::Point3& p) const {
      Send(corvanta::SetXFormPacket::Move(p, node->GetParentTM(0), node->GetNodeTM(0)));
    }
    void Rotate(const corvanta::AngAxis& aa) const {
      Send(corvanta::SetXFormPacket::Rotate(aa, false, node->GetParentTM(0), node->GetNodeTM(0)));
    }
    void Scale(const corvanta::Point3& s) const {
      Send(corvanta::SetXFormPacket::Scale(s, false, node->GetParentTM(0), node->GetNodeTM(0)));
    }
    void Send(corvanta::SetXFormPacket packet) const { control->SetValue(0, packet, true, corvanta::CTRL_RELATIVE); }
    void Set(RigControl::Param id, bool on) const { control->GetParamBlock()->SetValue(id, 0, on); }
  };

  void TearDown() override {
    if (corvanta::Animating()) corvanta::AnimateOff();
    corvanta::theHold.Flush();
    RigNodesTest::TearDown();
  }

  static Made AddControl(const wchar_t* name, corvanta::INode* parent = nullptr) {
    Made made;
    made.node = AddNode(name, parent);
    made.control = new RigControl;
    made.node->SetTMController(made.control);
    made.manager = &AddManager(made.node);
    made.manager->SetValue(AnimationManagerMod::kTags, 0, name);
    return made;
  }

  struct Pair {
    Made left, right;
  };
  /// Mirrored through X for places, with turns about X kept.
  static Pair AddPair(corvanta::INode* parent = nullptr) {
    Pair pair{AddControl(L"l_hand", parent), AddControl(L"r_hand", parent)};
    for (Made* made : {&pair.left, &pair.right}) {
      made->manager->SetValue(AnimationManagerMod::kUseMirrorPos, 0, true);
      made->manager->SetValue(AnimationManagerMod::kUseMirrorRot, 0, true);
    }
    pair.left.manager->SetValue(AnimationManagerMod::kMirrorNode, 0, pair.right.node);
    pair.right.manager->SetValue(AnimationManagerMod::kMirrorNode, 0, pair.left.node);
    return pair;
  }
  static void Select(std::initializer_list<corvanta::INode*> nodes) {
    corvanta::GetScene().ClearNodeSelection();
    for (corvanta::INode* node : nodes) corvanta::GetScene().SelectNode(node, false);
  }
  template <class T>
  static T Sub(corvanta::Control* control, corvanta::TimeValue t = 0) {
    T value{};
    corvanta::Interval valid = corvanta::FOREVER;
    control->GetValue(t, value, valid, corvanta::CTRL_ABSOLUTE);
    return value;
  }
  static corvanta::Point3 Position(const Made& made) {
    return Sub<corvanta::Point3>(made.control->GetPositionController());
  }
};

}  // namespace tavrilon
