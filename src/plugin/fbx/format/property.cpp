// SPDX-License-Identifier: MIT
// Values of properties: conversion between the types of files and those that are asked for, and unpacking of arrays.
#include <zlib.h>

#include <cmath>
#include <limits>
#include <type_traits>

#include "plugin/fbx/format/document.h"
#include "plugin/fbx/format/property_layout.h"

namespace tavrilon::fbx {

namespace {

template <class To>
To FloatToInt(double value) {
  constexpr double kLowest = static_cast<double>(std::numeric_limits<To>::min());  // a power of two: exact
  if (std::isnan(value)) return 0;
  if (value < kLowest) return std::numeric_limits<To>::min();
  if (value >= -kLowest) return std::numeric_limits<To>::max();
  return static_cast<To>(value);
}

template <class To, class From>
To Cast(From value) {
  if constexpr (std::is_integral_v<To> && std::is_floating_point_v<From>) {
    return FloatToInt<To>(value);
  } else if constexpr (std::is_integral_v<To> && sizeof(From) > sizeof(To)) {
    using Limits = std::numeric_limits<To>;
    return value < Limits::min() ? Limits::min() : value > Limits::max() ? Limits::max() : static_cast<To>(value);
  } else {
    return static_cast<To>(value);
  }
}

/// Calls `use` with a value of the type that a number, or each value of an array, has in the file.
template <class Use>
void WithFileType(PropertyType type, const Use& use) {
  switch (type) {
    case PropertyType::Bool:
    case PropertyType::BoolArray:
      return use(uint8_t());
    case PropertyType::Int16:
      return use(int16_t());
    case PropertyType::Int32:
    case PropertyType::Int32Array:
      return use(int32_t());
    case PropertyType::Int64:
    case PropertyType::Int64Array:
      return use(int64_t());
    case PropertyType::Float:
    case PropertyType::FloatArray:
      return use(float());
    case PropertyType::Double:
    case PropertyType::DoubleArray:
      return use(double());
    case PropertyType::String:
    case PropertyType::Raw:
      return;
  }
}

template <class To>
To NumberAt(PropertyType type, const uint8_t* at, To otherwise) {
  WithFileType(type, [&](auto zero) { otherwise = Cast<To>(LoadFrom<decltype(zero)>(at)); });
  return otherwise;
}

template <class To>
void ConvertArray(PropertyType type, const uint8_t* from, std::vector<To>& to) {
  WithFileType(type, [&](auto zero) {
    using From = decltype(zero);
    for (size_t i = 0; i < to.size(); ++i) to[i] = Cast<To>(LoadFrom<From>(from + i * sizeof(From)));
  });
}

template <class T>
constexpr PropertyType kArrayOf = PropertyType::Raw;
template <>
constexpr PropertyType kArrayOf<int32_t> = PropertyType::Int32Array;
template <>
constexpr PropertyType kArrayOf<int64_t> = PropertyType::Int64Array;
template <>
constexpr PropertyType kArrayOf<float> = PropertyType::FloatArray;
template <>
constexpr PropertyType kArrayOf<double> = PropertyType::DoubleArray;

}  // namespace

const uint8_t* PropertyView::Data() const { return document_->bytes_.data() + document_->properties_[index_]; }

PropertyType PropertyView::Type() const { return LayoutOf(*Data()).type; }
bool PropertyView::IsNumber() const { return LayoutOf(*Data()).kind == PropertyKind::Number; }
bool PropertyView::IsArray() const { return LayoutOf(*Data()).kind == PropertyKind::Array; }

int64_t PropertyView::AsInt(int64_t otherwise) const {
  return IsNumber() ? NumberAt<int64_t>(Type(), Data() + 1, otherwise) : otherwise;
}

double PropertyView::AsDouble(double otherwise) const {
  return IsNumber() ? NumberAt<double>(Type(), Data() + 1, otherwise) : otherwise;
}

std::string_view PropertyView::AsText() const {
  if (!IsText()) return {};
  const uint8_t* data = Data();
  return {reinterpret_cast<const char*>(data) + 5, LoadFrom<uint32_t>(data + 1)};
}

size_t PropertyView::Count() const {
  if (IsArray()) return LoadFrom<uint32_t>(Data() + 1);
  return IsNumber() ? 1 : 0;
}

bool PropertyView::Unpack(uint8_t* to, size_t size) const {
  if (size == 0) return true;
  const uint8_t* data = Data() + 1 + kArrayHeader;
  const uint32_t packed = LoadFrom<uint32_t>(data - 4);
  uLongf filled = size;
  if (uncompress(to, &filled, data, packed) == Z_OK && filled == size) return true;
  return document_->FailAtProperty(
      index_, "the packed array of " + std::to_string(Count()) + " values is damaged; export the file again");
}

template <class T>
bool PropertyView::ReadArray(std::vector<T>& values) const {
  const PropertyLayout layout = LayoutOf(*Data());
  const uint64_t count = Count(), size = count * layout.size;
  if (!document_->Spend(std::max<uint64_t>(size, count * sizeof(T)), index_)) return false;
  const uint8_t* raw = Data() + 1 + kArrayHeader;
  const bool packed = LoadFrom<uint32_t>(Data() + 5) == kZlibEncoding;
  if (packed && layout.type == kArrayOf<T>) {
    values.resize(count);
    return Unpack(reinterpret_cast<uint8_t*>(values.data()), size);
  }
  if (packed) {
    document_->scratch_.resize(size);
    if (!Unpack(document_->scratch_.data(), size)) return false;
    raw = document_->scratch_.data();
  }
  values.resize(count);
  if (layout.type != kArrayOf<T>)
    ConvertArray(layout.type, raw, values);
  else if (count > 0)
    std::memcpy(values.data(), raw, size);
  return true;
}

template <class T>
bool PropertyView::Read(std::vector<T>& values) const {
  values.clear();
  if (IsNumber()) values.push_back(NumberAt<T>(Type(), Data() + 1, T()));
  if (!IsArray()) return IsNumber();
  const bool good = ReadArray(values);
  if (!good) values.clear();
  return good;
}

template bool PropertyView::Read(std::vector<int32_t>&) const;
template bool PropertyView::Read(std::vector<int64_t>&) const;
template bool PropertyView::Read(std::vector<float>&) const;
template bool PropertyView::Read(std::vector<double>&) const;

}  // namespace tavrilon::fbx
