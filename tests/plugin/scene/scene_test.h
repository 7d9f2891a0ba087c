// SPDX-License-Identifier: MIT
// All classes registered, and an empty scene before and after each test.
#pragma once

#include <gtest/gtest.h>

#include "host/io/scene_file.h"
#include "host/scene/scene.h"
#include "plugin/frame/class_table.h"
#include "plugin/frame/library.h"
#include "support/scene_samples.h"

namespace tavrilon::scene_tests {

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
