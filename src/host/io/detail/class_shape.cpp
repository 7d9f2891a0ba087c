// SPDX-License-Identifier: MIT
#include "host/io/detail/class_shape.h"

#include <map>
#include <utility>

#include "host/core/cust_attrib.h"
#include "host/core/hold.h"
#include "host/scene/material.h"
#include "host/scene/node.h"

namespace corvanta {
namespace {

bool IsObject(const ReferenceTarget& target) { return dynamic_cast<const Object*>(&target) != nullptr; }

ClassShape Examine(const ClassDesc& desc) {
  ClassShape shape;
  const HoldSuspend noUndo;
  const Ref<ReferenceTarget> example(desc.Create());
  if (!example) return shape;
  for (int i = 0; i < example->NumRefs(); ++i) {
    const ReferenceTarget* target = example->GetReference(i);
    const auto* block = dynamic_cast<const ParamBlock2*>(target);
    shape.slots.push_back(
        {target ? target->SuperClassID() : 0, block ? &block->GetDesc() : nullptr, target && IsObject(*target)});
  }
  return shape;
}

bool IsControl(const ReferenceTarget& target, SClass_ID super) {
  return target.SuperClassID() == super && dynamic_cast<const Control*>(&target);
}

bool MayBindToNode(int which, const ReferenceTarget& target) {
  switch (which) {
    case 0:
      return IsControl(target, kMatrixControlSuper);
    case 1:
      return IsObject(target);
    case 2:
      return IsControl(target, kFloatControlSuper);
    case 3:
      return dynamic_cast<const Mtl*>(&target) != nullptr;
    default:
      return false;
  }
}

bool FitsSlot(const ClassShape::Slot& slot, const ReferenceTarget& target) {
  if (slot.block) {
    const auto* block = dynamic_cast<const ParamBlock2*>(&target);
    return block && &block->GetDesc() == slot.block;
  }
  // Objects are told apart by what they do, not by their super class: a derived object stands for any of them.
  return slot.isObject ? IsObject(target) : target.SuperClassID() == slot.superClass;
}

}  // namespace

const ParamBlockDesc2* ClassShape::FindBlock(int blockId) const {
  for (const Slot& slot : slots)
    if (slot.block && slot.block->blockId == blockId) return slot.block;
  return nullptr;
}

const ClassShape& ShapeOf(const ClassDesc& desc) {
  static std::map<const ClassDesc*, ClassShape> shapes;
  const auto found = shapes.find(&desc);
  if (found != shapes.end()) return found->second;
  return shapes.emplace(&desc, Examine(desc)).first->second;
}

const ClassDesc* FindCreatable(SClass_ID superClass, Class_ID classId) {
  const ClassDesc* desc = ClassDirectory::Get().Find(superClass, classId);
  return desc && desc->create ? desc : nullptr;
}

const ParamBlockDesc2* FindBlockDesc(const ReferenceTarget& owner, int blockId) {
  const ClassDesc* desc = FindCreatable(owner.SuperClassID(), owner.ClassID());
  return desc ? ShapeOf(*desc).FindBlock(blockId) : nullptr;
}

bool MayBind(const ReferenceTarget& maker, int which, const ReferenceTarget& target) {
  if (which == ReferenceMaker::kCustAttribRef) return dynamic_cast<const CustAttribContainer*>(&target) != nullptr;
  if (const auto answer = maker.AcceptsReference(which, target)) return *answer;
  if (maker.SuperClassID() == kNodeSuper) return MayBindToNode(which, target);
  if (dynamic_cast<const CustAttribContainer*>(&maker)) return dynamic_cast<const CustAttrib*>(&target) != nullptr;
  if (dynamic_cast<const DerivedObject*>(&maker))
    return which == 0 ? IsObject(target) : dynamic_cast<const Modifier*>(&target) != nullptr;
  const ClassDesc* desc = FindCreatable(maker.SuperClassID(), maker.ClassID());
  if (!desc) return true;
  const ClassShape& shape = ShapeOf(*desc);
  const auto slot = static_cast<size_t>(which);
  return slot >= shape.slots.size() || shape.slots[slot].superClass == 0 || FitsSlot(shape.slots[slot], target);
}

}  // namespace corvanta
