// SPDX-License-Identifier: MIT
// The selector's part of the core: its mesh, the selected faces, and their place in files.
#include <utility>

#include "host/scene/node.h"
#include "host/view/hit_test.h"
#include "plugin/shapes/control_core.h"
#include "plugin/shapes/control_params.h"

namespace tavrilon {

using namespace corvanta;

namespace {
constexpr uint16_t kFaceSelChunk = 0x0100;
}

INode* ControlCore::SelectorNode() const {
  return block && Flag(kSelectorActive) ? block->GetINode(kSelectorNode) : nullptr;
}

bool ControlCore::HasSelector() const { return FindMeshSource(SelectorNode()) != nullptr; }

WStr ControlCore::SelectorStatus() const {
  INode* node = block ? block->GetINode(kSelectorNode) : nullptr;
  if (!node) return L"Pick a mesh as the selector node";
  if (!FindMeshSource(node)) return L"\"" + node->GetName() + L"\" has no mesh: pick a node with faces";
  return PolygonCountText(faceSel_.NumberSet());
}

ControlCore::Selector& ControlCore::RefreshSelector(TimeValue t) {
  if (selector_.valid.Contains(t)) return selector_;
  selector_ = {FOREVER, {}, {}};
  INode* node = SelectorNode();
  if (SelectorMeshSource* source = FindMeshSource(node)) {
    source->ReadMesh(t, node, selector_.mesh, selector_.valid);
    PushAlongNormals(selector_.mesh, block->GetFloat(kSelectorPushValue));
  }
  for (const bool selected : {false, true}) selector_.sets[selected] = FacesWhere(selector_.mesh, faceSel_, selected);
  return selector_;
}

void ControlCore::RestoreFaceSel(BitArray selection) {
  faceSel_ = std::move(selection);
  for (const bool selected : {false, true}) selector_.sets[selected] = FacesWhere(selector_.mesh, faceSel_, selected);
}

void ControlCore::SetFaceSel(BitArray selection) {
  if (theHold.Holding()) theHold.Put(std::make_unique<CSSelectorFSelRestore>(owner_, *this));
  RestoreFaceSel(std::move(selection));
  owner_.NotifyDependents(FOREVER, PART_GEOM, REFMSG_CHANGE);
}

void ControlCore::SelectFaces(std::span<const HitRecord> hits, bool selected, bool all, bool invert) {
  BitArray selection = faceSel_;
  for (const HitRecord& hit : hits.first(all ? hits.size() : std::min<size_t>(hits.size(), 1))) {
    if (hit.subIndex != kUnselectedFacePart && hit.subIndex != kSelectedFacePart) continue;
    const std::vector<int>& numbers = selector_.sets[hit.subIndex == kSelectedFacePart].numbers;
    if (hit.face < 0 || hit.face >= static_cast<int>(numbers.size())) continue;
    const int face = numbers[static_cast<size_t>(hit.face)];
    selection.Set(face, invert ? !selection.Get(face) : selected);
  }
  SetFaceSel(std::move(selection));
}

void ControlCore::SelectAllFaces(bool selected) {
  BitArray selection(static_cast<int>(RefreshSelector(0).mesh.faces.size()));
  selection.SetAll(selected);
  SetFaceSel(std::move(selection));
}

void ControlCore::InvertFaces() {
  BitArray selection = faceSel_;
  selection.SetCount(static_cast<int>(RefreshSelector(0).mesh.faces.size()));
  selection.Invert();
  SetFaceSel(std::move(selection));
}

IOResult ControlCore::Save(ISave& save) const {
  save.BeginChunk(kFaceSelChunk);
  save.Write(static_cast<uint32_t>(faceSel_.Count()));
  for (const uint64_t word : faceSel_.Words()) save.Write(word);
  save.EndChunk();
  return IOResult::OK;
}

IOResult ControlCore::Load(ILoad& load) {
  while (load.OpenChunk() == IOResult::OK) {
    if (load.CurChunkID() == kFaceSelChunk) {
      uint32_t count = 0;
      load.Read(count);
      std::vector<uint64_t> words(load.Remaining() / sizeof(uint64_t));
      for (uint64_t& word : words) load.Read(word);
      if ((uint64_t{count} + 63) / 64 != words.size() || count > 0x7FFFFFFF)
        load.Fail("a control's face selection does not have as many bits as it tells");
      else
        RestoreFaceSel([&] {
          BitArray bits;
          bits.Assign(static_cast<int>(count), std::move(words));
          return bits;
        }());
    }
    load.CloseChunk();
  }
  return load.Status();
}

}  // namespace tavrilon
