// SPDX-License-Identifier: MIT
#include "plugin/frame/guard.h"

namespace tavrilon {

namespace {
int count = 0;
}

int GuardCount() { return count; }

void CountReentry() { ++count; }

}  // namespace tavrilon
