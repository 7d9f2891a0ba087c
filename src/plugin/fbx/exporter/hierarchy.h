// SPDX-License-Identifier: MIT
// Which nodes go out, under which names and parents, and as what.
#pragma once

#include "plugin/fbx/exporter/job.h"

namespace tavrilon::fbx_export {

/// Nodes of `nodes` that are in the scene, once each, level by level from the scene's root: the order does not depend
/// on how they were picked.
std::vector<corvanta::INode*> InTreeOrder(const std::vector<corvanta::INode*>& nodes);

/// Fills the job's list of nodes from nodes in tree order: parents, the modifiers of meshes, bind matrices of skins.
/// False with the job's error set when a mesh or skin cannot be exported.
bool ListNodes(ExportJob& job, const std::vector<corvanta::INode*>& nodes);

/// Makes the file's nodes for the list: bones, and whatever a skin takes for one, as limb nodes, meshes bare, the rest
/// as nulls; with unique names, colours, visibility and user properties.
bool MakeNodes(ExportJob& job);

}  // namespace tavrilon::fbx_export
