// SPDX-License-Identifier: MIT
#include "plugin/fbx/importer/conversion.h"

namespace tavrilon::fbx_import {

using namespace corvanta;
using namespace fbx;

namespace {

/// Axes first, then the unit, both before anything is read.
WStr ConvertSystem(FbxScene& scene, const FbxImportOptions& options, const ImportContext& context) {
  if (!FbxAxisSystem::ZUp().ConvertScene(scene)) return L"The file's axis system is not sound.";
  const double file = scene.GetGlobalSettings().GetSystemUnit().centimetres;
  const double unit = options.convertUnits ? context.centimetres : file;
  const FbxSystemUnit wanted{unit / options.scaleFactor, 1};
  if (!(wanted.centimetres > 0) || !std::isfinite(wanted.centimetres)) return L"The scale of the import is not sound.";
  if (!wanted.ConvertScene(scene)) return L"The file's unit is not sound.";
  return {};
}

const FbxAnimStack* FindStack(const FbxScene& scene, const WStr& name) {
  if (name.empty()) return scene.CurrentStack();
  const std::string wanted = ToUtf8(name);
  for (const FbxAnimStack* stack : scene.Stacks())
    if (stack->GetName() == wanted) return stack;
  return nullptr;
}

WStr NoSuchStack(const FbxScene& scene, const WStr& name) {
  WStr text = L"The file has no animation stack \"" + name + L"\".";
  const wchar_t* before = L" It has: ";
  for (const FbxAnimStack* stack : scene.Stacks()) {
    text += before + FromUtf8(stack->GetName());
    before = L", ";
  }
  return text;
}

}  // namespace

WStr ConvertScene(FbxScene& scene, const FbxImportOptions& options, const ImportContext& context, ImportPlan& plan) {
  Conversion conversion{scene, options, context, plan, nullptr, {}, {}};
  if (options.animation) {
    conversion.stack = FindStack(scene, options.stack);
    if (!conversion.stack && !options.stack.empty()) return NoSuchStack(scene, options.stack);
  }
  if (const WStr error = ConvertSystem(scene, options, context); !error.empty()) return error;
  if (const WStr error = ConvertNodes(conversion); !error.empty()) return error;
  if (const WStr error = PlanTime(conversion); !error.empty()) return error;
  if (const WStr error = ConvertTransforms(conversion); !error.empty()) return error;
  if (!options.skeletalMesh) return {};
  ConvertMaterials(conversion);
  return ConvertMeshes(conversion);
}

// Reading the file is the first quarter, making the nodes the last.
bool ShowConversion(double share) { return ShowProgress(kImportTitle, 0.25 + 0.5 * share); }

bool IsSane(double v) { return std::abs(v) <= kLargest; }
bool IsSane(const Vector3& v) { return IsSane(v.x) && IsSane(v.y) && IsSane(v.z); }
bool IsSane(const Affine& m) { return IsSane(m.row[0]) && IsSane(m.row[1]) && IsSane(m.row[2]) && IsSane(m.row[3]); }

Point3 ToPoint3(const Vector3& v) {
  return {static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z)};
}
Matrix3 ToMatrix3(const Affine& m) {
  Matrix3 result;
  for (int i = 0; i < 4; ++i) result.SetRow(i, ToPoint3(m.row[i]));
  return result;
}

}  // namespace tavrilon::fbx_import
