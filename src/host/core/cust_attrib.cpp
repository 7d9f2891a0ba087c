// SPDX-License-Identifier: MIT
#include "host/core/cust_attrib.h"

#include "host/core/hold.h"

namespace corvanta {

CustAttrib* CustAttribContainer::GetCustAttrib(int i) const { return static_cast<CustAttrib*>(GetReference(i)); }

ReferenceTarget* CustAttribContainer::GetReference(int which) const {
  return which >= 0 && which < GetNumCustAttribs() ? attribs_[static_cast<size_t>(which)] : nullptr;
}

// An index beyond the end makes room: while loading, references come before anything tells how many there are. Slots
// that undo empties stay as empty slots at the end.
void CustAttribContainer::SetReference(int which, ReferenceTarget* target) {
  if (which < 0) return;
  const auto at = static_cast<size_t>(which);
  if (at >= attribs_.size()) attribs_.resize(at + 1);
  attribs_[at] = target;
  while (!attribs_.empty() && !attribs_.back()) attribs_.pop_back();
}

void CustAttribContainer::AppendCustAttrib(CustAttrib* attrib) {
  if (!attrib) return;
  ReplaceReference(GetNumCustAttribs(), attrib);
  NotifyDependents(FOREVER, PART_ALL, REFMSG_SUBANIM_STRUCTURE);
}

bool CustAttribContainer::RemoveCustAttrib(int i) {
  if (!GetCustAttrib(i)) return false;
  // The attributes behind move up one by one, so that every step is an ordinary reference with its undo.
  const int n = GetNumCustAttribs();
  for (int k = i; k + 1 < n; ++k) {
    const Ref<ReferenceTarget> next(GetReference(k + 1));
    ReplaceReference(k + 1, nullptr);
    ReplaceReference(k, next.Get());
  }
  if (i + 1 >= n) ReplaceReference(i, nullptr);
  NotifyDependents(FOREVER, PART_ALL, REFMSG_SUBANIM_STRUCTURE);
  return true;
}

WStr CustAttribContainer::SubAnimName(int i) {
  const CustAttrib* attrib = GetCustAttrib(i);
  return attrib ? attrib->GetName() : WStr();
}

}  // namespace corvanta
