// SPDX-License-Identifier: MIT
#include "host/scene/object.h"

#include <algorithm>

#include "host/core/remap.h"
#include "host/scene/kept_mesh.h"

namespace corvanta {

DerivedObject* CreateDerivedObject(Object* object) {
  auto* derived = new DerivedObject;
  if (object) derived->ReplaceReference(0, object);
  return derived;
}

Modifier* DerivedObject::GetModifier(int i) const {
  return i >= 0 && i < NumModifiers() ? modifiers_[static_cast<size_t>(i)] : nullptr;
}

ReferenceTarget* DerivedObject::GetReference(int which) const {
  return which == 0 ? static_cast<ReferenceTarget*>(base_) : GetModifier(which - 1);
}

void DerivedObject::SetReference(int which, ReferenceTarget* target) {
  DropKeptMesh();
  if (which < 0) return;
  if (which == 0) {
    base_ = static_cast<Object*>(target);
    return;
  }
  const auto at = static_cast<size_t>(which - 1);
  if (at >= modifiers_.size()) modifiers_.resize(at + 1);
  modifiers_[at] = static_cast<Modifier*>(target);
}

void DerivedObject::AddModifier(Modifier* modifier, int at) {
  if (!modifier) return;
  at = std::min(std::max(at, 0), NumModifiers());
  if (theHold.Holding()) theHold.Put(std::make_unique<SlotRestore<DerivedObject>>(this, at, true));
  InsertSlot(at);
  ReplaceReference(1 + at, modifier);
  NotifyDependents(FOREVER, PART_ALL, REFMSG_SUBANIM_STRUCTURE);
  NotifyDependents(FOREVER, PART_GEOM);
}

bool DerivedObject::DeleteModifier(int i) {
  if (i < 0 || i >= NumModifiers()) return false;
  ReplaceReference(1 + i, nullptr);
  if (theHold.Holding()) theHold.Put(std::make_unique<SlotRestore<DerivedObject>>(this, i, false));
  RemoveSlot(i);
  NotifyDependents(FOREVER, PART_ALL, REFMSG_SUBANIM_STRUCTURE);
  NotifyDependents(FOREVER, PART_GEOM);
  return true;
}

void DerivedObject::CopyStateFrom(ReferenceTarget& source, RemapDir&) {
  modifiers_.resize(static_cast<DerivedObject&>(source).modifiers_.size());
}

WStr DerivedObject::SubAnimName(int i) {
  if (i == 0) return L"Object";
  const Modifier* modifier = GetModifier(i - 1);
  return modifier ? modifier->GetName() : WStr();
}

ModifiedDisplay DerivedObject::Stack(TimeValue t, INode* node) const {
  ModifiedDisplay display;
  for (int i = NumModifiers() - 1; i >= 0; --i)
    if (Modifier* modifier = GetModifier(i)) modifier->ModifyDisplay(t, node, display);
  return display;
}

bool DerivedObject::EvalMesh(TimeValue t, INode* node, MeshState& state) {
  if (!base_ || !base_->EvalMesh(t, node, state)) return false;
  for (size_t i = modifiers_.size(); i-- > 0;) {
    if (modifiers_[i]) modifiers_[i]->ModifyMesh(t, node, state);
  }
  return true;
}

Box3 DerivedObject::GetLocalBoundBox(TimeValue t, INode* node) {
  const ModifiedDisplay display = Stack(t, node);
  if (!base_ || display.hidden) return {};
  KeptMesh* mesh = GetKeptMesh(t, node);
  return (mesh ? mesh->Box() : base_->GetLocalBoundBox(t, node)) * display.tm;
}

}  // namespace corvanta
