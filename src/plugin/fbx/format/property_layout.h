// SPDX-License-Identifier: MIT
// Private to this folder: how properties lie in binary files. A letter, then by its kind
//   number: the value, little-endian
//   text:   length u32, bytes
//   array:  count u32, encoding u32 (0 raw, 1 zlib), bytes u32, data
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "plugin/fbx/format/document.h"

namespace tavrilon::fbx {

static_assert(std::endian::native == std::endian::little, "numbers are copied from and to files as they stand");

enum class PropertyKind : uint8_t { Unknown, Number, Text, Array };

struct PropertyLayout {
  PropertyKind kind = PropertyKind::Unknown;
  PropertyType type = PropertyType::Raw;
  uint8_t size = 0;  // bytes of a number, or of each value of an array
};

/// The layout behind a letter; Unknown for anything else.
constexpr PropertyLayout LayoutOf(uint8_t letter) {
  switch (letter) {
    case 'C':
    case 'B':
      return {PropertyKind::Number, PropertyType::Bool, 1};
    case 'Y':
      return {PropertyKind::Number, PropertyType::Int16, 2};
    case 'I':
      return {PropertyKind::Number, PropertyType::Int32, 4};
    case 'L':
      return {PropertyKind::Number, PropertyType::Int64, 8};
    case 'F':
      return {PropertyKind::Number, PropertyType::Float, 4};
    case 'D':
      return {PropertyKind::Number, PropertyType::Double, 8};
    case 'S':
      return {PropertyKind::Text, PropertyType::String, 0};
    case 'R':
      return {PropertyKind::Text, PropertyType::Raw, 0};
    case 'b':
    case 'c':
      return {PropertyKind::Array, PropertyType::BoolArray, 1};
    case 'i':
      return {PropertyKind::Array, PropertyType::Int32Array, 4};
    case 'l':
      return {PropertyKind::Array, PropertyType::Int64Array, 8};
    case 'f':
      return {PropertyKind::Array, PropertyType::FloatArray, 4};
    case 'd':
      return {PropertyKind::Array, PropertyType::DoubleArray, 8};
    default:
      return {};
  }
}

inline constexpr size_t kArrayHeader = 12;  // behind the letter
inline constexpr uint32_t kRawEncoding = 0, kZlibEncoding = 1;

/// "Kaydara FBX Binary  ", a zero, 1A, and a zero for little-endian; then the version as u32.
inline constexpr char kBinaryMagic[] = "Kaydara FBX Binary  \0\x1A";
inline constexpr size_t kBinaryMagicSize = sizeof(kBinaryMagic) - 1;
inline constexpr size_t kBinaryHeaderSize = 27;

/// Records from this version on have fields of 64 bits.
inline constexpr int kWideVersion = 7500;

template <class T>
T LoadFrom(const uint8_t* at) {
  T value;
  std::memcpy(&value, at, sizeof(T));
  return value;
}

}  // namespace tavrilon::fbx
