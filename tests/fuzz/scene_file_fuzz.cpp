// SPDX-License-Identifier: MIT
// The first byte tells whether checksums count; without them the search gets behind them. Any bytes are refused, with
// the scene on show left alone, or give a scene that can be evaluated, saved, and read again as it is.
#include <cstdint>
#include <cstdlib>

#include "host/io/scene_file.h"
#include "plugin/frame/class_table.h"
#include "support/scene_samples.h"

using namespace corvanta;

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

void Touch(Scene& scene) {
  for (const Ref<INode>& node : scene.Nodes()) {
    node->GetNodeTM(100);
    node->GetWorldBoundBox(100);
    node->IsHidden();
  }
}

std::vector<uint8_t> Saved() {
  std::vector<uint8_t> bytes;
  Require(SaveSceneToBytes(GetScene(), &bytes).empty());
  return bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  scene_samples::RegisterSampleClasses();
  tavrilon::RegisterTavrilonClasses();
  if (size == 0) return 0;
  const Scene* before = &GetScene();
  const WStr error = LoadSceneFromBytes({data + 1, size - 1}, (data[0] & 1) != 0);
  if (!error.empty()) {
    Require(&GetScene() == before);
    return 0;
  }
  Touch(GetScene());
  const std::vector<uint8_t> first = Saved();
  Require(LoadSceneFromBytes(first).empty());
  Require(Saved() == first);
  Touch(GetScene());
  return 0;
}
