// SPDX-License-Identifier: MIT
// Functions and globals of scenes, in tables by subject like the built-ins.
#pragma once

#include "host/script/bridge_values.h"
#include "host/script/builtins.h"

namespace corvanta {
class INode;
class ClassDesc;
}  // namespace corvanta

namespace corvanta::script {

std::span<const BuiltinRow> NodeFunctions();
std::span<const BuiltinRow> ControlFunctions();
std::span<const BuiltinRow> ProgramFunctions();
std::span<const BuiltinRow> FileFunctions();

/// A function, function set or class of the program by lower-case name.
bool FindProgramFunction(const WStr& name, Value& out);
/// The class of `name`, blanks and underscores left out; a call makes an object, for objects of scenes a node.
bool FindSceneClass(const WStr& name, Value& out);
Value MakeInstance(const ClassDesc& desc, const CallArgs& args);

/// Argument `i` as a node; throws otherwise.
INode* NodeArg(const CallArgs& args, size_t i);
Control* ControlArg(const CallArgs& args, size_t i);
/// Argument `i` as one node or an array of nodes.
std::vector<INode*> NodeListArg(const CallArgs& args, size_t i);
Value NodeArray(const std::vector<INode*>& nodes);

}  // namespace corvanta::script
