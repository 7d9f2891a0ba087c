// SPDX-License-Identifier: MIT
// Numbers and assignments of the command line; the user's locale has no say.
#pragma once

#include <string>
#include <vector>

namespace app {

/// Numbers with commas between them. Empty when anything else stands in the text, or a number is not finite.
std::vector<float> ReadNumbers(const std::string& text);

/// As few digits as give the same number back.
std::string WriteNumber(float number);

/// Splits "NAME=VALUE" at the first equals sign. False without one, or without a name.
bool ReadAssignment(const std::string& text, std::string& name, std::string& value);

}  // namespace app
