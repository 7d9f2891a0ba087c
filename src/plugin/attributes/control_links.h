// SPDX-License-Identifier: MIT
// The spaces that a control follows in the course of time, whichever mechanism holds them: the link track of an IK goal
// or the weights of a parent constraint. Each stretch of time has one space; the control stays where it is at a change.
#pragma once

#include <memory>
#include <vector>

#include "host/scene/node.h"

namespace tavrilon {

class ControlLinks {
 public:
  virtual ~ControlLinks() = default;
  virtual int Count() const = 0;
  /// The space from `Time(i)` on; null for the world and beyond the end.
  virtual corvanta::INode* Node(int i) const = 0;
  /// Ascending; 0 beyond the end.
  virtual corvanta::TimeValue Time(int i) const = 0;
  /// From `t` on the control follows `target`, null being the world. What begins at `t` already is replaced. False for
  /// a target that depends on the control and for a locked control. Undoable.
  virtual bool Add(corvanta::INode* target, corvanta::TimeValue t) = 0;
  /// The stretch before goes on; without one, the next begins earlier; the last gives the control back to its parent.
  /// The control stays where it is at the time of the link. False beyond the end. Undoable.
  virtual bool Delete(int i) = 0;
};

/// The links of `control`: of its IK goal where a link can act, else of its parent constraint, which is made at the
/// first link with `spaces` among its targets. Null for a null node and for a
/// joint of a chain, whose place is the chain's to tell.
std::unique_ptr<ControlLinks> LinksOf(corvanta::INode* control, std::vector<corvanta::INode*> spaces);

}  // namespace tavrilon
