// SPDX-License-Identifier: MIT
// All classes registered, and an empty scene before and after each test.
#pragma once

#include <gtest/gtest.h>

#include <cmath>

#include "host/io/scene_file.h"
#include "host/scene/scene.h"
#include "plugin/frame/class_table.h"
#include "plugin/frame/library.h"
#include "support/scene_samples.h"

namespace tavrilon::scene_tests {

inline std::vector<uint8_t> SceneBytes() {
  std::vector<uint8_t> bytes;
  EXPECT_EQ(corvanta::SaveSceneToBytes(corvanta::GetScene(), &bytes), L"");
  return bytes;
}

/// The matrices of all nodes, first at the current time.
inline std::vector<corvanta::Matrix3> SceneMatrices() {
  std::vector<corvanta::Matrix3> matrices;
  for (const corvanta::TimeValue t : {corvanta::GetScene().time.time, -500, 0, 400, 1000, 5000})
    for (const auto& node : corvanta::GetScene().Nodes()) matrices.push_back(node->GetNodeTM(t));
  return matrices;
}

inline bool IsFinite(const corvanta::Matrix3& m) {
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 3; ++c)
      if (!std::isfinite(m.row[r][c])) return false;
  return true;
}

class SceneTest : public testing::Test {
 protected:
  SceneTest() {
    corvanta::scene_samples::RegisterSampleClasses();
    RegisterTavrilonClasses();
    corvanta::ResetScene();
  }
  ~SceneTest() override { corvanta::ResetScene(); }
};

}  // namespace tavrilon::scene_tests
