// SPDX-License-Identifier: MIT
// Base of what a scene of an FBX file holds. The scene owns all objects; links between them are plain pointers, which
// `Destroy` of either end takes out.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

namespace tavrilon::fbx {

class FbxScene;

class FbxObject {
 public:
  virtual ~FbxObject() = default;
  FbxObject(const FbxObject&) = delete;
  FbxObject& operator=(const FbxObject&) = delete;

  /// UTF-8, without the class; may hold ":" and "|".
  const std::string& GetName() const { return name_; }
  void SetName(std::string name) { name_ = std::move(name); }
  FbxScene& GetScene() const { return *scene_; }
  /// The number by which the file knew it; 0 for an object that was made here.
  int64_t FileId() const { return fileId_; }
  /// Takes the object, and every link to it, out of its scene and deletes it. Children of a node go to its parent.
  void Destroy();

 protected:
  FbxObject(FbxScene& scene, std::string name) : scene_(&scene), name_(std::move(name)) {}
  /// Takes out what links to `gone`.
  virtual void Unlink(const FbxObject& gone) {}

 private:
  friend class FbxScene;
  friend class SceneReader;
  FbxScene* scene_;
  std::string name_;
  int64_t fileId_ = 0;
};

}  // namespace tavrilon::fbx
