// SPDX-License-Identifier: MIT
// Models and their attributes.
#include <charconv>

#include "plugin/fbx/format/read_objects.h"

namespace tavrilon::fbx {

namespace {

template <class Enum>
Enum EnumOf(RecordView row, Enum last, Enum otherwise) {
  const int value = IntOf(row);
  return value >= 0 && value <= static_cast<int>(last) ? static_cast<Enum>(value) : otherwise;
}

const PropertyRow<NodeValues> kNodeRows[] = {
    {"Lcl Translation", [](NodeValues& v, RecordView p) { v.transform.translation = VectorOf(p); }},
    {"Lcl Rotation", [](NodeValues& v, RecordView p) { v.transform.rotation = VectorOf(p); }},
    {"Lcl Scaling", [](NodeValues& v, RecordView p) { v.transform.scaling = VectorOf(p); }},
    {"RotationOffset", [](NodeValues& v, RecordView p) { v.transform.rotationOffset = VectorOf(p); }},
    {"RotationPivot", [](NodeValues& v, RecordView p) { v.transform.rotationPivot = VectorOf(p); }},
    {"ScalingOffset", [](NodeValues& v, RecordView p) { v.transform.scalingOffset = VectorOf(p); }},
    {"ScalingPivot", [](NodeValues& v, RecordView p) { v.transform.scalingPivot = VectorOf(p); }},
    {"PreRotation", [](NodeValues& v, RecordView p) { v.transform.preRotation = VectorOf(p); }},
    {"PostRotation", [](NodeValues& v, RecordView p) { v.transform.postRotation = VectorOf(p); }},
    {"RotationActive", [](NodeValues& v, RecordView p) { v.transform.rotationActive = BoolOf(p); }},
    {"RotationOrder",
     [](NodeValues& v, RecordView p) { v.transform.order = EnumOf(p, RotationOrder::SphericXYZ, RotationOrder::XYZ); }},
    {"InheritType",
     [](NodeValues& v, RecordView p) { v.transform.inherit = EnumOf(p, InheritType::Rrs, InheritType::RSrs); }},
    {"GeometricTranslation", [](NodeValues& v, RecordView p) { v.transform.geometricTranslation = VectorOf(p); }},
    {"GeometricRotation", [](NodeValues& v, RecordView p) { v.transform.geometricRotation = VectorOf(p); }},
    {"GeometricScaling", [](NodeValues& v, RecordView p) { v.transform.geometricScaling = VectorOf(p); }},
    {"Visibility", [](NodeValues& v, RecordView p) { v.visibility = BoolOf(p); }},
    {"Show", [](NodeValues& v, RecordView p) { v.show = BoolOf(p); }},
};

const PropertyRow<AttributeValues> kAttributeRows[] = {
    {"Color", [](AttributeValues& v, RecordView p) { v.colour = VectorOf(p); }},
    {"Size", [](AttributeValues& v, RecordView p) { v.size = NumberOf(p); }},
    {"LimbLength", [](AttributeValues& v, RecordView p) { v.limbLength = NumberOf(p); }},
};

struct SkeletonWord {
  std::string_view word;
  SkeletonType type;
};
constexpr SkeletonWord kSkeletons[] = {{"LimbNode", SkeletonType::LimbNode},
                                       {"Limb", SkeletonType::Limb},
                                       {"Root", SkeletonType::Root},
                                       {"Effector", SkeletonType::Effector}};

std::string NumberText(PropertyView value) {
  std::array<char, 40> text{};
  const bool isReal = value.Type() == PropertyType::Float || value.Type() == PropertyType::Double;
  const auto end = isReal ? std::to_chars(text.data(), text.data() + text.size(), value.AsDouble()).ptr
                          : std::to_chars(text.data(), text.data() + text.size(), value.AsInt()).ptr;
  return std::string(text.data(), end);
}

/// All values of a row, a space between two.
std::string ValueText(RecordView row) {
  std::string text;
  for (size_t i = kFirstValue; i < row.NumProperties(); ++i) {
    const PropertyView value = row.Property(i);
    if (i > kFirstValue) text += ' ';
    if (value.IsText()) text += value.AsText();
    if (value.IsNumber()) text += NumberText(value);
  }
  return text;
}

}  // namespace

void ReadNodeProperties(RecordView owner, NodeValues& values) { ReadProperties(owner, kNodeRows, values); }

void ReadUserProperties(RecordView model, std::map<std::string, std::string>& properties) {
  for (const RecordView row : model.Find("Properties70").Children()) {
    if (row.Text(3).find('U') == std::string_view::npos) continue;
    properties[std::string(row.Text(0))] = ValueText(row);
  }
}

void ReadAttributeProperties(RecordView owner, AttributeValues& values) {
  ReadProperties(owner, kAttributeRows, values);
}

FbxSkeleton* MakeSkeleton(FbxScene& scene, std::string name, std::string_view word, const AttributeValues& values) {
  for (const SkeletonWord& row : kSkeletons) {
    if (row.word != word) continue;
    FbxSkeleton* skeleton = FbxSkeleton::Create(scene, std::move(name));
    skeleton->type = row.type;
    skeleton->size = values.size;
    skeleton->limbLength = values.limbLength;
    skeleton->colour = values.colour;
    return skeleton;
  }
  return nullptr;
}

FbxNodeAttribute* MakeAttribute(FbxScene& scene, std::string name, std::string_view word,
                                const AttributeValues& values) {
  if (FbxSkeleton* skeleton = MakeSkeleton(scene, name, word, values)) return skeleton;
  if (word == "Null") {
    FbxNull* null = FbxNull::Create(scene, std::move(name));
    null->size = values.size;
    null->colour = values.colour;
    return null;
  }
  const AttributeKind kind = word == "Camera"  ? AttributeKind::Camera
                             : word == "Light" ? AttributeKind::Light
                                               : AttributeKind::Other;
  FbxOtherAttribute* other = FbxOtherAttribute::Create(scene, std::move(name), kind, std::string(word));
  other->colour = values.colour;
  return other;
}

}  // namespace tavrilon::fbx
