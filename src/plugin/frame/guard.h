// SPDX-License-Identifier: MIT
// Weak links escape the loop test, so a controller may be asked for a value while it computes one. It then answers with
// its last value, and the event is counted: on a sound rig the count stays 0.
#pragma once

namespace tavrilon {

/// Re-entries of guarded evaluations in this process.
int GuardCount();
void CountReentry();

class ReentryGuard {
 public:
  explicit ReentryGuard(bool& flag) : flag_(flag), reentered_(flag) {
    if (reentered_) CountReentry();
    flag_ = true;
  }
  ~ReentryGuard() {
    if (!reentered_) flag_ = false;
  }
  ReentryGuard(const ReentryGuard&) = delete;
  bool Reentered() const { return reentered_; }

 private:
  bool& flag_;
  bool reentered_;
};

}  // namespace tavrilon
