// SPDX-License-Identifier: MIT
#include "plugin/attributes/attributes.h"

#include "host/core/hold.h"
#include "host/scene/node.h"

namespace tavrilon {

using namespace corvanta;

RigAttrib::RigAttrib(TavrilonClass row, bool loading) : row_(row) {
  if (!loading) BindReference(0, new ParamBlock2(*AttribBlockDesc(row)));
}

RigAttrib* FindRigAttrib(const INode* node, TavrilonClass attrib) {
  const CustAttribContainer* container = node ? node->GetCustAttribContainer() : nullptr;
  for (int i = 0; container && i < container->GetNumCustAttribs(); ++i)
    if (IsOfClass(container->GetCustAttrib(i), attrib)) return static_cast<RigAttrib*>(container->GetCustAttrib(i));
  return nullptr;
}

ParamBlock2* FindAttrib(const INode* node, TavrilonClass attrib) {
  const RigAttrib* found = FindRigAttrib(node, attrib);
  return found ? found->GetParamBlock() : nullptr;
}

ParamBlock2* AddAttrib(INode* node, TavrilonClass attrib) {
  if (!node || !AttribBlockDesc(attrib)) return nullptr;
  if (ParamBlock2* present = FindAttrib(node, attrib)) return present;
  const HoldScope hold(L"Add Attribute");
  auto* added = static_cast<RigAttrib*>(DescOf(attrib).Create());
  node->MakeCustAttribContainer()->AppendCustAttrib(added);
  if (attrib == TavrilonClass::LinkAttrib) added->GetParamBlock()->SetValue(link_attrib::kLinkNode, 0, node);
  return added->GetParamBlock();
}

ReferenceTarget* CreateLimbAttrib(bool loading) { return new RigAttrib(TavrilonClass::LimbAttrib, loading); }
ReferenceTarget* CreateCurveAttrib(bool loading) { return new RigAttrib(TavrilonClass::CurveAttrib, loading); }
ReferenceTarget* CreateHeadAttrib(bool loading) { return new RigAttrib(TavrilonClass::HeadAttrib, loading); }
ReferenceTarget* CreateFootAttrib(bool loading) { return new RigAttrib(TavrilonClass::FootAttrib, loading); }
ReferenceTarget* CreateRootAttrib(bool loading) { return new RigAttrib(TavrilonClass::RootAttrib, loading); }

}  // namespace tavrilon
