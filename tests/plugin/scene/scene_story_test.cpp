// SPDX-License-Identifier: MIT
#include "plugin/scene/scene_story_test.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "host/core/hold.h"
#include "host/io/scene_file.h"
#include "host/scene/core_interface.h"
#include "plugin/frame/guard.h"
#include "plugin/scene/edit_picks_test.h"
#include "plugin/scene/scene_text_test.h"

#if defined(__SANITIZE_ADDRESS__)
#define TAVRILON_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TAVRILON_SANITIZED 1
#endif
#endif

namespace tavrilon::scene_tests {

using namespace corvanta;

namespace {

#ifdef TAVRILON_SANITIZED
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif

/// A scene of one moment.
struct Picture {
  Bytes bytes;
  std::vector<Matrix3> matrices;
};

Picture Look() {
  Picture picture;
  const WStr error = SaveSceneToBytes(GetScene(), &picture.bytes);
  if (!error.empty()) std::printf("save: %s\n", ToUtf8(error).c_str());
  for (const TimeValue t : {GetScene().time.time, 0, 1000})
    for (const Ref<INode>& node : GetScene().Nodes()) picture.matrices.push_back(node->GetNodeTM(t));
  return picture;
}

std::string Compare(const Picture& wanted) {
  const Picture present = Look();
  if (present.bytes != wanted.bytes) {
    const std::string lines = FirstDifference(wanted.bytes);
    return "the scene differs:\n" + (lines.empty() ? "  only in its bytes\n" : lines);
  }
  for (size_t i = 0; i < wanted.matrices.size(); ++i) {
    if (std::memcmp(&present.matrices[i], &wanted.matrices[i], sizeof(Matrix3)) == 0) continue;
    const Ref<INode>& node = GetScene().Nodes()[i % GetScene().Nodes().size()];
    std::string text = "the matrix of " + Tell(node.Get()) + " differs, its controllers are";
    for (Control* control : PartsOf(node.Get()).controls) text += " " + Tell(control) + ",";
    float most = 0;
    for (int r = 0; r < 4; ++r)
      for (int c = 0; c < 3; ++c)
        most = std::max(most, std::abs(present.matrices[i].row[r][c] - wanted.matrices[i].row[r][c]));
    text += " by up to " + std::to_string(most) + " at place " + std::to_string(i / GetScene().Nodes().size()) +
            ", re-entries " + std::to_string(INode::ReentryCount()) + "+" + std::to_string(GuardCount());
    // A scene from the file has nothing but what is saved: it tells which of the two was out of date.
    if (!LoadSceneFromBytes(wanted.bytes).empty()) return text;
    const Picture fresh = Look();
    const bool was = std::memcmp(&fresh.matrices[i], &wanted.matrices[i], sizeof(Matrix3)) == 0;
    const bool is = std::memcmp(&fresh.matrices[i], &present.matrices[i], sizeof(Matrix3)) == 0;
    return text + (was  ? ", now out of date\n"
                   : is ? ", was out of date before\n"
                        : ", neither is what loading gives\n");
  }
  return {};
}

class Teller {
 public:
  Teller(const std::vector<EditRow>& table, std::string* log) : table_(table), log_(log) {}

  std::optional<Trouble> Run(const Story& story) {
    ResetScene();
    const int nodes = INode::ReentryCount(), guards = GuardCount();
    moments_ = {Look()};
    for (at_ = 0; at_ < story.size() && trouble_.empty(); ++at_) Play(story[at_]);
    if (trouble_.empty()) {
      Walk(theHold.NumUndo(), true);
      Walk(theHold.NumRedo(), false);
    }
    // What goes in circles depends on how often it was asked: no edit may close one.
    if (trouble_.empty() && (INode::ReentryCount() != nodes || GuardCount() != guards))
      trouble_ = "something is evaluated in a circle";
    if (trouble_.empty()) return {};
    while (theHold.Depth() > 0) theHold.Cancel();
    return Trouble{at_, trouble_};
  }

