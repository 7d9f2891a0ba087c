// SPDX-License-Identifier: MIT
// "Did you mean": the name that was meant, for messages about one that does not exist.
#pragma once

#include <string>
#include <vector>

namespace app {

/// The least number of letters to insert, leave out, replace or swap with their neighbour that makes `b` of `a`; case
/// is ignored. Source: optimal string alignment distance.
int EditDistance(const std::string& a, const std::string& b);

/// The name with the least distance to `wanted`, of several the one that starts most alike; empty when more than half
/// of its letters would change.
std::string NearestName(const std::string& wanted, const std::vector<std::string>& names);

/// "; did you mean "NAME"?", or an empty text when no name is near. For the end of a message.
std::string Suggestion(const std::string& wanted, const std::vector<std::string>& names);

}  // namespace app
