// SPDX-License-Identifier: MIT
// Trees of records as plain values: random ones, written as binary files and as ASCII files, and read back.
#pragma once

#include <cmath>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>
#include <string>
#include <type_traits>
#include <variant>
#include <vector>

#include "plugin/fbx/format/document.h"
#include "plugin/fbx/format/document_writer.h"

namespace tavrilon::fbx {

using Bytes = std::vector<uint8_t>;
using Value = std::variant<bool, int16_t, int32_t, int64_t, float, double, std::string, Bytes, std::vector<int32_t>,
                           std::vector<int64_t>, std::vector<float>, std::vector<double>>;

struct Tree {
  std::string name;
  std::vector<Value> values;
  std::vector<Tree> children;
  bool operator==(const Tree&) const = default;
};
using Forest = std::vector<Tree>;

inline Bytes ToBytes(std::string_view text) { return {text.begin(), text.end()}; }

class RandomForest {
 public:
  explicit RandomForest(uint32_t seed) : rng_(seed) {}

  /// Records of up to five levels.
  Forest Make(int levels = 5) {
    Forest forest;
    for (int i = Below(levels == 5 ? 6 : 4); i > 0 && levels > 0; --i) {
      Tree tree{Name(), {}, Make(levels - 1)};
      for (int k = Below(4); k > 0; --k) tree.values.push_back(MakeValue());
      forest.push_back(std::move(tree));
    }
    return forest;
  }

 private:
  int Below(int n) { return static_cast<int>(rng_() % static_cast<uint32_t>(n)); }
  std::string Name() {
    std::string name(1, static_cast<char>('A' + Below(26)));
    while (Below(6) > 0) name += static_cast<char>(Below(2) ? '0' + Below(10) : 'a' + Below(26));
    return name;
  }
  std::string Text() {
    std::string text;
    for (int i = Below(12); i > 0; --i)
      text += std::vector<std::string>{"a", " ", "\"", ";", ",", "{", "}", "\n", "|", "\xC3\xA4", "#", "7"}[Below(12)];
    return text;
  }
  // Of whole numbers, small ones and those that need all bits.
  template <class T>
  T Number() {
    if constexpr (std::is_integral_v<T>)
      return static_cast<T>((uint64_t{rng_()} << 32 | rng_()) >> (Below(2) ? 0 : 58));
    else
      return static_cast<T>(std::uniform_real_distribution<double>(-1, 1)(rng_) * std::pow(10.0, Below(60) - 30));
  }
  template <class T>
  std::vector<T> Numbers() {
    const size_t sizes[] = {0, 1, 5, 127, 128, 300, 700};
    std::vector<T> numbers(sizes[Below(7)]);
    const bool random = Below(2) > 0;  // else such that deflating pays
    for (size_t i = 0; i < numbers.size(); ++i) numbers[i] = random ? Number<T>() : static_cast<T>(i * 3);
    return numbers;
  }
  Value MakeValue() {
    switch (Below(12)) {
      case 0:
        return Below(2) > 0;
      case 1:
        return Number<int16_t>();
      case 2:
        return Number<int32_t>();
      case 3:
        return Number<int64_t>();
      case 4:
        return Number<float>();
      case 5:
        return Number<double>();
      case 6:
        return Text();
      case 7:
        return ToBytes(Text());
      case 8:
        return Numbers<int32_t>();
      case 9:
        return Numbers<int64_t>();
      case 10:
        return Numbers<float>();
      default:
        return Numbers<double>();
    }
  }

