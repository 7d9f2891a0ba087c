// SPDX-License-Identifier: MIT
#include "plugin/fbx/format/document_writer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>

#include "plugin/fbx_format/sample_trees.h"

namespace tavrilon::fbx {
namespace {

TEST(FbxDocumentWriter, RandomTreesAreReadBack) {
  size_t records = 0, deflated = 0;
  for (const int version : {7100, 7400, 7500, 7700}) {
    for (uint32_t seed = 0; seed < 60; ++seed) {
      SCOPED_TRACE(testing::Message() << version << " seed " << seed);
      const Forest forest = RandomForest(seed).Make();
      const Bytes file = ToBinary(forest, version);
      EXPECT_EQ(file, ToBinary(forest, version));
      FbxDocument document;
      ASSERT_TRUE(document.Parse(file, "f.fbx")) << document.GetStatus().GetErrorString();
      EXPECT_EQ(document.Version(), version);
      EXPECT_EQ(ReadForest(document.Records()), forest);
      EXPECT_TRUE(document.GetStatus().IsGood());
      records += document.NumRecords();
      const uint8_t packed[] = {1, 0, 0, 0};  // the encoding, and with it most of the deflated arrays
      deflated += std::search(file.begin(), file.end(), packed, packed + 4) != file.end();
    }
  }
  EXPECT_GT(records, 5000u);
  EXPECT_GT(deflated, 50u);
}

// Bits, not values: infinities, NaN, the sign of zero.
TEST(FbxDocumentWriter, RealNumbersKeepTheirBits) {
  const std::vector<double> doubles = {-0.0, std::nan(""), -std::numeric_limits<double>::infinity(), 5e-324};
  const std::vector<float> floats = {-0.0f, std::nanf("3"), 1e-45f};
  FbxDocument document;
  ASSERT_TRUE(document.Parse(ToBinary({{"A", {doubles, floats}, {}}}, 7500), "f.fbx"));
  std::vector<double> d;
  std::vector<float> f;
  ASSERT_TRUE(document.FirstRecord().Array(0, d) && d.size() == doubles.size());
  ASSERT_TRUE(document.FirstRecord().Array(1, f) && f.size() == floats.size());
  EXPECT_EQ(std::memcmp(d.data(), doubles.data(), d.size() * sizeof(double)), 0);
  EXPECT_EQ(std::memcmp(f.data(), floats.data(), f.size() * sizeof(float)), 0);
}

// Written by another program, whose footers stand at different distances from the next multiple of 16.
TEST(FbxDocumentWriter, FooterIsThatOfOtherFiles) {
  for (const char* const name : {"mixamo_walk.fbx", "character_skinned.fbx"}) {
    SCOPED_TRACE(name);
    const Bytes theirs = ReadDataFile(name);
    const uint8_t id[] = {0xfa, 0xbc, 0xab, 0x09};
    const size_t footer = std::find_end(theirs.begin(), theirs.end(), id, id + 4) - theirs.begin();
    bool compared = false;
    for (size_t length = 0; length < 16; ++length) {
      const Bytes ours = ToBinary({{"A", {std::string(length, 'x')}, {}}}, 7400);
      const size_t ourFooter = std::find_end(ours.begin(), ours.end(), id, id + 4) - ours.begin();
      EXPECT_EQ((ours.size() - 140) % 16, 0u);  // the version, 120 zeros and 16 bytes begin at a multiple of 16
      if (ourFooter % 16 != footer % 16) continue;
      compared = true;
      EXPECT_EQ(Bytes(ours.begin() + ourFooter, ours.end()), Bytes(theirs.begin() + footer, theirs.end()));
    }
    EXPECT_TRUE(compared);
    EXPECT_NE(std::search(theirs.begin(), theirs.end(), kFileId.begin(), kFileId.end()), theirs.end());
    EXPECT_NE(std::search(theirs.begin(), theirs.end(), kCreationTime.begin(), kCreationTime.end()), theirs.end());
  }
}

TEST(FbxDocumentWriter, BlocksEndWithZeros) {
  // The head, the name, and the closing record where it is asked for.
  for (const auto& [version, head] : {std::pair(7400, 13), {7500, 25}}) {
    for (const bool block : {false, true}) {
      FbxDocumentWriter out(version);
      out.Begin("A");
      out.End(block);
      const Bytes file = out.Finish();
      ASSERT_GT(file.size(), 27u);
      EXPECT_EQ(file[27], 27 + head + 1 + (block ? head : 0));
      FbxDocument document;
      EXPECT_TRUE(document.Parse(file, "f.fbx"));
      EXPECT_FALSE(document.FirstRecord().FirstChild());
    }
  }
  const Bytes parent = ToBinary({{"A", {}, {{"B", {}, {}}}}}, 7400);
  EXPECT_EQ(parent[27], 27 + 2 * (13 + 1) + 13);
}

TEST(FbxDocumentWriter, ArraysArePackedWhenItPays) {
  std::mt19937_64 rng(3);
  std::vector<int64_t> noise(500), ramp(500);
  for (size_t i = 0; i < noise.size(); ++i) noise[i] = static_cast<int64_t>(rng()), ramp[i] = static_cast<int64_t>(i);
  const std::pair<std::vector<int64_t>, uint8_t> rows[] = {
      {std::vector<int64_t>(127), 0}, {std::vector<int64_t>(128), 1}, {noise, 0}, {ramp, 1}};
  for (const auto& [values, encoding] : rows) {
    const Bytes file = ToBinary({{"A", {values}, {}}}, 7400);
    EXPECT_EQ(file[27 + 13 + 1 + 5], encoding);  // behind the heads of file and record, the letter and the count
  }
}

// Equal arrays, nearly equal ones, equal bytes of another type, and one that was not packed in between.
TEST(FbxDocumentWriter, RepeatedArraysAreReadBack) {
  std::vector<double> a(300, 1), b = a, noise(300);
  b.back() = 2;
  std::mt19937_64 rng(5);
  for (double& value : noise) value = std::ldexp(static_cast<double>(rng()), -64);
  const std::vector<int64_t> bits(300, std::bit_cast<int64_t>(1.0));
  const std::vector<float> shorter(299, 1), longer(301, 1);
  Forest forest;
  for (const Value& value : std::vector<Value>{a, a, b, b, a, bits, bits, a, noise, noise, a, shorter, longer, shorter})
    forest.push_back({"A", {value, value}, {}});
  const Bytes file = ToBinary(forest, 7400);
  FbxDocument document;
  ASSERT_TRUE(document.Parse(file, "f.fbx"));
  EXPECT_EQ(ReadForest(document.Records()), forest);
}

// Types and labels too, which no reader of ours looks at.
TEST(FbxDocumentWriter, RowsOfProperties) {
  FbxDocumentWriter out(7400);
  out.Begin("Model");
  out.ObjectName("Hip", "Model");
  out.Property("Look", "Compound", "label", "");
  out.PropertyInt("RotationActive", "bool", "", "", 1);
  out.PropertyDouble("Lcl Translation", "Lcl Translation", "", "A", {1, 2.5, -3});
  out.PropertyText("Note", "KString", "", "U", "text");
  out.PropertyTime("LocalStop", "KTime", "Time", "", 46186158000);
  out.Leaf("Version", 232);
  out.Leaf("Weight", 2.5);
  out.Leaf("Id", int64_t{1} << 40);
  out.ArrayLeaf("Index", std::vector<int32_t>{1, 2});
  out.End();
  using S = std::string;
  const Forest rows = {{"P", {S("Look"), S("Compound"), S("label"), S()}, {}},
                       {"P", {S("RotationActive"), S("bool"), S(), S(), int32_t{1}}, {}},
                       {"P", {S("Lcl Translation"), S("Lcl Translation"), S(), S("A"), 1.0, 2.5, -3.0}, {}},
                       {"P", {S("Note"), S("KString"), S(), S("U"), S("text")}, {}},
                       {"P", {S("LocalStop"), S("KTime"), S("Time"), S(), int64_t{46186158000}}, {}},
                       {"Version", {int32_t{232}}, {}},
                       {"Weight", {2.5}, {}},
                       {"Id", {int64_t{1} << 40}, {}},
                       {"Index", {std::vector<int32_t>{1, 2}}, {}}};
  FbxDocument document;
  ASSERT_TRUE(document.Parse(out.Finish(), "f.fbx"));
  EXPECT_EQ(ReadForest(document.Records()), (Forest{{"Model", {S("Hip\0\1Model", 10)}, rows}}));
}

TEST(FbxDocumentWriter, OpenRecordsGiveNoFile) {
  FbxDocumentWriter out(7400);
  out.Begin("A");
  EXPECT_TRUE(out.Finish().empty());
  EXPECT_TRUE(out.Finish().empty());
  FbxDocumentWriter whole(7400);
  EXPECT_FALSE(whole.Finish().empty());
  EXPECT_TRUE(whole.Finish().empty());  // spent
}

}  // namespace
}  // namespace tavrilon::fbx
