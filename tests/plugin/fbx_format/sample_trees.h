// SPDX-License-Identifier: MIT
// Trees of records as plain values: random ones, written as binary files and as ASCII files, and read back.
#pragma once

#include <gtest/gtest.h>

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
      for (int k = Below(4); k > 0; --k)
        tree.values.push_back(MakeValue(std::make_index_sequence<std::variant_size_v<Value>>()));
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
  void Fill(bool& value) { value = Below(2) > 0; }
  void Fill(std::string& value) { value = Text(); }
  void Fill(Bytes& value) { value = ToBytes(Text()); }
  template <class T>
  void Fill(std::vector<T>& value) {
    value = Numbers<T>();
  }
  template <class T>
  void Fill(T& value) {
    value = Number<T>();
  }
  template <size_t... kKinds>
  Value MakeValue(std::index_sequence<kKinds...>) {
    const Value empty[] = {Value(std::in_place_index<kKinds>)...};
    Value value = empty[Below(sizeof...(kKinds))];
    std::visit([this](auto& v) { this->Fill(v); }, value);
    return value;
  }

  std::mt19937 rng_;
};

struct ValueWriter {
  FbxDocumentWriter& out;
  void operator()(bool v) const { out.Bool(v); }
  void operator()(int16_t v) const { out.Int16(v); }
  void operator()(int32_t v) const { out.Int(v); }
  void operator()(int64_t v) const { out.Long(v); }
  void operator()(float v) const { out.Float(v); }
  void operator()(double v) const { out.Double(v); }
  void operator()(const std::string& v) const { out.Text(v); }
  void operator()(const Bytes& v) const { out.Raw(v); }
  template <class T>
  void operator()(const std::vector<T>& v) const {
    out.Array(std::span(v));
  }
};

inline void Put(FbxDocumentWriter& out, const Forest& forest) {
  for (const Tree& tree : forest) {
    out.Begin(tree.name);
    for (const Value& value : tree.values) std::visit(ValueWriter{out}, value);
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
  const PropertyType type = property.Type();
  if (type == PropertyType::Bool) return property.AsInt() != 0;
  if (type == PropertyType::Int16) return static_cast<int16_t>(property.AsInt());
  if (type == PropertyType::Int32) return static_cast<int32_t>(property.AsInt());
  if (type == PropertyType::Int64) return property.AsInt();
  if (type == PropertyType::Float) return static_cast<float>(property.AsDouble());
  if (type == PropertyType::Double) return property.AsDouble();
  if (type == PropertyType::String) return std::string(property.AsText());
  if (type == PropertyType::Raw) return ToBytes(property.AsText());
  if (type == PropertyType::Int64Array) return ReadArray<int64_t>(property);
  if (type == PropertyType::FloatArray) return ReadArray<float>(property);
  if (type == PropertyType::DoubleArray) return ReadArray<double>(property);
  return ReadArray<int32_t>(property);
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

/// What is told of a file that is refused; nothing of it stays.
inline std::string ErrorOf(const Bytes& file, const ReadLimits& limits = {}) {
  FbxDocument document;
  EXPECT_FALSE(document.Parse(file, "f.fbx", limits)) << std::string(file.begin(), file.end());
  EXPECT_EQ(document.NumRecords(), 0u);
  EXPECT_FALSE(document.FirstRecord());
  return document.GetStatus().GetErrorString();
}

inline Bytes ReadDataFile(const std::string& name) {
  std::ifstream in(TAVRILON_SOURCE_DIR "/examples/" + name, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

}  // namespace tavrilon::fbx
