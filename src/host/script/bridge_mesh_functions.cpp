// SPDX-License-Identifier: MIT
// Meshes, skins and morphers. Numbers of points, faces, bones and targets count from 1; points are of the world, at the
// time of the script, with all modifiers.
#include <algorithm>
#include <cmath>

#include "host/scene/kept_mesh.h"
#include "host/scene/morpher_modifier.h"
#include "host/scene/scene.h"
#include "host/scene/skin_modifier.h"
#include "host/script/bridge_functions.h"
#include "host/script/bridge_object.h"

namespace corvanta::script {

namespace {

using Items = std::vector<Value>;

const Items& ItemsOf(const Value& value, const wchar_t* what) {
  if (!value.Is(Kind::Array)) WrongValue(WStr(L"an array of ") + what, value);
  return value.AsArray().items();
}

int WholeOf(const Value& value, const wchar_t* what) {
  const auto number = ToInt(value);
  if (!number || *number < INT32_MIN || *number > INT32_MAX) WrongValue(what, value);
  return static_cast<int>(*number);
}

/// A number that counts from 1 as an index.
int IndexOf(const Value& value, int count, const wchar_t* what) {
  const int number = WholeOf(value, L"a whole number");
  if (number < 1 || number > count)
    Fail(WStr(L"there is no ") + what + L" " + std::to_wstring(number) + L": there are " + std::to_wstring(count));
  return number - 1;
}

Point3 PointOf(const Value& value) {
  const auto point = ToPoint3(value);
  if (!point) WrongValue(L"a point such as [1,2,3]", value);
  return *point;
}

float FloatOf(const Value& value, const wchar_t* what) {
  const auto number = ToNumber(value);
  if (!number) WrongValue(what, value);
  return static_cast<float>(*number);
}

// --- meshes

struct NodeMesh {
  INode* node;
  const MeshState* state;
};

NodeMesh MeshArg(const CallArgs& args) {
  INode* node = NodeArg(args, 0);
  const MeshState* state = EvaluatedMesh(node, ScriptTime());
  if (!state) Fail(args.CalleeName() + L": `" + node->GetName() + L"` has no mesh");
  return {node, state};
}

Value GetNumVerts(const CallArgs& args) { return Value::Int(MeshArg(args).state->mesh->NumPoints()); }
Value GetNumFaces(const CallArgs& args) { return Value::Int(MeshArg(args).state->mesh->NumPolygons()); }

Value GetVert(const CallArgs& args) {
  const NodeMesh mesh = MeshArg(args);
  const auto i = static_cast<size_t>(IndexOf(args[1], static_cast<int>(mesh.state->points.size()), L"vertex"));
  return Value::Of(mesh.state->points[i] * mesh.node->GetObjectTM(ScriptTime()));
}

Value GetFace(const CallArgs& args) {
  const Mesh& mesh = *MeshArg(args).state->mesh;
  Value corners = Value::Array();
  for (const int point : mesh.Polygon(IndexOf(args[1], mesh.NumPolygons(), L"face")))
    corners.AsArray().Append(Value::Int(point + 1));
  return corners;
}

// --- skins

SkinModifier& SkinArg(const CallArgs& args) {
  auto* skin = dynamic_cast<SkinModifier*>(TargetOf(args[0]));
  if (!skin) args.Wrong(0, L"a skin modifier");
  return *skin;
}

/// The object that a modifier stands in, and the first node that has it.
DerivedObject* StackOf(const ReferenceTarget& modifier) {
  return dynamic_cast<DerivedObject*>(
      modifier.FindDependent([](ReferenceMaker* maker) { return dynamic_cast<DerivedObject*>(maker) != nullptr; }));
}
INode* CarrierOf(const ReferenceTarget& target) {
  ReferenceMaker* maker = target.FindDependent([](ReferenceMaker* m) {
    ReferenceTarget* up = m->AsTarget();
    return up && (up->AsNode() || dynamic_cast<DerivedObject*>(up));
  });
  if (!maker) return nullptr;
  INode* node = maker->AsTarget()->AsNode();
  return node ? node : CarrierOf(*maker->AsTarget());
}

// The first bone binds the mesh too, where it stands.
Value SkinAddBone(const CallArgs& args) {
  SkinModifier& skin = SkinArg(args);
  INode* bone = NodeArg(args, 1);
  INode* carrier = CarrierOf(skin);
  if (!carrier) Fail(L"skinAddBone: the skin is on no node; add it with addModifier first");
  const Matrix3 bind = bone->GetNodeTM(ScriptTime());
  const Matrix3 meshBind = carrier->GetObjectTM(ScriptTime());
  const int number = skin.AddBone(bone, bind);
  if (number < 0)
    Fail(L"skinAddBone: `" + bone->GetName() + L"` is a bone of the skin already, or depends on its mesh");
  if (number == 0) skin.SetMeshBindTM(meshBind);
  return Value::Int(number + 1);
}

Value SkinNumBones(const CallArgs& args) { return Value::Int(SkinArg(args).NumBones()); }
Value SkinGetBone(const CallArgs& args) {
  const SkinModifier& skin = SkinArg(args);
  return WrapTarget(skin.GetBone(IndexOf(args[1], skin.NumBones(), L"bone")));
}

/// By number or as a node.
int BoneOf(const SkinModifier& skin, const Value& value) {
  const ReferenceTarget* target = TargetOf(value);
  if (!target) return IndexOf(value, skin.NumBones(), L"bone");
  for (int i = 0; i < skin.NumBones(); ++i)
    if (skin.GetBone(i) == target) return i;
  Fail(Describe(value) + L" is no bone of the skin; add it with skinAddBone first");
}

std::vector<SkinWeight> WeightsArg(const CallArgs& args, const SkinModifier& skin) {
  const Items &bones = ItemsOf(args[2], L"bones or their numbers"), &values = ItemsOf(args[3], L"weights");
  if (bones.size() != values.size())
    Fail(L"skinSetWeights: there are " + std::to_wstring(bones.size()) + L" bones and " +
         std::to_wstring(values.size()) + L" weights");
  std::vector<SkinWeight> weights;
  for (size_t i = 0; i < bones.size(); ++i) {
    weights.push_back({BoneOf(skin, bones[i]), FloatOf(values[i], L"a number as weight")});
    if (!std::isfinite(weights[i].weight) || weights[i].weight < 0) WrongValue(L"a weight of 0 and more", values[i]);
  }
  return weights;
}

Value SkinSetWeights(const CallArgs& args) {
  SkinModifier& skin = SkinArg(args);
  DerivedObject* stack = StackOf(skin);
  const int points = stack ? stack->NumPoints(ScriptTime()) : 0;
  const int vertex = IndexOf(args[1], std::max(points, skin.GetWeights().NumPoints()), L"vertex");
  const std::vector<SkinWeight> weights = WeightsArg(args, skin);
  const SkinWeights& old = skin.GetWeights();
  auto next = std::make_shared<SkinWeights>();
  for (int i = 0; i < std::max(old.NumPoints(), vertex + 1); ++i) {
    if (i == vertex)
      next->Add(weights);
    else
      next->Add(i < old.NumPoints() ? old.Of(i) : std::span<const SkinWeight>());
  }
  if (!skin.SetWeights(next)) Fail(L"skinSetWeights: the skin refuses these weights");
  return Value::Ok();
}

/// Pairs of a bone's number and its weight.
Value SkinGetWeights(const CallArgs& args) {
  const SkinModifier& skin = SkinArg(args);
  Value pairs = Value::Array();
  const int vertex = WholeOf(args[1], L"the number of a vertex") - 1;
  if (vertex < 0 || vertex >= skin.GetWeights().NumPoints()) return pairs;
  for (const SkinWeight& w : skin.GetWeights().Of(vertex)) {
    Value pair = Value::Array();
    pair.AsArray().Append(Value::Int(w.bone + 1));
    pair.AsArray().Append(Value::Float(double{w.weight}));
    pairs.AsArray().Append(pair);
  }
  return pairs;
}

// --- morphers

Value MorphAddChannel(const CallArgs& args) {
  auto* morpher = dynamic_cast<MorpherModifier*>(TargetOf(args[0]));
  if (!morpher) args.Wrong(0, L"a morpher modifier");
  return WrapTarget(morpher->AddChannel(args.Text(1)));
}

Value MorphGetChannel(const CallArgs& args) {
  auto* morpher = dynamic_cast<MorpherModifier*>(TargetOf(args[0]));
  if (!morpher) args.Wrong(0, L"a morpher modifier");
  if (!args[1].IsText()) return WrapTarget(morpher->GetChannel(IndexOf(args[1], morpher->NumChannels(), L"channel")));
  for (int i = 0; i < morpher->NumChannels(); ++i)
    if (MorphChannel* channel = morpher->GetChannel(i); channel && EqualsNoCase(channel->GetName(), args[1].AsText()))
      return WrapTarget(channel);
  return {};
}

/// How the mesh of a node differs from the one under the morpher.
MorphTarget DifferenceTo(INode* node, const MorphChannel& channel) {
  const auto* morpher = dynamic_cast<MorpherModifier*>(
      channel.FindDependent([](ReferenceMaker* maker) { return dynamic_cast<MorpherModifier*>(maker) != nullptr; }));
  DerivedObject* stack = morpher ? StackOf(*morpher) : nullptr;
  const auto* base = stack ? dynamic_cast<MeshObject*>(stack->GetBaseObject()) : nullptr;
  if (!base) Fail(L"morphSetTarget: the morpher is on no node with a mesh");
  const MeshState* state = EvaluatedMesh(node, ScriptTime());
  const std::vector<Point3>& from = base->GetMesh().points;
  if (!state || state->points.size() != from.size())
    Fail(L"morphSetTarget: `" + node->GetName() + L"` has not the " + std::to_wstring(from.size()) +
         L" vertices of the morphed mesh");
  MorphTarget target;
  for (size_t i = 0; i < from.size(); ++i) {
    const Point3 offset = state->points[i] - from[i];
    if (offset == Point3()) continue;
    target.points.push_back(static_cast<int>(i));
    target.offsets.push_back(offset);
  }
  return target;
}

/// Vertices and their offsets, in any order.
MorphTarget OffsetsArg(const CallArgs& args) {
  const Items &vertices = ItemsOf(args[2], L"vertices"), &offsets = ItemsOf(args[3], L"offsets");
  if (vertices.size() != offsets.size())
    Fail(L"morphSetTarget: there are " + std::to_wstring(vertices.size()) + L" vertices and " +
         std::to_wstring(offsets.size()) + L" offsets");
  std::vector<std::pair<int, Point3>> pairs;
  for (size_t i = 0; i < vertices.size(); ++i)
    pairs.emplace_back(IndexOf(vertices[i], INT32_MAX, L"vertex"), PointOf(offsets[i]));
  std::stable_sort(pairs.begin(), pairs.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  MorphTarget target;
  for (const auto& [vertex, offset] : pairs) {
    target.points.push_back(vertex);
    target.offsets.push_back(offset);
  }
  return target;
}

// Takes the place of a target at the same percentage.
Value MorphSetTarget(const CallArgs& args) {
  auto* channel = dynamic_cast<MorphChannel*>(TargetOf(args[0]));
  if (!channel) args.Wrong(0, L"a channel of a morpher");
  if (args.Count() == 3 && !TargetOf(args[2])) args.Wrong(2, L"a node, or arrays of vertices and of offsets");
  MorphTarget target = args.Count() == 3 ? DifferenceTo(NodeArg(args, 2), *channel) : OffsetsArg(args);
  target.percent = static_cast<float>(args.Number(1));
  std::vector<MorphTarget> targets = channel->Targets();
  std::erase_if(targets, [&](const MorphTarget& t) { return t.percent == target.percent; });
  const auto at =
      std::find_if(targets.begin(), targets.end(), [&](const MorphTarget& t) { return t.percent > target.percent; });
  targets.insert(at, std::move(target));
  if (const std::string fault = FaultOf(targets); !fault.empty()) Fail(L"morphSetTarget: " + FromUtf8(fault));
  channel->SetTargets(std::make_shared<const std::vector<MorphTarget>>(std::move(targets)));
  return Value::Ok();
}

const BuiltinRow kRows[] = {
    {L"getNumVerts", GetNumVerts, 1, 1},         {L"getVert", GetVert, 2, 2},
    {L"getNumFaces", GetNumFaces, 1, 1},         {L"getFace", GetFace, 2, 2},
    {L"skinAddBone", SkinAddBone, 2, 2},         {L"skinNumBones", SkinNumBones, 1, 1},
    {L"skinGetBone", SkinGetBone, 2, 2},         {L"skinSetWeights", SkinSetWeights, 4, 4},
    {L"skinGetWeights", SkinGetWeights, 2, 2},   {L"morphAddChannel", MorphAddChannel, 2, 2},
    {L"morphGetChannel", MorphGetChannel, 2, 2}, {L"morphSetTarget", MorphSetTarget, 3, 4},
};

/// Keywords that a mesh is made of; the others are properties as with any object.
struct TabRow {
  const wchar_t* keyword;
  void (*read)(const Items&, Mesh&);
};
const TabRow kMeshTabs[] = {
    {L"vertices",
     [](const Items& items, Mesh& mesh) {
       for (const Value& item : items) mesh.points.push_back(PointOf(item));
     }},
    {L"faces",
     [](const Items& items, Mesh& mesh) {
       for (const Value& item : items) {
         std::vector<int> corners;
         for (const Value& corner : ItemsOf(item, L"vertices for each face"))
           corners.push_back(IndexOf(corner, mesh.NumPoints(), L"vertex"));
         mesh.AddPolygon(corners);
       }
     }},
    {L"smoothinggroups",
     [](const Items& items, Mesh& mesh) {
       for (const Value& item : items) mesh.smoothing.push_back(uint32_t{1} << IndexOf(item, 32, L"smoothing group"));
     }},
    {L"materialids",
     [](const Items& items, Mesh& mesh) {
       for (const Value& item : items)
         mesh.materials.push_back(static_cast<uint16_t>(IndexOf(item, UINT16_MAX + 1, L"material ID")));
     }},
};

}  // namespace

std::span<const BuiltinRow> MeshFunctions() { return kRows; }

bool IsMeshKeyword(const WStr& name) {
  return std::any_of(std::begin(kMeshTabs), std::end(kMeshTabs),
                     [&](const TabRow& row) { return name == row.keyword; });
}

// In the order of the rows, whatever the order of the keywords: faces need their vertices.
std::shared_ptr<const Mesh> MeshFromKeywords(const CallArgs& args) {
  const auto mesh = std::make_shared<Mesh>();
  for (const TabRow& row : kMeshTabs)
    if (const Value* value = args.Keyword(row.keyword)) row.read(ItemsOf(*value, row.keyword), *mesh);
  if (const std::string fault = FaultOf(*mesh); !fault.empty()) Fail(L"Mesh: " + FromUtf8(fault));
  return mesh;
}

}  // namespace corvanta::script
