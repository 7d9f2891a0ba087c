// SPDX-License-Identifier: MIT
#include "plugin/fbx/importer/scene_building.h"

#include <algorithm>

#include "host/core/hold.h"
#include "host/scene/core_interface.h"
#include "host/scene/mesh_object.h"
#include "plugin/fbx/importer/conversion.h"
#include "plugin/fbx/importer/material_building.h"
#include "plugin/fbx/importer/object_building.h"
#include "plugin/fbx/importer/track_setting.h"

namespace tavrilon::fbx_import {

using namespace corvanta;

namespace {

/// Nodes between two looks at whether the user wants to stop.
constexpr int kNodesPerLook = 64;
constexpr wchar_t kNotCreated[] = L"Could not create the imported Corvanta scene objects.";

/// Undo of frame rate and range.
class TimeRestore final : public RestoreObj {
 public:
  TimeRestore() : rate_(GetCOREInterface()->GetFrameRate()), range_(GetCOREInterface()->GetAnimRange()) {}
  void Restore(bool) override { Swap(); }
  void Redo() override { Swap(); }

 private:
  void Swap() {
    Interface& host = *GetCOREInterface();
    const int rate = host.GetFrameRate();
    const Interval range = host.GetAnimRange();
    host.SetFrameRate(rate_);
    host.SetAnimRange(range_);
    rate_ = rate;
    range_ = range;
  }
  int rate_;
  Interval range_;
};

void SetTimes(const PlannedTime& time, bool isEmpty) {
  if (!time.HasSpan()) return;
  Interface& host = *GetCOREInterface();
  if (theHold.Holding()) theHold.Put(std::make_unique<TimeRestore>());
  const Interval span = time.Span(), present = host.GetAnimRange();
  if (isEmpty) {
    host.SetFrameRate(time.frameRate);
    host.SetAnimRange(span);
  } else {
    host.SetAnimRange({std::min(present.start, span.start), std::max(present.end, span.end)});
  }
}

class SceneBuilder {
 public:
  explicit SceneBuilder(const ImportPlan& plan) : plan_(plan), meshes_(plan.meshes.size()) {}

  WStr Build() {
    const bool wasEmpty = GetScene().Nodes().empty();
    {
      const HoldSuspend noUndo;
      materials_ = BuildMaterials(plan_.materials);
    }
    for (size_t i = 0; i < plan_.nodes.size(); ++i) {
      if (i % kNodesPerLook == 0 && !ShowProgress(kImportTitle, 0.75 + 0.25 * Share(i))) return kExchangeStopped;
      if (!MakeNode(plan_.nodes[i])) return kNotCreated;
    }
    for (size_t i = 0; i < plan_.nodes.size(); ++i)
      if (!Deform(i)) return kNotCreated;
    SetTimes(plan_.time, wasEmpty);
    GetScene().ClearNodeSelection();
    GetScene().SelectNodeTab(nodes_, true);
    return {};
  }

 private:
  double Share(size_t i) const { return static_cast<double>(i) / static_cast<double>(plan_.nodes.size()); }

  Ref<Object> ObjectOf(const PlannedNode& planned) {
    if (planned.kind != PlannedKind::Mesh || planned.mesh < 0) return MakeObject(planned);
    Ref<MeshObject>& mesh = meshes_[static_cast<size_t>(planned.mesh)];
    if (!mesh) {
      mesh = new MeshObject;
      if (!mesh->SetMesh(plan_.meshes[static_cast<size_t>(planned.mesh)])) return nullptr;
    }
    return mesh.Get();
  }

  // The record of a new node brings back whatever it carries, so the rest needs no records of its own.
  bool MakeNode(const PlannedNode& planned) {
    Ref<Object> object;
    {
      const HoldSuspend noUndo;
      object = ObjectOf(planned);
    }
    if (!object) return false;
    INode* node = GetScene().CreateObjectNode(object.Get());
    if (!node) return false;
    nodes_.push_back(node);
    const HoldSuspend noUndo;
    if (planned.parent >= 0 && !nodes_[static_cast<size_t>(planned.parent)]->AttachChild(node, false)) return false;
    SetState(*node, planned);
    const Ref<Control> transform = MakeTransform(planned.transform);
    return transform && node->SetTMController(transform.Get());
  }

  void SetState(INode& node, const PlannedNode& planned) const {
    node.SetName(planned.name);
    if (planned.wireColour) node.SetWireColor(*planned.wireColour);
    node.Hide(!planned.visible);
    node.SetObjOffsetPos(planned.offsetPos);
    node.SetObjOffsetRot(planned.offsetRot);
    node.SetObjOffsetScale({planned.offsetScale, {}});
    for (const auto& [key, value] : planned.userProps) node.SetUserPropString(key, value);
    if (planned.materials.empty()) return;
    const Ref<Mtl> material = MaterialOf(planned.materials, materials_, planned.name);
    node.SetMtl(material.Get());
  }

  /// From below: blend shapes, skin, subdivision.
  bool Deform(size_t i) const {
    const PlannedNode& planned = plan_.nodes[i];
    const HoldSuspend noUndo;
    if (!planned.morph.empty()) {
      const Ref<Modifier> morpher = MakeMorpher(planned.morph);
      if (!morpher) return false;
      nodes_[i]->AddModifier(morpher.Get());
    }
    if (planned.skin) {
      const Ref<Modifier> skin = MakeSkin(*planned.skin, nodes_);
      if (!skin) return false;
      nodes_[i]->AddModifier(skin.Get());
    }
    if (planned.subdivisionLevels > 0) nodes_[i]->AddModifier(MakeSubdivision(planned.subdivisionLevels).Get());
    return true;
  }

  const ImportPlan& plan_;
  std::vector<Ref<MeshObject>> meshes_;
  std::vector<Ref<Mtl>> materials_;
  std::vector<INode*> nodes_;
};

/// Cancels unless it was told to accept: also when an exception passes.
class ImportStep {
 public:
  ImportStep() {
    theHold.Begin();
    SuspendAnimate();
  }
  ~ImportStep() {
    ResumeAnimate();
    accepted_ ? theHold.Accept(L"FBX Import") : theHold.Cancel();
  }
  ImportStep(const ImportStep&) = delete;
  void Accept() { accepted_ = true; }

 private:
  bool accepted_ = false;
};

}  // namespace

WStr BuildScene(const ImportPlan& plan) {
  const HoldResume recorded;
  ImportStep step;
  const WStr error = SceneBuilder(plan).Build();
  if (error.empty()) step.Accept();
  return error;
}

}  // namespace tavrilon::fbx_import
