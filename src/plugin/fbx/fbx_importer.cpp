// SPDX-License-Identifier: MIT
// The class through which the host's file import reaches this importer.
#include <charconv>

#include "host/script/execute.h"
#include "plugin/fbx/fbx_import_interface.h"
#include "plugin/frame/class_table.h"

namespace tavrilon {

using namespace corvanta;

namespace {

/// A switch that a script stored for the host's file import; on unless it says otherwise.
bool IsOn(const wchar_t* name) { return !EqualsNoCase(GetFBXImporterParam(name), L"false"); }

double ScaleFactor() {
  const std::string text = ToUtf8(GetFBXImporterParam(L"ScaleFactor"));
  double factor = 1;
  std::from_chars(text.data(), text.data() + text.size(), factor);
  return factor;
}

class TavrilonFBXImporter final : public SceneImport {
 public:
  Class_ID ClassID() const override { return ClassIdOf(TavrilonClass::TavrilonFBXImporter); }
  WStr GetClassName() const override { return DescOf(TavrilonClass::TavrilonFBXImporter).className; }
  std::vector<WStr> Extensions() const override { return {L"fbx"}; }
  WStr ShortDesc() const override { return L"Tavrilon FBX Importer"; }
  WStr LongDesc() const override {
    return L"Tavrilon FBX Importer\nImports helpers, bones, hierarchy, transforms, wire colors, skeletal meshes and "
           L"animation.";
  }
  bool DoImport(const WStr& file, bool, ExchangeReport& report) override {
    FbxImportOptions options = GetFbxImportInterface().Options();
    options.skin = IsOn(L"Skin");
    options.convertUnits = IsOn(L"ScaleConversion");
    options.scaleFactor = ScaleFactor();
    return ImportFbx(file, options, report);
  }
};

}  // namespace

ReferenceTarget* CreateTavrilonFBXImporter(bool) { return new TavrilonFBXImporter; }

}  // namespace tavrilon
