// SPDX-License-Identifier: MIT
#include "host/scene/skin_modifier.h"

#include <cmath>

#include "host/core/chunk_arrays.h"
#include "host/core/class_desc.h"
#include "host/core/state_restore.h"
#include "host/scene/node.h"

namespace corvanta {

namespace {

constexpr ParamRow kRows[] = {
    // id                        name           type             flags  default range     label
    {SkinModifier::kBoneLimit, L"bone_Limit", ParamType::Int, kNone, 4, {1, 64}, L"Bone Affect Limit"},
    {SkinModifier::kEnabled, L"enabled", ParamType::Bool, kNone, true, {}, L"Enabled"},
};

const ClassDesc kDesc = {
    L"Skin", L"Skin", kModifierSuper, SkinModifier::kClassId, L"Standard", true, [](bool loading) -> ReferenceTarget* {
      return new SkinModifier(loading);
    }};
const HostClassRegistrar kRegistrar([] { ClassDirectory::Get().Register(&kDesc); });

enum : uint16_t { kBindChunk = 1, kWeightsChunk = 2 };

bool IsFinite(const Matrix3& m) {
  for (const Point3& row : m.row)
    if (!std::isfinite(row.x) || !std::isfinite(row.y) || !std::isfinite(row.z)) return false;
  return true;
}

void WriteMatrix(ISave& save, const Matrix3& m) {
  for (const Point3& row : m.row) save.Write(row);
}

Matrix3 ReadMatrix(ILoad& load) {
  Matrix3 m;
  for (Point3& row : m.row) load.Read(row);
  if (!IsFinite(m)) load.Fail("a bind matrix of a skin is not finite");
  return m;
}

}  // namespace

std::string FaultOf(const SkinWeights& weights, int numBones) {
  const std::vector<int>& starts = weights.starts;
  if (starts.empty() || starts[0] != 0) return "the weights of the first point do not start at 0";
  for (size_t i = 0; i + 1 < starts.size(); ++i)
    if (starts[i + 1] < starts[i]) return "the weights of point " + std::to_string(i) + " end before they start";
  if (static_cast<size_t>(starts.back()) != weights.weights.size())
    return "the points have " + std::to_string(starts.back()) + " weights, and there are " +
           std::to_string(weights.weights.size());
  for (int i = 0; i < weights.NumPoints(); ++i) {
    for (const SkinWeight& w : weights.Of(i)) {
      if (w.bone < 0 || w.bone >= numBones)
        return "point " + std::to_string(i) + " follows bone " + std::to_string(w.bone) + " of " +
               std::to_string(numBones);
      if (!std::isfinite(w.weight) || w.weight < 0)
        return "point " + std::to_string(i) + " has a weight that is negative or not finite";
    }
  }
  return {};
}

const ParamBlockDesc2& SkinModifier::BlockDesc() {
  static const ParamBlockDesc2 desc(0, L"parameters", kRows);
  return desc;
}

SkinModifier::SkinModifier(bool loading) {
  if (!loading) BindReference(0, new ParamBlock2(BlockDesc()));
}

int SkinModifier::AddBone(INode* bone, const Matrix3& bind) {
  if (!bone || !IsFinite(bind) || FindReference(bone) != kNotFound) return -1;
  if (bone->TestForLoop(this)) return -1;
  const int at = NumRefs();
  RecordState(this, &SkinModifier::state_);
  if (theHold.Holding()) theHold.Put(std::make_unique<SlotRestore<SkinModifier>>(this, at, true));
  InsertSlot(at);
  state_.bind.push_back(bind);
  toBones_.clear();
  ReplaceReference(at, bone);
  NotifyDependents(FOREVER, PART_GEOM);
  return at - 1;
}

void SkinModifier::SetMeshBindTM(const Matrix3& tm) {
  if (!IsFinite(tm)) return;
  RecordState(this, &SkinModifier::state_);
  state_.meshBind = tm;
  StateRestored();
}

bool SkinModifier::SetWeights(std::shared_ptr<const SkinWeights> weights) {
  if (!weights || !FaultOf(*weights, NumBones()).empty()) return false;
  RecordState(this, &SkinModifier::state_);
  state_.weights = std::move(weights);
  StateRestored();
  return true;
}

void SkinModifier::StateRestored() {
  toBones_.clear();
  NotifyDependents(FOREVER, PART_GEOM);
}

// A bone is heard when it moves, and then the mesh's points change, not its node's place. Its name, colour, selection
// and object do not matter here.
RefResult SkinModifier::NotifyRefChanged(const Interval&, ReferenceTarget* target, PartID& part, RefMessage message,
                                         bool) {
  if (target == block_) return REF_SUCCEED;
  if (message != REFMSG_CHANGE || !(part & PART_TM)) return REF_STOP;
  part = PART_GEOM;
  return REF_SUCCEED;
}

ReferenceTarget* SkinModifier::GetReference(int which) const {
  if (which == 0) return block_;
  return which > 0 && which <= NumBones() ? bones_[static_cast<size_t>(which - 1)] : nullptr;
}

void SkinModifier::SetReference(int which, ReferenceTarget* target) {
  if (which == 0) block_ = static_cast<ParamBlock2*>(target);
  if (which > 0 && which <= NumBones()) bones_[static_cast<size_t>(which - 1)] = target ? target->AsNode() : nullptr;
}

std::optional<bool> SkinModifier::AcceptsReference(int which, const ReferenceTarget& target) const {
  if (which == 0) return std::nullopt;
  return dynamic_cast<const INode*>(&target) != nullptr;
}

void SkinModifier::CopyStateFrom(ReferenceTarget& source, RemapDir&) {
  const auto& from = static_cast<SkinModifier&>(source);
  state_ = from.state_;
  bones_.resize(from.bones_.size());
  toBones_.clear();
}

IOResult SkinModifier::Save(ISave& save) {
  save.BeginChunk(kBindChunk);
  WriteMatrix(save, state_.meshBind);
  save.Write(static_cast<uint32_t>(state_.bind.size()));
  for (const Matrix3& bind : state_.bind) WriteMatrix(save, bind);
  save.EndChunk();
  save.BeginChunk(kWeightsChunk);
  WriteArray(save, state_.weights->starts);
  WriteArray(save, state_.weights->weights);
  save.EndChunk();
  return save.Status();
}

IOResult SkinModifier::Load(ILoad& load) {
  const auto weights = std::make_shared<SkinWeights>();
  while (load.OpenChunk() == IOResult::OK) {
    if (load.CurChunkID() == kBindChunk) {
      uint32_t count = 0;
      state_.meshBind = ReadMatrix(load);
      load.ReadCount(count, 4 * sizeof(Point3));
      state_.bind.clear();
      for (uint32_t i = 0; i < count; ++i) state_.bind.push_back(ReadMatrix(load));
    } else if (load.CurChunkID() == kWeightsChunk) {
      ReadArray(load, weights->starts);
      ReadArray(load, weights->weights);
    }
    load.CloseChunk();
  }
  if (load.Status() != IOResult::OK) return load.Status();
  if (const std::string fault = FaultOf(*weights, static_cast<int>(state_.bind.size())); !fault.empty())
    return load.Fail("the skin is wrong: " + fault);
  state_.weights = weights;
  bones_.resize(state_.bind.size());
  toBones_.clear();
  return IOResult::OK;
}

// Undo takes back the bones and their bind matrices one after the other, and may be looked at in between.
int SkinModifier::MakePalette(TimeValue t, INode* node, Interval& valid) {
  const size_t count = std::min(bones_.size(), state_.bind.size());
  palette_.resize(count);
  Matrix3 fromWorld;
  if (node) {
    node->GetNodeTM(t, valid);
    fromWorld = Inverse(node->GetObjectTM(t));
  }
  for (size_t i = 0; i < count; ++i)
    palette_[i] =
        bones_[i] ? state_.meshBind * Inverse(state_.bind[i]) * bones_[i]->GetNodeTM(t, valid) * fromWorld : Matrix3();
  return static_cast<int>(count);
}

void SkinModifier::ModifyMesh(TimeValue t, INode* node, MeshState& state) {
  if (!block_ || !block_->GetBool(kEnabled)) return;
  const int bones = MakePalette(t, node, state.valid);
  const SkinWeights& weights = *state_.weights;
  const int count = std::min(weights.NumPoints(), static_cast<int>(state.points.size()));
  for (int i = 0; i < count; ++i) {
    Point3& p = state.points[static_cast<size_t>(i)];
    Point3 moved;
    float sum = 0;
    for (const SkinWeight& w : weights.Of(i)) {
      if (w.bone >= bones) continue;
      moved += (p * palette_[static_cast<size_t>(w.bone)]) * w.weight;
      sum += w.weight;
    }
    p = sum > 1 ? moved / sum : moved + p * (1 - sum);
  }
}

}  // namespace corvanta
