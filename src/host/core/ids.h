// SPDX-License-Identifier: MIT
// The numbers by which classes and interfaces are known. A class is named by its super class and Class_ID together:
// some pairs of words are used under two super classes.
#pragma once

#include <cstdint>
#include <functional>

namespace corvanta {

using SClass_ID = uint32_t;
enum : SClass_ID {
  kNodeSuper = 1,
  kDerivedObjectSuper = 2,
  kGeomObjectSuper = 0x10,
  kShapeSuper = 0x40,
  kHelperSuper = 0x50,
  kSystemSuper = 0x60,
  kReferenceTargetSuper = 0x200,
  kModifierSuper = 0x810,
  kSceneImportSuper = 0xA10,
  kSceneExportSuper = 0xA20,
  kCustAttribSuper = 0x1160,
  kMaterialSuper = 0x4801,
  kTextureMapSuper = 0x4802,
  kParamBlockSuper = 0x8202,
  kFloatControlSuper = 0x9003,
  kPoint3ControlSuper = 0x9005,
  kMatrixControlSuper = 0x9008,
  kPositionControlSuper = 0x900B,
  kRotationControlSuper = 0x900C,
  kScaleControlSuper = 0x900D,
  kPoint4ControlSuper = 0x9012,
  kAnySuper = 0xFFFFFFF0,
};

template <class Tag>
struct WordPair {
  uint32_t a = 0, b = 0;
  constexpr bool operator==(const WordPair&) const = default;
  constexpr auto operator<=>(const WordPair&) const = default;
};
using Class_ID = WordPair<struct ClassIdTag>;
using Interface_ID = WordPair<struct InterfaceIdTag>;

/// First word of the host's own classes that carry no told number.
inline constexpr uint32_t kHostClassWord = 0x48535400;

}  // namespace corvanta

template <class Tag>
struct std::hash<corvanta::WordPair<Tag>> {
  size_t operator()(const corvanta::WordPair<Tag>& id) const noexcept {
    return std::hash<uint64_t>{}(uint64_t{id.a} << 32 | id.b);
  }
};
