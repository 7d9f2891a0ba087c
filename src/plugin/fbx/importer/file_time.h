// SPDX-License-Identifier: MIT
// Times of the host in files.
#pragma once

#include "host/maths/interval.h"
#include "plugin/fbx/format/time.h"

namespace tavrilon::fbx_import {

inline constexpr int64_t kFileTicksPerTick = fbx::FbxTime::kTicksPerSecond / corvanta::kTicksPerSecond;
static_assert(kFileTicksPerTick * corvanta::kTicksPerSecond == fbx::FbxTime::kTicksPerSecond,
              "a tick of the host is a whole number of the file's");

inline fbx::FbxTime FileTimeOf(corvanta::TimeValue t) { return {t * kFileTicksPerTick}; }

}  // namespace tavrilon::fbx_import
