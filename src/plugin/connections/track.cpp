// SPDX-License-Identifier: MIT
#include "plugin/connections/track.h"

#include "host/scene/node.h"

namespace tavrilon {

using namespace corvanta;

namespace {

bool IsNumber(ParamType type) { return IsFloatType(type) || IsIntType(type); }

Control* AsControl(Animatable* anim) { return anim ? dynamic_cast<Control*>(anim) : nullptr; }

Control* DefaultFor(SClass_ID superClass) {
  switch (superClass) {
    case kPoint3ControlSuper:
      return NewDefaultPoint3Controller();
    case kPositionControlSuper:
      return NewDefaultPositionController();
    case kRotationControlSuper:
      return NewDefaultRotationController();
    case kScaleControlSuper:
      return NewDefaultScaleController();
    default:
      return NewDefaultFloatController();
  }
}

// A controller that begins with the parameter's constant.
Control* ControllerFor(ParamBlock2& block, const ParamRow& row, int tab) {
  const FPValue constant = block.GetConstant(row.id, tab);
  Control* made = DefaultFor(IsNumber(row.type) ? kFloatControlSuper : kPoint3ControlSuper);
  SuspendAnimate();
  if (IsNumber(row.type)) {
    float f = constant.ToFloat();
    made->SetValue(0, f);
  } else {
    Point3 p = constant.ToPoint3();
    made->SetValue(0, p);
  }
  ResumeAnimate();
  return made;
}

}  // namespace

const ParamRow* RowOf(const Track& track) {
  if (!track.owner || !track.IsParam()) return nullptr;
  const ParamRow* row = track.Block().GetParamDef(track.Param());
  const bool there = row && track.Tab() >= 0 && (track.Tab() == 0 || row->Is(kTab)) &&
                     (!row->Is(kTab) || track.Tab() < track.Block().Count(row->id));
  return there ? row : nullptr;
}

Control* ControllerOf(const Track& track) {
  if (!track.owner) return nullptr;
  if (track.IsParam()) return RowOf(track) ? track.Block().GetController(track.Param(), track.Tab()) : nullptr;
  return track.number < track.owner->NumSubs() ? AsControl(track.owner->SubAnim(track.number)) : nullptr;
}

Control* MakeControllerOf(const Track& track, SClass_ID superClass) {
  if (Control* present = ControllerOf(track)) return present;
  if (!track.owner) return nullptr;
  if (const ParamRow* row = RowOf(track)) {
    if (!row->Is(kAnimatable)) return nullptr;
    const Ref<Control> made(ControllerFor(track.Block(), *row, track.Tab()));
    return track.Block().SetController(row->id, made.Get(), track.Tab()) ? made.Get() : nullptr;
  }
  if (track.IsParam() || !track.owner->CanAssignController(track.number)) return nullptr;
  const Ref<Control> made(DefaultFor(superClass));
  return track.owner->AssignController(made.Get(), track.number) ? made.Get() : nullptr;
}

bool Gives(const Track& track, SClass_ID superClass) {
  if (const ParamRow* row = RowOf(track))
    return superClass == kFloatControlSuper ? IsNumber(row->type) : row->type == ParamType::Point3;
  const Control* control = ControllerOf(track);
  return control && control->SuperClassID() == superClass;
}

float ReadAnyFloat(const Track& track, TimeValue t, Interval& valid) {
  if (!track.IsParam()) {
    Animatable* sub = track.number < track.owner->NumSubs() ? track.owner->SubAnim(track.number) : nullptr;
    if (!sub || sub->SuperClassID() != kFloatControlSuper) return 0;
    float value = 0;
    static_cast<Control*>(sub)->GetValue(t, value, valid, CTRL_ABSOLUTE);
    return value;
  }
  const ParamRow* row = RowOf(track);
  if (!row) return 0;
  if (IsFloatType(row->type)) return track.Block().GetFloat(row->id, t, valid, track.Tab());
  if (!IsIntType(row->type)) return 0;
  if (Control* control = track.Block().GetController(row->id, track.Tab())) {
    float ignored = 0;
    control->GetValue(t, ignored, valid, CTRL_ABSOLUTE);
  }
  return static_cast<float>(track.Block().GetInt(row->id, t, track.Tab()));
}

void WriteFloat(const Track& track, TimeValue t, float value, bool commit) {
  if (RowOf(track))
    track.Block().SetValue(track.Param(), t, value, track.Tab());
  else if (Control* control = ControllerOf(track); control && control->SuperClassID() == kFloatControlSuper)
    control->SetValue(t, value, commit, CTRL_ABSOLUTE);
}

Track FindTrack(ReferenceTarget& owner, const ReferenceTarget& target) {
  for (int i = 0; i < owner.NumSubs(); ++i)
    if (owner.SubAnim(i) == &target) return FindTrack(owner, i);
  for (int i = 0; i < owner.NumRefs(); ++i) {
    ReferenceTarget* block = owner.GetReference(i);
    if (!block || !Track{block, 0}.IsParam()) continue;
    for (int k = 0; k < block->NumSubs(); ++k)
      if (block->SubAnim(k) == &target) return FindTrack(*block, k);
  }
  return {};
}

Track FindTrack(ReferenceTarget& owner, const WStr& name) {
  if (name.empty()) return {};  // the name of parameters that scripts do not see
  const Track self{&owner, 0};
  if (self.IsParam()) {
    const ParamRow* row = self.Block().GetDesc().FindByName(name);
    return row ? Track{&owner, ParamTrackNumber(row->id, 0)} : Track{};
  }
  for (int i = 0; i < owner.NumRefs(); ++i) {
    ReferenceTarget* block = owner.GetReference(i);
    if (!block || !Track{block, 0}.IsParam()) continue;
    if (const Track found = FindTrack(*block, name); found.owner) return found;
  }
  for (int i = 0; i < owner.NumSubs(); ++i)
    if (EqualsNoCase(owner.SubAnimName(i), name)) return {&owner, i};
  return {};
}

Track FindTrack(ReferenceTarget& owner, int subAnim) {
  if (subAnim < 0 || subAnim >= owner.NumSubs()) return {};
  Track track{&owner, subAnim};
  if (!track.IsParam()) return track;
  const auto [id, tab] = track.Block().AnimNumToParam(subAnim);
  track.number = ParamTrackNumber(id, tab);
  return track;
}

WStr TextOf(const Track& track) {
  if (!track.owner) return {};
  if (const ParamRow* row = RowOf(track)) {
    const ReferenceTarget* holder = track.Block().GetOwner();
    return (holder ? holder->GetClassName() : WStr(track.Block().GetDesc().name)) + L": " +
           (*row->label ? row->label : row->name);
  }
  const INode* node = track.owner->AsNode();
  return (node ? node->GetName() : track.owner->GetClassName()) + L": " + track.owner->SubAnimName(track.number);
}

}  // namespace tavrilon
