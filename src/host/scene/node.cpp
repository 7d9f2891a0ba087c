// SPDX-License-Identifier: MIT
#include "host/scene/node.h"

#include <algorithm>

#include "host/core/after_delivery.h"
#include "host/core/class_desc.h"
#include "host/core/notify.h"
#include "host/core/remap.h"
#include "host/core/state_restore.h"
#include "host/scene/material.h"
#include "host/scene/scene.h"

namespace corvanta {

namespace {
int reentries = 0;
}

/// Undo of a change of parent: the place among the children comes back too.
class ParentRestore final : public RestoreObj {
 public:
  ParentRestore(INode* child) : child_(child), parent_(child->parent_), at_(PlaceOf(child)) {}
  void Restore(bool) override { Swap(); }
  void Redo() override { Swap(); }

 private:
  static int PlaceOf(const INode* child) {
    const auto& siblings = child->parent_->children_;
    return static_cast<int>(std::find(siblings.begin(), siblings.end(), child) - siblings.begin());
  }
  void Swap() {
    const Ref<INode> parent(child_->parent_);
    const int at = PlaceOf(child_.Get());
    std::erase(child_->parent_->children_, child_.Get());
    auto& siblings = parent_->children_;
    siblings.insert(siblings.begin() + std::min<std::ptrdiff_t>(at_, std::ssize(siblings)), child_.Get());
    child_->parent_ = parent_.Get();
    parent_ = parent;
    at_ = at;
    child_->InvalidateTM();
  }
  Ref<INode> child_, parent_;
  int at_;
};

INode::INode(Scene& scene, bool isRoot) : isRoot_(isRoot), scene_(&scene) {}
INode::~INode() = default;

int INode::ReentryCount() { return reentries; }

const Matrix3& INode::Evaluate(TimeValue t) {
  if (evaluating_) {
    ++reentries;
    return tm_;
  }
  evaluating_ = true;
  Interval valid = FOREVER;
  Matrix3 tm;
  if (parent_) tm = parent_->GetNodeTM(t, valid);
  if (tmController_) tmController_->GetValue(t, tm, valid, CTRL_RELATIVE);
  tm_ = tm;
  tmValid_ = valid;
  // A controller that narrowed its interval to nothing is asked again next time.
  evaluating_ = false;
  return tm_;
}

void INode::SetNodeTM(TimeValue t, const Matrix3& tm) {
  if (!tmController_) return;
  SetXFormPacket packet = SetXFormPacket::Set(tm, GetParentTM(t));
  tmController_->SetValue(t, packet, true, CTRL_ABSOLUTE);
}

// Tree.

bool INode::IsAncestorOf(const INode* node) const {
  for (; node; node = node->parent_)
    if (node == this) return true;
  return false;
}

namespace {

int DepthOf(const INode* node) {
  int depth = 0;
  while ((node = node->GetParentNode())) ++depth;
  return depth;
}

int HeightOf(const INode* node) {
  int height = 0;
  std::vector<std::pair<const INode*, int>> open{{node, 1}};
  while (!open.empty()) {
    const auto [at, depth] = open.back();
    open.pop_back();
    height = std::max(height, depth);
    for (const INode* child : at->Children()) open.push_back({child, depth + 1});
  }
  return height;
}

}  // namespace

bool INode::AttachChild(INode* child, bool keepPos) {
  if (!child || child->isRoot_ || !child->parent_ || child->IsAncestorOf(this)) return false;
  if (child->parent_ == this) return true;
  if (!child->children_.empty() || DepthOf(this) + 1 > kMaxDepth)
    if (DepthOf(this) + HeightOf(child) > kMaxDepth) return false;
  const TimeValue now = scene_->time.time;
  Matrix3 world, oldParent;
  if (keepPos) {
    world = child->GetNodeTM(now);
    oldParent = child->GetParentTM(now);
  }
  if (theHold.Holding()) theHold.Put(std::make_unique<ParentRestore>(child));
  std::erase(child->parent_->children_, child);
  child->parent_ = this;
  children_.push_back(child);
  if (keepPos && child->tmController_ && !child->tmController_->ChangeParents(now, oldParent, GetNodeTM(now), world)) {
    child->InvalidateTM();
    child->SetNodeTM(now, world);
  }
  child->InvalidateTM();
  return true;
}

// Invalidation.

// A change of place reaches every descendant, whose own dependents hear of it as of a change of their transform: who
// watches a joint need not watch the joint's parents. All of it is one message. All matrices go before anyone is told,
// so that whoever evaluates on hearing it reads nothing stale.
void INode::DropMatrices() {
  tmValid_ = NEVER;
  for (INode* child : children_) child->DropMatrices();
}

void INode::TellDescendants(const RefNotice& notice) {
  for (size_t i = 0; i < children_.size(); ++i) {
    children_[i]->Propagate(notice);
    children_[i]->TellDescendants(notice);
  }
}

void INode::InvalidateTM() {
  const DeliveryScope scope;
  DropMatrices();
  NotifyDependents(FOREVER, PART_TM);
  RefNotice notice;
  notice.part = PART_TM;
  notice.origin = this;
  notice.number = NewNoticeNumber();
  TellDescendants(notice);
}

RefResult INode::NotifyRefChanged(const Interval&, ReferenceTarget* target, PartID& part, RefMessage message, bool) {
  if (message == REFMSG_CHANGE && target == tmController_) {
    part = PART_TM;
    RefNotice notice = *CurrentNotice();
    notice.part = PART_TM;
    DropMatrices();
    TellDescendants(notice);
  }
  return REF_SUCCEED;
}

// References.

ReferenceTarget* INode::GetReference(int which) const {
  switch (which) {
    case 0:
      return tmController_;
    case 1:
      return object_;
    case 2:
      return visController_;
    case 3:
      return material_;
    default:
      return nullptr;
  }
}

void INode::SetReference(int which, ReferenceTarget* target) {
  switch (which) {
    case 0:
      tmController_ = static_cast<Control*>(target);
      break;
    case 1:
      object_ = static_cast<Object*>(target);
      break;
    case 2:
      visController_ = static_cast<Control*>(target);
      break;
    case 3:
      material_ = static_cast<Mtl*>(target);
      break;
    default:
      break;
  }
  if (which == 0) DropMatrices();
}

bool INode::SetTMController(Control* control) {
  if (ReplaceReference(0, control) != REF_SUCCEED) return false;
  InvalidateTM();
  return true;
}

bool INode::SetMtl(Mtl* material) {
  if (ReplaceReference(3, material) != REF_SUCCEED) return false;
  NotifyDependents();
  return true;
}

bool INode::SetVisController(Control* control) {
  if (ReplaceReference(2, control) != REF_SUCCEED) return false;
  NotifyDependents();
  return true;
}

void INode::SetObjectRef(Object* object) {
  if (ReplaceReference(1, object) == REF_SUCCEED) NotifyDependents(FOREVER, PART_TOPO | PART_GEOM);
}

bool INode::AssignController(Control* control, int subAnim) {
  if (!control || !CanAssignController(subAnim)) return false;
  if (!(subAnim == 0 ? SetTMController(control) : SetVisController(control))) return false;
  NotifyDependents(FOREVER, PART_ALL, REFMSG_CONTROLREF_CHANGE);
  return true;
}

WStr INode::SubAnimName(int i) {
  constexpr const wchar_t* kNames[] = {L"Transform", L"Object", L"Visibility", L"Material"};
  return i >= 0 && i < 4 ? kNames[i] : L"";
}

void INode::AddModifier(Modifier* modifier) {
  auto* derived = dynamic_cast<DerivedObject*>(object_);
  if (!derived) {
    derived = CreateDerivedObject(object_);
    const Ref<DerivedObject> keep(derived);
    SetObjectRef(derived);
  }
  derived->AddModifier(modifier);
}

std::vector<Modifier*> INode::Modifiers() const {
  std::vector<Modifier*> all;
  for (auto* derived = dynamic_cast<DerivedObject*>(object_); derived;
       derived = dynamic_cast<DerivedObject*>(derived->GetObjRef()))
    for (int i = 0; i < derived->NumModifiers(); ++i) all.push_back(derived->GetModifier(i));
  return all;
}

ReferenceTarget* INode::Clone(RemapDir& remap) {
  INode* clone = scene_->LoadNode(0);
  remap.AddEntry(this, clone);
  clone->state_ = state_;
  CloneInto(*clone, remap);
  return clone;
}

void INode::CloneInto(INode& clone, RemapDir& remap) {
  // Nodes that look alike share one material, so that a change of it shows on both.
  if (material_) remap.AddEntry(material_, material_);
  CloneReferencesInto(clone, remap);
}

// Plain state.

void INode::Touch() { RecordState(this, &INode::state_); }

void INode::StateRestored() {
  NotifyDependents(FOREVER, kDisplayHidden | kDisplayFrozen | kDisplayWireColour | kDisplayOther,
                   REFMSG_DISPLAY_PROPERTY);
  NotifyDependents(FOREVER, PART_ALL, REFMSG_NODE_RENAMED);
  NotifyDependents(FOREVER, PART_GEOM);
}

void INode::SetState(const NodeState& state) {
  Touch();
  state_ = state;
  StateRestored();
}

template <class T>
void INode::SetField(T NodeState::*field, const T& value, RefMessage message, PartID part) {
  if (state_.*field == value) return;
  Touch();
  state_.*field = value;
  NotifyDependents(FOREVER, part, message);
}

void INode::SetName(const WStr& name) {
  if (state_.name == name) return;
  SetField(&NodeState::name, name, REFMSG_NODE_RENAMED, PART_ALL);
  if (inScene_) BroadcastNotification(NOTIFY_NODE_RENAMED, this);
}

bool INode::IsHidden() const { return state_.hidden || (GetLayer() && GetLayer()->IsHidden()); }
bool INode::IsFrozen() const { return state_.frozen || (GetLayer() && GetLayer()->IsFrozen()); }
void INode::SetWireColor(uint32_t rgb) {
  SetField(&NodeState::wireColour, rgb, REFMSG_DISPLAY_PROPERTY, kDisplayWireColour);
}
void INode::Hide(bool on) { SetField(&NodeState::hidden, on, REFMSG_DISPLAY_PROPERTY, kDisplayHidden); }
void INode::Freeze(bool on) { SetField(&NodeState::frozen, on, REFMSG_DISPLAY_PROPERTY, kDisplayFrozen); }
void INode::SetRenderable(bool on) { SetField(&NodeState::renderable, on, REFMSG_DISPLAY_PROPERTY, kDisplayOther); }
void INode::SetBoneOnOff(bool on) { SetField(&NodeState::boneOn, on, REFMSG_DISPLAY_PROPERTY, kDisplayOther); }
void INode::SetBoneFreeze(bool on) { SetField(&NodeState::boneFreeze, on, REFMSG_DISPLAY_PROPERTY, kDisplayOther); }
void INode::SetBoneAutoAlign(bool on) {
  SetField(&NodeState::boneAutoAlign, on, REFMSG_DISPLAY_PROPERTY, kDisplayOther);
}
void INode::SetTransformLocks(uint16_t locks) {
  SetField(&NodeState::locks, locks, REFMSG_DISPLAY_PROPERTY, kDisplayOther);
}
void INode::SetObjOffsetPos(const Point3& p) { SetField(&NodeState::offsetPos, p, REFMSG_CHANGE, PART_TM | PART_GEOM); }
void INode::SetObjOffsetRot(const Quat& q) { SetField(&NodeState::offsetRot, q, REFMSG_CHANGE, PART_TM | PART_GEOM); }
void INode::SetObjOffsetScale(const ScaleValue& s) {
  SetField(&NodeState::offsetScale, s, REFMSG_CHANGE, PART_TM | PART_GEOM);
}

Matrix3 INode::GetObjOffsetTM() const {
  Matrix3 tm = MakeMatrix(state_.offsetScale) * MakeMatrix(state_.offsetRot);
  tm.SetTrans(state_.offsetPos);
  return tm;
}

void INode::SetLayer(SceneLayer* layer) {
  if (GetLayer() == layer) return;
  SetField(&NodeState::layer, Ref<SceneLayer>(layer), REFMSG_DISPLAY_PROPERTY,
           kDisplayHidden | kDisplayFrozen | kDisplayOther);
  BroadcastNotification(NOTIFY_LAYER_CHANGED, this);
}

WStr INode::GetUserPropString(const WStr& key) const {
  const auto found = state_.userProps.find(key);
  return found == state_.userProps.end() ? WStr() : found->second;
}

void INode::SetUserPropString(const WStr& key, const WStr& value) {
  Touch();
  if (value.empty())
    state_.userProps.erase(key);
  else
    state_.userProps[key] = value;
}

Box3 INode::GetWorldBoundBox(TimeValue t) {
  return object_ ? object_->GetLocalBoundBox(t, this) * GetObjectTM(t) : Box3();
}

}  // namespace corvanta
