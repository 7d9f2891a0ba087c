// SPDX-License-Identifier: MIT
// Custom attributes: objects with a block of their own that ride on any reference target.
#pragma once

#include "host/core/reference.h"

namespace corvanta {

class ParamBlock2;

/// Base of attribute classes, super class 0x1160; reference 0 is the block.
class CustAttrib : public ReferenceTarget {
 public:
  SClass_ID SuperClassID() const override { return kCustAttribSuper; }
  virtual WStr GetName() const { return L"Custom Attribute"; }
};

/// The attributes of one owner, its references in order.
class CustAttribContainer final : public ReferenceTarget {
 public:
  static constexpr Class_ID kClassId{kHostClassWord, 0x101};
  SClass_ID SuperClassID() const override { return kReferenceTargetSuper; }
  Class_ID ClassID() const override { return kClassId; }
  WStr GetClassName() const override { return L"CustAttribContainer"; }

  int GetNumCustAttribs() const { return static_cast<int>(attribs_.size()); }
  /// Null beyond the end.
  CustAttrib* GetCustAttrib(int i) const;
  /// Undoable.
  void AppendCustAttrib(CustAttrib* attrib);
  /// Undoable.
  bool RemoveCustAttrib(int i);

  int NumRefs() const override { return GetNumCustAttribs(); }
  ReferenceTarget* GetReference(int which) const override;
  int NumSubs() const override { return GetNumCustAttribs(); }
  Animatable* SubAnim(int i) override { return GetReference(i); }
  WStr SubAnimName(int i) override;

 protected:
  void SetReference(int which, ReferenceTarget* target) override;

 private:
  std::vector<ReferenceTarget*> attribs_;
};

}  // namespace corvanta
