// SPDX-License-Identifier: MIT
// Weak links escape the reference system's own loop test. This one follows them too: may a controller follow a node?
#pragma once

#include "host/core/param_desc.h"
#include "host/scene/node.h"

namespace tavrilon {

/// Does the evaluation of `node` depend on `owner`, a controller? True when `owner` lies in the transform of the node
/// or of an ancestor, or in the transform of any node that these follow by a reference or a weak slot.
bool TransformDependsOn(corvanta::INode* node, const corvanta::ReferenceTarget* owner);

/// The same for the evaluation of anything that is no node: a controller, a block with all its parameters.
bool DependsOn(corvanta::ReferenceTarget* start, const corvanta::ReferenceTarget* goal);

/// May `owner` follow `candidate`? Not null, not the node of `owner`, not a node that depends on `owner`.
bool MayFollow(const corvanta::ReferenceTarget* owner, corvanta::INode* candidate);

/// For the rows of node parameters.
class LoopValidator final : public corvanta::PBValidator {
 public:
  bool Validate(corvanta::ReferenceTarget* owner, corvanta::ParamID id, corvanta::ReferenceTarget* candidate) override {
    return candidate && MayFollow(owner, candidate->AsNode());
  }
};

}  // namespace tavrilon
