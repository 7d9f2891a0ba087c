// SPDX-License-Identifier: MIT
// What scripts see of a list controller.
#include "host/anim/list_control.h"

namespace corvanta {

const FPInterfaceDesc& IListControl::GetDesc() const {
  static const FPInterfaceDesc desc(
      kListControlInterface, L"list",
      {
          {kGetCount, L"getCount", FPType::Int},
          {kGetActive, L"getActive", FPType::Index},
          {kSetActive, L"setActive", FPType::Void, {{L"index", FPType::Index}}},
          {kGetName, L"getName", FPType::String, {{L"index", FPType::Index}}},
          {kSetName, L"setName", FPType::Void, {{L"index", FPType::Index}, {L"name", FPType::String}}},
          {kGetEntry, L"getSubCtrl", FPType::Control, {{L"index", FPType::Index}}},
          {kAppend, L"append", FPType::Bool, {{L"controller", FPType::Control}}},
          {kDelete, L"delete", FPType::Bool, {{L"index", FPType::Index}}},
          {kReplace, L"replace", FPType::Bool, {{L"index", FPType::Index}, {L"controller", FPType::Control}}},
      },
      {{kGetCount, -1, L"count", FPType::Int}, {kGetActive, kSetActive, L"active", FPType::Index}});
  return desc;
}

FPStatus IListControl::Invoke(int id, TimeValue, FPValue& result, std::span<const FPValue> args) {
  const auto index = [&] { return FPArg(args, 0).ToInt(-1); };
  const auto control = [&](size_t i) {
    ReferenceTarget* target = FPArg(args, i).ToTarget();
    return target ? target->AsControl() : nullptr;
  };
  switch (id) {
    case kGetCount:
      result = GetListCount();
      break;
    case kGetActive:
      result = GetActive();
      break;
    case kSetActive:
      SetActive(index());
      break;
    case kGetName:
      result = GetName(index());
      break;
    case kSetName:
      SetName(index(), FPArg(args, 1).ToWStr());
      break;
    case kGetEntry:
      result = TargetValue(GetEntry(index()));
      break;
    case kAppend:
      result = Append(control(0));
      break;
    case kDelete:
      result = Delete(index());
      break;
    case kReplace:
      result = ReplaceEntry(index(), control(1));
      break;
    default:
      return FPStatus::NoSuchFunction;
  }
  return FPStatus::OK;
}

}  // namespace corvanta
