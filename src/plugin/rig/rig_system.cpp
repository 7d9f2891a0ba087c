// SPDX-License-Identifier: MIT
// The template of a rig: points that follow the parameters, and their undo and clones.
#include "plugin/rig/rig_system.h"

#include <unordered_map>

#include <cmath>
#include <cstdlib>

#include "host/core/remap.h"
#include "host/scene/core_interface.h"
#include "plugin/rig/detail/rig_edit.h"
#include "plugin/rig/point_move.h"
#include "plugin/rig/template.h"
#include "plugin/rig/type_defaults.h"

namespace tavrilon {

using namespace corvanta;

ReferenceTarget* CreateRig(bool loading) { return new RigSystem(loading); }
ReferenceTarget* CreateRigSystem(bool loading) { return new RigSystem(loading); }

RigSystem::RigSystem(bool loading) {
  if (loading) return;
  HoldSuspend unborn;  // what is undone is the creation as a whole
  BindReference(0, new ParamBlock2(RigBlock()));
  ApplyType();
  Rebuild(true);
}

void RigSystem::SetReference(int which, ReferenceTarget* target) {
  if (which == 0) block_ = static_cast<ParamBlock2*>(target);
}

void* RigSystem::GetInterface(uint32_t request) {
  return request == WeakRefOwner::kRequest ? static_cast<WeakRefOwner*>(this) : HelperObject::GetInterface(request);
}

FPInterface* RigSystem::GetInterface(const Interface_ID& id) {
  return id == kId ? this : HelperObject::GetInterface(id);
}

// The nodes that the rig owns move all the time; who carries the rig need not hear of it.
RefResult RigSystem::NotifyRefChanged(const Interval&, ReferenceTarget* target, PartID&, RefMessage, bool) {
  if (target != block_ || !block_) return REF_SUCCEED;
  ReferenceTarget* sender = block_->LastSender();
  const bool ofNodes = sender ? sender->AsNode() != nullptr : block_->LastChanged().first == rig_param::kNodes;
  return ofNodes ? REF_STOP : REF_SUCCEED;
}

// --- template

const PointPlaces& RigSystem::Places() const {
  if (!placesValid_) places_ = PointPlaces(state_.points);
  placesValid_ = true;
  return places_;
}

Box3 RigSystem::PointBox() const { return Places().Bounds() * ScaleMatrix({Size(), Size(), Size()}); }
Box3 RigSystem::SelectionBox() const {
  return Places().SelectionBounds(Points()) * ScaleMatrix({Size(), Size(), Size()});
}

void RigSystem::ApplyType() {
  QuietParameters quiet(*this);
  for (const TypeDefault& value : TypeDefaults(Type()))
    block_->SetValue(static_cast<ParamID>(value.id), 0, value.value);
}

void RigSystem::Rebuild(bool discard) {
  if (!block_) return;
  RecordPoints();
  const RigPoints saved = discard ? RigPoints() : std::move(state_.points);
  state_.points = BuildTemplate(Type(), ReadTemplateParams(*block_), saved, state_.extras);
  placesValid_ = false;
}

// Files do not tell where the template had put a point.
void RigSystem::PostLoad() {
  if (!block_) return;
  const RigPoints fresh = BuildTemplate(Type(), ReadTemplateParams(*block_), {}, state_.extras);
  std::unordered_map<WStr, const RigPoint*> byName;
  for (const RigPoint& point : fresh) byName.try_emplace(point.name, &point);
  for (RigPoint& point : state_.points)
    if (const auto found = byName.find(point.name); found != byName.end()) point.origin = found->second->origin;
}

void RigSystem::ParameterChanged(rig_param::ID id) {
  using namespace rig_param;
  // Undo and redo bring the points back by their own record.
  if (quiet_ > 0 || theHold.UndoRunning() || theHold.RedoRunning() || !IsActive()) return;
  switch (id) {
    case kNodes:
    case kHelperSize:
    case kDrawOnTop:
      return;
    case kHelperType:
      ApplyType();
      Rebuild(true);
      return;
    case kSide:
      Rebuild(true);
      return;
    case kSelectedComponent:
      SelectComponent(block_->GetInt(kSelectedComponent));
      return;
    default:
      Rebuild(false);
  }
}

void RigSystem::SetType(int type) {
  if (!block_ || !ClampRigParam(rig_param::kHelperType, type)) return;
  HoldScope hold(L"Rig Type");
  block_->SetValue(rig_param::kHelperType, 0, type);
}

void RigSystem::PointsChanged() {
  placesValid_ = false;
  NotifyDependents(FOREVER, PART_GEOM | PART_TOPO);
}

void RigSystem::StateRestored() { PointsChanged(); }

// A copy of a rig shares no node with it: it owns the copies that were made with it, and is a template without any.
void RigSystem::CopyStateFrom(ReferenceTarget& source, RemapDir& remap) {
  Ref<RigSystem> from = static_cast<RigSystem*>(&source);
  state_ = from->state_;
  placesValid_ = false;
  Ref<RigSystem> self = this;
  remap.AddPostPatchProc([self, from](RemapDir& map) {
    if (!self->block_ || !from->block_) return;
    std::vector<ReferenceTarget*> copies;
    for (INode* node : from->OwnedNodes())
      if (ReferenceTarget* copy = map.Find(node)) copies.push_back(copy);
    self->block_->LoadCount(rig_param::kNodes, 0);
    self->block_->LoadCount(rig_param::kNodes, static_cast<int>(copies.size()));
    for (size_t i = 0; i < copies.size(); ++i)
      self->block_->LoadTarget(rig_param::kNodes, static_cast<int>(i), copies[i]);
    if (copies.empty()) self->block_->LoadConstant(rig_param::kActive, 0, true);
  });
}

// --- points

int RigSystem::FindPoint(const WStr& name, int side, int index, int sub_index) const {
  return tavrilon::FindPoint(Points(), PointName(name, side, index, sub_index));
}

std::vector<WStr> RigSystem::PointNames() const {
  std::vector<WStr> names;
  for (const RigPoint& point : Points()) names.push_back(point.name);
  return names;
}

Point3 RigSystem::GetPointPos(const WStr& name, int side, int index, int sub_index) const {
  return Places().At(FindPoint(name, side, index, sub_index));
}

void RigSystem::SetPointPos(const WStr& name, const Point3& pos, int side, int index, int sub_index) {
  const int point = FindPoint(name, side, index, sub_index);
  if (point < 0 || !std::isfinite(pos.x) || !std::isfinite(pos.y) || !std::isfinite(pos.z)) return;
  ChangePoints(L"Move Point", [&](RigPoints& points) { points[static_cast<size_t>(point)].position = pos; });
}

WStr RigSystem::GetPointParent(const WStr& name, int side, int index, int sub_index) const {
  const int point = FindPoint(name, side, index, sub_index);
  const int parent = point >= 0 ? Points()[static_cast<size_t>(point)].parent : -1;
  return parent >= 0 ? Points()[static_cast<size_t>(parent)].name : WStr();
}

void RigSystem::MoveSelected(const Matrix3& objectTM, const Matrix3& worldChange) {
  if (!IsActive()) return;
  PointMove move;
  move.transform = objectTM * worldChange * Inverse(objectTM);
  move.size = Size();
  move.affectChildren = block_->GetBool(rig_param::kAffectChildren);
  move.affectMirror = block_->GetBool(rig_param::kAffectMirror);
  move.mirrorRelativeToParent = block_->GetBool(rig_param::kMirrorRelativeToParent);
  ChangePoints(L"Move Points", [&](RigPoints& points) { MovePoints(points, move); });
}

// --- creation

void RigSystem::StartCreation(INode* node, const Matrix3& grid) {
  if (!block_) return;
  // Fully saturated and bright: one of the six sectors of the hue circle rises or falls.
  const float hue = static_cast<float>(std::rand() & 32767) / 32767 * 6;
  const auto channel = [&](float offset) {
    const float k = std::fmod(offset + hue, 6.0f);
    return 1 - std::clamp(std::min(k, 4 - k), 0.0f, 1.0f);
  };
  block_->SetValue(rig_param::kHelperSize, 0, 0.0f);
  if (!node) return;
  node->SetWireColor(PackColour({channel(5), channel(3), channel(1)}));
  node->SetNodeTM(GetCOREInterface()->GetTime(), grid);
}

void RigSystem::DragCreation(float distance) {
  if (block_ && std::isfinite(distance)) block_->SetValue(rig_param::kHelperSize, 0, std::abs(distance));
}

}  // namespace tavrilon
