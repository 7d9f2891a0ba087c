// SPDX-License-Identifier: MIT
// Scenes for tests: read from short ASCII texts or files, and comparisons of their values.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "plugin/fbx/format/sdk.h"

namespace tavrilon::fbx {

/// The default is what a handful of products of turns may lose in double precision.
inline void ExpectNear(const Vector3& a, const Vector3& b, double tolerance = 1e-12) {
  EXPECT_NEAR(a.x, b.x, tolerance);
  EXPECT_NEAR(a.y, b.y, tolerance);
  EXPECT_NEAR(a.z, b.z, tolerance);
}
inline void ExpectNear(const Affine& a, const Affine& b, double tolerance = 1e-12) {
  for (size_t r = 0; r < 4; ++r) {
    SCOPED_TRACE(testing::Message() << "row " << r);
    ExpectNear(a.row[r], b.row[r], tolerance);
  }
}

inline FbxTime Seconds(double seconds) { return FbxTime::FromSeconds(seconds); }

/// A file that was imported, or the error.
struct Imported {
  std::unique_ptr<FbxManager> manager = FbxManager::Create();
  std::unique_ptr<FbxImporter> importer = FbxImporter::Create(*manager, "");
  std::unique_ptr<FbxScene> scene = FbxScene::Create("sample");

  std::string Error() const { return importer->GetStatus().GetErrorString(); }
  std::string Log() const {
    std::string log;
    for (const std::string& line : scene->Log().Lines()) log += line + "\n";
    return log;
  }
  FbxNode* Node(const std::string& name) const {
    for (FbxNode* node : scene->Nodes()) {
      if (node->GetName() == name) return node;
    }
    return nullptr;
  }
  template <class T>
  std::vector<T*> All() const {
    std::vector<T*> all;
    for (const auto& object : scene->Objects()) {
      if (T* typed = dynamic_cast<T*>(object.get())) all.push_back(typed);
    }
    return all;
  }
};

/// `objects` and `links` are the insides of those records; `more` stands before them.
inline std::string SceneText(const std::string& objects, const std::string& links, const std::string& more = "") {
  return "; FBX 7.4.0 project file\n" + more + "\nObjects: {\n" + objects + "\n}\nConnections: {\n" + links + "\n}\n";
}

inline std::unique_ptr<Imported> ReadText(const std::string& text) {
  auto read = std::make_unique<Imported>();
  if (read->importer->Initialize({text.begin(), text.end()}, "sample.fbx")) read->importer->Import(*read->scene);
  return read;
}

inline std::string DataFile(const std::string& name) { return std::string(TAVRILON_SOURCE_DIR) + "/examples/" + name; }

}  // namespace tavrilon::fbx
