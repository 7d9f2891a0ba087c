// SPDX-License-Identifier: MIT
// Scenes out of real files, and what hostile or odd ones come to.
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <sstream>

#include "plugin/fbx_format/scene_samples.h"

namespace tavrilon::fbx {
namespace {

TEST(FbxSceneReader, CountsOfFiles) {
  struct Row {
    const char* file;
    size_t nodes, bones, meshes, skins, clusters, channels, materials, curveNodes;
    const char* stack;
    double start, stop;
  };
  const Row rows[] = {
      {"mixamo_walk.fbx", 54, 53, 1, 1, 53, 0, 1, 159, "mixamo.com", 0, 2},
      {"character_skinned.fbx", 55, 53, 1, 1, 53, 3, 2, 168, "nod", 0, 1},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.file);
    const auto read = ReadFile(row.file);
    EXPECT_EQ(read->scene->Nodes().size(), row.nodes);
    EXPECT_EQ(read->All<FbxSkeleton>().size(), row.bones);
    EXPECT_EQ(read->All<FbxMesh>().size(), row.meshes);
    ASSERT_EQ(read->All<FbxSkin>().size(), row.skins);
    EXPECT_EQ(read->All<FbxSkin>()[0]->clusters.size(), row.clusters);
    EXPECT_EQ(read->All<FbxBlendShapeChannel>().size(), row.channels);
    EXPECT_EQ(read->scene->Materials().size(), row.materials);
    const FbxAnimStack* stack = read->scene->CurrentStack();
    ASSERT_TRUE(stack && stack->layers.size() == 1);
    EXPECT_EQ(stack->GetName(), row.stack);
    EXPECT_EQ(stack->layers[0]->curveNodes.size(), row.curveNodes);
    FbxTime first, last;
    stack->GetKeySpan(first, last);
    EXPECT_EQ(first, Seconds(row.start));
    EXPECT_EQ(last, Seconds(row.stop));
    EXPECT_EQ(stack->localStop, last);
    EXPECT_EQ(read->scene->GetGlobalSettings().GetFrameRate(), 30);
    EXPECT_GT(read->scene->MemoryUsed(), size_t{100000});
  }
}

// Links of the clusters, turned to Z up, stand where the table of joints has them; the weights of each point are one.
TEST(FbxSceneReader, SkinOfTheCharacter) {
  const auto read = ReadFile("character_skinned.fbx");
  ASSERT_TRUE(FbxAxisSystem::ZUp().ConvertScene(*read->scene));
  const FbxMesh* mesh = read->All<FbxMesh>()[0];
  std::map<std::string, const FbxCluster*> byBone;
  std::vector<double> sums(mesh->controlPoints.size());
  for (const FbxCluster& cluster : mesh->skins.at(0)->clusters) {
    ASSERT_TRUE(cluster.link);
    byBone[cluster.link->GetName()] = &cluster;
    for (size_t i = 0; i < cluster.indices.size(); ++i) {
      sums[static_cast<size_t>(cluster.indices[i])] += cluster.weights[i];
    }
  }
  for (double sum : sums) EXPECT_NEAR(sum, 1, 1e-5);  // the file's weights were floats
  std::ifstream table(TAVRILON_SOURCE_DIR "/tests/data/fbx/character_joints.csv");
  std::string line;
  int rows = 0;
  while (std::getline(table, line)) {
    if (line.empty() || line[0] == '#' || line.rfind("name,", 0) == 0) continue;
    std::istringstream cells(line);
    std::string name, parent, x, y, z;
    for (std::string* cell : {&name, &parent, &x, &y, &z}) std::getline(cells, *cell, ',');
    SCOPED_TRACE(name);
    ASSERT_TRUE(byBone.count(name));
    // The table has two digits.
    ExpectNear(byBone[name]->transformLink.row[3], {std::stod(x), std::stod(y), std::stod(z)}, 0.006);
    const FbxNode* up = byBone[name]->link->GetParent();
    EXPECT_EQ(up->GetName(), parent.empty() ? "Skeleton" : parent);
    ++rows;
  }
  EXPECT_EQ(rows, 53);
}

TEST(FbxSceneReader, MeshOfTheCharacter) {
  const auto read = ReadFile("character_skinned.fbx");
  const FbxMesh& mesh = *read->All<FbxMesh>()[0];
  EXPECT_EQ(mesh.controlPoints.size(), 984u);
  EXPECT_EQ(mesh.NumPolygons(), 996);
  EXPECT_EQ(mesh.edges.size(), 1978u);
  EXPECT_EQ(mesh.normals.mapping, Mapping::ByPolygonVertex);
  EXPECT_EQ(mesh.smoothing.mapping, Mapping::ByPolygon);
  ASSERT_EQ(mesh.uvs.size(), 2u);
  EXPECT_EQ(mesh.uvs[0].name, "UVMap");
  EXPECT_EQ(mesh.uvs[1].name, "Lightmap");
  for (size_t corner = 0; corner < mesh.polygonVertices.size(); ++corner) {
    ASSERT_TRUE(mesh.uvs[0].At(corner));
    // Written from floats.
    ASSERT_NEAR(Length(*mesh.normals.At(corner)), 1, 1e-3);
  }
  const FbxNode* node = read->Node("Body");
  EXPECT_EQ(node->GetNodeAttribute(), &mesh);
  EXPECT_EQ(node->materials.size(), 2u);
  for (int polygon = 0; polygon < mesh.NumPolygons(); ++polygon) {
    EXPECT_LT(*mesh.materials.At(static_cast<size_t>(polygon)), 2);
  }
  ASSERT_EQ(mesh.blendShapes.size(), 1u);
  const FbxBlendShapeChannel& head = *mesh.blendShapes[0]->channels.at(1);
  EXPECT_EQ(head.GetName(), "HeadTall");
  EXPECT_NEAR(head.deformPercent, 35, 1e-5);  // written from a float
  // The file has a weight for every point; one for the shape is meant.
  EXPECT_EQ(head.fullWeights, std::vector<double>{100});
  EXPECT_EQ(head.shapes.at(0).offsets.size(), 17u);
  EXPECT_NE(read->Log().find("Body.HeadTall"), std::string::npos);
}

// As files call them, whatever the writer believes.
struct VectorRow {
  const char* name;
  Vector3 NodeTransform::*part;
};
const VectorRow kVectors[] = {{"Lcl Translation", &NodeTransform::translation},
                              {"Lcl Rotation", &NodeTransform::rotation},
                              {"Lcl Scaling", &NodeTransform::scaling},
                              {"RotationOffset", &NodeTransform::rotationOffset},
                              {"RotationPivot", &NodeTransform::rotationPivot},
                              {"ScalingOffset", &NodeTransform::scalingOffset},
                              {"ScalingPivot", &NodeTransform::scalingPivot},
                              {"PreRotation", &NodeTransform::preRotation},
                              {"PostRotation", &NodeTransform::postRotation},
                              {"GeometricTranslation", &NodeTransform::geometricTranslation},
                              {"GeometricRotation", &NodeTransform::geometricRotation},
                              {"GeometricScaling", &NodeTransform::geometricScaling}};

TEST(FbxSceneReader, EveryPartOfANode) {
  NodeTransform expected;
  expected.rotationActive = true;
  expected.order = RotationOrder::ZXY;
  expected.inherit = InheritType::Rrs;
  std::vector<std::pair<std::string, std::string>> rows = {
      {"RotationActive", "1"}, {"RotationOrder", "4"}, {"InheritType", "2"}, {"Visibility", "0"}};
  for (int i = 0; const VectorRow& row : kVectors) {
    expected.*row.part = {i + 1.0, i + 2.0, i + 3.0};
    rows.emplace_back(row.name, std::to_string(i + 1) + "," + std::to_string(i + 2) + "," + std::to_string(i + 3));
    i += 3;
  }
  const std::string user = R"(P: "health", "Number", "", "AU",12.5
      P: "kind", "KString", "", "U", "a b"
      P: "offset", "Vector3D", "Vector", "U",1,2.5,-3)";
  const auto read = ReadText(
      SceneText(R"(Model: 1, "Model::ns:a|b", "LimbNode" {)" + Properties(rows, user) + R"(}
    Model: 2, "Model::plain", "Null" { }
    NodeAttribute: 3, "NodeAttribute::", "Null" {)" +
                    Properties({{"Color", "1,0.5,0"}, {"Size", "12"}}) + R"(}
    Model: 4, "Model::odd", "Null" {)" +
                    Properties({{"RotationOrder", "77"}, {"Lcl Translation", "nan,inf,3"}}) + "}",
                Links({{1, 0}, {2, 1}, {3, 2}, {4, 0}}),
                R"(Definitions: { ObjectType: "Model" { PropertyTemplate: "FbxNode" {)" +
                    Properties({{"InheritType", "1"}, {"Show", "1"}, {"Lcl Translation", "0,0,40"}}) + "} } }"));
  ASSERT_TRUE(read->Error().empty()) << read->Error();
  const FbxNode* node = read->Node("ns:a|b");
  ASSERT_TRUE(node);
  EXPECT_EQ(node->transform, expected);
  EXPECT_FALSE(node->visible);
  EXPECT_EQ(node->FileId(), 1);
  EXPECT_EQ(node->userProperties,
            (decltype(node->userProperties){{"health", "12.5"}, {"kind", "a b"}, {"offset", "1 2.5 -3"}}));
  // A bone without an attribute of its own is a bone all the same.
  ASSERT_TRUE(node->GetNodeAttribute());
  EXPECT_EQ(node->GetNodeAttribute()->Kind(), AttributeKind::Skeleton);

