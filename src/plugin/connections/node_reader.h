// SPDX-License-Identifier: MIT
// A controller that reads the place of a node in the frame of another. Both are watched, not referred to.
#pragma once

#include "plugin/connections/block_control.h"
#include "plugin/frame/figure_rest.h"
#include "plugin/frame/weak_ref_owner.h"

namespace tavrilon {

/// Where the parameters are in the block of a class; `world` -1 for a class without one.
struct NodeReaderRows {
  corvanta::ParamID node, reference, world, rest;
};

/// The frame is the reference node's, or the parent's without one, or the world's. The rest place is taken when node,
/// reference or the world flag are written.
class NodeReader : public BlockControl, public WeakRefOwner, public FigureRest {
 public:
  NodeReader(TavrilonClass row, const corvanta::ParamBlockDesc2& desc, const corvanta::FPInterfaceDesc& published,
             const NodeReaderRows& rows, bool loading);

  bool HasNode() const { return block_ && block_->GetINode(rows_.node); }
  /// The node's matrix in the frame, identity without a node.
  corvanta::Matrix3 PlaceAt(corvanta::TimeValue t, corvanta::Interval& valid) const;
  const corvanta::Matrix3& Rest() const { return block_->GetMatrix3(rows_.rest); }
  /// The place at `t` becomes the rest. Undoable.
  void TakeRest(corvanta::TimeValue t);
  /// The same, when the node is a control in figure mode: another node's pose says nothing of the rig's rest.
  void RefitRest(corvanta::TimeValue t) override;

  using BlockControl::GetInterface;
  void* GetInterface(uint32_t request) override {
    if (request == FigureRest::kRequest) return static_cast<FigureRest*>(this);
    return request == WeakRefOwner::kRequest ? static_cast<WeakRefOwner*>(this) : BlockControl::GetInterface(request);
  }

 protected:
  corvanta::ReferenceTarget* WeakOwner() override { return this; }
  corvanta::ParamBlock2* GetWeakBlock() const override { return block_; }

  bool evaluating_ = false;

 private:
  const NodeReaderRows& rows_;
};

/// For the rows of node, reference and world flag.
class RestHook final : public corvanta::PBAccessor {
 public:
  void Set(corvanta::ParamBlock2& block, corvanta::ReferenceTarget* owner, corvanta::ParamID id, int tab,
           corvanta::TimeValue t) override;
};
extern RestHook restHook;

}  // namespace tavrilon
