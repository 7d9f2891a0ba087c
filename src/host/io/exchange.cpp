// SPDX-License-Identifier: MIT
#include "host/io/exchange.h"

#include <algorithm>

#include "host/core/class_desc.h"

namespace corvanta {

namespace {

ProgressHook& Hook() {
  static ProgressHook hook;
  return hook;
}

}  // namespace

void SetProgressHook(ProgressHook hook) { Hook() = std::move(hook); }

bool ShowProgress(const WStr& title, double share) { return !Hook() || Hook()(title, share); }

}  // namespace corvanta