  const FbxNode* plain = read->Node("plain");
  EXPECT_EQ(plain->GetParent(), node);
  EXPECT_TRUE(plain->visible);
  EXPECT_EQ(plain->transform.translation, (Vector3{0, 0, 40}));
  EXPECT_EQ(plain->transform.inherit, InheritType::RSrs);
  const auto* null = dynamic_cast<FbxNull*>(plain->GetNodeAttribute());
  ASSERT_TRUE(null && null->colour);
  EXPECT_EQ(*null->colour, (Vector3{1, 0.5, 0}));
  EXPECT_EQ(null->size, 12);
  // What is no number and no order counts as none.
  EXPECT_EQ(read->Node("odd")->transform.translation, (Vector3{0, 0, 3}));
  EXPECT_EQ(read->Node("odd")->transform.order, RotationOrder::XYZ);
}

/// Two triangles 0 1 2 and 2 1 3 with an element.
std::string MeshText(const std::string& inside = "") {
  return R"(Geometry: 5, "Geometry::quad", "Mesh" {
    Vertices: *12 { a: 0,0,0, 1,0,0, 0,1,0, 1,1,0 }
    PolygonVertexIndex: *6 { a: 0,1,-3,2,1,-4 }
    Edges: *2 { a: 0,4 }
    )" + inside +
         " }";
}

