// SPDX-License-Identifier: MIT
#include "plugin/fbx/fbx_exporter.h"

#include "host/scene/scene.h"
#include "plugin/fbx/fbx_export_settings.h"

namespace tavrilon {

using namespace corvanta;

bool TavrilonFBXExporter::DoExport(const WStr& file, bool, bool selectedOnly, ExchangeReport& report) {
  if (!selectedOnly) {
    report = {};
    report.error = L"Unsupported FBX export options.";
    report.log.push_back(L"FBX files are written from selected nodes: select them and export the selection.");
    return false;
  }
  return ExportFbx(GetScene().Selection(), file, LoadFbxExportOptions(), report);
}

ReferenceTarget* CreateTavrilonFBXExporter(bool) { return new TavrilonFBXExporter; }

}  // namespace tavrilon
