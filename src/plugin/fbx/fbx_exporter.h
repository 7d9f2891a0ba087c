// SPDX-License-Identifier: MIT
// The exporter as the host knows it: picked by a file's extension, with the options that were used last.
#pragma once

#include "plugin/fbx/fbx_export.h"
#include "plugin/frame/class_table.h"

namespace tavrilon {

class TavrilonFBXExporter final : public corvanta::SceneExport {
 public:
  corvanta::Class_ID ClassID() const override { return ClassIdOf(TavrilonClass::TavrilonFBXExporter); }
  corvanta::WStr GetClassName() const override { return DescOf(TavrilonClass::TavrilonFBXExporter).className; }

  std::vector<corvanta::WStr> Extensions() const override { return {L"fbx"}; }
  corvanta::WStr ShortDesc() const override { return L"Tavrilon FBX Exporter"; }
  corvanta::WStr LongDesc() const override {
    return L"Tavrilon FBX Exporter\nExports skeletal meshes and baked animation.";
  }
  /// Writes the selected nodes; the whole scene (`selectedOnly` off) is refused: "Unsupported FBX export options.".
  bool DoExport(const corvanta::WStr& file, bool suppressPrompts, bool selectedOnly,
                corvanta::ExchangeReport& report) override;
};

}  // namespace tavrilon