std::string ElementText(const std::string& kind, const std::string& mapping, const std::string& values) {
  const char* const reference = values.find("Index:") == std::string::npos ? "Direct" : "IndexToDirect";
  return "LayerElement" + kind + ": 0 { MappingInformationType: \"" + mapping + "\"\nReferenceInformationType: \"" +
         reference + "\"\n" + values + " }\n";
}

TEST(FbxSceneReader, ElementsOfMeshes) {
  struct Row {
    const char *name, *mapping, *values;
    bool fits;
  };
  const Row rows[] = {
      {"by point", "ByVertice", "UV: *8 { a: 0,0,1,0,0,1,1,1 }", true},
      {"by corner", "ByPolygonVertex", "UV: *2 { a: 0.5,1 }\nUVIndex: *6 { a: 0,0,0,-1,0,0 }", true},
      {"all the same", "AllSame", "UV: *2 { a: 0.5,1 }", true},
      {"too few values", "ByVertice", "UV: *6 { a: 0,0,1,0,0,1 }", false},
      {"too few indices", "ByPolygonVertex", "UV: *2 { a: 0.5,1 }\nUVIndex: *5 { a: 0,0,0,0,0 }", false},
      {"index behind the values", "ByPolygon", "UV: *2 { a: 0.5,1 }\nUVIndex: *2 { a: 0,1 }", false},
      {"index below", "ByPolygon", "UV: *2 { a: 0.5,1 }\nUVIndex: *2 { a: 0,-2 }", false},
      {"mapping that is not known", "ByMagic", "UV: *8 { a: 0,0,1,0,0,1,1,1 }", false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const auto read = ReadText(SceneText(MeshText(ElementText("UV", row.mapping, row.values))));
    ASSERT_TRUE(read->Error().empty()) << read->Error();
    const FbxMesh& mesh = *read->All<FbxMesh>()[0];
    EXPECT_EQ(mesh.polygonStarts, (std::vector<int>{0, 3, 6}));
    EXPECT_EQ(mesh.polygonVertices, (std::vector<int>{0, 1, 2, 2, 1, 3}));
    EXPECT_EQ(mesh.uvs.empty(), !row.fits);
    EXPECT_EQ(read->Log().find("LayerElementUV that does not fit") == std::string::npos, row.fits) << read->Log();
  }
  const auto read = ReadText(SceneText(
      MeshText("Smoothness: 2\nPreviewDivisionLevels: 1\nRenderDivisionLevels: 3\nLayerElementColor: 0 { }\n" +
               ElementText("Smoothing", "ByEdge", "Smoothing: *2 { a: 0,1 }") +
               ElementText("Material", "ByPolygon", "Materials: *2 { a: 1,-1 }"))));
  const FbxMesh& mesh = *read->All<FbxMesh>()[0];
  EXPECT_EQ(mesh.smoothness, 2);
  EXPECT_EQ(mesh.previewLevels, 1);
  EXPECT_EQ(mesh.renderLevels, 3);
  EXPECT_EQ(mesh.smoothing.values, (std::vector<int>{0, 1}));
  EXPECT_EQ(mesh.materials.values, (std::vector<int>{1, 0}));
}

const std::string kStack = R"(
    AnimationStack: 20, "AnimStack::take", "" { }
    AnimationLayer: 21, "AnimLayer::base", "" { }
    AnimationCurveNode: 22, "AnimCurveNode::T", "" { Properties70: { P: "d|X", "Number", "", "A",5 } }
    Model: 1, "Model::a", "Null" { Properties70: { P: "Lcl Translation", "Lcl Translation", "", "A",1,2,3 } }
)";
const std::string kStackLinks = R"(
    C: "OO",1,0
    C: "OO",21,20
    C: "OO",22,21
    C: "OP",22,1, "Lcl Translation"
    C: "OP",23,22, "d|Y"
)";

