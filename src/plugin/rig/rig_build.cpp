// SPDX-License-Identifier: MIT
// Building a rig from its template, and taking it away again.
#include <algorithm>
#include <exception>

#include "host/scene/core_interface.h"
#include "plugin/rig/builder.h"
#include "plugin/rig/rig_system.h"

namespace tavrilon {

using namespace corvanta;

namespace {

/// No redraw, no animate mode and no gimbal coordinates while a rig is built.
class BuildSurroundings {
 public:
  BuildSurroundings() : core_(GetCOREInterface()), system_(core_->GetRefCoordSys()) {
    core_->DisableSceneRedraw();
    SuspendAnimate();
    if (system_ == RefCoordSys::Gimbal) core_->SetRefCoordSys(RefCoordSys::World);
  }
  ~BuildSurroundings() {
    core_->SetRefCoordSys(system_);
    ResumeAnimate();
    if (core_->GetSubObjectLevel() > 0) core_->SetSubObjectLevel(0);
    core_->EnableSceneRedraw();
    core_->RedrawViews(core_->GetTime());
  }
  BuildSurroundings(const BuildSurroundings&) = delete;

 private:
  Interface* core_;
  RefCoordSys system_;
};

}  // namespace

void RigSystem::OwnNode(INode* node) {
  if (node && block_) block_->Append(rig_param::kNodes, static_cast<ReferenceTarget*>(node));
}

std::vector<INode*> RigSystem::OwnedNodes() const {
  std::vector<INode*> nodes;
  for (int i = 0; block_ && i < block_->Count(rig_param::kNodes); ++i) {
    INode* node = block_->GetINode(rig_param::kNodes, 0, i);
    if (node && std::find(nodes.begin(), nodes.end(), node) == nodes.end()) nodes.push_back(node);
  }
  return nodes;
}

INode* RigSystem::ObjectNode() const {
  std::vector<const ReferenceTarget*> carriers = {this};
  for (size_t i = 0; i < carriers.size(); ++i)  // through modifiers
    for (ReferenceMaker* maker : carriers[i]->Dependents()) {
      ReferenceTarget* target = maker->AsTarget();
      if (target && target->AsNode()) return target->AsNode();
      if (dynamic_cast<DerivedObject*>(target)) carriers.push_back(target);
    }
  return nullptr;
}

// An error stops the build; what was made stays with the rig, which counts as built, so that it can be reset.
void RigSystem::RunBuild() {
  buildError_.clear();
  buildNotes_.clear();
  panel_ = {};
  try {
    RigBuilder builder(*this);
    builder.Prepare();
    builder.Build();
    builder.FinishComponents();
    for (const RigExtra& extra : Extras())
      for (int side : {kSideRight, kSideLeft, kSideCenter}) {
        const bool both = extra.side == kSideBoth && side != kSideCenter;
        if (extra.side != side && !both) continue;
        builder.BuildExtra(extra, side);
        builder.FinishComponents();
      }
    builder.Finish();
    buildNotes_ = builder.Notes();
    panel_ = builder.Panel();
  } catch (const std::exception& e) {
    buildError_ = L"The rig \"" + RigName() + L"\" is not complete: " + FromUtf8(e.what());
  }
}

void RigSystem::CreateRig() {
  if (!IsActive()) return;
  BuildSurroundings surroundings;
  theHold.Begin();
  block_->RecordTab(rig_param::kNodes);
  const bool suspend = !theHold.Suspended();
  if (suspend) theHold.Suspend();
  RunBuild();
  if (suspend) theHold.Resume();
  block_->SetValue(rig_param::kActive, 0, false);
  theHold.Accept(L"Create Rig");
}

void RigSystem::ResetRig() {
  if (!block_ || IsActive()) return;
  theHold.Begin();
  Tab<INode*> nodes;
  for (INode* node : OwnedNodes()) nodes.Append(node);
  GetCOREInterface()->DeleteNodes(nodes);
  block_->SetCount(rig_param::kNodes, 0);
  block_->SetValue(rig_param::kActive, 0, true);
  theHold.Accept(L"Create Rig");
}

}  // namespace tavrilon
