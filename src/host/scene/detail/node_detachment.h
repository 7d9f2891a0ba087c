// SPDX-License-Identifier: MIT
// Taking a node out of the scene and putting it back as it was: the one mechanism behind undo of creation and of
// deletion. Links from others are remembered here and not by records of their own, since a build may bind nodes while
// undo is suspended, and its undo must leave no link all the same.
#pragma once

#include "host/core/hold.h"
#include "host/core/notify.h"
#include "host/scene/scene.h"

namespace corvanta {

class NodeDetachment {
 public:
  explicit NodeDetachment(INode* node) : node_(node) {}
  void Detach();
  void Attach();
  INode* Node() const { return node_.Get(); }

 private:
  struct Link {
    Ref<ReferenceTarget> maker;
    int which;
  };
  void CutLinks();
  Ref<INode> node_;
  Ref<INode> parent_;
  size_t place_ = 0;
  int childPlace_ = 0;
  bool selected_ = false;
  size_t selectionPlace_ = 0;
  std::vector<Link> links_;
  std::vector<Ref<INode>> children_;
};

/// Undo of a created or a deleted node.
class NodeRecord final : public RestoreObj {
 public:
  NodeRecord(NodeDetachment detachment, bool created) : detachment_(std::move(detachment)), created_(created) {}
  void Restore(bool) override { created_ ? detachment_.Detach() : detachment_.Attach(); }
  void Redo() override { created_ ? detachment_.Attach() : detachment_.Detach(); }
  size_t Size() const override { return sizeof *this + 1024; }

 private:
  NodeDetachment detachment_;
  bool created_;
};

}  // namespace corvanta