  std::mt19937 rng_;
};

inline void Put(FbxDocumentWriter& out, const Value& value) {
  std::visit(
      [&](const auto& v) {
        using T = std::decay_t<decltype(v)>;
        if constexpr (std::is_same_v<T, bool>)
          out.Bool(v);
        else if constexpr (std::is_same_v<T, int16_t>)
          out.Int16(v);
        else if constexpr (std::is_same_v<T, int32_t>)
          out.Int(v);
        else if constexpr (std::is_same_v<T, int64_t>)
          out.Long(v);
        else if constexpr (std::is_same_v<T, float>)
          out.Float(v);
        else if constexpr (std::is_same_v<T, double>)
          out.Double(v);
        else if constexpr (std::is_same_v<T, std::string>)
          out.Text(v);
        else if constexpr (std::is_same_v<T, Bytes>)
          out.Raw(v);
        else
          out.Array(std::span(v));
      },
      value);
}

inline void Put(FbxDocumentWriter& out, const Forest& forest) {
  for (const Tree& tree : forest) {
    out.Begin(tree.name);
    for (const Value& value : tree.values) Put(out, value);
    Put(out, tree.children);
    out.End();
  }
}

inline Bytes ToBinary(const Forest& forest, int version) {
  FbxDocumentWriter out(version);
  Put(out, forest);
  return out.Finish();
}

template <class T>
Value ReadArray(PropertyView property) {
  std::vector<T> values;
  property.Read(values);
  return values;
}

inline Value ReadValue(PropertyView property) {
  switch (property.Type()) {
    case PropertyType::Bool:
      return property.AsInt() != 0;
    case PropertyType::Int16:
      return static_cast<int16_t>(property.AsInt());
    case PropertyType::Int32:
      return static_cast<int32_t>(property.AsInt());
    case PropertyType::Int64:
      return property.AsInt();
    case PropertyType::Float:
      return static_cast<float>(property.AsDouble());
    case PropertyType::Double:
      return property.AsDouble();
    case PropertyType::String:
      return std::string(property.AsText());
    case PropertyType::Raw:
      return ToBytes(property.AsText());
    case PropertyType::BoolArray:
    case PropertyType::Int32Array:
      return ReadArray<int32_t>(property);
    case PropertyType::Int64Array:
      return ReadArray<int64_t>(property);
    case PropertyType::FloatArray:
      return ReadArray<float>(property);
    case PropertyType::DoubleArray:
      return ReadArray<double>(property);
  }
  return false;
}

inline Forest ReadForest(RecordView::Range records) {
  Forest forest;
  for (const RecordView record : records) {
    Tree tree{std::string(record.Name()), {}, ReadForest(record.Children())};
    for (size_t i = 0; i < record.NumProperties(); ++i) tree.values.push_back(ReadValue(record.Property(i)));
    forest.push_back(std::move(tree));
  }
  return forest;
}

/// As in ASCII files: numbers as they print, arrays with their count.
inline void PrintAscii(std::ostream& out, const Value& value) {
  std::visit(
      [&](const auto& v) {
        using T = std::decay_t<decltype(v)>;
        if constexpr (std::is_arithmetic_v<T>) {
          out << v;
        } else if constexpr (std::is_same_v<T, std::string> || std::is_same_v<T, Bytes>) {
          out << '"';
          for (const char c : v) c == '"' ? out << "&quot;" : out << c;
          out << '"';
        } else {
          out << '*' << v.size() << " {\n\ta: ";
          for (size_t i = 0; i < v.size(); ++i) out << (i == 0 ? "" : i % 20 == 0 ? ",\n" : ",") << v[i];
          out << "\n\t}";
        }
      },
      value);
}

inline void PrintAscii(std::ostream& out, const Forest& forest) {
  for (const Tree& tree : forest) {
    out << tree.name << ": ";
    for (size_t i = 0; i < tree.values.size(); ++i) PrintAscii(out << (i > 0 ? ", " : ""), tree.values[i]);
    if (!tree.children.empty()) PrintAscii(out << " {\n", tree.children);
    out << (tree.children.empty() ? "\n" : "}\n");
  }
}

inline Bytes ToAscii(const Forest& forest) {
  std::ostringstream out;
  out.precision(17);
  out << "; FBX 7.4.0 project file\n";
  PrintAscii(out, forest);
  return ToBytes(out.str());
}

inline Bytes ReadDataFile(const std::string& name) {
  std::ifstream in(TAVRILON_SOURCE_DIR "/examples/" + name, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

}  // namespace tavrilon::fbx
