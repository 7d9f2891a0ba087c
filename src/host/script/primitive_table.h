// SPDX-License-Identifier: MIT
#pragma once

#include <map>

#include "host/script/value.h"

namespace corvanta::script {

/// The registered primitives by lower-case name.
std::map<WStr, Value>& Primitives();

}  // namespace corvanta::script
