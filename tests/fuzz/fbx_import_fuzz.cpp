// SPDX-License-Identifier: MIT
// Any bytes imported into a scene that has something in it: refused, with the scene's saved bytes as they were, or
// taken in as a scene that can be evaluated, saved and read again, and that undo brings back to what it was. The first
// byte chooses options.
#include <cstdint>
#include <cstdlib>

#include "host/core/hold.h"
#include "host/io/scene_file.h"
#include "host/scene/mesh_object.h"
#include "host/scene/scene.h"
#include "plugin/fbx/fbx_import.h"
#include "plugin/frame/class_table.h"

using namespace corvanta;
using namespace tavrilon;

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

std::vector<uint8_t> Saved() {
  std::vector<uint8_t> bytes;
  Require(SaveSceneToBytes(GetScene(), &bytes).empty());
  return bytes;
}

void Touch() {
  for (const Ref<INode>& node : GetScene().Nodes()) {
    node->GetNodeTM(100);
    EvaluatedMesh(node.Get(), 100);
    node->GetWorldBoundBox(0);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  RegisterHostClasses();
  RegisterTavrilonClasses();
  if (size == 0) return 0;
  ReplaceScene(std::make_unique<Scene>());
  if (data[0] & 1) GetScene().SelectNode(GetScene().CreateObjectNode(nullptr));
  theHold.Flush();
  const std::vector<uint8_t> before = Saved();
  FbxImportOptions options;
  options.animation = (data[0] & 2) == 0;
  options.skeletalMesh = (data[0] & 4) == 0;
  // Large counts are covered by the unit tests; here they would only be slow.
  options.limits = {200, 50, 2000};
  ExchangeReport report;
  if (!ImportFbx(std::vector<uint8_t>(data + 1, data + size), L"fuzz.fbx", options, report)) {
    Require(!report.error.empty() && report.error != L"Unknown exception");
    Require(Saved() == before && theHold.NumUndo() == 0);
    return 0;
  }
  Touch();
  const std::vector<uint8_t> after = Saved();
  Require(theHold.Undo() && Saved() == before);
  Require(theHold.Redo() && Saved() == after);
  Require(LoadSceneFromBytes(after).empty() && Saved() == after);
  return 0;
}
