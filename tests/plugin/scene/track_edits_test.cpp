// SPDX-License-Identifier: MIT
// Controllers: assigning every kind, values, keys, lists, Euler orders, curves on tracks, locks, constraints, rig
// controls, connections.
#include "host/anim/key_control.h"
#include "host/anim/list_control.h"
#include "host/scene/core_interface.h"
#include "plugin/connections/float_connection.h"
#include "plugin/constraints/parent_constraint.h"
#include "plugin/constraints/scale_constraint.h"
#include "plugin/controllers/rig_control.h"
#include "plugin/frame/loop_validator.h"
#include "plugin/scene/edit_picks_test.h"

namespace tavrilon::scene_tests {

using namespace corvanta;

namespace {

Control* PickControl(Dice& dice, INode** of = nullptr) {
  INode* node = PickNode(dice);
  if (!node) return nullptr;
  if (of) *of = node;
  const NodeParts parts = PartsOf(node);
  return parts.controls.empty() ? nullptr : dice.Pick(parts.controls);
}

/// Some controller for which `face` gives something.
template <class Face>
auto PickFace(Dice& dice, Face face) -> decltype(face(static_cast<Control*>(nullptr))) {
  for (int tries = 0; tries < 20; ++tries)
    if (Control* control = PickControl(dice))
      if (auto found = face(control)) return found;
  return nullptr;
}

/// A scale constraint takes its base when it is first evaluated. In figure mode a rig control asks its parts nothing,
/// so that it would do so at some later step, of which no undo can know.
bool WouldWait(Control* made, Animatable* owner) {
  if (!dynamic_cast<ScaleConstraint*>(made)) return false;
  for (auto* at = dynamic_cast<ReferenceTarget*>(owner); at;) {
    if (dynamic_cast<RigControl*>(at)) return true;
    ReferenceMaker* maker = at->FindDependent([](ReferenceMaker*) { return true; });
    at = maker ? maker->AsTarget() : nullptr;
  }
  return false;
}

std::string Assign(Dice& dice) {
  INode* node = PickNode(dice);
  if (!node) return {};
  const NodeParts parts = PartsOf(node);
  // The transform itself is one slot among many, and the one that matters.
  const Slot slot = dice.OneIn(2) ? Slot{node, 0, kMatrixControlSuper} : dice.Pick(parts.slots);
  const Ref<Control> made(MakeController(dice, slot.superClass));
  if (!made || WouldWait(made.Get(), slot.owner)) return {};
  const bool copy = !dice.OneIn(3);
  const bool done =
      copy ? AssignWithCopy(slot.owner, slot.sub, made.Get()) : slot.owner->AssignController(made.Get(), slot.sub);
  return "assign " + Tell(made.Get()) + " to " + Tell(slot.owner) + "/" + std::to_string(slot.sub) + " of " +
         Tell(node) + (copy ? " with copy" : "") + (done ? "" : ", refused");
}

std::string Share(Dice& dice) {
  INode* node = PickNode(dice);
  INode* from = PickNode(dice);
  if (!node || !from->GetTMController() || !MayFollowNode(node, from)) return {};
  node->SetTMController(from->GetTMController());
  return "the controller of " + Tell(from) + " on " + Tell(node);
}

std::string WriteValue(Dice& dice) {
  Control* control = PickControl(dice);
  if (!control) return {};
  const TimeValue t = PickTime(dice);
  const bool animate = dice.OneIn(2);
  std::unique_ptr<AnimateScope> scope;
  if (animate) scope = std::make_unique<AnimateScope>();
  float f = dice.Float(-5, 5);
  Point3 p = PickPoint(dice, 5);
  Quat q = PickTurn(dice);
  ScaleValue s{PickStretch(dice), PickTurn(dice)};
  Point4 p4{f, p.x, p.y, p.z};
  switch (control->SuperClassID()) {
    case kFloatControlSuper:
      control->SetValue(t, f);
      break;
    case kPositionControlSuper:
    case kPoint3ControlSuper:
      control->SetValue(t, p);
      break;
    case kPoint4ControlSuper:
      control->SetValue(t, p4);
      break;
    case kRotationControlSuper:
      control->SetValue(t, q);
      break;
    case kScaleControlSuper:
      control->SetValue(t, s);
      break;
    default:
      return {};
  }
  return "write " + Tell(control) + " at " + std::to_string(t) + (animate ? " animated" : "");
}

class Stretch final : public TimeMap {
 public:
  TimeValue Map(TimeValue t) const override { return t / 2 + 320; }
};

std::string ChangeKeys(Dice& dice) {
  Control* control = PickControl(dice);
  if (!control) return {};
  const TimeValue t = PickTime(dice);
  const int which = dice.Int(10);
  const Interval range{t, t + 2000};
  switch (which) {
    case 0:
    case 1:
      control->AddNewKey(t);
      break;
    case 2:
      control->DeleteKeyAtTime(t);
      break;
    case 3:
      control->DeleteKeys(dice.OneIn(2));
      break;
    case 4:
      control->SelectKeys(range, dice.OneIn(2));
      break;
    case 5:
      control->MapKeys(Stretch(), dice.OneIn(2) ? KEYMAP_SELECTED : 0u);
      break;
    case 6:
      control->DeleteTime(range, dice.OneIn(2) ? TIME_NOSLIDE : 0u);
      break;
    case 7:
      control->ReverseTime(range, 0);
      break;
    case 8:
      control->CopyKeysFromTime(t, PickTime(dice));
      break;
    default:
      control->SetORT(dice.OneIn(2) ? ORT::Cycle : ORT::Linear, dice.OneIn(2));
  }
  return "keys " + std::to_string(which) + " of " + Tell(control) + " at " + std::to_string(t);
}

std::string ChangeKeyRecords(Dice& dice) {
  IKeyControl* keys = PickFace(dice, [](Control* c) { return GetKeyControl(c); });
  if (!keys) return {};
  alignas(16) std::byte room[512];
  auto* key = reinterpret_cast<IKey*>(room);
  const int which = dice.Int(4);
  if (keys->GetKeySize() > static_cast<int>(sizeof room)) return {};
  if (which == 0 || keys->NumKeys() == 0) {
    keys->SetNumKeys(dice.Int(4));
    return "key count";
  }
  keys->GetKey(dice.Int(keys->NumKeys()), key);
  key->time += 160 * dice.Int(20) - 1000;
  if (which == 1) keys->SetKey(dice.Int(keys->NumKeys()), key);
  if (which == 2) keys->AppendKey(key);
  if (dice.OneIn(2)) keys->SortKeys();
  return "key record " + std::to_string(which);
}

std::string ChangeList(Dice& dice) {
  Control* of = nullptr;
  IListControl* list = PickFace(dice, [&](Control* c) {
    of = c;
    return GetListControl(c);
  });
  if (!list) return {};
  const int which = dice.Int(5), entry = list->GetListCount() ? dice.Int(list->GetListCount()) : 0;
  const Ref<Control> made(MakeController(dice, of->SuperClassID()));
  if (WouldWait(made.Get(), of)) return {};
  if (which == 0) list->SetName(entry, Format(L"entry%d", dice.Int(9)));
  if (which == 1) list->SetActive(entry);
  if (which == 2) list->Append(made.Get());
  if (which == 3) list->ReplaceEntry(entry, made.Get());
  if (which == 4) list->Delete(entry);
  return "list " + std::to_string(which) + " of " + Tell(of);
}

std::string ChangeOrder(Dice& dice) {
  auto* euler = PickFace(dice, [](Control* c) { return static_cast<IEulerControl*>(c->GetInterface(I_EULERCTRL)); });
  if (!euler) return {};
  euler->SetOrder(dice.Int(9));
  return "Euler order " + std::to_string(euler->GetOrder());
}

std::string ChangeCurves(Dice& dice) {
  const bool ease = dice.OneIn(2);
  ICurveList* list = PickFace(dice, [&](Control* c) { return ease ? GetEaseList(c) : GetMultiplierList(c); });
  if (!list) return {};
  const int n = list->Count(), which = n == 0 ? 0 : dice.Int(4);
  if (which < 2) {
    const Ref<Control> curve(ease ? NewEaseCurve({0, 1600}) : NewMultiplierCurve());
    list->Append(curve.Get());
  }
  if (which == 2) list->Delete(dice.Int(n));
  if (which == 3) list->SetEnabled(dice.Int(n), dice.OneIn(2));
  return (ease ? "ease curve " : "multiplier curve ") + std::to_string(which);
}

std::string ChangeLock(Dice& dice) {
  ILockedTrack* track = PickFace(dice, [](Control* c) { return GetLockedTrack(c); });
  if (!track) return {};
  track->SetLocked(dice.OneIn(3));
  return track->GetLocked() ? "lock" : "unlock";
}

std::string ChangeTargets(Dice& dice) {
  INode* node = nullptr;
  auto* constraint = PickFace(dice, [&](Control* c) { return dynamic_cast<TargetConstraint*>(c); });
  if (!constraint) return {};
  node = PickNode(dice);
  const int n = constraint->GetNumTargets(), which = n == 0 ? 0 : dice.Int(6);
  if (which < 3) {
    INode* target = dice.OneIn(8) || !MayFollowNode(constraint, node) ? nullptr : node;
    constraint->AppendTarget(target, dice.Float(0, 100));
    return "append target " + Tell(target) + " to " + Tell(constraint);
  }
  const int i = dice.Int(n);
  if (which == 3) constraint->DeleteTarget(i);
  if (which == 4) constraint->SetWeight(i, dice.Float(0, 100), PickTime(dice));
  if (which == 5)
    if (auto* parent = dynamic_cast<ParentConstraint*>(constraint)) {
      dice.OneIn(2) ? static_cast<void>(parent->SetOffset(i, PickMatrix(dice)))
                    : parent->SetInitialTM(PickMatrix(dice));
    }
  return "target " + std::to_string(i) + " change " + std::to_string(which) + " of " + Tell(constraint);
}

std::string ChangeRigControl(Dice& dice) {
  auto* control = PickFace(dice, [](Control* c) { return dynamic_cast<RigControl*>(c); });
  if (!control) return {};
  const int which = dice.Int(6);
  switch (which) {
    case 0:
      control->SetFigureMode(dice.OneIn(2));
      break;
    case 1: {
      const HoldScope hold;
      control->ResetFigure();
      break;
    }
    case 2:
      control->SetOffsetPos(PickPoint(dice));
      break;
    case 3:
      control->SetOffsetRot(PickTurn(dice));
      break;
    case 4:
      control->SetOffsetScale(PickStretch(dice));
      break;
    default:
      control->SetOffsetTM(PickMatrix(dice));
  }
  return "rig control " + std::to_string(which);
}

// A connection that is there already, or a new float connection on some float track.
ConnectionControl* PickConnection(Dice& dice) {
  if (!dice.OneIn(3)) return PickFace(dice, [](Control* c) { return dynamic_cast<ConnectionControl*>(c); });
  INode* node = PickNode(dice);
  const NodeParts parts = node ? PartsOf(node) : NodeParts();
  for (const Slot& slot : parts.slots) {
    if (slot.superClass != kFloatControlSuper || !dice.OneIn(3)) continue;
    const Ref<FloatConnection> made(new FloatConnection);
    return slot.owner->AssignController(made.Get(), slot.sub) ? made.Get() : nullptr;
  }
  return nullptr;
}

std::string Wire(Dice& dice) {
  ConnectionControl* made = PickConnection(dice);
  INode* node = PickNode(dice);
  const NodeParts parts = node ? PartsOf(node) : NodeParts();
  if (!made || parts.blocks.empty()) return {};
  if (dice.OneIn(8)) {
    made->ClearTarget();
    return "wire " + Tell(made) + " to nothing";
  }
  ParamBlock2* block = dice.Pick(parts.blocks);
  const ParamRow& row = block->GetDesc().rows[static_cast<size_t>(dice.Int(block->NumParams()))];
  const int tab = block->Count(row.id) > 0 ? dice.Int(block->Count(row.id)) : 0;
  if (row.Is(kTransient)) return {};  // files do not keep it, and what follows it would differ after loading
  if (DependsOn(block, made) || !made->SetParamTarget(*block, row.id, tab)) return {};
  made->GetParamBlock()->SetValue(float_connection::kTwoWay, 0, dice.OneIn(2));
  return "wire " + Tell(made) + " to " + Tell(block) + "." + ToUtf8(row.name);
}

}  // namespace

const std::vector<EditRow> kTrackEdits = {
    {"assign", 14, Assign},
    {"share", 1, Share},
    {"write", 8, WriteValue},
    {"keys", 10, ChangeKeys},
    {"key records", 4, ChangeKeyRecords},
    {"list", 5, ChangeList},
    {"order", 2, ChangeOrder},
    {"curves", 3, ChangeCurves},
    {"lock", 2, ChangeLock},
    {"targets", 12, ChangeTargets},
    {"rig control", 5, ChangeRigControl},
    {"wire", 8, Wire},
};

}  // namespace tavrilon::scene_tests
