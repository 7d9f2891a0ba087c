// SPDX-License-Identifier: MIT
#include "plugin/fbx/fbx_import_interface.h"

#include "plugin/frame/core_interfaces.h"

namespace tavrilon {

using namespace corvanta;
using I = FbxImportInterface;

const FPInterfaceDesc& FbxImportInterface::GetDesc() const {
  static const FPInterfaceDesc desc(
      kId, L"FBXImport", {{I::kImportFile, L"ImportFile", FPType::Bool, {{L"filename", FPType::FileName}}}},
      {
          {I::kGetImportSkeletalMesh, I::kSetImportSkeletalMesh, L"ImportSkeletalMesh", FPType::Bool},
          {I::kGetImportAnimation, I::kSetImportAnimation, L"ImportAnimation", FPType::Bool},
          {I::kGetStack, I::kSetStack, L"Stack", FPType::String},
          {I::kGetLog, -1, L"Log", FPType::StringTab},
          {I::kGetError, -1, L"Error", FPType::String},
      });
  return desc;
}

FPStatus FbxImportInterface::Invoke(int id, TimeValue, FPValue& result, std::span<const FPValue> args) {
  switch (id) {
    case kImportFile:
      result = ImportFile(FPArg(args, 0).ToWStr());
      break;
    case kGetImportSkeletalMesh:
      result = options_.skeletalMesh;
      break;
    case kSetImportSkeletalMesh:
      options_.skeletalMesh = FPArg(args, 0).ToBool();
      break;
    case kGetImportAnimation:
      result = options_.animation;
      break;
    case kSetImportAnimation:
      options_.animation = FPArg(args, 0).ToBool();
      break;
    case kGetStack:
      result = options_.stack;
      break;
    case kSetStack:
      options_.stack = FPArg(args, 0).ToWStr();
      break;
    case kGetLog:
      result = FPValue::Tab(report_.log.begin(), report_.log.end());
      break;
    case kGetError:
      result = report_.error;
      break;
    default:
      return FPStatus::NoSuchFunction;
  }
  return FPStatus::OK;
}

bool FbxImportInterface::ImportFile(const WStr& file) { return ImportFbx(file, options_, report_); }

FbxImportInterface& GetFbxImportInterface() {
  static FbxImportInterface instance;
  return instance;
}

FPInterface& FbxImportCoreInterface() { return GetFbxImportInterface(); }

}  // namespace tavrilon
