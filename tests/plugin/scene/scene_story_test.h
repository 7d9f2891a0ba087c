// SPDX-License-Identifier: MIT
// Stories of random edits, told forwards, undone and redone. What they must keep: undo and redo of any number of steps
// bring the saved bytes and the matrices of all nodes of that moment; what is cancelled or restored leaves no trace.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "plugin/scene/scene_edits_test.h"

namespace tavrilon::scene_tests {

/// What may stand in a step beside the edits of a table, by negative numbers.
enum StoryMark : int { kOpen = -1, kClose = -2, kDropOpen = -3, kTakeBack = -4, kSuspended = -5 };

struct Edit {
  /// Row of the table, or a mark.
  int row = 0;
  uint64_t seed = 0;
};

struct Step {
  std::vector<Edit> edits;
  bool cancelled = false;
  /// Steps taken back and brought again after this one.
  int back = 0, forth = 0;
  /// Compare the scene of this moment; otherwise it is not even evaluated.
  bool looked = true;
};

using Story = std::vector<Step>;

/// Numbers of rows, each as often as its weight.
std::vector<int> Lots(const std::vector<EditRow>& table);

Story MakeStory(uint64_t seed, int edits, const std::vector<EditRow>& table);

/// Tells the story in a fresh scene. Nothing, or what went wrong, with the step after which it showed.
struct Trouble {
  size_t step = 0;
  std::string what;
};
std::optional<Trouble> Tell(const Story& story, const std::vector<EditRow>& table, std::string* log = nullptr);

/// The same; on trouble a much shorter story with the same end, as text.
std::string CheckStory(uint64_t seed, int edits, const std::vector<EditRow>& table);

/// Edits for a normal run, fewer under sanitizers. TAVRILON_STORY_SCALE multiplies.
int StoryLength(int edits);

}  // namespace tavrilon::scene_tests