 private:
  void Log(const std::string& line) {
    if (log_ && !line.empty()) *log_ += std::string(2 * static_cast<size_t>(theHold.Depth()), ' ') + line + "\n";
    if (std::getenv("TAVRILON_STORY_TRACE")) std::fprintf(stderr, "%zu %s\n", at_, line.c_str());
  }
  void Expect(const Picture& wanted, const char* when) {
    if (!trouble_.empty()) return;
    if (std::string different = Compare(wanted); !different.empty()) trouble_ = std::string(when) + ": " + different;
  }

  void Play(const Step& step) {
    const bool returns = step.cancelled || [&] {
      for (const Edit& edit : step.edits)
        if (edit.row == kDropOpen || edit.row == kTakeBack) return true;
      return false;
    }();
    Log("step" + std::string(step.cancelled ? ", cancelled" : ""));
    Begin(returns);
    for (const Edit& edit : step.edits)
      if (trouble_.empty()) Play(edit, returns);
    while (theHold.Depth() > 1 && trouble_.empty()) Leave(false);
    if (trouble_.empty()) Leave(step.cancelled);
    if (trouble_.empty() && !step.cancelled) {
      moments_.resize(static_cast<size_t>(theHold.NumUndo()));
      moments_.push_back(step.looked ? std::optional(Look()) : std::nullopt);
    }
    if (step.back > 0) Walk(step.back, true);
    if (step.forth > 0) Walk(step.forth, false);
  }

  void Begin(bool look) {
    theHold.Begin();
    marks_.push_back(look ? std::optional(Look()) : std::nullopt);
  }

  void Leave(bool cancel) {
    cancel ? theHold.Cancel() : theHold.Accept(L"Story");
    if (cancel && marks_.back()) Expect(*marks_.back(), "after Cancel");
    marks_.pop_back();
  }

  void Play(const Edit& edit, bool look) {
    switch (edit.row) {
      case kOpen:
        Log("open");
        return Begin(look);
      case kClose:
      case kDropOpen:
        if (theHold.Depth() < 2) return;
        Log(edit.row == kClose ? "close" : "cancel");
        return Leave(edit.row == kDropOpen);
      case kTakeBack:
        Log("restore");
        theHold.Restore();
        if (marks_.back()) Expect(*marks_.back(), "after Restore");
        return;
      case kSuspended:
        return PlaySuspended(edit.seed);
      default: {
        Dice dice(edit.seed);
        const EditRow& row = table_[static_cast<size_t>(edit.row)];
        if (std::getenv("TAVRILON_STORY_TRACE")) std::fprintf(stderr, "%zu (%s)\n", at_, row.name);
        Log(row.run(dice));
      }
    }
  }

  /// What changes and changes back again while nothing is recorded.
  void PlaySuspended(uint64_t seed) {
    Dice dice(seed);
    const HoldSuspend suspend;
    if (INode* node = PickNode(dice)) {
      Log("suspended change of " + Tell(node));
      const NodeState state = node->State();
      node->SetName(L"passing");
      node->Hide(!state.hidden);
      node->SetState(state);
    }
  }

  void Walk(int steps, bool back) {
    for (; steps > 0 && trouble_.empty(); --steps) {
      if (!(back ? theHold.Undo() : theHold.Redo())) return;
      const size_t now = static_cast<size_t>(theHold.NumUndo());
      Log(back ? "undo" : "redo");
      const std::string when = (back ? "after undo to step " : "after redo to step ") + std::to_string(now);
      if (now < moments_.size() && moments_[now]) Expect(*moments_[now], when.c_str());
    }
  }