/// Flags and runs are lists of as many numbers, data of four times as many; without flags nothing is said of them.
struct Keys {
  std::string times, values, flags = "", data = "", runs = "";
};
std::string CurveText(const Keys& keys, const std::string& more = "") {
  const auto array = [](const char* name, const std::string& numbers) {
    const auto count = 1 + std::count(numbers.begin(), numbers.end(), ',');
    return std::string(name) + ": *" + std::to_string(count) + " { a: " + numbers + " }\n";
  };
  std::string text = array("KeyTime", keys.times) + array("KeyValueFloat", keys.values);
  if (!keys.flags.empty()) {
    text +=
        array("KeyAttrFlags", keys.flags) + array("KeyAttrDataFloat", keys.data) + array("KeyAttrRefCount", keys.runs);
  }
  return SceneText(kStack + "AnimationCurve: 23, \"AnimCurve::\", \"\" { " + text + " }", kStackLinks, more);
}

// One second is 46186158000 ticks: seconds 0, 1, 2 and 0, 1, 4.
const char *const kEven = "0,46186158000,92372316000", *const kUneven = "0,46186158000,184744632000";

TEST(FbxSceneReader, KeysOfCurves) {
  struct Row {
    const char *name, *flags, *data, *runs;
    std::vector<KeyShape> shapes;
  };
  constexpr Interpolation kCubic = Interpolation::Cubic;
  const float third = 1.0f / 3;
  const KeyShape linear{Interpolation::Linear}, constant{Interpolation::Constant};
  const KeyShape slopes{kCubic, 4.5f, -1, third, third}, weighted{kCubic, 0, 0, 2000 / 9999.0f, third};
  // 4.5 is 1083179008 as a pattern of bits, 218434821 a third and a third.
  const Row rows[] = {
      {"none said", "", "", "", {KeyShape{}}},
      {"constant", "2", "0,0,0,0", "3", {constant}},
      {"constant next", "258", "0,0,0,0", "3", {{Interpolation::ConstantNext}}},
      {"linear", "4", "0,0,0,0", "3", {linear}},
      {"slopes as patterns", "1032", "1083179008,-1082130432,218434821,0", "3", {slopes}},
      {"slopes as numbers", "1032", "4.5,-1,0,0", "3", {slopes}},
      // 0.2 and 0.9: 1999.8 and 8999.1 of 9999, rounded to 2000 and 8999.
      {"weights, right only in force", "16778248", "0,0,589760464,0", "3", {weighted}},
      {"runs", "4,2", "0,0,0,0,0,0,0,0", "1,2", {linear, constant, constant}},
      // Flat ends; the middle key rises by 4 in 2 seconds from neighbour to neighbour, or by 1 and 3 evenly mixed.
      {"automatic", "264", "0,0,0,0", "3", {{kCubic, 0, 2}, {kCubic, 2, 0}, {kCubic, 0, 0}}},
      {"automatic beside a key with slopes",
       "1032,8456,1032",
       "7.5,8,0,0, 0,3,0,0, 1,1,0,0",
       "1,1,1",
       {{kCubic, 7.5f, 2}, {kCubic, 2, 3}, {kCubic, 1, 1}}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const auto read = ReadText(CurveText({kEven, "0,1,4", row.flags, row.data, row.runs}));
    ASSERT_TRUE(read->Error().empty()) << read->Error();
    const FbxAnimCurveNode& node = *read->All<FbxAnimCurveNode>()[0];
    EXPECT_EQ(node.target, read->Node("a"));
    EXPECT_EQ(node.property, "Lcl Translation");
    // X as the curve node says, Z as the node stands.
    EXPECT_EQ(node.defaults[0], 5);
    EXPECT_EQ(node.defaults[2], 3);
    EXPECT_TRUE(node.curves[0].IsEmpty() && node.curves[2].IsEmpty());
    EXPECT_EQ(node.curves[1].times[2], 2 * FbxTime::kTicksPerSecond);
    EXPECT_EQ(node.curves[1].values, (std::vector<float>{0, 1, 4}));
    ASSERT_EQ(node.curves[1].shapes.size(), row.shapes.size());
    for (size_t i = 0; i < row.shapes.size(); ++i) {
      const KeyShape &is = node.curves[1].shapes[i], &expected = row.shapes[i];
      EXPECT_EQ(is.interpolation, expected.interpolation) << i;
      EXPECT_FLOAT_EQ(is.rightSlope, expected.rightSlope) << i;
      EXPECT_FLOAT_EQ(is.nextLeftSlope, expected.nextLeftSlope) << i;
      EXPECT_FLOAT_EQ(is.rightWeight, expected.rightWeight) << i;
      EXPECT_FLOAT_EQ(is.nextLeftWeight, expected.nextLeftWeight) << i;
    }
  }
}

TEST(FbxSceneReader, AutomaticTangents) {
  struct Row {
    const char *name, *flags, *times, *values;
    float slope;
  };
  const Row rows[] = {
      {"free", "8456", kEven, "0,9,10", 5},
      {"flat beside an equal value", "12552", kEven, "0,10,10", 0},
      {"clamped, no equal value", "12552", kEven, "0,9,10", 5},
      // Three times the rise to the neighbour is the most that a cubic with weights of a third stands.
      {"progressive", "24840", kEven, "0,9,10", 3},
      {"progressive at a top", "24840", kEven, "0,9,2", 0},
      {"progressive, falling", "24840", kEven, "10,1,0", -3},
      {"whatever its time", "8456", kUneven, "0,3,6", 1.5f},
      // Rises of 3 and 1 a second; the left one is three times as near.
      {"by its time", "264", kUneven, "0,3,6", 2.5f},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const auto read = ReadText(CurveText({row.times, row.values, row.flags, "0,0,0,0", "3"}));
    ASSERT_TRUE(read->Error().empty()) << read->Error();
    const FbxAnimCurve& curve = read->All<FbxAnimCurveNode>()[0]->curves[1];
    EXPECT_NEAR(curve.shapes[1].rightSlope, row.slope, 1e-5);
    EXPECT_NEAR(curve.shapes[0].nextLeftSlope, row.slope, 1e-5);
  }
}

TEST(FbxSceneReader, Ticks) {
  const std::pair<const char*, const char*> rows[] = {
      // what the header tells, and the ticks of the file that are one second
      {"1003 OtherFlags: { TCDefinition: 0 }", "46186158000"},
      {"1004", "46186158000"},
      {"1004 OtherFlags: { TCDefinition: 127 }", "46186158000"},
      {"1004 OtherFlags: { TCDefinition: 0 }", "141120000"},
  };
  for (const auto& [header, second] : rows) {
    SCOPED_TRACE(header);
    const auto read = ReadText(CurveText({std::string("0,") + second, "0,1"},
                                         std::string("FBXHeaderExtension: { FBXHeaderVersion: ") + header +
                                             " }\nTakes: { Take: \"take\" { LocalTime: 0," + second + " } }"));
    ASSERT_TRUE(read->Error().empty()) << read->Error();
    EXPECT_EQ(read->All<FbxAnimCurveNode>()[0]->curves[1].times[1], FbxTime::kTicksPerSecond);
    EXPECT_EQ(read->scene->Stacks()[0]->localStop.ticks, FbxTime::kTicksPerSecond);
  }
}

struct ErrorRow {
  const char* name;
  std::string text;
  const char* error;
};
TEST(FbxSceneReader, Errors) {
  const auto mesh = [](const std::string& inside) {
    return SceneText("Geometry: 5, \"Geometry::bad\", \"Mesh\" { Vertices: " + inside + " }");
  };
  const ErrorRow rows[] = {
      {"polygon outside", mesh("*3 { a: 0,0,0 }\nPolygonVertexIndex: *3 { a: 0,1,-1 }"),
       "Objects/Geometry \"bad\": a polygon points at point 1 of 1"},
      {"open polygon", mesh("*3 { a: 0,0,0 }\nPolygonVertexIndex: *3 { a: 0,0,0 }"), "the last polygon has no end"},
      {"half a point", mesh("*2 { a: 0,0 }"), "not whole points"},
      {"values do not match times", CurveText({"0,1", "0"}), "a Lcl Translation: 2 key times but 1 values"},
      {"runs lie", CurveText({"0,1", "0,0", "4", "0,0,0,0", "2147483647"}),
       "the runs count 2147483647 keys, there are 2"},
      {"runs below zero", CurveText({"0", "0", "4,4", "0,0,0,0,0,0,0,0", "2,-1"}), "negative length"},
      {"attributes lack", CurveText({"0", "0", "4", "0,0,0", "1"}), "do not agree"},
      {"weights lack",
       SceneText(R"(Deformer: 6, "Deformer::s", "Skin" { }
        Deformer: 7, "SubDeformer::c", "Cluster" { Indexes: *2 { a: 0,1 } Weights: *1 { a: 1 } })",
                 Links({{7, 6}})),
       "Objects/Deformer \"c\": 2 indices but 1 weights"},
      {"offsets lack",
       SceneText(R"(Deformer: 6, "SubDeformer::c", "BlendShapeChannel" { }
        Geometry: 7, "Geometry::smile", "Shape" { Indexes: *2 { a: 0,1 } Vertices: *3 { a: 0,0,0 } })",
                 Links({{7, 6}})),
       "\"smile\": 2 indices but 3 numbers"},
  };
  for (const ErrorRow& row : rows) {
    SCOPED_TRACE(row.name);
    const std::string error = ReadText(row.text)->Error();
    EXPECT_EQ(error.rfind("sample.fbx: line ", 0), 0u) << error;
    EXPECT_NE(error.find(row.error), std::string::npos) << error;
  }
}

