// SPDX-License-Identifier: MIT
// The core interface "FBXExport": export of the selection by scripts, with options of its own.
#pragma once

#include "host/core/published.h"
#include "plugin/fbx/fbx_export.h"

namespace tavrilon {

class FbxExportInterface final : public corvanta::FPInterface {
 public:
  enum Function : int {
    kExportFile = 0,
    kGetExportSkeletalMesh = 1,
    kSetExportSkeletalMesh = 2,
    kGetExportAnimation = 3,
    kSetExportAnimation = 4,
    kGetTimeSegment = 5,
    kSetTimeSegment = 6,
    kGetStartFrame = 7,
    kSetStartFrame = 8,
    kGetEndFrame = 9,
    kSetEndFrame = 10,
    kGetSubSamples = 11,
    kSetSubSamples = 12,
    kGetError = 13,
    kGetLog = 14,
  };
  static constexpr corvanta::Interface_ID kId{0x61A849D3, 0x2E7B530D};

  const corvanta::FPInterfaceDesc& GetDesc() const override;
  /// `ExportFile` gives false on failure; `Error` is then its message, and `Log` what was left out or changed.
  corvanta::FPStatus Invoke(int id, corvanta::TimeValue t, corvanta::FPValue& result,
                            std::span<const corvanta::FPValue> args) override;
  /// As after the start of the program.
  void Clear();

 private:
  FbxExportOptions options_;
  corvanta::ExchangeReport report_;
};

/// The one instance, found by scripts from library load on.
FbxExportInterface& GetFbxExportInterface();

}  // namespace tavrilon
