// SPDX-License-Identifier: MIT
// Files in and out: the manager with its settings, the importer and the exporter.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "plugin/fbx/format/document.h"
#include "plugin/fbx/format/scene.h"

namespace tavrilon::fbx {

/// Switches by path, "Import|AdvOptGrp|FileFormat|Fbx|Animation". What was never set is on.
class FbxIOSettings {
 public:
  void SetBoolProp(const std::string& path, bool on) { props_[path] = on; }
  bool GetBoolProp(const std::string& path, bool otherwise = true) const {
    const auto found = props_.find(path);
    return found == props_.end() ? otherwise : found->second;
  }

 private:
  std::map<std::string, bool> props_;
};

/// The file formats that can be written.
class FbxIOPluginRegistry {
 public:
  /// Binary, version 7400.
  int GetNativeWriterFormat() const { return 0; }
  /// Binary, version 7500, for files over 4 GiB.
  int GetLargeWriterFormat() const { return 1; }
};

class FbxManager {
 public:
  /// Null when memory is short.
  static std::unique_ptr<FbxManager> Create();
  FbxIOSettings& GetIOSettings() { return settings_; }
  FbxIOPluginRegistry& GetIOPluginRegistry() { return registry_; }

 private:
  FbxIOSettings settings_;
  FbxIOPluginRegistry registry_;
};

/// Called with the share that is done, 0 to 1; false stops the work with the error "Stopped.".
using Progress = std::function<bool(double)>;

/// Reads a file into a scene. Switches of the manager's settings that are off leave their objects out:
/// "Import|AdvOptGrp|FileFormat|Fbx|Animation", "...|Material" (and with it textures), "...|Texture", "...|Shape",
/// "Import|IncludeGrp|Animation|Deformation" (skins and shapes), "...|Deformation|Skins". Meshes are left out when
/// Material, Deformation and Skins are all off: nothing that hangs on a mesh is wanted then.
class FbxImporter {
 public:
  static std::unique_ptr<FbxImporter> Create(FbxManager& manager, std::string name);
  /// Parses the file. False with the status set.
  bool Initialize(const std::string& path);
  bool Initialize(std::vector<uint8_t> bytes, const std::string& fileName, const ReadLimits& limits = {});
  /// Fills an empty scene. False with the status set, and the scene is then not to be used. What is not understood is
  /// told in the scene's log; links in circles are cut and told.
  bool Import(FbxScene& scene, const Progress& progress = {});
  const FbxStatus& GetStatus() const { return status_; }
  const FbxDocument& Document() const { return document_; }

 private:
  explicit FbxImporter(FbxManager& manager) : manager_(&manager) {}
  FbxManager* manager_;
  FbxDocument document_;
  FbxStatus status_;
};

/// Writes a scene to a file.
class FbxExporter {
 public:
  static std::unique_ptr<FbxExporter> Create(FbxManager& manager, std::string name);
  /// Where to, and the format by the registry's number.
  bool Initialize(const std::string& path, int format);
  /// Writes beside the file and renames, so that a failure leaves what was there. False with the status set.
  bool Export(const FbxScene& scene);
  /// The bytes alone; empty with the status set on failure.
  std::vector<uint8_t> Write(const FbxScene& scene);
  const FbxStatus& GetStatus() const { return status_; }

 private:
  explicit FbxExporter(FbxManager& manager) : manager_(&manager) {}
  FbxManager* manager_;
  std::string path_;
  int format_ = 0;
  FbxStatus status_;
};

}  // namespace tavrilon::fbx
