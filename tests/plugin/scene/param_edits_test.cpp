// SPDX-License-Identifier: MIT
// Parameters of every type, tabs and animation of parameters.
#include "plugin/scene/edit_picks_test.h"

namespace tavrilon::scene_tests {

using namespace corvanta;

namespace {

struct Place {
  INode* node = nullptr;
  ParamBlock2* block = nullptr;
  const ParamRow* row = nullptr;
  std::string Tell() const { return ToUtf8(row->name) + " of " + scene_tests::Tell(node); }
};

/// A parameter that scripts see; `wanted` tells which rows will do.
template <class Wanted>
Place PickPlace(Dice& dice, Wanted wanted) {
  for (int tries = 0; tries < 20; ++tries) {
    INode* node = PickNode(dice);
    if (!node) return {};
    const NodeParts parts = PartsOf(node);
    if (parts.blocks.empty()) continue;
    ParamBlock2* block = dice.Pick(parts.blocks);
    const ParamRow* row = &block->GetDesc().rows[static_cast<size_t>(dice.Int(block->GetDesc().Count()))];
    if (*row->name && !row->Is(kTransient) && wanted(*row)) return {node, block, row};
  }
  return {};
}

ReferenceTarget* PickTarget(Dice& dice, const Place& place) {
  INode* node = PickNode(dice);
  if (!node || dice.OneIn(5)) return nullptr;
  if (place.row->type == ParamType::RefTarg && dice.OneIn(2) && node->GetObjectRef()) return node->GetObjectRef();
  // A joint follows its chain: only the validator of the row knows which nodes would then go in circles.
  PBValidator* validator = place.row->validator;
  if (validator && !validator->Validate(place.block->GetOwner(), place.row->id, node)) return nullptr;
  return MayFollowNode(place.block, node) ? node : nullptr;
}

FPValue PickValue(Dice& dice, const Place& place) {
  switch (place.row->type) {
    case ParamType::Bool:
      return dice.OneIn(2);
    case ParamType::Int:
    case ParamType::Index:
    case ParamType::Time:
      return dice.Int(7);
    case ParamType::Point3:
      return PickPoint(dice);
    case ParamType::Point2:
      return Point2{dice.Float(-9, 9), dice.Float(-9, 9)};
    case ParamType::Colour:
      return Colour{dice.Float(0, 1), dice.Float(0, 1), dice.Float(0, 1)};
    case ParamType::Matrix3:
      return PickMatrix(dice);
    case ParamType::String:
    case ParamType::FileName:
      return Format(L"text%d", dice.Int(99));
    case ParamType::Node:
    case ParamType::RefTarg:
      return TargetValue(PickTarget(dice, place));
    default:
      return dice.Float(0.1f, 100);
  }
}

std::string Write(Dice& dice) {
  const Place place = PickPlace(dice, [](const ParamRow&) { return true; });
  if (!place.block) return {};
  const ParamID id = place.row->id;
  const int count = place.block->Count(id);
  if (count == 0) return {};
  const bool animate = dice.OneIn(3);
  std::unique_ptr<AnimateScope> scope;
  if (animate) scope = std::make_unique<AnimateScope>();
  const int tab = dice.Int(count);
  place.block->SetFPValue(id, PickTime(dice), PickValue(dice, place), tab);
  return "set " + place.Tell() + " [" + std::to_string(tab) + "]" + (animate ? " animated" : "");
}

std::string ChangeTab(Dice& dice) {
  const Place place = PickPlace(dice, [](const ParamRow& row) { return row.Is(kTab); });
  if (!place.block) return {};
  ParamBlock2& block = *place.block;
  const ParamID id = place.row->id;
  const int count = block.Count(id), which = dice.Int(5);
  if (which == 0 || count == 0) {
    block.SetCount(id, count + 1);
    block.SetFPValue(id, 0, PickValue(dice, place), count);
  } else if (which == 1) {
    block.Insert(id, dice.Int(count + 1), PickValue(dice, place));
  } else if (which == 2) {
    const int at = dice.Int(count);
    block.Delete(id, at, 1 + dice.Int(count - at));
  } else if (which == 3) {
    block.SetCount(id, dice.Int(5));
  } else {
    block.RecordTab(id);
    block.SetFPValue(id, 0, PickValue(dice, place), dice.Int(count));
  }
  return "tab change " + std::to_string(which) + " of " + place.Tell();
}

std::string Animate(Dice& dice) {
  const Place place = PickPlace(dice, [](const ParamRow& row) { return row.Is(kAnimatable); });
  if (!place.block || place.block->Count(place.row->id) == 0) return {};
  const int tab = dice.Int(place.block->Count(place.row->id));
  const bool vector = place.row->type == ParamType::Point3 || place.row->type == ParamType::Colour;
  const Ref<Control> made(dice.OneIn(3) ? nullptr
                                        : MakeController(dice, vector ? kPoint3ControlSuper : kFloatControlSuper));
  place.block->SetController(place.row->id, made.Get(), tab);
  return scene_tests::Tell(made.Get()) + " for " + place.Tell();
}

}  // namespace

const std::vector<EditRow> kParamEdits = {
    {"parameter", 16, Write},
    {"tab", 10, ChangeTab},
    {"animate parameter", 4, Animate},
};

}  // namespace tavrilon::scene_tests