TEST(FbxSceneReader, WhatIsLoggedAndLeftOut) {
  const std::string nodes = "Model: 1, \"Model::a\", \"Null\" { }\nModel: 2, \"Model::b\", \"Null\" { }\n";
  const ErrorRow rows[] = {
      {"unknown kind", SceneText("Constraint: 9, \"Constraint::aim\", \"\" { }"),
       "Objects of kind Constraint are left out: aim"},
      {"unknown attribute", SceneText("NodeAttribute: 9, \"NodeAttribute::lod\", \"LodGroup\" { }"),
       "Nodes of kind LodGroup come in as plain nodes: lod"},
      {"same number", SceneText(nodes + "Model: 1, \"Model::again\", \"Null\" { }"), "the same number"},
      {"no such object", SceneText(nodes, Links({{1, 77}})), "not in the file: 77"},
      {"no parent", SceneText(nodes, Links({{1, 0}})), "put under the root: b"},
      {"two parents", SceneText(nodes, Links({{1, 0}, {2, 1}, {2, 0}})), "stays with the first: b"},
      {"odd links", SceneText(nodes + "Material: 3, \"Material::m\", \"\" { }", Links({{1, 3}})),
       "no meaning here are left out: a to m"},
      {"links of another kind", SceneText(nodes, "C: \"PP\",1,2"), "Links from properties"},
      {"two attributes",
       SceneText(nodes + R"(NodeAttribute: 3, "NodeAttribute::x", "Null" { }
        NodeAttribute: 4, "NodeAttribute::y", "Null" { })",
                 Links({{3, 1}, {4, 1}, {3, 1}})),
       "Only the first attribute of a node is read: a\n"},
      {"dual quaternions", SceneText("Deformer: 6, \"Deformer::s\", \"Skin\" { SkinningType: \"DualQuaternion\" }"),
       "Skinning of type DualQuaternion is read as linear: s"},
      {"falling keys", CurveText({"5,4,6", "0,0,0"}), "out of the order of time were left out: a Lcl Translation"},
      {"values that are no numbers", CurveText({"5", "nan"}), "no numbers were set to 0"},
      {"unit", SceneText("", "", "GlobalSettings: {" + Properties({{"UnitScaleFactor", "-1"}}) + "}"),
       "The unit is no length"},
      {"picture inside", SceneText("Video: 3, \"Video::v\", \"Clip\" { Content: \"abc\" }"), "Pictures inside"},
      {"weights outside",
       SceneText(MeshText() + R"(Deformer: 6, "Deformer::s", "Skin" { }
        Deformer: 7, "SubDeformer::c", "Cluster" { Indexes: *2 { a: 4,1 } Weights: *2 { a: 1,0.5 } })",
                 Links({{7, 6}, {6, 5}})),
       "points that the mesh does not have were left out: c"},
  };
  for (const ErrorRow& row : rows) {
    SCOPED_TRACE(row.name);
    const auto read = ReadText(row.text);
    EXPECT_TRUE(read->Error().empty()) << read->Error();
    EXPECT_NE(read->Log().find(row.error), std::string::npos) << read->Log();
  }
  const auto skin = ReadText(rows[std::size(rows) - 1].text);
  const FbxCluster& cluster = skin->All<FbxSkin>()[0]->clusters.at(0);
  EXPECT_EQ(cluster.indices, std::vector<int>{1});
  EXPECT_EQ(cluster.weights, std::vector<double>{0.5});
}

