// SPDX-License-Identifier: MIT
// From a file's scene to a plan of what to make. Each part of the conversion has a file of its own.
#pragma once

#include <unordered_map>

#include "plugin/fbx/fbx_import.h"
#include "plugin/fbx/format/scene.h"
#include "plugin/fbx/importer/import_plan.h"

namespace tavrilon::fbx_import {

/// What the parts of a conversion share.
struct Conversion {
  fbx::FbxScene& scene;
  const FbxImportOptions& options;
  const ImportContext& context;
  ImportPlan& plan;
  /// Null when nothing moves, or animation is not asked for.
  const fbx::FbxAnimStack* stack = nullptr;
  /// Of each planned node.
  std::vector<const fbx::FbxNode*> sources;
  std::unordered_map<const fbx::FbxNode*, int> numbers;

  void Note(const std::string& kind, const std::string& where) const { scene.Log().Note(kind, where); }
  int NumberOf(const fbx::FbxNode* node) const {
    const auto found = numbers.find(node);
    return found == numbers.end() ? -1 : found->second;
  }
};

/// Fills `plan`, turning and scaling `scene` on the way. What is left out or changed goes to the scene's log. Empty, or
/// why it cannot be done.
corvanta::WStr ConvertScene(fbx::FbxScene& scene, const FbxImportOptions& options, const ImportContext& context,
                            ImportPlan& plan);

// The parts, in this order. Each gives an empty text or why it failed.
corvanta::WStr ConvertNodes(Conversion& conversion);
corvanta::WStr PlanTime(Conversion& conversion);
corvanta::WStr ConvertTransforms(Conversion& conversion);
void ConvertMaterials(Conversion& conversion);
corvanta::WStr ConvertMeshes(Conversion& conversion);

/// Share of the whole that is done when a part of the conversion is; false when the user stops it.
bool ShowConversion(double share);
inline constexpr wchar_t kImportTitle[] = L"Tavrilon FBX Import";

// Numbers as the host keeps them. Beyond this size, and without being finite, they are no lengths, and squares of them
// leave single precision.
inline constexpr double kLargest = 1e15;
bool IsSane(double v);
bool IsSane(const fbx::Vector3& v);
bool IsSane(const fbx::Affine& m);
corvanta::Point3 ToPoint3(const fbx::Vector3& v);
corvanta::Matrix3 ToMatrix3(const fbx::Affine& m);

}  // namespace tavrilon::fbx_import
