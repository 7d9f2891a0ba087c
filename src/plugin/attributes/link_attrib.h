// SPDX-License-Identifier: MIT
// The attribute of a control that can change its parent in the course of time. It holds the four spaces to choose from;
// the changes themselves are in the control's links.
#pragma once

#include "host/core/published.h"
#include "plugin/attributes/attributes.h"
#include "plugin/attributes/control_links.h"

namespace tavrilon {

class LinkAttrib final : public RigAttrib {
 public:
  static constexpr int kNumRows = 4;
  explicit LinkAttrib(bool loading = false) : RigAttrib(TavrilonClass::LinkAttrib, loading), published_(*this) {}

  /// The control that it serves; null while nobody has told.
  corvanta::INode* GetServed() const;
  /// Rows 0 to 3. A row without a name is not shown; one with a name and no node is the world.
  corvanta::INode* GetSpace(int row) const;
  corvanta::WStr GetSpaceName(int row) const;
  /// Undoable. False beyond the rows and for a name that is empty.
  bool SetSpace(int row, corvanta::INode* space, const corvanta::WStr& name);

  /// From the current time on the control follows the space of that row, and stays where it is now. False for a row
  /// without a name, without a control to serve, for a joint of a chain, for a space that depends on the control, and
  /// for a locked control. On an IK goal links begin at whole frames. Undoable, as the two that follow.
  bool AddLink(int row);
  bool AddWorld();
  /// Takes out link `i` of the control's list.
  bool DeleteLink(int i);
  /// The control's list, ascending in time. Null for the world and beyond the end; 0 beyond the end.
  int NumLinks() const;
  corvanta::INode* GetLink(int i) const;
  corvanta::TimeValue GetLinkTime(int i) const;

  int NumInterfaces() const override { return 1; }
  corvanta::FPInterface* GetInterfaceAt(int i) override { return i == 0 ? &published_ : nullptr; }

 private:
  class Published final : public corvanta::FPMixinInterface {
   public:
    explicit Published(LinkAttrib& owner) : owner_(owner) {}
    const corvanta::FPInterfaceDesc& GetDesc() const override;
    corvanta::FPStatus Invoke(int id, corvanta::TimeValue t, corvanta::FPValue& result,
                              std::span<const corvanta::FPValue> args) override;

   private:
    LinkAttrib& owner_;
  };
  std::unique_ptr<ControlLinks> Links() const;
  Published published_;
};

/// The node's link attribute; null when it has none.
LinkAttrib* FindLinkAttrib(const corvanta::INode* node);

}  // namespace tavrilon
