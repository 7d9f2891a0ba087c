// SPDX-License-Identifier: MIT
// A scene as lines of text, one an object or a value, so that two scenes can be told apart by name.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tavrilon::scene_tests {

using Bytes = std::vector<uint8_t>;

/// Every layer, node and object below the nodes of the scene on show, each object where it is first met.
std::vector<std::string> DescribeScene();

/// The first lines that differ between the scene on show and the one in `wanted`, with the object that they belong to.
/// Empty when the text does not show the difference. Replaces the scene on show.
std::string FirstDifference(const Bytes& wanted);

}  // namespace tavrilon::scene_tests
