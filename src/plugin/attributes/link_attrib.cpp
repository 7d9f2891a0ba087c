// SPDX-License-Identifier: MIT
#include "plugin/attributes/link_attrib.h"

#include "host/core/hold.h"
#include "host/scene/core_interface.h"

namespace tavrilon {

using namespace corvanta;

namespace {

bool IsRow(int row) { return row >= 0 && row < LinkAttrib::kNumRows; }
// The numbers run backwards against the rows.
ParamID NodeParam(int row) { return static_cast<ParamID>(link_attrib::kLink1 - row); }
ParamID NameParam(int row) { return static_cast<ParamID>(link_attrib::kLink1Name - row); }

}  // namespace

ReferenceTarget* CreateLinkAttrib(bool loading) { return new LinkAttrib(loading); }

INode* LinkAttrib::GetServed() const {
  return GetParamBlock() ? GetParamBlock()->GetINode(link_attrib::kLinkNode) : nullptr;
}
INode* LinkAttrib::GetSpace(int row) const {
  return GetParamBlock() && IsRow(row) ? GetParamBlock()->GetINode(NodeParam(row)) : nullptr;
}
WStr LinkAttrib::GetSpaceName(int row) const {
  return GetParamBlock() && IsRow(row) ? GetParamBlock()->GetStr(NameParam(row)) : WStr();
}

bool LinkAttrib::SetSpace(int row, INode* space, const WStr& name) {
  if (!GetParamBlock() || !IsRow(row) || name.empty()) return false;
  const HoldScope hold;
  return GetParamBlock()->SetValue(NodeParam(row), 0, space) && GetParamBlock()->SetValue(NameParam(row), 0, name);
}

std::unique_ptr<ControlLinks> LinkAttrib::Links() const {
  std::vector<INode*> spaces;
  for (int row = 0; row < kNumRows; ++row)
    if (!GetSpaceName(row).empty()) spaces.push_back(GetSpace(row));
  return LinksOf(GetServed(), std::move(spaces));
}

bool LinkAttrib::AddLink(int row) {
  const auto links = Links();
  return links && !GetSpaceName(row).empty() && links->Add(GetSpace(row), GetCOREInterface()->GetTime());
}

bool LinkAttrib::AddWorld() {
  const auto links = Links();
  return links && links->Add(nullptr, GetCOREInterface()->GetTime());
}

bool LinkAttrib::DeleteLink(int i) {
  const auto links = Links();
  return links && links->Delete(i);
}

int LinkAttrib::NumLinks() const {
  const auto links = Links();
  return links ? links->Count() : 0;
}
INode* LinkAttrib::GetLink(int i) const {
  const auto links = Links();
  return links ? links->Node(i) : nullptr;
}
TimeValue LinkAttrib::GetLinkTime(int i) const {
  const auto links = Links();
  return links ? links->Time(i) : 0;
}

LinkAttrib* FindLinkAttrib(const INode* node) {
  return static_cast<LinkAttrib*>(FindRigAttrib(node, TavrilonClass::LinkAttrib));
}

// Script interface.

namespace {
enum FunctionID { kAddLink, kAddWorld, kDeleteLink, kNumLinks, kGetLink, kGetLinkFrame };
}

const FPInterfaceDesc& LinkAttrib::Published::GetDesc() const {
  static constexpr Class_ID kId = ClassIdOf(TavrilonClass::LinkAttrib);
  static const FPInterfaceDesc desc({kId.a, kId.b}, L"interface",
                                    {{kAddLink, L"AddLink", FPType::Bool, {{L"row", FPType::Index}}},
                                     {kAddWorld, L"AddWorld", FPType::Bool},
                                     {kDeleteLink, L"DeleteLink", FPType::Bool, {{L"index", FPType::Index}}},
                                     {kNumLinks, L"NumLinks", FPType::Int},
                                     {kGetLink, L"GetLink", FPType::Node, {{L"index", FPType::Index}}},
                                     {kGetLinkFrame, L"GetLinkFrame", FPType::Int, {{L"index", FPType::Index}}}});
  return desc;
}

FPStatus LinkAttrib::Published::Invoke(int id, TimeValue, FPValue& result, std::span<const FPValue> args) {
  switch (id) {
    case kAddLink:
      result = owner_.AddLink(FPArg(args, 0).ToInt());
      return FPStatus::OK;
    case kAddWorld:
      result = owner_.AddWorld();
      return FPStatus::OK;
    case kDeleteLink:
      result = owner_.DeleteLink(FPArg(args, 0).ToInt());
      return FPStatus::OK;
    case kNumLinks:
      result = owner_.NumLinks();
      return FPStatus::OK;
    case kGetLink:
      result = TargetValue(owner_.GetLink(FPArg(args, 0).ToInt()));
      return FPStatus::OK;
    case kGetLinkFrame:
      result = owner_.GetLinkTime(FPArg(args, 0).ToInt()) / GetCOREInterface()->GetTicksPerFrame();
      return FPStatus::OK;
    default:
      return FPStatus::NoSuchFunction;
  }
}

}  // namespace tavrilon