/// Nodes 1 to `count`, "n1" and so on.
std::string NodesText(int count) {
  std::string text;
  for (int i = 1; i <= count; ++i) {
    text += "Model: " + std::to_string(i) + ", \"Model::n" + std::to_string(i) + "\", \"LimbNode\" { }\n";
  }
  return text;
}

TEST(FbxSceneReader, LoopsOfNodesAreCut) {
  // 1 to 3 in a circle, 4 below them, 5 its own parent.
  const auto read = ReadText(SceneText(NodesText(5), Links({{4, 2}, {1, 2}, {2, 3}, {3, 1}, {5, 5}})));
  ASSERT_TRUE(read->Error().empty());
  EXPECT_NE(read->Log().find("their own ancestors"), std::string::npos);
  int topNodes = 0;
  for (const FbxNode* node : read->scene->Nodes()) {
    int depth = 0;
    for (const FbxNode* up = node; up; up = up->GetParent()) ASSERT_LT(++depth, 7);
    topNodes += node->GetParent() == read->scene->GetRootNode();
  }
  EXPECT_EQ(topNodes, 2);
  EXPECT_EQ(read->Node("n4")->GetParent(), read->Node("n2"));
}

// Seconds would be minutes if any step looked through all others: wide, deep with children first, one object linked
// over and over.
TEST(FbxSceneReader, WorkGrowsWithTheFile) {
  constexpr int kCount = 30000;
  const std::string objects = NodesText(kCount);
  std::string wide, deep, repeated;
  for (int i = 1; i <= kCount; ++i) {
    wide += Links({{i, 1}});
    deep += Links({{kCount + 1 - i, kCount - i}});
    repeated += Links({{2, 1}, {1, 2}});
  }
  const auto one = ReadText(SceneText(objects, wide));
  EXPECT_EQ(one->scene->Nodes()[0]->GetChildCount(), kCount - 1);
  const auto two = ReadText(SceneText(objects, deep));
  EXPECT_EQ(two->scene->GetRootNode()->GetChildCount(), 1);
  for (FbxNode* node : two->scene->Nodes()) node->transform.translation = {1, 0, 0};
  EXPECT_EQ(SceneEvaluator(*two->scene, nullptr).World(two->scene->Nodes().back(), {}), Translation({kCount, 0, 0}));
  const auto three = ReadText(SceneText(objects, repeated));
  EXPECT_EQ(three->scene->GetRootNode()->GetChildCount(), kCount - 1);
}