  const std::vector<EditRow>& table_;
  std::string* log_;
  size_t at_ = 0;
  /// By the number of steps that could be undone.
  std::vector<std::optional<Picture>> moments_;
  std::vector<std::optional<Picture>> marks_;
  std::string trouble_;
};

Step MakeStep(Dice& dice, const std::vector<int>& lots, int* edits) {
  Step step;
  step.cancelled = dice.OneIn(20);
  step.looked = !dice.OneIn(3);
  const int count = dice.OneIn(3) ? 1 : 1 + dice.Int(6);
  const bool nested = dice.OneIn(4);
  for (int i = 0; i < count; ++i) {
    if (nested && dice.OneIn(3)) step.edits.push_back({kOpen, 0});
    step.edits.push_back({dice.Pick(lots), dice.Next()});
    if (nested && dice.OneIn(4)) step.edits.push_back({dice.OneIn(2) ? kDropOpen : kTakeBack, 0});
    if (nested && dice.OneIn(3)) step.edits.push_back({kClose, 0});
    if (dice.OneIn(12)) step.edits.push_back({kSuspended, dice.Next()});
  }
  *edits -= count;
  if (dice.OneIn(8)) {
    step.back = 1 + dice.Int(6);
    step.forth = dice.Int(step.back + 1);
  }
  return step;
}

/// Leaves out what can be left out: first runs of steps, then single edits.
class Shrinker {
 public:
  Shrinker(Story story, const std::vector<EditRow>& table) : story_(std::move(story)), table_(table) {}

  Story Run() {
    if (const auto trouble = Tell(story_, table_); trouble && trouble->step + 1 < story_.size())
      story_.resize(trouble->step + 1);
    for (size_t chunk = story_.size() / 2; chunk > 0; chunk = chunk == 1 && again_ ? 1 : chunk / 2) {
      again_ = false;
      for (size_t from = 0; from < story_.size() && runs_ > 0;) {
        Story shorter = story_;
        const size_t to = std::min(from + chunk, shorter.size());
        shorter.erase(shorter.begin() + static_cast<std::ptrdiff_t>(from),
                      shorter.begin() + static_cast<std::ptrdiff_t>(to));
        if (!Try(std::move(shorter))) from += chunk;
      }
      if (runs_ <= 0) break;
    }
    for (size_t s = 0; s < story_.size(); ++s) {
      for (size_t e = 0; e < story_[s].edits.size();) {
        Story shorter = story_;
        shorter[s].edits.erase(shorter[s].edits.begin() + static_cast<std::ptrdiff_t>(e));
        if (!Try(std::move(shorter))) ++e;
      }
      Story plain = story_;
      plain[s].back = plain[s].forth = 0;
      Try(std::move(plain));
    }
    return story_;
  }

 private:
  bool Try(Story shorter) {
    if (runs_-- <= 0 || std::chrono::steady_clock::now() > end_ || !Tell(shorter, table_)) return false;
    story_ = std::move(shorter);
    again_ = true;
    return true;
  }
  Story story_;
  const std::vector<EditRow>& table_;
  int runs_ = 1500;
  // A long story takes its time; what is left by then is short enough to read.
  std::chrono::steady_clock::time_point end_ = std::chrono::steady_clock::now() + std::chrono::seconds(40);
  bool again_ = false;
};

}  // namespace

std::vector<int> Lots(const std::vector<EditRow>& table) {
  std::vector<int> lots;
  for (size_t i = 0; i < table.size(); ++i) lots.insert(lots.end(), static_cast<size_t>(table[i].weight), int(i));
  return lots;
}

Story MakeStory(uint64_t seed, int edits, const std::vector<EditRow>& table) {
  const std::vector<int> lots = Lots(table);
  Dice dice(seed);
  Story story;
  while (edits > 0) story.push_back(MakeStep(dice, lots, &edits));
  return story;
}

std::optional<Trouble> Tell(const Story& story, const std::vector<EditRow>& table, std::string* log) {
  const auto trouble = Teller(table, log).Run(story);
  ResetScene();
  return trouble;
}

std::string CheckStory(uint64_t seed, int edits, const std::vector<EditRow>& table) {
  const Story story = MakeStory(seed, edits, table);
  if (!Tell(story, table)) return {};
  const Story shorter = Shrinker(story, table).Run();
  std::string log;
  const auto trouble = Tell(shorter, table, &log);
  return "seed " + std::to_string(seed) + "\n" + log + (trouble ? trouble->what : "(gone on the second telling)");
}

int StoryLength(int edits) {
  if (kSanitized) edits /= 8;
  const char* scale = std::getenv("TAVRILON_STORY_SCALE");
  return scale ? static_cast<int>(static_cast<double>(edits) * std::atof(scale)) : edits;
}

}  // namespace tavrilon::scene_tests
