// SPDX-License-Identifier: MIT
#include "plugin/rig/rig_file.h"

#include <cmath>

#include "rig_file_fb.h"

namespace tavrilon {
namespace {

namespace fb = rig_fb;
using corvanta::FromUtf8;
using corvanta::ToUtf8;
using Builder = flatbuffers::FlatBufferBuilder;

// Each table is written with its text first and its fields in one fixed order: the bytes depend on both.

flatbuffers::Offset<flatbuffers::String> WriteText(Builder& builder, const WStr& text) {
  return text.empty() ? flatbuffers::Offset<flatbuffers::String>() : builder.CreateString(ToUtf8(text));
}

flatbuffers::Offset<fb::Point> WritePoint(Builder& builder, const RigFilePoint& point) {
  const auto name = WriteText(builder, point.name);
  const fb::Vec3 position(point.position.x, point.position.y, point.position.z);
  fb::PointBuilder table(builder);
  table.add_name(name);
  table.add_position(&position);
  return table.Finish();
}

flatbuffers::Offset<fb::Param> WriteParam(Builder& builder, const RigFileParam& param) {
  const auto text = WriteText(builder, param.text);
  const fb::Vec3 point(param.pointValue.x, param.pointValue.y, param.pointValue.z);
  fb::ParamBuilder table(builder);
  table.add_text_value(text);
  if (!(param.pointValue == Point3{})) table.add_point_value(&point);
  table.add_float_value(param.floatValue);
  table.add_int_value(param.intValue);
  table.add_type(param.type);
  table.add_id(param.id);
  return table.Finish();
}

flatbuffers::Offset<fb::Extra> WriteExtra(Builder& builder, const RigExtra& extra) {
  const auto name = WriteText(builder, extra.name);
  const auto parent = WriteText(builder, extra.parent);
  fb::ExtraBuilder table(builder);
  table.add_name(name);
  table.add_parent(parent);
  table.add_side(extra.side);
  table.add_num_controls(extra.num_controls);
  return table.Finish();
}

template <class Table, class Item, class Write>
flatbuffers::Offset<flatbuffers::Vector<flatbuffers::Offset<Table>>> WriteAll(Builder& builder,
                                                                              const std::vector<Item>& items,
                                                                              Write write) {
  std::vector<flatbuffers::Offset<Table>> tables;
  tables.reserve(items.size());
  for (const Item& item : items) tables.push_back(write(builder, item));
  return builder.CreateVector(tables);
}

bool IsFinite(const Point3& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); }
Point3 FromVec(const fb::Vec3* v) { return v ? Point3{v->x(), v->y(), v->z()} : Point3{}; }

bool Verifies(const std::vector<uint8_t>& bytes, flatbuffers::uoffset_t maxTables) {
  flatbuffers::Verifier verifier(bytes.data(), bytes.size(), 64, maxTables);
  return verifier.VerifyBuffer<fb::Rig>(nullptr);
}

/// Why a buffer cannot be used at all; empty when it can.
std::string BufferProblem(const std::vector<uint8_t>& bytes) {
  // The smallest buffer, an empty root table, has 12 bytes.
  if (bytes.size() < 12)
    return "the file is cut short: " + std::to_string(bytes.size()) + " bytes are fewer than any rig template has";
  if (bytes.size() > kMaxRigFileBytes)
    return "the file has " + std::to_string(bytes.size()) + " bytes; rig templates have at most " +
           std::to_string(kMaxRigFileBytes);
  constexpr flatbuffers::uoffset_t kMaxTables = 1000000;
  if (Verifies(bytes, kMaxTables)) return {};
  if (Verifies(bytes, std::numeric_limits<flatbuffers::uoffset_t>::max()))
    return "the file has more than " + std::to_string(kMaxTables) + " tables";
  const uint32_t root = flatbuffers::ReadScalar<uint32_t>(bytes.data());
  if (root >= bytes.size()) return "not a rig template: its root lies outside the file";
  return "the file is damaged, cut short, or not a rig template";
}

/// Reads the checked tables. A shared text could be handed out many times over, so the sum of what is copied is
/// bounded by the file's own size.
class Reader {
 public:
  explicit Reader(size_t fileBytes) : budget_(16 * fileBytes + 1024) {}

