// SPDX-License-Identifier: MIT
#include "plugin/fbx/format/scene_reader.h"

namespace tavrilon::fbx {

std::unique_ptr<FbxImporter> FbxImporter::Create(FbxManager& manager, std::string) {
  return std::unique_ptr<FbxImporter>(new FbxImporter(manager));
}

bool FbxImporter::Initialize(const std::string& path) {
  status_.Clear();
  return document_.Load(path) || status_.Fail(document_.GetStatus().GetErrorString());
}

bool FbxImporter::Initialize(std::vector<uint8_t> bytes, const std::string& fileName, const ReadLimits& limits) {
  status_.Clear();
  return document_.Parse(std::move(bytes), fileName, limits) || status_.Fail(document_.GetStatus().GetErrorString());
}

bool FbxImporter::Import(FbxScene& scene, const Progress& progress) {
  if (!status_.IsGood()) return false;
  return SceneReader(document_, manager_->GetIOSettings(), scene, status_, progress).Read();
}

}  // namespace tavrilon::fbx
