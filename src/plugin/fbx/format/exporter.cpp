// SPDX-License-Identifier: MIT
#include "plugin/fbx/format/scene_check.h"
#include "plugin/fbx/format/scene_writer.h"
#include "plugin/fbx/format/whole_file.h"

namespace tavrilon::fbx {

namespace {

/// By the registry's numbers of formats.
constexpr int kVersions[] = {7400, 7500};

}  // namespace

std::unique_ptr<FbxManager> FbxManager::Create() { return std::make_unique<FbxManager>(); }

std::unique_ptr<FbxExporter> FbxExporter::Create(FbxManager& manager, std::string) {
  return std::unique_ptr<FbxExporter>(new FbxExporter(manager));
}

bool FbxExporter::Initialize(const std::string& path, int format) {
  status_.Clear();
  path_ = path;
  format_ = format;
  if (path.empty()) return status_.Fail("A file to write has no name.");
  if (format < 0 || format >= static_cast<int>(std::size(kVersions))) {
    return status_.Fail(path + ": there is no format " + std::to_string(format) + " to write");
  }
  return true;
}

std::vector<uint8_t> FbxExporter::Write(const FbxScene& scene) {
  std::vector<uint8_t> bytes;
  if (!status_.IsGood()) return bytes;
  const std::string start = path_.empty() ? "" : path_ + ": ";
  FbxStatus found;
  if (!CheckScene(scene, found)) {
    status_.Fail(start + found.GetErrorString());
    return bytes;
  }
  bytes = SceneWriter(scene, manager_->GetIOSettings(), kVersions[format_]).Write();
  if (bytes.empty()) status_.Fail(start + "the scene is too large for this format; take the one for large files");
  return bytes;
}

bool FbxExporter::Export(const FbxScene& scene) {
  if (path_.empty()) status_.Fail("A file to write has no name.");
  const std::vector<uint8_t> bytes = Write(scene);
  return status_.IsGood() && WriteWholeFile(path_, bytes, status_);
}

}  // namespace tavrilon::fbx
