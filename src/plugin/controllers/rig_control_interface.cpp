// SPDX-License-Identifier: MIT
#include "plugin/controllers/rig_control_interface.h"

namespace tavrilon {

using namespace corvanta;
using I = IRigControl;

const FPInterfaceDesc& IRigControl::GetDesc() const {
  static const FPInterfaceDesc desc(kId, L"interface", {{I::kResetFigure, L"ResetFigure", FPType::Void}},
                                    {
                                        {I::kGetOffsetPos, I::kSetOffsetPos, L"offset_pos", FPType::Point3},
                                        {I::kGetOffsetRot, I::kSetOffsetRot, L"offset_rot", FPType::Quat},
                                        {I::kGetOffsetScale, I::kSetOffsetScale, L"offset_scale", FPType::Point3},
                                        {I::kGetOffsetTM, I::kSetOffsetTM, L"offset_tm", FPType::Matrix3},
                                        {I::kGetFigureMode, I::kSetFigureMode, L"figure_mode", FPType::Bool},
                                    });
  return desc;
}

namespace {

template <class T>
const T* ArgOf(std::span<const FPValue> args) {
  return FPArg(args, 0).As<T>();
}

}  // namespace

FPStatus IRigControl::Invoke(int id, TimeValue, FPValue& result, std::span<const FPValue> args) {
  switch (id) {
    case kGetOffsetPos:
      result = GetOffsetPos();
      return FPStatus::OK;
    case kSetOffsetPos:
      SetOffsetPos(FPArg(args, 0).ToPoint3());
      return FPStatus::OK;
    case kGetOffsetRot:
      result = GetOffsetRot();
      return FPStatus::OK;
    case kSetOffsetRot:
      if (!ArgOf<Quat>(args)) return FPStatus::Failed;
      SetOffsetRot(*ArgOf<Quat>(args));
      return FPStatus::OK;
    case kGetOffsetScale:
      result = GetOffsetScale();
      return FPStatus::OK;
    case kSetOffsetScale:
      SetOffsetScale(FPArg(args, 0).ToPoint3());
      return FPStatus::OK;
    case kGetOffsetTM:
      result = GetOffsetTM();
      return FPStatus::OK;
    case kSetOffsetTM:
      if (!ArgOf<Matrix3>(args)) return FPStatus::Failed;
      SetOffsetTM(*ArgOf<Matrix3>(args));
      return FPStatus::OK;
    case kGetFigureMode:
      result = GetFigureMode();
      return FPStatus::OK;
    case kSetFigureMode:
      SetFigureMode(FPArg(args, 0).ToBool());
      return FPStatus::OK;
    case kResetFigure:
      ResetFigure();
      return FPStatus::OK;
    default:
      return FPStatus::NoSuchFunction;
  }
}

}  // namespace tavrilon