  RigFileResult Read(const fb::Rig& rig) {
    ReadEach("point", rig.points(), [this](const fb::Point& point) { ReadPoint(point); });
    ReadEach("parameter", rig.params(), [this](const fb::Param& param) { ReadParam(param); });
    if (rig.extras() && rig.extras()->size() > kMaxRigFileExtras)
      Fail("it lists " + std::to_string(rig.extras()->size()) + " extras; a rig has at most " +
           std::to_string(kMaxRigFileExtras));
    ReadEach("extra", rig.extras(), [this](const fb::Extra& extra) { ReadExtra(extra); });
    if (!result_.ok()) result_.file = {};
    return std::move(result_);
  }

 private:
  template <class Vector, class Function>
  void ReadEach(const char* what, const Vector* tables, Function read) {
    if (!tables) return;
    for (flatbuffers::uoffset_t i = 0; i < tables->size() && result_.ok(); ++i) {
      where_ = std::string(what) + " " + std::to_string(i + 1);
      read(*tables->Get(i));
    }
  }

  void ReadPoint(const fb::Point& point) {
    const Point3 position = FromVec(point.position());
    if (!IsFinite(position)) {
      ++result_.skipped;
      return;
    }
    result_.file.points.push_back({ReadText("name", point.name()), position});
  }

  void ReadParam(const fb::Param& table) {
    RigFileParam param;
    param.id = table.id();
    param.type = table.type();
    param.intValue = table.int_value();
    param.floatValue = table.float_value();
    param.pointValue = FromVec(table.point_value());
    if (!std::isfinite(param.floatValue) || !IsFinite(param.pointValue)) {
      ++result_.skipped;
      return;
    }
    param.text = ReadText("text", table.text_value());
    result_.file.params.push_back(std::move(param));
  }

  void ReadExtra(const fb::Extra& table) {
    RigExtra extra;
    extra.name = ReadText("name", table.name());
    extra.parent = ReadText("parent", table.parent());
    extra.side = table.side();
    extra.num_controls = table.num_controls();
    result_.file.extras.push_back(std::move(extra));
  }

  WStr ReadText(const char* field, const flatbuffers::String* text) {
    if (!text || !result_.ok()) return {};
    const std::string_view bytes(text->c_str(), text->size());
    if (bytes.size() > kMaxRigNameBytes)
      Fail(where_ + ": the " + field + " has " + std::to_string(bytes.size()) + " bytes; at most " +
           std::to_string(kMaxRigNameBytes) + " are allowed");
    else if (!corvanta::IsUtf8(bytes) || bytes.find('\0') != bytes.npos)
      Fail(where_ + ": the " + field + " is not UTF-8 text");
    else if (bytes.size() > budget_)
      Fail(where_ + ": the texts are longer than the file can hold");
    if (!result_.ok()) return {};
    budget_ -= bytes.size();
    return FromUtf8(bytes);
  }

  void Fail(std::string problem) {
    if (result_.ok()) result_.error = std::move(problem);
  }

  RigFileResult result_;
  std::string where_;
  size_t budget_;
};

}  // namespace

std::vector<uint8_t> WriteRigFile(const RigFile& file) {
  Builder builder(1024);
  const auto points = WriteAll<fb::Point>(builder, file.points, WritePoint);
  const auto params = WriteAll<fb::Param>(builder, file.params, WriteParam);
  const auto extras = WriteAll<fb::Extra>(builder, file.extras, WriteExtra);
  fb::RigBuilder root(builder);
  root.add_points(points);
  root.add_params(params);
  root.add_extras(extras);
  builder.Finish(root.Finish());
  return {builder.GetBufferPointer(), builder.GetBufferPointer() + builder.GetSize()};
}

RigFileResult ReadRigFile(const std::vector<uint8_t>& bytes) {
  RigFileResult result;
  result.error = BufferProblem(bytes);
  if (!result.ok()) return result;
  return Reader(bytes.size()).Read(*flatbuffers::GetRoot<fb::Rig>(bytes.data()));
}

}  // namespace tavrilon
