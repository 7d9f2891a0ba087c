// SPDX-License-Identifier: MIT
// The core interface "FBXImport": the import for scripts, its options, and what the last one had to tell.
#pragma once

#include "host/core/published.h"
#include "plugin/fbx/fbx_import.h"

namespace tavrilon {

class FbxImportInterface final : public corvanta::FPInterface {
 public:
  enum Function : int {
    kImportFile = 0,
    kGetImportSkeletalMesh = 1,
    kSetImportSkeletalMesh = 2,
    kGetImportAnimation = 3,
    kSetImportAnimation = 4,
    kGetStack = 5,
    kSetStack = 6,
    kGetLog = 7,
    kGetError = 8,
  };
  /// Beside the importer class.
  static constexpr corvanta::Interface_ID kId{0x5D9B730A, 0x37C248F2};

  const corvanta::FPInterfaceDesc& GetDesc() const override;
  corvanta::FPStatus Invoke(int id, corvanta::TimeValue t, corvanta::FPValue& result,
                            std::span<const corvanta::FPValue> args) override;

  /// What is set here counts for the importer class as well.
  const FbxImportOptions& Options() const { return options_; }
  bool ImportFile(const corvanta::WStr& file);

 private:
  FbxImportOptions options_;
  corvanta::ExchangeReport report_;
};

FbxImportInterface& GetFbxImportInterface();

}  // namespace tavrilon