TEST(FbxSceneReader, SurfacesAndTextures) {
  const auto read = ReadText(SceneText(
      R"(Model: 1, "Model::a", "Mesh" { }
    Material: 2, "Material::skin", "" { ShadingModel: "lambert" )" +
          Properties({{"DiffuseColor", "0.25,0.5,1"}, {"TransparencyFactor", "0.5"}}) + R"(}
    Texture: 3, "Texture::t", "" { FileName: "C:\x\t.png" RelativeFilename: "t.png" )" +
          Properties({{"UVSet", "\"Lightmap\""}}) + R"(}
    Texture: 4, "Texture::u", "" { }
    LayeredTexture: 5, "LayeredTexture::l", "" { })",
      Links({{1, 0}, {2, 1}, {4, 5}, {3, 5}}) + "C: \"OP\",3,2, \"DiffuseColor\"\nC: \"OP\",5,2, \"Bump\"",
      R"(Definitions: { ObjectType: "Material" { PropertyTemplate: "FbxSurfacePhong" {)" +
          Properties({{"SpecularFactor", "0.75"}}) + "} } }"));
  ASSERT_TRUE(read->Error().empty()) << read->Error();
  const FbxSurfaceMaterial& material = *read->Node("a")->materials.at(0);
  EXPECT_EQ(material.shadingModel, "Lambert");
  EXPECT_EQ(material.diffuse, (Vector3{0.25, 0.5, 1}));
  EXPECT_EQ(material.transparencyFactor, 0.5);
  EXPECT_EQ(material.specularFactor, 0.75);
  ASSERT_EQ(material.textures.size(), 2u);
  EXPECT_EQ(material.textures[0].property, "DiffuseColor");
  EXPECT_EQ(material.textures[0].texture->fileName, "C:\\x\\t.png");
  EXPECT_EQ(material.textures[0].texture->relativeFileName, "t.png");
  EXPECT_EQ(material.textures[0].texture->uvSet, "Lightmap");
  EXPECT_EQ(material.textures[1].property, "Bump");
  EXPECT_EQ(material.textures[1].texture->GetName(), "u");
  EXPECT_NE(read->Log().find("Only the first texture"), std::string::npos);
}

