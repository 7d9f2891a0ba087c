// SPDX-License-Identifier: MIT
// A rig that is built, its nodes by their names without the rig's, and the poses put on them.
#pragma once

#include "host/scene/bone_object.h"
#include "plugin/controllers/rig_control.h"
#include "plugin/frame/find.h"
#include "rig_system_test.h"

namespace tavrilon {

class BuiltRigTest : public RigSystemTest {
 protected:
  struct Option {
    rig_param::ID id;
    int value;
  };
  void Build(RigType type, std::initializer_list<Option> options = {}) {
    rig->SetType(static_cast<int>(type));
    for (const Option& option : options) Set(option.id, option.value);
    rig->CreateRig();
    ASSERT_EQ(rig->BuildError(), L"");
  }
  INode* Node(const WStr& base) const { return GetScene().GetINodeByName(rig->RigName() + L"_" + base); }
  INode* Bone(const WStr& base) const { return Node(L"bone_" + base); }
  Matrix3 TM(const WStr& base) const {
    INode* n = Node(base);
    EXPECT_NE(n, nullptr) << ToUtf8(base);
    return n ? n->GetNodeTM(0) : Matrix3();
  }
  Point3 Place(const WStr& base) const { return TM(base).GetTrans(); }
  WStr ParentName(const WStr& base) const {
    INode* n = Node(base);
    INode* parent = n ? n->GetParentNode() : nullptr;
    return parent ? parent->GetName() : WStr(L"(none)");
  }
  /// Turns the control about a world axis through itself.
  void Turn(const WStr& base, const Point3& axis, float degrees) {
    INode* n = Node(base);
    ASSERT_NE(n, nullptr) << ToUtf8(base);
    Matrix3 tm = n->GetNodeTM(0);
    const Point3 at = tm.GetTrans();
    tm = tm * TransMatrix(-at) * MakeMatrix(QuatFromAngAxis(AngAxis{axis, -degrees * kDegToRad})) * TransMatrix(at);
    n->SetNodeTM(0, tm);
  }
  void Move(const WStr& base, const Point3& by) {
    INode* n = Node(base);
    ASSERT_NE(n, nullptr) << ToUtf8(base);
    n->SetNodeTM(0, n->GetNodeTM(0) * TransMatrix(by));
  }
  /// All bones "<word>_1" on.
  std::vector<INode*> Bones(const WStr& word) const {
    std::vector<INode*> bones;
    while (INode* bone = Bone(PointName(word, kSideCenter, static_cast<int>(bones.size())))) bones.push_back(bone);
    return bones;
  }
  std::vector<Matrix3> AllTMs() const {
    std::vector<Matrix3> all;
    for (const Ref<INode>& n : GetScene().Nodes()) all.push_back(n->GetNodeTM(0));
    return all;
  }
  /// Zero, zero and one in every control: empty, or the first that does not.
  WStr NotAtZero() const {
    for (const Ref<INode>& n : GetScene().Nodes()) {
      RigControl* control = FindNodeRigControl(n.Get());
      if (!control) continue;
      Interval valid = FOREVER;
      Point3 position;
      Quat rotation;
      ScaleValue scale;
      control->GetPositionController()->GetValue(0, position, valid, CTRL_ABSOLUTE);
      control->GetRotationController()->GetValue(0, rotation, valid, CTRL_ABSOLUTE);
      control->GetScaleController()->GetValue(0, scale, valid, CTRL_ABSOLUTE);
      if (position != Point3() || !(rotation == Quat()) || scale.s != Point3{1, 1, 1}) return n->GetName();
    }
    return {};
  }
};

}  // namespace tavrilon
