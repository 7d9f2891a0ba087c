// SPDX-License-Identifier: MIT
#include "plugin/fbx/format/document.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <map>

#include "plugin/fbx_format/sample_trees.h"

namespace tavrilon::fbx {
namespace {

const Bytes kFooterBegin = {0xfa, 0xbc, 0xab, 0x09, 0xd0, 0xc8, 0xd4, 0x66};

size_t FooterAt(const Bytes& file) {
  return std::search(file.begin(), file.end(), kFooterBegin.begin(), kFooterBegin.end()) - file.begin();
}

/// One record of each kind: without values, with all values, with a block.
Forest SmallForest() {
  return {{"Empty", {}, {}},
          {"Objects",
           {},
           {{"Model", {int64_t{7}, std::string("Hip\0\1Model", 10), std::string("LimbNode")}, {}},
            {"Numbers", {true, int16_t{-2}, int32_t{3}, 1.5f, 2.5, Bytes{1, 2}}, {}},
            {"Curve", {}, {{"Short", {std::vector<float>{1, 2}}, {}}, {"Long", {std::vector<int64_t>(200, 5)}, {}}}}}},
          {"Last", {int32_t{1}}, {}}};
}

struct Totals {
  size_t records = 0, properties = 0, values = 0, failed = 0;
  double sum = 0;
};

/// Reads every value.
void Add(RecordView::Range records, Totals& totals) {
  std::vector<double> values;
  for (const RecordView record : records) {
    ++totals.records;
    totals.properties += record.NumProperties();
    for (size_t i = 0; i < record.NumProperties(); ++i) {
      const PropertyView property = record.Property(i);
      EXPECT_LT(std::string(property.AsText()).size(), 10000u);  // touches every byte
      if (!property.IsArray()) continue;
      if (!property.Read(values)) {
        ++totals.failed;
        continue;
      }
      EXPECT_EQ(values.size(), property.Count());
      totals.values += values.size();
      if (property.Type() == PropertyType::FloatArray || property.Type() == PropertyType::DoubleArray)
        for (const double value : values) totals.sum += value;
    }
    Add(record.Children(), totals);
  }
}

// Figures of a reader in another language, which shares nothing with this one.
struct DataFile {
  const char* name;
  size_t records, properties, values;
  double sumOfReals;
  int models, curves, curveNodes, connections;
};
const DataFile kDataFiles[] = {
    {"mixamo_walk.fbx", 7352, 15549, 91113, 242407.65892724346, 54, 477, 159, 1012},
    {"character_skinned.fbx", 7648, 16166, 77204, 181511.23921654662, 55, 492, 168, 1055},
};

TEST(FbxDocument, DataFiles) {
  for (const DataFile& file : kDataFiles) {
    SCOPED_TRACE(file.name);
    FbxDocument document;
    ASSERT_TRUE(document.Load(std::string(TAVRILON_SOURCE_DIR "/examples/") + file.name))
        << document.GetStatus().GetErrorString();
    EXPECT_EQ(document.Version(), 7400);
    EXPECT_FALSE(document.IsAscii());
    Totals totals;
    Add(document.Records(), totals);
    EXPECT_EQ(totals.failed, 0u);
    EXPECT_EQ(totals.records, file.records);
    EXPECT_EQ(document.NumRecords(), file.records);
    EXPECT_EQ(totals.properties, file.properties);
    EXPECT_EQ(totals.values, file.values);
    EXPECT_NEAR(totals.sum, file.sumOfReals, 1e-6);  // the order of summation differs
    std::map<std::string_view, int> counts;
    for (const RecordView object : document.Find("Objects").Children()) ++counts[object.Name()];
    for (const RecordView connection : document.Find("Connections").Children()) ++counts[connection.Name()];
    EXPECT_EQ(counts["Model"], file.models);
    EXPECT_EQ(counts["AnimationCurve"], file.curves);
    EXPECT_EQ(counts["AnimationCurveNode"], file.curveNodes);
    EXPECT_EQ(counts["C"], file.connections);
    EXPECT_TRUE(document.GetStatus().IsGood());
    EXPECT_LT(document.MemoryUsed(), ReadDataFile(file.name).size() * 3);
  }
}

TEST(FbxDocument, ViewsOfNothingCanBeChained) {
  FbxDocument document;
  ASSERT_TRUE(document.Parse(ToBinary(SmallForest(), 7400), "f.fbx"));
  const RecordView nothing = document.Find("Objects").Find("Absent").Find("Deeper").Next().FirstChild();
  std::vector<float> values{1};
  EXPECT_FALSE(nothing);
  EXPECT_EQ(nothing.Name(), "");
  EXPECT_EQ(nothing.Int(0, 5), 5);
  EXPECT_EQ(nothing.Text(0), "");
  EXPECT_FALSE(nothing.Array(0, values));
  EXPECT_FALSE(nothing.Children().begin() != nothing.Children().end());
  const RecordView model = document.Find("Objects").Find("Model");
  EXPECT_EQ(model.Text(1), std::string_view("Hip\0\1Model", 10));
  EXPECT_EQ(model.Int(3, -1), -1);
  EXPECT_EQ(model.Int(1, -1), -1);
  EXPECT_EQ(model.Next().Name(), "Numbers");
  EXPECT_NE(document.Find("Objects").Find("Curve").Find("Long").Place().find(", Objects/Curve/Long"),
            std::string::npos);
}

constexpr int32_t kMin32 = std::numeric_limits<int32_t>::min(), kMax32 = std::numeric_limits<int32_t>::max();
constexpr int64_t kMin64 = std::numeric_limits<int64_t>::min(), kMax64 = std::numeric_limits<int64_t>::max();
constexpr double kInfinity = std::numeric_limits<double>::infinity(), kNan = std::numeric_limits<double>::quiet_NaN();

TEST(FbxDocument, ConversionsClamp) {
  struct Row {
    const char* name;
    Value value;
    int64_t asInt;
    double asDouble;
    int32_t asInt32;
  };
  const Row rows[] = {
      {"bool", true, 1, 1, 1},
      {"int16", int16_t{-7}, -7, -7, -7},
      {"large", int64_t{1} << 40, int64_t{1} << 40, 1099511627776.0, kMax32},
      {"smallest", kMin64, kMin64, -9223372036854775808.0, kMin32},
      {"fraction", -2.75, -2, -2.75, -2},
      {"float", 3.5f, 3, 3.5, 3},
      {"beyond", 1e30, kMax64, 1e30, kMax32},
      {"below", -kInfinity, kMin64, -kInfinity, kMin32},
      {"2^63", 9223372036854775808.0, kMax64, 9223372036854775808.0, kMax32},
      {"2^31", 2147483648.0, int64_t{1} << 31, 2147483648.0, kMax32},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    FbxDocument document;
    ASSERT_TRUE(document.Parse(ToBinary({{"A", {row.value}, {}}}, 7400), "f.fbx"));
    const PropertyView property = document.FirstRecord().Property(0);
    std::vector<int32_t> values;
    EXPECT_TRUE(property.IsNumber());
    EXPECT_EQ(property.AsInt(99), row.asInt);
    EXPECT_EQ(property.AsDouble(99), row.asDouble);
    EXPECT_TRUE(property.Read(values));
    EXPECT_EQ(values, std::vector<int32_t>{row.asInt32});
  }
  const Forest arrays = {{"A",
                          {kNan, std::string("text"), std::vector<double>{kNan, 1e30, -2.5},
                           std::vector<int64_t>{kMax64, -1}, std::vector<int32_t>(400, -3)},
                          {}}};
  FbxDocument document;
  ASSERT_TRUE(document.Parse(ToBinary(arrays, 7500), "f.fbx"));
  const RecordView record = document.FirstRecord();
  const auto ints = [&record](size_t i) { return ReadArray<int32_t>(record.Property(i)); };
  std::vector<int64_t> longs;
  EXPECT_EQ(record.Int(0, 99), 0);
  EXPECT_EQ(ints(2), Value(std::vector<int32_t>{0, kMax32, -2}));
  EXPECT_EQ(ints(3), Value(std::vector<int32_t>{kMax32, -1}));
  EXPECT_EQ(ReadArray<float>(record.Property(4)), Value(std::vector<float>(400, -3)));
  EXPECT_EQ(ReadArray<int64_t>(record.Property(4)), Value(std::vector<int64_t>(400, -3)));
  for (const size_t notAnArray : {1, 9}) {
    EXPECT_FALSE(record.Array(notAnArray, longs));
    EXPECT_TRUE(longs.empty());
  }
  EXPECT_TRUE(document.GetStatus().IsGood());
}

/// A file of version 7400 with one record "A" of one array, told to be as the arguments say.
Bytes FileOfOneArray(char letter, uint32_t count, uint32_t encoding, const Bytes& data) {
  Bytes array = ToBytes(std::string(1, letter));
  for (const uint32_t field : {count, encoding, static_cast<uint32_t>(data.size())})
    for (int shift = 0; shift < 32; shift += 8) array.push_back(static_cast<uint8_t>(field >> shift));
  array.insert(array.end(), data.begin(), data.end());
  // A Raw property takes its place: letter and length are cut out, and the lengths told anew.
  Bytes file = ToBinary({{"A", {array}, {}}}, 7400);
  file.erase(file.begin() + 41, file.begin() + 46);
  const auto bytes = static_cast<uint32_t>(array.size()), end = 41 + bytes;
  std::memcpy(&file[27], &end, sizeof(end));
  std::memcpy(&file[35], &bytes, sizeof(bytes));
  return file;
}

Bytes Deflated(const Bytes& bytes) {
  Bytes packed(compressBound(bytes.size()));
  uLongf size = packed.size();
  EXPECT_EQ(compress2(packed.data(), &size, bytes.data(), bytes.size(), 9), Z_OK);
  packed.resize(size);
  return packed;
}

// Files of other programs hold single bytes under either letter.
TEST(FbxDocument, BytesUnderEitherLetter) {
  for (const char letter : {'b', 'c'}) {
    FbxDocument document;
    ASSERT_TRUE(document.Parse(FileOfOneArray(letter, 4, 0, {0, 1, 0, 1}), "f.fbx"));
    std::vector<int32_t> values;
    EXPECT_EQ(document.FirstRecord().Property(0).Type(), PropertyType::BoolArray);
    EXPECT_TRUE(document.FirstRecord().Array(0, values));
    EXPECT_EQ(values, (std::vector<int32_t>{0, 1, 0, 1}));
  }
  Bytes file = ToBinary({{"A", {true}, {}}}, 7400);
  ASSERT_EQ(file[41], 'C');
  file[41] = 'B';
  FbxDocument document;
  ASSERT_TRUE(document.Parse(file, "f.fbx"));
  EXPECT_EQ(document.FirstRecord().Property(0).Type(), PropertyType::Bool);
  EXPECT_EQ(document.FirstRecord().Int(0), 1);
}

// A sound stream that is shorter or longer than the count tells.
TEST(FbxDocument, PackedArraysMustHoldTheirCount) {
  const Bytes packed = Deflated(Bytes(800, 1));
  for (const uint32_t count : {99u, 100u, 101u}) {
    FbxDocument document;
    ASSERT_TRUE(document.Parse(FileOfOneArray('d', count, 1, packed), "f.fbx"));
    std::vector<double> doubles;
    std::vector<float> floats;
    EXPECT_EQ(document.FirstRecord().Array(0, doubles), count == 100);
    EXPECT_EQ(document.FirstRecord().Array(0, floats), count == 100);
  }
}

TEST(FbxDocument, EveryTruncationIsTold) {
  for (const int version : {7400, 7500}) {
    const Bytes file = ToBinary(SmallForest(), version);
    const size_t footer = FooterAt(file);
    ASSERT_LT(footer, file.size());
    for (size_t size = 0; size < footer; ++size) {
      const std::string error = ErrorOf({file.begin(), file.begin() + size});
      ASSERT_EQ(error.rfind(size == 0 ? "f.fbx: the file is empty" : "f.fbx: byte ", 0), 0u) << size << ' ' << error;
    }
    const std::string error = ErrorOf({file.begin(), file.begin() + footer - 60});
    EXPECT_NE(error.find(", Objects"), std::string::npos) << error;
    // The tree is whole, so a file without a footer is read.
    FbxDocument document;
    ASSERT_TRUE(document.Parse({file.begin(), file.begin() + footer}, "f.fbx"));
    EXPECT_EQ(ReadForest(document.Records()), SmallForest());
  }
}

TEST(FbxDocument, ByteFlipsNeverCrash) {
  for (const int version : {7400, 7500}) {
    const Bytes file = ToBinary(SmallForest(), version);
    const size_t footer = FooterAt(file);
    int parsed = 0, refused = 0, damaged = 0;
    for (size_t i = 0; i < footer; ++i) {
      for (const uint8_t flip : {0x01, 0x80, 0xFF, 0x10}) {
        Bytes flipped = file;
        flipped[i] ^= flip;
        FbxDocument document;
        if (document.Parse(std::move(flipped), "f.fbx")) {
          ++parsed;
          EXPECT_LT(document.MemoryUsed(), 10 * file.size());
          Totals totals;
          Add(document.Records(), totals);
          damaged += totals.failed > 0;
          EXPECT_EQ(totals.failed > 0, !document.GetStatus().IsGood());
          EXPECT_LE(document.NumRecords(), file.size() / 13);
        } else {
          ++refused;
          EXPECT_EQ(document.GetStatus().GetErrorString().rfind("f.fbx: ", 0), 0u);
        }
      }
    }
    EXPECT_GT(parsed, 100);
    EXPECT_GT(refused, 100);
    EXPECT_GT(damaged, 10);
  }
}

TEST(FbxDocument, DamageIsNamed) {
  // Outer (27) holds Inner, which holds an int32 and a raw array of two.
  const Bytes sound = ToBinary({{"Outer", {}, {{"Inner", {int32_t{5}, std::vector<int32_t>{1, 2}}, {}}}}}, 7400);
  constexpr size_t kOuter = 27, kInner = kOuter + 13 + 5, kNumber = kInner + 13 + 5, kArray = kNumber + 5,
                   kEnd = kArray + 13 + 8;
  ASSERT_EQ(sound[kNumber], 'I');
  ASSERT_EQ(sound[kArray], 'i');
  struct Row {
    const char* name;
    size_t at;
    uint32_t value;
    const char* error;
  };
  const Row rows[] = {
      {"end behind the file", kOuter, 90000, "f.fbx: byte 27, Outer: the record ends at byte 90000, behind the end of"},
      {"end before the beginning", kOuter, 3, "f.fbx: byte 27, Outer: the record ends at byte 3, before its"},
      {"end 0", kInner, 0, "f.fbx: byte 45, Outer/Inner: the record ends at byte 0"},
      {"end at the own beginning", kInner, kInner, "f.fbx: byte 45, Outer/Inner: the record ends at byte 45"},
      {"end behind the parent", kInner, kEnd + 14, "f.fbx: byte 45, Outer/Inner: the record ends at byte 103, behind"},
      {"end within the properties", kInner, kEnd - 1, "f.fbx: byte 63, Outer/Inner: the properties take 26 bytes"},
      {"too many properties", kInner + 4, 1000, "f.fbx: byte 63, Outer/Inner: 1000 properties cannot lie in 26"},
      {"one property more", kInner + 4, 3, "f.fbx: byte 89, Outer/Inner: the properties end early"},
      {"one property less", kInner + 4, 1, "f.fbx: byte 68, Outer/Inner: the properties end before byte 89"},
      {"property bytes", kInner + 8, 0xFFFFFFFF, "f.fbx: byte 63, Outer/Inner: the properties take 4294967295"},
      {"letter", kNumber, 'x', "f.fbx: byte 63, Outer/Inner: a property of unknown type, code 120"},
      {"text length", kNumber, 'S' | 0xFFFF00, "f.fbx: byte 63, Outer/Inner: the text ends early"},
      {"array count", kArray + 1, 3, "f.fbx: byte 68, Outer/Inner: the array cannot hold 3 values in 8 bytes"},
      {"array encoding", kArray + 5, 2, "f.fbx: byte 68, Outer/Inner: the array is packed in an unknown way"},
      {"array bytes", kArray + 9, 9, "f.fbx: byte 68, Outer/Inner: the array ends early"},
      {"byte order", 22, 1, "f.fbx: byte 22: this is no little-endian FBX file"},
      {"old", 23, 6100, "f.fbx: this is an FBX file of version 6100; 7100 to 7700 are read"},
      {"new", 23, 7800, "f.fbx: this is an FBX file of version 7800; 7100 to 7700 are read"},
  };
  for (const Row& row : rows) {
    Bytes file = sound;
    std::memcpy(&file[row.at], &row.value, sizeof(row.value));
    const std::string error = ErrorOf(file);
    EXPECT_EQ(error.rfind(row.error, 0), 0u) << row.name << ": " << error;
  }
  Bytes closed = ToBinary({{"Outer", {}, {{"Inner", {}, {}}, {"Next", {}, {}}}}}, 7400);
  std::fill_n(closed.begin() + kInner, 13, uint8_t{0});
  EXPECT_EQ(ErrorOf(closed), "f.fbx: byte 58, Outer: the block is closed before the end of its record, byte 93");
  FbxDocument document;
  EXPECT_FALSE(document.Load(TAVRILON_SOURCE_DIR "/examples"));
  EXPECT_FALSE(document.Load("no such file.fbx"));
  EXPECT_EQ(document.GetStatus().GetErrorString(), "no such file.fbx: cannot be read: No such file or directory");
  EXPECT_EQ(ErrorOf(ToBytes("v 1 2 3\nf 1 2 3\n")).rfind("f.fbx: this is no FBX file", 0), 0u);
  EXPECT_EQ(ErrorOf(Bytes(500, 0)).rfind("f.fbx: this is no FBX file", 0), 0u);
}

TEST(FbxDocument, DamagedArrayLeavesTheOthers) {
  std::vector<double> ramp(1000);
  for (size_t i = 0; i < ramp.size(); ++i) ramp[i] = static_cast<double>(i);
  Bytes file = ToBinary({{"A", {ramp}, {}}, {"B", {std::vector<double>{4}}, {}}}, 7400);
  file[27 + 14 + 13 + 100] ^= 0x55;  // within the packed bytes
  FbxDocument document;
  ASSERT_TRUE(document.Parse(file, "f.fbx"));
  std::vector<double> values{1, 2};
  EXPECT_FALSE(document.Find("A").Array(0, values));
  EXPECT_TRUE(values.empty());
  EXPECT_EQ(document.GetStatus().GetErrorString().rfind("f.fbx: byte 41, A: the packed array of 1000 values", 0), 0u);
  EXPECT_TRUE(document.Find("B").Array(0, values));
  EXPECT_EQ(values, std::vector<double>{4});
}

TEST(FbxDocument, BombsAreRefused) {
  const Bytes file = ToBinary({{"A", {std::vector<double>(3 << 20)}, {}}}, 7400);  // 24 MB
  ASSERT_LT(file.size(), 120000u);
  FbxDocument document;
  ASSERT_TRUE(document.Parse(file, "f.fbx", {64, 1 << 20}));  // and 12 MB for the size of the file
  std::vector<double> values;
  EXPECT_FALSE(document.Find("A").Array(0, values));
  EXPECT_EQ(values.capacity(), 0u);
  EXPECT_NE(document.GetStatus().GetErrorString().find("f.fbx: byte 41, A: the arrays"), std::string::npos);

  // The sum counts, not the single array.
  const Bytes four = ToBinary({{"A", {std::vector<double>(1000, 1)}, {}}}, 7400);
  ASSERT_TRUE(document.Parse(four, "f.fbx", {64, 24000}));
  size_t reads = 0;
  while (reads < 1000 && document.Find("A").Array(0, values)) ++reads;
  EXPECT_EQ(reads, (24000 + 100 * four.size()) / 8000);

  // What no stream can hold is refused before anything is reserved for it; what the best packed stream holds is read.
  const Bytes zeros = Deflated(Bytes(8000000));
  EXPECT_LT(zeros.size(), 7800u);
  ASSERT_TRUE(document.Parse(FileOfOneArray('d', 1000000, 1, zeros), "f.fbx"));
  EXPECT_TRUE(document.FirstRecord().Array(0, values));
  EXPECT_NE(ErrorOf(FileOfOneArray('d', 4294967280, 1, zeros)).find("A: the array cannot hold 4294967280 values"),
            std::string::npos);
}

TEST(FbxDocument, DepthIsBounded) {
  const auto nested = [](int depth) {
    FbxDocumentWriter out(7500);
    for (int i = 0; i < depth; ++i) out.Begin("N");
    for (int i = 0; i < depth; ++i) out.End(true);
    return out.Finish();
  };
  FbxDocument document;
  EXPECT_TRUE(document.Parse(nested(64), "f.fbx"));
  EXPECT_EQ(document.NumRecords(), 64u);
  EXPECT_NE(ErrorOf(nested(65)).find("nested deeper than 64 levels"), std::string::npos);
  EXPECT_NE(ErrorOf(nested(100000)).find("nested deeper than 64 levels"), std::string::npos);
  EXPECT_TRUE(document.Parse(nested(2), "f.fbx", {2, 0}));
  EXPECT_NE(ErrorOf(nested(3), {2, 0}).find("nested deeper than 2 levels"), std::string::npos);
}

// Many tiny records and values: the tree stays a small multiple of the file.
TEST(FbxDocument, MemoryFollowsTheFile) {
  for (const bool values : {false, true}) {
    FbxDocumentWriter out(7400);
    for (int i = 0; i < (values ? 1 : 20000); ++i) {
      out.Begin("");
      for (int k = 0; values && k < 100000; ++k) out.Bool(true);
      out.End();
    }
    const Bytes file = out.Finish();
    FbxDocument document;
    ASSERT_TRUE(document.Parse(file, "f.fbx"));
    EXPECT_LT(document.MemoryUsed(), 10 * file.size());
  }
}

}  // namespace
}  // namespace tavrilon::fbx