TEST(FbxSceneReader, Switches) {
  struct Row {
    std::vector<std::string> off;
    size_t meshes, skins, channels, materials, stacks;
  };
  const std::string format = "Import|AdvOptGrp|FileFormat|Fbx|",
                    deformation = "Import|IncludeGrp|Animation|Deformation";
  const std::string skins = deformation + "|Skins";
  const Row rows[] = {
      {{}, 1, 1, 3, 2, 1},
      {{format + "Animation"}, 1, 1, 3, 2, 0},
      {{format + "Material"}, 1, 1, 3, 0, 1},
      {{format + "Shape"}, 1, 1, 0, 2, 1},
      {{skins}, 1, 0, 3, 2, 1},
      {{deformation}, 1, 0, 0, 2, 1},
      {{format + "Material", deformation, skins}, 0, 0, 0, 0, 1},
  };
  for (const Row& row : rows) {
    Imported read;
    for (const std::string& path : row.off) read.manager->GetIOSettings().SetBoolProp(path, false);
    ASSERT_TRUE(read.importer->Initialize(DataFile("character_skinned.fbx")) && read.importer->Import(*read.scene));
    EXPECT_EQ(read.All<FbxMesh>().size(), row.meshes);
    EXPECT_EQ(read.All<FbxSkin>().size(), row.skins);
    EXPECT_EQ(read.All<FbxBlendShapeChannel>().size(), row.channels);
    EXPECT_EQ(read.scene->Materials().size(), row.materials);
    EXPECT_EQ(read.scene->Stacks().size(), row.stacks);
    EXPECT_EQ(read.scene->Nodes().size(), 55u);
  }
}

TEST(FbxSceneReader, ProgressAndStopping) {
  Imported whole;
  std::vector<double> shares;
  ASSERT_TRUE(whole.importer->Initialize(DataFile("mixamo_walk.fbx")));
  ASSERT_TRUE(whole.importer->Import(*whole.scene, [&shares](double share) {
    shares.push_back(share);
    return true;
  }));
  EXPECT_TRUE(std::is_sorted(shares.begin(), shares.end()));
  EXPECT_EQ(shares.back(), 1);
  // A second file goes into a second scene.
  EXPECT_FALSE(whole.importer->Import(*whole.scene));
  for (size_t stopAt = 0; stopAt < shares.size(); ++stopAt) {
    Imported read;
    size_t calls = 0;
    ASSERT_TRUE(read.importer->Initialize(DataFile("mixamo_walk.fbx")));
    EXPECT_FALSE(read.importer->Import(*read.scene, [&](double) { return calls++ < stopAt; }));
    EXPECT_EQ(read.Error(), "Stopped.");
  }
}

}  // namespace
}  // namespace tavrilon::fbx
