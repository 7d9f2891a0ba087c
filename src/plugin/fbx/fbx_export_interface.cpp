// SPDX-License-Identifier: MIT
#include "plugin/fbx/fbx_export_interface.h"

#include "host/scene/scene.h"
#include "plugin/frame/core_interfaces.h"

namespace tavrilon {

using namespace corvanta;
using I = FbxExportInterface;

namespace {

constexpr int kTimeSegmentEnum = 0;

}  // namespace

const FPInterfaceDesc& FbxExportInterface::GetDesc() const {
  static const FPInterfaceDesc desc(
      kId, L"FBXExport", {{I::kExportFile, L"ExportFile", FPType::Bool, {{L"filename", FPType::FileName}}}},
      {
          {I::kGetExportSkeletalMesh, I::kSetExportSkeletalMesh, L"ExportSkeletalMesh", FPType::Bool},
          {I::kGetExportAnimation, I::kSetExportAnimation, L"ExportAnimation", FPType::Bool},
          {I::kGetTimeSegment, I::kSetTimeSegment, L"TimeSegment", FPType::Enum, kTimeSegmentEnum},
          {I::kGetStartFrame, I::kSetStartFrame, L"StartFrame", FPType::Int},
          {I::kGetEndFrame, I::kSetEndFrame, L"EndFrame", FPType::Int},
          {I::kGetSubSamples, I::kSetSubSamples, L"SubSamples", FPType::Int},
          {I::kGetError, -1, L"Error", FPType::String},
          {I::kGetLog, -1, L"Log", FPType::StringTab},
      },
      {{kTimeSegmentEnum,
        {{L"Active", static_cast<int>(FbxTimeSegment::Active)}, {L"Range", static_cast<int>(FbxTimeSegment::Range)}}}});
  return desc;
}

FPStatus FbxExportInterface::Invoke(int id, TimeValue, FPValue& result, std::span<const FPValue> args) {
  switch (id) {
    case kExportFile:
      result = ExportFbx(GetScene().Selection(), FPArg(args, 0).ToWStr(), options_, report_);
      break;
    case kGetExportSkeletalMesh:
      result = options_.skeletalMesh;
      break;
    case kSetExportSkeletalMesh:
      options_.skeletalMesh = FPArg(args, 0).ToBool();
      break;
    case kGetExportAnimation:
      result = options_.animation;
      break;
    case kSetExportAnimation:
      options_.animation = FPArg(args, 0).ToBool();
      break;
    case kGetTimeSegment:
      result = options_.timeSegment;
      break;
    case kSetTimeSegment:
      options_.timeSegment = FPArg(args, 0).ToInt();
      break;
    case kGetStartFrame:
      result = options_.startFrame;
      break;
    case kSetStartFrame:
      options_.startFrame = FPArg(args, 0).ToInt();
      break;
    case kGetEndFrame:
      result = options_.endFrame;
      break;
    case kSetEndFrame:
      options_.endFrame = FPArg(args, 0).ToInt();
      break;
    case kGetSubSamples:
      result = options_.subSamples;
      break;
    case kSetSubSamples:
      options_.subSamples = FPArg(args, 0).ToInt();
      break;
    case kGetError:
      result = report_.error;
      break;
    case kGetLog:
      result = FPValue::Tab(report_.log.begin(), report_.log.end());
      break;
    default:
      return FPStatus::NoSuchFunction;
  }
  return FPStatus::OK;
}

void FbxExportInterface::Clear() {
  options_ = {};
  report_ = {};
}

FbxExportInterface& GetFbxExportInterface() {
  static FbxExportInterface instance;
  return instance;
}

FPInterface& FbxExportCoreInterface() { return GetFbxExportInterface(); }

}  // namespace tavrilon
