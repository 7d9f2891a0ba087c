// SPDX-License-Identifier: MIT
#include "plugin/controllers/mirror_pair.h"

#include "host/scene/core_interface.h"
#include "plugin/controllers/rig_control.h"
#include "plugin/frame/animation_manager_mod.h"
#include "plugin/frame/find.h"

namespace tavrilon {

using namespace corvanta;
using Mod = AnimationManagerMod;

namespace {

bool mirrorOn = true;

bool IsRightSide(const WStr& tags) {
  return tags.size() >= 2 && (tags[0] == L'r' || tags[0] == L'R') && tags[1] == L'_';
}

}  // namespace

bool MirrorPairsOn() { return mirrorOn; }

MirrorPairOff::MirrorPairOff() : was_(mirrorOn) { mirrorOn = false; }
MirrorPairOff::~MirrorPairOff() { mirrorOn = was_; }

MirrorAxes MirrorAxesOf(const Control* control, TimeValue t) {
  MirrorAxes axes;
  if (!mirrorOn || GetCOREInterface()->GetRefCoordSys() != RefCoordSys::Local) return axes;
  const INode* node = FindOwnerNode(control);
  if (!node || !node->Selected()) return axes;
  AnimationManagerMod* manager = FindManagerMod(node);
  const ParamBlock2* block = manager ? manager->GetParamBlock() : nullptr;
  if (!block) return axes;
  const INode* mirror = block->GetINode(Mod::kMirrorNode, t);
  if (!mirror || !mirror->Selected() || !IsRightSide(block->GetStr(Mod::kTags, t))) return axes;
  if (block->GetBool(Mod::kUseMirrorPos, t)) axes.position = block->GetInt(Mod::kMirrorPosAxis, t);
  if (block->GetBool(Mod::kUseMirrorRot, t)) axes.rotation = block->GetInt(Mod::kMirrorRotAxis, t);
  return axes;
}

void FlipMove(Point3& p, int axis) {
  if (axis >= 0 && axis < 3) p[axis] = -p[axis];
}

void FlipRotation(Point3& rotationAxis, int axis) {
  if (axis < 0 || axis > 2) return;
  for (int i = 0; i < 3; ++i)
    if (i != axis) rotationAxis[i] = -rotationAxis[i];
}

}  // namespace tavrilon
