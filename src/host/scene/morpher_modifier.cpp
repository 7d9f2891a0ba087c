// SPDX-License-Identifier: MIT
#include "host/scene/morpher_modifier.h"

#include <cmath>

#include "host/core/chunk_arrays.h"
#include "host/core/class_desc.h"
#include "host/core/state_restore.h"
#include "host/scene/node.h"

namespace corvanta {

namespace {

constexpr ParamRow kRows[] = {
    // id                     name        type               flags        default range     label
    {MorphChannel::kName, L"name", ParamType::String, kNone, L"", {}, L"Name"},
    {MorphChannel::kWeight, L"weight", ParamType::Float, kAnimatable, 0.0f, {0, 100}, L"Weight"},
    {MorphChannel::kEnabled, L"enabled", ParamType::Bool, kNone, true, {}, L"Enabled"},
};

const ClassDesc kDescs[] = {
    {L"Morpher", L"Morpher", kModifierSuper, MorpherModifier::kClassId, L"Standard", true,
     [](bool) -> ReferenceTarget* { return new MorpherModifier; }},
    {L"MorphChannel", L"MorphChannel", kReferenceTargetSuper, MorphChannel::kClassId, L"", false,
     [](bool loading) -> ReferenceTarget* { return new MorphChannel(loading); }},
};
const HostClassRegistrar kRegistrar([] {
  for (const ClassDesc& desc : kDescs) ClassDirectory::Get().Register(&desc);
});

enum : uint16_t { kTargetChunk = 1 };

std::string FaultOfPoints(const MorphTarget& target) {
  if (target.points.size() != target.offsets.size()) return "it has not one offset for each point";
  for (size_t i = 0; i < target.points.size(); ++i) {
    if (target.points[i] < 0 || (i > 0 && target.points[i] <= target.points[i - 1])) return "its points do not rise";
    const Point3& p = target.offsets[i];
    if (!std::isfinite(p.x) || !std::isfinite(p.y) || !std::isfinite(p.z)) return "an offset is not finite";
  }
  return {};
}

/// Adds a part of a target. Points that the mesh does not have are passed over: they are the last ones.
void AddTarget(const MorphTarget& target, float part, std::vector<Point3>& points) {
  if (part == 0) return;
  for (size_t i = 0; i < target.points.size(); ++i) {
    const auto at = static_cast<size_t>(target.points[i]);
    if (at >= points.size()) return;
    points[at] += target.offsets[i] * part;
  }
}

/// The unmorphed mesh counts as a target at 0.
void AddTargets(const std::vector<MorphTarget>& targets, float weight, std::vector<Point3>& points) {
  if (targets.empty()) return;
  size_t next = 0;
  while (next + 1 < targets.size() && weight > targets[next].percent) ++next;
  const float from = next > 0 ? targets[next - 1].percent : 0;
  const float part = (weight - from) / (targets[next].percent - from);
  if (next > 0) AddTarget(targets[next - 1], 1 - part, points);
  AddTarget(targets[next], part, points);
}

}  // namespace

std::string FaultOf(const std::vector<MorphTarget>& targets) {
  float last = 0;
  for (size_t i = 0; i < targets.size(); ++i) {
    const std::string name = "morph target " + std::to_string(i) + ": ";
    if (!(targets[i].percent > last && targets[i].percent <= 100))
      return name + "its percentage does not rise, or is above 100";
    last = targets[i].percent;
    if (const std::string fault = FaultOfPoints(targets[i]); !fault.empty()) return name + fault;
  }
  if (!targets.empty() && last != 100) return "the last morph target does not stand at 100 percent";
  return {};
}

const ParamBlockDesc2& MorphChannel::BlockDesc() {
  static const ParamBlockDesc2 desc(0, L"parameters", kRows);
  return desc;
}

MorphChannel::MorphChannel(bool loading) : BlockOwner(BlockDesc(), loading) {}

WStr MorphChannel::GetName() const { return block_ ? block_->GetStr(kName) : WStr(); }
void MorphChannel::SetName(const WStr& name) {
  if (block_) block_->SetValue(kName, 0, name);
}
float MorphChannel::GetWeight(TimeValue t, Interval& valid) const {
  return block_ ? block_->GetFloat(kWeight, t, valid) : 0;
}
void MorphChannel::SetWeight(TimeValue t, float percent) {
  if (block_ && std::isfinite(percent)) block_->SetValue(kWeight, t, percent);
}

bool MorphChannel::SetTargets(std::shared_ptr<const std::vector<MorphTarget>> targets) {
  if (!targets || !FaultOf(*targets).empty()) return false;
  RecordState(this, &MorphChannel::targets_);
  targets_ = std::move(targets);
  StateRestored();
  return true;
}

void MorphChannel::StateRestored() { NotifyDependents(FOREVER, PART_GEOM); }

void MorphChannel::AddTo(TimeValue t, MeshState& state) const {
  if (!block_ || !block_->GetBool(kEnabled)) return;
  const float weight = GetWeight(t, state.valid);
  if (weight != 0 && std::isfinite(weight)) AddTargets(*targets_, weight, state.points);
}

IOResult MorphChannel::Save(ISave& save) {
  for (const MorphTarget& target : *targets_) {
    save.BeginChunk(kTargetChunk);
    save.Write(target.percent);
    WriteArray(save, target.points);
    WriteArray(save, target.offsets);
    save.EndChunk();
  }
  return save.Status();
}

IOResult MorphChannel::Load(ILoad& load) {
  const auto targets = std::make_shared<std::vector<MorphTarget>>();
  while (load.OpenChunk() == IOResult::OK) {
    if (load.CurChunkID() == kTargetChunk) {
      MorphTarget& target = targets->emplace_back();
      load.Read(target.percent);
      ReadArray(load, target.points);
      ReadArray(load, target.offsets);
    }
    load.CloseChunk();
  }
  if (load.Status() != IOResult::OK) return load.Status();
  if (const std::string fault = FaultOf(*targets); !fault.empty()) return load.Fail("a channel is wrong: " + fault);
  targets_ = targets;
  return IOResult::OK;
}

void MorphChannel::CopyStateFrom(ReferenceTarget& source, RemapDir&) {
  targets_ = static_cast<MorphChannel&>(source).targets_;
}

MorphChannel* MorpherModifier::AddChannel(const WStr& name) {
  auto* channel = new MorphChannel;
  const Ref<MorphChannel> keep(channel);
  channel->GetParamBlock()->SetValue(MorphChannel::kName, 0, name);
  const int at = NumChannels();
  if (theHold.Holding()) theHold.Put(std::make_unique<SlotRestore<MorpherModifier>>(this, at, true));
  InsertSlot(at);
  ReplaceReference(at, channel);
  NotifyDependents(FOREVER, PART_ALL, REFMSG_SUBANIM_STRUCTURE);
  return channel;
}

void MorpherModifier::ModifyMesh(TimeValue t, INode*, MeshState& state) {
  for (const MorphChannel* channel : channels_)
    if (channel) channel->AddTo(t, state);
}

ReferenceTarget* MorpherModifier::GetReference(int which) const {
  return which >= 0 && which < NumChannels() ? channels_[static_cast<size_t>(which)] : nullptr;
}

void MorpherModifier::SetReference(int which, ReferenceTarget* target) {
  if (which < 0) return;
  if (which >= NumChannels()) channels_.resize(static_cast<size_t>(which) + 1);
  channels_[static_cast<size_t>(which)] = static_cast<MorphChannel*>(target);
}

std::optional<bool> MorpherModifier::AcceptsReference(int, const ReferenceTarget& target) const {
  return dynamic_cast<const MorphChannel*>(&target) != nullptr;
}

WStr MorpherModifier::SubAnimName(int i) {
  const auto* channel = static_cast<MorphChannel*>(GetReference(i));
  return channel ? channel->GetName() : WStr();
}

void MorpherModifier::CopyStateFrom(ReferenceTarget& source, RemapDir&) {
  channels_.resize(static_cast<MorpherModifier&>(source).channels_.size());
}

}  // namespace corvanta
