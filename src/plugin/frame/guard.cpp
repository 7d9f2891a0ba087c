// SPDX-License-Identifier: MIT
#include "plugin/frame/guard.h"

namespace tavrilon {

namespace {
int count = 0;
}

int GuardCount() { return count; }

ReentryGuard::ReentryGuard(bool& flag) : flag_(flag), reentered_(flag) {
  if (reentered_) ++count;
  flag_ = true;
}

}  // namespace tavrilon
