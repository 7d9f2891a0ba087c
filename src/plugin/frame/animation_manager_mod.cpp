// SPDX-License-Identifier: MIT
#include "plugin/frame/animation_manager_mod.h"

namespace tavrilon {

using namespace corvanta;
using Mod = AnimationManagerMod;

namespace {

// The axes are the node's own: 0 X, 1 Y, 2 Z. The mirror node is watched, since two nodes mirror each other.
const ParamRow kRows[] = {
    // id                script name         type                flags  default  range   label
    {Mod::kTags, L"tags", ParamType::String, kNone, L"", {}, L"Tags"},
    {Mod::kRoot, L"root", ParamType::Bool, kNone, false, {}, L"Root"},
    {Mod::kUseMirrorPos, L"use_mirror_pos", ParamType::Bool, kNone, false, {}, L"Mirror Position"},
    {Mod::kUseMirrorRot, L"use_mirror_rot", ParamType::Bool, kNone, false, {}, L"Mirror Rotation"},
    {Mod::kMirrorPosAxis, L"mirror_pos_axis", ParamType::Int, kNone, 0, {0, 2}, L"Position Axis"},
    {Mod::kMirrorRotAxis, L"mirror_rot_axis", ParamType::Int, kNone, 0, {0, 2}, L"Rotation Axis"},
    {Mod::kMirrorNode, L"mirror_node", ParamType::Node, kWeak, {}, {}, L"Mirror Node"},
    {Mod::kUseMirrorNode, L"use_mirror_node", ParamType::Bool, kNone, true, {}, L"Use Mirror Node"},
    {Mod::kGroup, L"group", ParamType::String, kNone, L"", {}, L"Group"},
    {Mod::kLayerStack, L"", ParamType::RefTarg, kNone, {}, {}, L"", -1},
    {Mod::kLocalWeights, L"", ParamType::RefTarg, kNone, {}, {}, L"", -1},
};

}  // namespace

const ParamBlockDesc2& AnimationManagerMod::BlockDesc() {
  static const ParamBlockDesc2 desc(0, L"params", kRows);
  return desc;
}

AnimationManagerMod::AnimationManagerMod(bool loading) : BlockOwner(BlockDesc(), loading) {}

ReferenceTarget* CreateAnimationManagerMod(bool loading) { return new AnimationManagerMod(loading); }

}  // namespace tavrilon
