// SPDX-License-Identifier: MIT
// Functions and globals of scenes, in tables by subject like the built-ins.
#pragma once

#include <memory>

#include "host/script/bridge_values.h"
#include "host/script/builtins.h"

namespace corvanta {
class INode;
class ClassDesc;
struct Mesh;
}  // namespace corvanta

namespace corvanta::script {

std::span<const BuiltinRow> NodeFunctions();
std::span<const BuiltinRow> ControlFunctions();
std::span<const BuiltinRow> ProgramFunctions();
std::span<const BuiltinRow> FileFunctions();
std::span<const BuiltinRow> MeshFunctions();

/// A function, function set or class of the program by lower-case name.
bool FindProgramFunction(const WStr& name, Value& out);
/// The class of `name`, blanks and underscores left out; a call makes an object, for objects of scenes a node.
bool FindSceneClass(const WStr& name, Value& out);
Value MakeInstance(const ClassDesc& desc, const CallArgs& args);

/// The mesh that the keywords of a call tell: vertices, faces and what belongs to faces. Throws when it has a fault.
std::shared_ptr<const Mesh> MeshFromKeywords(const CallArgs& args);
bool IsMeshKeyword(const WStr& name);

/// Argument `i` as a node; throws otherwise.
INode* NodeArg(const CallArgs& args, size_t i);
Control* ControlArg(const CallArgs& args, size_t i);
/// Argument `i` as one node or an array of nodes.
std::vector<INode*> NodeListArg(const CallArgs& args, size_t i);
Value NodeArray(const std::vector<INode*>& nodes);

}  // namespace corvanta::script
