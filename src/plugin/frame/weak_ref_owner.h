// SPDX-License-Identifier: MIT
// For a class that has to see nodes without depending on them: the weak slots of its block watch the nodes, and what
// the nodes tell goes on to the owner's dependents by the rules below.
#pragma once

#include "host/core/param_block.h"

namespace tavrilon {

/// Base beside the owner's own one. The owner's weak rows are marked kWeak in its parameter table, in any block.
class WeakRefOwner : public corvanta::WeakParamOwner {
 public:
  /// Request of `GetInterface` that owners answer with this base.
  static constexpr uint32_t kRequest = 511998721;

  /// Rows of `GetWeakBlock` that are weak, tabs counted once.
  int NumWeakParams() const;
  /// ID of the `i`-th weak row; -1 beyond the end.
  corvanta::ParamID GetWeakParam(int i) const;
  /// Null when empty, when the node is gone, and for an unknown ID; a tab index beyond the end throws the Tab
  /// exception.
  corvanta::INode* GetWeakNode(corvanta::ParamID id, int tab = 0) const;
  /// False for an unknown ID. Undoable.
  bool SetWeakNode(corvanta::ParamID id, corvanta::INode* node, int tab = 0);

  /// What a watched target told:
  /// - a message that `PassesOn` goes on to the owner's dependents as part of the same message;
  /// - 32, the target is deleted: REFMSG_MONITORED_GONE with all parts;
  /// - 274: goes on with the propagate flag on;
  /// - 0x3071552C: goes on with all parts.
  /// Each of the four is guarded against re-entry; everything else is dropped.
  void WeakTargetNotice(corvanta::ParamBlock2& block, corvanta::ParamID id, int tab,
                        const corvanta::RefNotice& notice) override;

 protected:
  virtual corvanta::ReferenceTarget* WeakOwner() = 0;
  /// The block with the weak rows, null while there is none.
  virtual corvanta::ParamBlock2* GetWeakBlock() const = 0;
  /// Which messages of a watched target go on unchanged. The place for an owner that drops caches on them.
  virtual bool PassesOn(corvanta::ParamID id, int tab, const corvanta::RefNotice& notice) {
    return notice.message == corvanta::REFMSG_CHANGE || notice.message == corvanta::REFMSG_DISPLAY_PROPERTY;
  }

 private:
  bool passing_ = false;
  bool tellingGone_ = false;
  bool tellingSelection_ = false;
  bool tellingRename_ = false;
};

}  // namespace tavrilon
