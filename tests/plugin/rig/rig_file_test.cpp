// SPDX-License-Identifier: MIT
#include "plugin/rig/rig_file.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "plugin/rig/point_frame.h"
#include "plugin/rig/template.h"
#include "plugin/rig/type_defaults.h"
#include "rig_file_fb.h"

namespace tavrilon {
namespace {

RigFile Sample() {
  RigFile file;
  file.points = {{L"pelvis", {0, 0, .55f}}, {L"r_höhe_1", {-.1f, .2f, .3f}}, {L"zero", {}}};
  file.params = {
      {3, 2, 11, 0, {}, L""}, {4, 5, 0, 180.5f, {}, L""}, {10, 7, 0, 0, {1, .25f, 0}, L""}, {2, 1, 0, 0, {}, L"Näme"}};
  file.extras = {{L"ear", L"head", kSideBoth, 3, 2, false}, {L"fin", L"", kSideNone, 1, 2, false}};
  return file;
}

/// A template from what was read, as a rig would make it: counts from the parameters, then positions by name.
RigPoints Apply(const RigFile& file) {
  TemplateParams params;
  for (const RigFileParam& param : file.params)
    if (param.id < rig_param::kCount) params.values[param.id] = param.intValue;
  RigPoints points = BuildTemplate(static_cast<RigType>(params[rig_param::kHelperType]), params, {}, file.extras);
  for (const RigFilePoint& point : file.points) {
    const int i = FindPoint(points, point.name);
    if (i >= 0) points[i].position = point.position;
  }
  return points;
}

void ExpectReadable(const RigFile& file) {
  const RigPoints points = Apply(file);
  const PointPlaces places(points);
  const PointFrames frames(points, places);
  for (size_t i = 0; i < points.size() && i < 300; ++i) {
    const Matrix3 tm = frames.PointTM(static_cast<int>(i), 1);
    EXPECT_TRUE(std::isfinite(Length(tm.row[0])));
  }
}

TEST(RigFile, RoundTripAndStableBytes) {
  const RigFile file = Sample();
  const std::vector<uint8_t> bytes = WriteRigFile(file);
  const RigFileResult read = ReadRigFile(bytes);
  EXPECT_TRUE(read.ok()) << read.error;
  EXPECT_EQ(read.skipped, 0);
  EXPECT_TRUE(read.file == file);
  EXPECT_EQ(WriteRigFile(read.file), bytes);
  EXPECT_TRUE(ReadRigFile(WriteRigFile({})).ok());
}

// Field numbers are part of the format: what other readers rely on.
TEST(RigFile, FieldsKeepTheirOffsets) {
  const std::vector<uint8_t> bytes = WriteRigFile(Sample());
  const auto* root = flatbuffers::GetRoot<flatbuffers::Table>(bytes.data());
  using Tables = flatbuffers::Vector<flatbuffers::Offset<flatbuffers::Table>>;
  const auto text = [](const flatbuffers::Table* table, flatbuffers::voffset_t offset) {
    return table->GetPointer<const flatbuffers::String*>(offset)->str();
  };
  const auto* points = root->GetPointer<const Tables*>(4);
  const auto* params = root->GetPointer<const Tables*>(6);
  const auto* extras = root->GetPointer<const Tables*>(8);
  EXPECT_EQ(text(points->Get(0), 4), "pelvis");
  EXPECT_EQ(points->Get(0)->GetStruct<const float*>(6)[2], .55f);
  EXPECT_EQ(params->Get(1)->GetField<uint16_t>(4, 0), 4);
  EXPECT_EQ(params->Get(1)->GetField<int32_t>(6, 0), 5);
  EXPECT_EQ(params->Get(0)->GetField<int32_t>(10, 0), 11);
  EXPECT_EQ(params->Get(1)->GetField<float>(12, 0), 180.5f);
  EXPECT_EQ(params->Get(2)->GetStruct<const float*>(14)[1], .25f);
  EXPECT_EQ(text(params->Get(3), 16), "N\xC3\xA4me");
  EXPECT_EQ(text(extras->Get(0), 4), "ear");
  EXPECT_EQ(text(extras->Get(0), 6), "head");
  EXPECT_EQ(extras->Get(0)->GetField<int32_t>(8, 0), kSideBoth);
  EXPECT_EQ(extras->Get(0)->GetField<int32_t>(10, 0), 3);
  // Defaults are left out.
  EXPECT_EQ(params->Get(0)->GetOptionalFieldOffset(8), 0);
  EXPECT_EQ(params->Get(0)->GetOptionalFieldOffset(12), 0);
  EXPECT_EQ(params->Get(0)->GetOptionalFieldOffset(14), 0);
}

TEST(RigFile, NumbersThatAreNotFiniteAreSkippedAndCounted) {
  RigFile file = Sample();
  file.points[0].position.y = std::numeric_limits<float>::quiet_NaN();
  file.params[1].floatValue = std::numeric_limits<float>::infinity();
  const RigFileResult read = ReadRigFile(WriteRigFile(file));
  EXPECT_TRUE(read.ok());
  EXPECT_EQ(read.skipped, 2);
  EXPECT_EQ(read.file.points.size(), 2u);
  EXPECT_EQ(read.file.params.size(), 3u);
}

void ExpectError(const std::vector<uint8_t>& bytes, const char* part) {
  const RigFileResult read = ReadRigFile(bytes);
  EXPECT_NE(read.error.find(part), std::string::npos) << read.error;
  EXPECT_TRUE(read.file == RigFile()) << "nothing is handed out with an error";
}

std::vector<uint8_t> WithRawName(const std::string& name) {
  flatbuffers::FlatBufferBuilder builder;
  const auto text = builder.CreateString(name);
  const auto extra = rig_fb::CreateExtra(builder, text);
  const auto extras = builder.CreateVector(&extra, 1);
  builder.Finish(rig_fb::CreateRig(builder, 0, 0, extras));
  return {builder.GetBufferPointer(), builder.GetBufferPointer() + builder.GetSize()};
}

TEST(RigFile, ErrorsNameWhatIsWrong) {
  ExpectError({}, "cut short: 0 bytes");
  ExpectError(std::vector<uint8_t>(100, 0xFF), "not a rig template");
  ExpectError(std::vector<uint8_t>(100, 0), "damaged");
  ExpectError(std::vector<uint8_t>(kMaxRigFileBytes + 1, 0), "at most");
  ExpectError(WithRawName("\xC3("), "extra 1: the name is not UTF-8");
  ExpectError(WithRawName(std::string("a\0b", 3)), "extra 1: the name is not UTF-8");
  ExpectError(WithRawName(std::string(kMaxRigNameBytes + 1, 'a')), "extra 1: the name has 4097 bytes");
  RigFile many;
  many.extras.resize(kMaxRigFileExtras + 1);
  ExpectError(WriteRigFile(many), "1001 extras");
  RigFile crowd;
  crowd.points.resize(1000001);
  ExpectError(WriteRigFile(crowd), "tables");
}

// A file may let many tables share one long text; what is read stays in proportion to the file.
TEST(RigFile, SharedTextsAreBounded) {
  flatbuffers::FlatBufferBuilder builder;
  const auto text = builder.CreateString(std::string(kMaxRigNameBytes, 'a'));
  const rig_fb::Vec3 position(1, 2, 3);
  std::vector<flatbuffers::Offset<rig_fb::Point>> points(100000, rig_fb::CreatePoint(builder, text, &position));
  const auto vector = builder.CreateVector(points);
  builder.Finish(rig_fb::CreateRig(builder, vector));
  ExpectError({builder.GetBufferPointer(), builder.GetBufferPointer() + builder.GetSize()}, "longer than the file");
}

// Whatever is cut off or flipped, the answer is an error or values that make a template.
TEST(RigFile, CutsAndFlipsAreSafe) {
  const std::vector<uint8_t> whole = WriteRigFile(Sample());
  int errors = 0;
  for (size_t length = 0; length < whole.size(); ++length) {
    const RigFileResult read = ReadRigFile({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)});
    errors += !read.ok();
    if (read.ok()) ExpectReadable(read.file);
  }
  EXPECT_GT(errors, static_cast<int>(whole.size()) * 9 / 10) << "only padding may be missing";
  for (size_t bit = 0; bit < whole.size() * 8; ++bit) {
    std::vector<uint8_t> bytes = whole;
    bytes[bit / 8] ^= static_cast<uint8_t>(1u << bit % 8);
    const RigFileResult read = ReadRigFile(bytes);
    if (read.ok()) ExpectReadable(read.file);
  }
}

}  // namespace
}  // namespace tavrilon
