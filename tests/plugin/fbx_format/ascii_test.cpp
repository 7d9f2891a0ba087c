// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <limits>

#include "plugin/fbx/format/document.h"
#include "plugin/fbx_format/sample_trees.h"

namespace tavrilon::fbx {
namespace {

const std::string kHeading = "; FBX 7.4.0 project file\n";

Forest ReadAscii(const std::string& text) {
  FbxDocument document;
  EXPECT_TRUE(document.Parse(ToBytes(kHeading + text), "f.fbx")) << document.GetStatus().GetErrorString();
  EXPECT_TRUE(document.IsAscii());
  return ReadForest(document.Records());
}

using S = std::string;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(FbxAscii, Values) {
  struct Row {
    const char* text;
    std::vector<Value> values;
  };
  const Row rows[] = {
      {"1, -2, +3", {int32_t{1}, int32_t{-2}, int32_t{3}}},
      {"2147483647, 2147483648, -9223372036854775808",
       {int32_t{2147483647}, int64_t{2147483648}, std::numeric_limits<int64_t>::min()}},
      {"9223372036854775808", {9223372036854775808.0}},
      {"1.0, -.5, 2., 1e3, -2.5E-3, +1.5", {1.0, -0.5, 2.0, 1000.0, -0.0025, 1.5}},
      {"inf, -inf, 1.#INF, -1.#INF00, 1e999, -1e999",
       {kInfinity, -kInfinity, kInfinity, -kInfinity, kInfinity, -kInfinity}},
      {"1e-999, 0.0", {0.0, 0.0}},
      {"\"\", \"a b\", \"a;b{c},:d\"", {S(), S("a b"), S("a;b{c},:d")}},
      {"\"&quot;x&quot; & &lf;&cr;&amp;\"", {S("\"x\" & \n\r&amp;")}},
      {"\"over\nlines\"", {S("over\nlines")}},
      {"T, W, Y", {true, true, true}},  // bytes that are not zero
      {"CullingOff, a1", {S("CullingOff"), S("a1")}},
      {"", {}},
      {", \"a\"", {S("a")}},
      {"1,", {int32_t{1}}},
      {"1,\n\t 2 ; a comment, not a value\n ,3", {int32_t{1}, int32_t{2}, int32_t{3}}},
      {"*0 { }", {std::vector<int32_t>{}}},
      {"*0 {\n\ta: \n}", {std::vector<int32_t>{}}},
      {"*3 {\n\ta: 1,-2,\n3,\n} ", {std::vector<int32_t>{1, -2, 3}}},
      {"*2 { a: 1,5000000000 }", {std::vector<int64_t>{1, 5000000000}}},
      {"*3 { a: 1,2.5,-3e2 }", {std::vector<double>{1, 2.5, -300}}},
      {"*3 { a: 1.5,2,3 }", {std::vector<double>{1.5, 2, 3}}},
      {"*3 { T,F,Y }", {std::vector<int32_t>{1, 0, 1}}},
      {"*1{a:1},*1{a:2}", {std::vector<int32_t>{1}, std::vector<int32_t>{2}}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    // The record that follows shows that nothing was swallowed.
    EXPECT_EQ(ReadAscii(S("A: ") + row.text + "\nNext: 7\n"),
              (Forest{{"A", row.values, {}}, {"Next", {int32_t{7}}, {}}}));
    EXPECT_EQ(ReadAscii(S("A: ") + row.text + "{ Child: }"), (Forest{{"A", row.values, {{"Child", {}, {}}}}}));
  }
  const S zeros(400, '0');
  EXPECT_EQ(ReadAscii("A: 0." + zeros + "1, 1" + zeros + ".5"), (Forest{{"A", {0.0, kInfinity}, {}}}));
  FbxDocument document;
  ASSERT_TRUE(document.Parse(ToBytes(kHeading + "A: nan, -1.#IND, 1.#QNAN, T"), "f.fbx"));
  for (size_t i = 0; i < 3; ++i) EXPECT_TRUE(std::isnan(document.FirstRecord().Double(i)));
  EXPECT_EQ(document.FirstRecord().Int(3), 'T');
}

TEST(FbxAscii, ObjectNamesAreThoseOfBinaryFiles) {
  const char* const text = R"(
FBXHeaderExtension: { SceneInfo: "SceneInfo::GlobalInfo", "UserData" { } }
Documents: { Document: 5, "Scene", "Scene" { } }
Objects: {
  Model: 1, "Model::rig::arm|x:y", "LimbNode" { P: "Model::a", "KString", "", "U", "Model::b"
    Hint: 5, "c::d" }
  AnimationCurve: 2, "AnimCurve::", "" { }
  Texture: 3, "Texture::skin", "" { TextureName: "Texture::skin"
    FileName: "c::d" }
}
Connections: { C: "OO", 1, 0, "Model::a" })";
  const Forest expected = {
      {"FBXHeaderExtension", {}, {{"SceneInfo", {S("GlobalInfo\0\1SceneInfo", 21), S("UserData")}, {}}}},
      {"Documents", {}, {{"Document", {int32_t{5}, S("Scene"), S("Scene")}, {}}}},
      {"Objects",
       {},
       {{"Model",
         {int32_t{1}, S("rig::arm|x:y\0\1Model", 19), S("LimbNode")},
         {{"P", {S("Model::a"), S("KString"), S(), S("U"), S("Model::b")}, {}}, {"Hint", {int32_t{5}, S("c::d")}, {}}}},
        {"AnimationCurve", {int32_t{2}, S("\0\1AnimCurve", 11), S()}, {}},
        {"Texture",
         {int32_t{3}, S("skin\0\1Texture", 13), S()},
         {{"TextureName", {S("skin\0\1Texture", 13)}, {}}, {"FileName", {S("c::d")}, {}}}}}},
      {"Connections", {}, {{"C", {S("OO"), int32_t{1}, int32_t{0}, S("Model::a")}, {}}}}};
  EXPECT_EQ(ReadAscii(text), expected);
}

TEST(FbxAscii, Versions) {
  const std::pair<const char*, int> rows[] = {
      {"; FBX 7.1.0 project file\nA: 1", 7100},
      {"; Kept by hand\r\n\r\n; FBX 7.7.0 project file\r\nA: 1\r\n", 7700},
      {"\xEF\xBB\xBF; FBX 7.5.0 project file\nA: 1", 7500},
      {"FBXHeaderExtension:  {\n\tFBXVersion: 7300\n}\n", 7300},
      {"\n\n;\nFBXHeaderExtension:  {\n\tFBXVersion: 7300\n}\n", 7300},
      {"; FBX 7.4.0 project file\nFBXHeaderExtension: { FBXVersion: 7500 }", 7500},  // what the record tells holds
      {"; FBX 7.4.0 project file\nObjects: { FBXVersion: 1 }", 7400},
      {"; FBX 7.4.0 project file\nA: { FBXHeaderExtension: { FBXVersion: 1 } }", 7400},
  };
  for (const auto& [text, version] : rows) {
    FbxDocument document;
    EXPECT_TRUE(document.Parse(ToBytes(text), "f.fbx")) << document.GetStatus().GetErrorString();
    EXPECT_EQ(document.Version(), version) << text;
  }
}

TEST(FbxAscii, ErrorsNameTheLine) {
  struct Row {
    std::string text;
    const char* error;
  };
  const Row rows[] = {
      {"; FBX 6.1.0 project file\n", "f.fbx: this is an FBX file of version 6100; 7100 to 7700 are read"},
      {"FBXHeaderExtension: { FBXVersion: 6100 }", "f.fbx: this is an FBX file of version 6100"},
      {"FBXHeaderExtension: { FBXVersion: 9000 }", "f.fbx: this is an FBX file of version 9000"},
      {"FBXHeaderExtension: { }\n", "f.fbx: line 2: the file does not tell its version"},
      {"a: b\n", "f.fbx: this is no FBX file"},
      {"; only a comment\n", "f.fbx: this is no FBX file"},
      {kHeading + "A: {\n B: {\n C: 1\n }\n", "f.fbx: line 6, A: the file ends within the block that begins in line 2"},
      {kHeading + "A: 1\n}\n", "f.fbx: line 3: a brace closes what was not opened"},
      {kHeading + "A: {\n B: \"open\n\n", "f.fbx: line 3, A/B: the text has no closing quote"},
      {kHeading + "A: \"two\nlines\"\nB 1\n",
       "f.fbx: line 4, B: a \":\" should stand behind a record's name, not \"1\""},
      {kHeading + "A: 1,,2\n", "f.fbx: line 2, A: a value should stand here, not \",\""},
      {kHeading + "A: 1\n\"x\"\n", "f.fbx: line 3: a record's name should stand here, not \"\"\""},
      {kHeading + "A: *3 {\n a: 1,2\n}\n", "f.fbx: line 4, A: the array should have 3 values and has 2"},
      {kHeading + "A: *1 {\n a: 1,2\n}\n", "f.fbx: line 4, A: the array should have 1 values and has 2"},
      {kHeading + "A: *2 {\n a: 1,x\n}\n", "f.fbx: line 3, A: a number of the array should stand here, not \"x\""},
      {kHeading + "A: *2 {\n a: 1 2\n}\n", "f.fbx: line 3, A: a \"}\" should stand behind the values of an array"},
      {kHeading + "A: *2 {\n a: 1,",
       "f.fbx: line 3, A: a \"}\" should stand behind the values of an array, not the end"},
      {kHeading + "A: *-2 { }", "f.fbx: line 2, A: the count of an array should stand behind the star"},
      {kHeading + "A: *x { }", "f.fbx: line 2, A: the count of an array should stand behind the star"},
      {kHeading + "A: *99999999999 { }", "f.fbx: line 2, A: an array has more values than a file can hold"},
      {kHeading + "A: *2 1,2", "f.fbx: line 2, A: a \"{\" should stand behind the count of an array"},
      {kHeading + S("A: 1, \x01", 7), "f.fbx: line 2, A: a value should stand here, not a control character"},
      {kHeading + S(256, 'n') + ": 1", "f.fbx: line 2: a record's name is longer than 255 characters"},
  };
  for (const Row& row : rows) {
    const std::string error = ErrorOf(ToBytes(row.text));
    EXPECT_EQ(error.rfind(row.error, 0), 0u) << row.text << error;
  }
}

/// Every value as numbers and as text, since an ASCII file does not tell types.
Forest Untyped(RecordView::Range records) {
  Forest forest;
  for (const RecordView record : records) {
    Tree tree{std::string(record.Name()), {}, Untyped(record.Children())};
    for (size_t i = 0; i < record.NumProperties(); ++i) {
      const PropertyView p = record.Property(i);
      for (const Value& value :
           {Value(p.IsText()), Value(std::string(p.AsText())), Value(p.AsInt()), Value(p.AsDouble()),
            Value(p.IsArray()), ReadArray<double>(p), ReadArray<int64_t>(p)}) {
        tree.values.push_back(value);
      }
    }
    forest.push_back(std::move(tree));
  }
  return forest;
}

TEST(FbxAscii, EqualsTheBinaryFileOfTheTree) {
  size_t records = 0;
  for (uint32_t seed = 0; seed < 100; ++seed) {
    SCOPED_TRACE(seed);
    const Forest forest = RandomForest(seed).Make();
    FbxDocument ascii, binary;
    ASSERT_TRUE(ascii.Parse(ToAscii(forest), "a.fbx")) << ascii.GetStatus().GetErrorString();
    ASSERT_TRUE(binary.Parse(ToBinary(forest, 7400), "b.fbx"));
    EXPECT_EQ(ascii.NumRecords(), binary.NumRecords());
    EXPECT_EQ(Untyped(ascii.Records()), Untyped(binary.Records()));
    records += ascii.NumRecords();
  }
  EXPECT_GT(records, 2000u);
}

// Between two records of the top level nobody can tell; everywhere else a cut is told.
TEST(FbxAscii, TruncationsAndFlipsNeverCrash) {
  const S text = kHeading +
                 "Objects: {\n Model: 1, \"Model::a\", \"Mesh\" {\n  Vertices: *3 {\n   a: 1.5,2,-3e5\n  }\n"
                 "  Shading: T\n Note: \"&quot;\" } }\n";
  const size_t begin = text.find('{') + 1, end = text.rfind('}');
  for (size_t size = begin; size <= end; ++size) {
    const std::string error = ErrorOf(ToBytes(text.substr(0, size)));
    EXPECT_EQ(error.rfind("f.fbx: line ", 0), 0u) << error;
    EXPECT_NE(error.find(", Objects"), std::string::npos) << error;
  }
  int parsed = 0, refused = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    for (const char c : S("\0\x01{}\"*,:;a1\n&\xFF", 14)) {
      S changed = text;
      changed[i] = c;
      FbxDocument document;
      if (document.Parse(ToBytes(changed), "f.fbx")) {
        ++parsed;
        ReadForest(document.Records());
      } else {
        ++refused;
        EXPECT_EQ(document.GetStatus().GetErrorString().rfind("f.fbx: ", 0), 0u);
      }
    }
  }
  EXPECT_GT(parsed, 100);
  EXPECT_GT(refused, 100);
}

TEST(FbxAscii, LimitsHold) {
  const auto nested = [](int depth) {
    S text = kHeading;
    for (int i = 0; i < depth; ++i) text += "N: {";
    return text + S(static_cast<size_t>(depth), '}');
  };
  FbxDocument document;
  EXPECT_TRUE(document.Parse(ToBytes(nested(64)), "f.fbx"));
  EXPECT_NE(ErrorOf(ToBytes(nested(65))).find("nested deeper than 64 levels"), S::npos);
  EXPECT_NE(ErrorOf(ToBytes(nested(50000))).find("nested deeper than 64 levels"), S::npos);
  EXPECT_NE(ErrorOf(ToBytes(kHeading + "A: *4000000000 { a: 1 }")).find("should have 4000000000 values and has 1"),
            S::npos);

  S small = kHeading + "A: *200 { a: 1";
  for (int i = 1; i < 200; ++i) small += ",1";
  small += "}";
  ASSERT_TRUE(document.Parse(ToBytes(small), "f.fbx", {64, 0}));
  EXPECT_LT(document.MemoryUsed(), 8 * small.size());
  std::vector<double> values;
  int reads = 0;
  while (reads < 1000 && document.FirstRecord().Array(0, values)) ++reads;
  EXPECT_EQ(reads, static_cast<int>(100 * small.size() / 1600));
  EXPECT_EQ(document.GetStatus().GetErrorString().rfind("f.fbx: line 2, A: the arrays of this file are larger", 0), 0u);
}

}  // namespace
}  // namespace tavrilon::fbx
