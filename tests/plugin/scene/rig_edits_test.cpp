// SPDX-License-Identifier: MIT
// Templates of rigs, and rigs that are built, posed and reset.
#include "plugin/controllers/rig_control.h"
#include "plugin/frame/find.h"
#include "plugin/rig/rig_system.h"
#include "plugin/scene/edit_picks_test.h"

namespace tavrilon::scene_tests {

using namespace corvanta;

namespace {

RigSystem* PickRig(Dice& dice) {
  std::vector<RigSystem*> rigs;
  for (const Ref<INode>& node : GetScene().Nodes())
    if (auto* rig = dynamic_cast<RigSystem*>(node->GetBaseObject())) rigs.push_back(rig);
  return rigs.empty() ? nullptr : dice.Pick(rigs);
}

void MovePoint(RigSystem& rig, Dice& dice) {
  const RigPoints& points = rig.Points();
  if (points.empty()) return;
  WStr name = points[static_cast<size_t>(dice.Int(static_cast<int>(points.size())))].name;
  rig.SetPointPos(name, PickPoint(dice, 1));
}

std::string EditTemplate(Dice& dice) {
  RigSystem* rig = PickRig(dice);
  if (!rig || !rig->IsActive()) return {};
  const int which = dice.Int(12), extras = rig->GetNumExtras(), extra = extras ? dice.Int(extras) : 0;
  switch (which) {
    case 0:
      rig->SetType(dice.Int(kRigTypeCount));
      break;
    case 1:
      rig->AddExtra(dice.OneIn(2) ? L"" : Format(L"extra%d", dice.Int(5)), L"pelvis", dice.Int(4), 1 + dice.Int(3));
      break;
    case 2:
      rig->RemoveExtra(extra);
      break;
    case 3:
      rig->SetExtraName(extra, Format(L"extra%d", dice.Int(5)));
      break;
    case 4:
      rig->SetExtraSide(extra, dice.Int(4));
      break;
    case 5:
      rig->SetExtraNumControls(extra, 1 + dice.Int(4));
      break;
    case 6:
      rig->SetExtraUseBones(extra, dice.OneIn(2));
      break;
    case 7:
      rig->SelectComponent(dice.Int(80));
      break;
    case 8:
      rig->SelectAll(kRigPointLevel);
      rig->MoveSelected(Matrix3(), TransMatrix(PickPoint(dice, 1)));
      break;
    case 9:
      rig->InvertSelection(kRigPointLevel);
      break;
    default:
      MovePoint(*rig, dice);
  }
  return "template " + std::to_string(which);
}

std::string SetOption(RigSystem& rig, Dice& dice) {
  std::vector<const RigParamRow*> rows;
  for (const RigParamRow& row : kRigParamRows)
    if (*row.name && (row.kind == RigParamKind::Int || row.kind == RigParamKind::Bool)) rows.push_back(&row);
  const RigParamRow& row = *dice.Pick(rows);
  const int value = row.kind == RigParamKind::Bool ? dice.Int(2) : dice.Int(3);
  rig.GetParamBlock()->SetValue(static_cast<ParamID>(row.id), 0, value);
  return " " + ToUtf8(row.name) + "=" + std::to_string(value);
}

std::string MakeTemplate(Dice& dice) {
  auto* rig = new RigSystem;
  INode* node = GetScene().CreateObjectNode(rig);
  node->SetNodeTM(0, PickMatrix(dice));
  rig->SetType(dice.Int(kRigTypeCount));
  return "create rig template " + Tell(node);
}

std::string BuildRig(Dice& dice) {
  RigSystem* rig = PickRig(dice);
  if (!rig || (!rig->IsActive() && GetScene().Nodes().size() < 80)) return MakeTemplate(dice);
  if (!rig->IsActive() || GetScene().Nodes().size() > 250) return {};
  if (dice.OneIn(2)) rig->SetType(dice.Int(kRigTypeCount));
  std::string told = "build type " + std::to_string(rig->GetType());
  for (int i = dice.Int(5); i > 0; --i) told += SetOption(*rig, dice);
  rig->CreateRig();
  return told;
}

std::string ResetRig(Dice& dice) {
  RigSystem* rig = PickRig(dice);
  if (!rig) return {};
  rig->ResetRig();
  return "reset rig";
}

std::string Pose(Dice& dice) {
  for (int tries = 0; tries < 30; ++tries) {
    INode* node = PickNode(dice);
    RigControl* control = FindNodeRigControl(node);
    if (!control) continue;
    SetXFormPacket packet = dice.OneIn(2) ? SetXFormPacket::Move(PickPoint(dice, 5), node->GetParentTM(0))
                                          : SetXFormPacket::Rotate(PickTurn(dice), true, node->GetParentTM(0));
    node->GetTMController()->SetValue(0, packet, true, CTRL_RELATIVE);
    return "pose " + Tell(node);
  }
  return {};
}

}  // namespace

const std::vector<EditRow> kTemplateEdits = {{"template", 8, EditTemplate}};
const std::vector<EditRow> kBuiltRigEdits = {
    {"make template", 2, MakeTemplate}, {"build", 24, BuildRig}, {"reset", 8, ResetRig}, {"pose", 20, Pose}};

}  // namespace tavrilon::scene_tests
