// SPDX-License-Identifier: MIT
#include "plugin/fbx/importer/object_building.h"

#include <algorithm>

#include "host/scene/bone_object.h"
#include "host/scene/point_helper.h"
#include "host/scene/subdivision_modifier.h"
#include "plugin/fbx/importer/track_setting.h"

namespace tavrilon::fbx_import {

using namespace corvanta;

namespace {

Ref<Object> MakeBone(float length, float width) {
  const Ref<BoneObject> bone(new BoneObject);
  ParamBlock2& block = *bone->GetParamBlock();
  block.SetValue(BoneObject::kLength, 0, length);
  block.SetValue(BoneObject::kWidth, 0, width);
  block.SetValue(BoneObject::kHeight, 0, width);
  return bone.Get();
}

bool AddChannel(MorpherModifier& morpher, const PlannedMorphChannel& planned) {
  MorphChannel* channel = morpher.AddChannel(planned.name);
  if (!channel || !channel->SetTargets(planned.targets)) return false;
  channel->SetWeight(0, planned.weight.value);
  if (planned.weight.keys.empty()) return true;
  const Ref<Control> track = MakeFloatTrack(planned.weight);
  return track && channel->GetParamBlock()->SetController(MorphChannel::kWeight, track.Get());
}

}  // namespace

Ref<Object> MakeObject(const PlannedNode& planned) {
  if (planned.kind == PlannedKind::Bone) return MakeBone(planned.boneLength, planned.boneWidth);
  return new PointHelper;
}

Ref<Modifier> MakeMorpher(const std::vector<PlannedMorphChannel>& channels) {
  const Ref<MorpherModifier> morpher(new MorpherModifier);
  for (const PlannedMorphChannel& channel : channels)
    if (!AddChannel(*morpher, channel)) return nullptr;
  return morpher.Get();
}

Ref<Modifier> MakeSkin(const PlannedSkin& planned, const std::vector<INode*>& nodes) {
  const Ref<SkinModifier> skin(new SkinModifier);
  for (size_t i = 0; i < planned.bones.size(); ++i) {
    const PlannedBone& bone = planned.bones[i];
    if (skin->AddBone(nodes[static_cast<size_t>(bone.node)], bone.bind) != static_cast<int>(i)) return nullptr;
  }
  skin->SetMeshBindTM(planned.meshBind);
  ParamBlock2& block = *skin->GetParamBlock();
  block.SetValue(SkinModifier::kBoneLimit, 0, std::max(block.GetInt(SkinModifier::kBoneLimit), planned.boneLimit));
  return skin->SetWeights(planned.weights) ? skin.Get() : nullptr;
}

Ref<Modifier> MakeSubdivision(int levels) {
  const Ref<SubdivisionModifier> subdivision(new SubdivisionModifier);
  subdivision->GetParamBlock()->SetValue(SubdivisionModifier::kLevels, 0, levels);
  return subdivision.Get();
}

}  // namespace tavrilon::fbx_import
