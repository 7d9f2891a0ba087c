// SPDX-License-Identifier: MIT
// FBX files into the host's scene and out again.
#pragma once

#include <functional>
#include <vector>

#include "host/io/exchange.h"
#include "host/scene/scene.h"
#include "plugin/fbx/fbx_export.h"
#include "plugin/fbx/fbx_import.h"
#include "plugin/fbx/format/scene.h"

namespace tavrilon::fbx {

/// The whole file; a failure of the test, and nothing, where it cannot be read.
std::vector<uint8_t> FileBytes(const std::string& path);
/// As the format library writes the scene: format 0 is version 7400, format 1 is 7500.
std::vector<uint8_t> WrittenBytes(const FbxScene& scene, int format = 0);

/// How the host's scene stands while a file passes through it.
struct HostStage {
  double centimetres = 1;
  corvanta::UpAxis upAxis = corvanta::UpAxis::Z;
};

/// The axes of the files that come out.
inline FbxAxisSystem AxesOf(const HostStage& stage) {
  return stage.upAxis == corvanta::UpAxis::Y ? FbxAxisSystem::YUp() : FbxAxisSystem::ZUp();
}

/// An empty scene, a file into it, all of its nodes out again.
class HostTrip {
 public:
  explicit HostTrip(const HostStage& stage = {});
  bool Import(std::vector<uint8_t> bytes, const FbxImportOptions& options = {});
  /// All nodes, or those that are wanted; `bytes` is the file.
  bool Export(const std::function<bool(corvanta::INode&)>& isWanted = {}, const FbxExportOptions& options = {});
  /// Both; a failure of the test where one of them fails.
  bool Run(std::vector<uint8_t> file, const FbxImportOptions& options = {});
  /// The error and the log of both ways, for messages.
  std::string Log() const;

  std::vector<uint8_t> bytes;
  corvanta::ExchangeReport imported, exported;
};

}  // namespace tavrilon::fbx
