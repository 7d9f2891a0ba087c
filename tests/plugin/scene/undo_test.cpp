// SPDX-License-Identifier: MIT
// Random edits, undone and redone. Run one seed alone with TAVRILON_STORY_SEED; TAVRILON_STORY_TRACE tells each edit as
// it happens, for stories that end in a crash.
#include <gtest/gtest.h>

#include <cstdlib>

#include "plugin/scene/scene_story_test.h"
#include "plugin/scene/scene_test.h"

namespace tavrilon::scene_tests {
namespace {

class UndoStory : public SceneTest, public testing::WithParamInterface<uint64_t> {
 protected:
  static uint64_t Seed() {
    const char* wanted = std::getenv("TAVRILON_STORY_SEED");
    return wanted ? std::strtoull(wanted, nullptr, 10) : GetParam();
  }
};

TEST_P(UndoStory, BringsEveryMomentBack) { EXPECT_EQ(CheckStory(Seed(), StoryLength(2000), SceneEdits()), ""); }
TEST_P(UndoStory, WithRigsBuiltAndReset) { EXPECT_EQ(CheckStory(Seed(), StoryLength(300), RigEdits()), ""); }

INSTANTIATE_TEST_SUITE_P(Seeds, UndoStory, testing::Values(1, 2, 3, 4, 5));

}  // namespace
}  // namespace tavrilon::scene_tests
