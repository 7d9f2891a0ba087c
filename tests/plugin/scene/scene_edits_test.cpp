// SPDX-License-Identifier: MIT
#include "plugin/scene/scene_edits_test.h"

#include <algorithm>
#include <unordered_set>

#include "host/core/class_desc.h"
#include "host/core/cust_attrib.h"
#include "plugin/frame/loop_validator.h"
#include "plugin/scene/edit_picks_test.h"

namespace tavrilon::scene_tests {

using namespace corvanta;

namespace {

SClass_ID SlotKind(Animatable& owner, int sub) {
  if (Animatable* present = owner.SubAnim(sub)) return present->SuperClassID();
  if (owner.SuperClassID() == kNodeSuper) return sub == 0 ? kMatrixControlSuper : kFloatControlSuper;
  if (auto* block = dynamic_cast<ParamBlock2*>(&owner)) {
    const ParamRow* row = block->GetParamDef(block->AnimNumToParam(sub).first);
    return row->type == ParamType::Point3 || row->type == ParamType::Colour ? kPoint3ControlSuper : kFloatControlSuper;
  }
  return 0;
}

class PartWalk {
 public:
  NodeParts Run(INode* node) {
    Visit(*node);
    return std::move(parts_);
  }

 private:
  void Visit(Animatable& at) {
    if (!seen_.insert(&at).second) return;
    if (auto* target = dynamic_cast<ReferenceTarget*>(&at)) {
      if (Control* control = target->AsControl()) parts_.controls.push_back(control);
      if (auto* block = dynamic_cast<ParamBlock2*>(target)) parts_.blocks.push_back(block);
      if (CustAttribContainer* attribs = target->GetCustAttribContainer()) Visit(*attribs);
    }
    for (int i = 0; i < at.NumSubs(); ++i) {
      const SClass_ID kind = at.CanAssignController(i) ? SlotKind(at, i) : 0;
      if (kind) parts_.slots.push_back({&at, i, kind});
      if (Animatable* sub = at.SubAnim(i)) Visit(*sub);
    }
  }
  NodeParts parts_;
  std::unordered_set<Animatable*> seen_;
};

}  // namespace

NodeParts PartsOf(INode* node) { return PartWalk().Run(node); }

INode* PickNode(Dice& dice) {
  const auto& nodes = GetScene().Nodes();
  return nodes.empty() ? nullptr : dice.Pick(nodes).Get();
}

std::vector<INode*> PickNodes(Dice& dice, int most) {
  std::vector<INode*> picked;
  for (int i = dice.Int(most); i >= 0; --i)
    if (INode* node = PickNode(dice); node && std::find(picked.begin(), picked.end(), node) == picked.end())
      picked.push_back(node);
  return picked;
}

std::string Tell(const INode* node) {
  return node ? "\"" + ToUtf8(node->GetName()) + "\" (" + std::to_string(node->GetHandle()) + ")" : "no node";
}
std::string Tell(Animatable* thing) { return thing ? ToUtf8(thing->GetClassName()) : "nothing"; }

Point3 PickPoint(Dice& dice, float reach) {
  const float x = dice.Float(-reach, reach), y = dice.Float(-reach, reach);
  return {x, y, dice.Float(-reach, reach)};
}

Quat PickTurn(Dice& dice) {
  const Point3 axis = Normalize(PickPoint(dice, 1) + Point3{0, 0, 1.1f});
  return QuatFromAngAxis({axis, dice.Float(-3, 3)});
}

Point3 PickStretch(Dice& dice) {
  Point3 s{dice.Float(0.5f, 2), dice.Float(0.5f, 2), dice.Float(0.5f, 2)};
  if (dice.OneIn(8)) s.x = -s.x;
  return s;
}

Matrix3 PickMatrix(Dice& dice) {
  Matrix3 tm = MakeMatrix(PickTurn(dice));
  if (dice.OneIn(3)) tm.PreScale(PickStretch(dice));
  tm.SetTrans(PickPoint(dice));
  return tm;
}

TimeValue PickTime(Dice& dice) {
  constexpr TimeValue kTimes[] = {0, 0, 0, 160, 800, 1600, 4800};
  return kTimes[dice.Int(7)];
}

Control* MakeController(Dice& dice, SClass_ID superClass) {
  std::vector<const ClassDesc*> fitting;
  for (const ClassDesc* desc : ClassDirectory::Get().All())
    if (desc->superClass == superClass && desc->create && desc->isPublic) fitting.push_back(desc);
  return fitting.empty() ? nullptr : dice.Pick(fitting)->Create()->AsControl();
}

bool MayFollowNode(const ReferenceTarget* follower, INode* target) {
  return !target || !TransformDependsOn(target, follower);
}

namespace {
std::vector<EditRow> Joined(std::initializer_list<const std::vector<EditRow>*> tables) {
  std::vector<EditRow> rows;
  for (const auto* table : tables) rows.insert(rows.end(), table->begin(), table->end());
  return rows;
}
}  // namespace

const std::vector<EditRow>& SceneEdits() {
  static const std::vector<EditRow> rows = Joined({&kNodeEdits, &kTrackEdits, &kParamEdits, &kTemplateEdits});
  return rows;
}

const std::vector<EditRow>& RigEdits() {
  static const std::vector<EditRow> rows =
      Joined({&kNodeEdits, &kTrackEdits, &kParamEdits, &kTemplateEdits, &kBuiltRigEdits});
  return rows;
}

}  // namespace tavrilon::scene_tests
