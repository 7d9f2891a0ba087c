// SPDX-License-Identifier: MIT
#include "plugin/connections/node_reader.h"

#include "host/core/hold.h"
#include "host/scene/node.h"
#include "plugin/controllers/rig_control.h"
#include "plugin/frame/find.h"

namespace tavrilon {

using namespace corvanta;

RestHook restHook;

// Undo and redo bring the rest back by themselves.
void RestHook::Set(ParamBlock2&, ReferenceTarget* owner, ParamID, int, TimeValue t) {
  if (owner && !theHold.UndoRunning() && !theHold.RedoRunning()) static_cast<NodeReader*>(owner)->TakeRest(t);
}

NodeReader::NodeReader(TavrilonClass row, const ParamBlockDesc2& desc, const FPInterfaceDesc& published,
                       const NodeReaderRows& rows, bool loading)
    : BlockControl(row, desc, published, loading), rows_(rows) {}

Matrix3 NodeReader::PlaceAt(TimeValue t, Interval& valid) const {
  INode* node = block_ ? block_->GetINode(rows_.node) : nullptr;
  if (!node) return {};
  const Matrix3 place = node->GetNodeTM(t, valid);
  if (rows_.world >= 0 && block_->GetBool(rows_.world)) return place;
  INode* frame = block_->GetINode(rows_.reference);
  if (!frame) frame = node->GetParentNode();
  return frame && !frame->IsRootNode() ? place * Inverse(frame->GetNodeTM(t, valid)) : place;
}

void NodeReader::TakeRest(TimeValue t) {
  Interval ignored = FOREVER;
  if (block_) block_->SetValue(rows_.rest, 0, PlaceAt(t, ignored));
}

void NodeReader::RefitRest(TimeValue t) {
  const RigControl* control = FindNodeRigControl(block_ ? block_->GetINode(rows_.node) : nullptr);
  if (control && control->GetFigureMode()) TakeRest(t);
}

}  // namespace tavrilon
