// SPDX-License-Identifier: MIT
// What a node of a rig is for, read off what it carries.
#pragma once

#include <string>
#include <vector>

#include "host/scene/node.h"

namespace app {

enum class NodeKind { Control, Bone, Helper, Guide, Mesh };
inline constexpr int kNodeKinds = 5;

/// A control carries a control shape or helper, a guide a rig; other helpers and empty nodes are helpers, and all else
/// that is drawn is a mesh.
NodeKind KindOf(corvanta::INode& node);

/// "controls", "bones", "helpers", "guides", "meshes".
const char* KindName(NodeKind kind);
/// The same for a number of nodes: "control" for one.
const char* KindName(NodeKind kind, int count);
/// The kinds of a list such as "controls,bones", or of "all". Gives an empty text, or what is wrong with the list.
std::string ReadKinds(const std::string& list, std::vector<NodeKind>& kinds);

}  // namespace app
