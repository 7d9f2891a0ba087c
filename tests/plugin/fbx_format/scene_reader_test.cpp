// SPDX-License-Identifier: MIT
// Scenes out of real files, and what hostile or odd ones come to.
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <sstream>

#include "plugin/fbx_format/scene_samples.h"

namespace tavrilon::fbx {
namespace {

std::unique_ptr<Imported> ReadFile(const std::string& name) {
  auto read = std::make_unique<Imported>();
  EXPECT_TRUE(read->importer->Initialize(DataFile(name)) && read->importer->Import(*read->scene)) << read->Error();
  return read;
}

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

TEST(FbxSceneReader, EveryPartOfANode) {
  const auto read = ReadText(SceneText(R"(
    Model: 1, "Model::ns:a|b", "LimbNode" { Properties70: {
      P: "Lcl Translation", "Lcl Translation", "", "A",1,2,3
      P: "Lcl Rotation", "Lcl Rotation", "", "A",4,5,6
      P: "Lcl Scaling", "Lcl Scaling", "", "A",7,8,9
      P: "RotationOffset", "Vector3D", "Vector", "",1,0,0
      P: "RotationPivot", "Vector3D", "Vector", "",2,0,0
      P: "ScalingOffset", "Vector3D", "Vector", "",3,0,0
      P: "ScalingPivot", "Vector3D", "Vector", "",4,0,0
      P: "PreRotation", "Vector3D", "Vector", "",5,0,0
      P: "PostRotation", "Vector3D", "Vector", "",6,0,0
      P: "RotationActive", "bool", "", "",1
      P: "RotationOrder", "enum", "", "",4
      P: "InheritType", "enum", "", "",2
      P: "GeometricTranslation", "Vector3D", "Vector", "",7,0,0
      P: "GeometricRotation", "Vector3D", "Vector", "",8,0,0
      P: "GeometricScaling", "Vector3D", "Vector", "",9,1,1
      P: "Visibility", "Visibility", "", "A",0
      P: "health", "Number", "", "AU",12.5
      P: "kind", "KString", "", "U", "a b"
      P: "offset", "Vector3D", "Vector", "U",1,2.5,-3 } }
    Model: 2, "Model::plain", "Null" { }
    NodeAttribute: 3, "NodeAttribute::", "Null" { Properties70: { P: "Color", "ColorRGB", "Color", "",1,0.5,0 
      P: "Size", "double", "Number", "",12 } }
    Model: 4, "Model::odd", "Null" { Properties70: { P: "RotationOrder", "enum", "", "",77
      P: "Lcl Translation", "Lcl Translation", "", "A",nan,inf,3 } })",
                                       "C: \"OO\",1,0\nC: \"OO\",2,1\nC: \"OO\",3,2\nC: \"OO\",4,0",
                                       R"(Definitions: { ObjectType: "Model" { PropertyTemplate: "FbxNode" {
      Properties70: { P: "InheritType", "enum", "", "",1
      P: "Show", "bool", "", "",1
      P: "Lcl Translation", "Lcl Translation", "", "A",0,0,40 } } } })"));
  ASSERT_TRUE(read->Error().empty()) << read->Error();
  const FbxNode* node = read->Node("ns:a|b");
  ASSERT_TRUE(node);
  NodeTransform expected;
  expected.translation = {1, 2, 3};
  expected.rotation = {4, 5, 6};
  expected.scaling = {7, 8, 9};
  expected.rotationOffset = {1, 0, 0};
  expected.rotationPivot = {2, 0, 0};
  expected.scalingOffset = {3, 0, 0};
  expected.scalingPivot = {4, 0, 0};
  expected.preRotation = {5, 0, 0};
  expected.postRotation = {6, 0, 0};
  expected.rotationActive = true;
  expected.order = RotationOrder::ZXY;
  expected.inherit = InheritType::Rrs;
  expected.geometricTranslation = {7, 0, 0};
  expected.geometricRotation = {8, 0, 0};
  expected.geometricScaling = {9, 1, 1};
  EXPECT_EQ(node->transform, expected);
  EXPECT_FALSE(node->visible);
  EXPECT_EQ(node->FileId(), 1);
  EXPECT_EQ(node->userProperties.at("health"), "12.5");
  EXPECT_EQ(node->userProperties.at("kind"), "a b");
  EXPECT_EQ(node->userProperties.at("offset"), "1 2.5 -3");
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
std::string MeshText(const std::string& inside) {
  return R"(Geometry: 5, "Geometry::quad", "Mesh" {
    Vertices: *12 { a: 0,0,0, 1,0,0, 0,1,0, 1,1,0 }
    PolygonVertexIndex: *6 { a: 0,1,-3,2,1,-4 }
    Edges: *2 { a: 0,4 }
    )" + inside +
         " }";
}

TEST(FbxSceneReader, ElementsOfMeshes) {
  struct Row {
    const char* name;
    const char* element;
    const char* log;  // what is told, for an element that is left out
  };
  const Row rows[] = {
      {"by point", R"(LayerElementUV: 0 { MappingInformationType: "ByVertice"
        ReferenceInformationType: "Direct"  UV: *8 { a: 0,0,1,0,0,1,1,1 } })",
       ""},
      {"by corner, indexed", R"(LayerElementUV: 0 { MappingInformationType: "ByPolygonVertex"
        ReferenceInformationType: "IndexToDirect"  UV: *2 { a: 0.5,1 } UVIndex: *6 { a: 0,0,0,-1,0,0 } })",
       ""},
      {"all the same", R"(LayerElementUV: 0 { MappingInformationType: "AllSame"
        ReferenceInformationType: "Direct"  UV: *2 { a: 0.5,1 } })",
       ""},
      {"too few values", R"(LayerElementUV: 0 { MappingInformationType: "ByVertice"
        ReferenceInformationType: "Direct"  UV: *6 { a: 0,0,1,0,0,1 } })",
       "LayerElementUV that does not fit"},
      {"too few indices", R"(LayerElementUV: 0 { MappingInformationType: "ByPolygonVertex"
        ReferenceInformationType: "IndexToDirect"  UV: *2 { a: 0.5,1 } UVIndex: *5 { a: 0,0,0,0,0 } })",
       "LayerElementUV that does not fit"},
      {"index behind the values", R"(LayerElementUV: 0 { MappingInformationType: "ByPolygon"
        ReferenceInformationType: "IndexToDirect"  UV: *2 { a: 0.5,1 } UVIndex: *2 { a: 0,1 } })",
       "LayerElementUV that does not fit"},
      {"index below", R"(LayerElementUV: 0 { MappingInformationType: "ByPolygon"
        ReferenceInformationType: "IndexToDirect"  UV: *2 { a: 0.5,1 } UVIndex: *2 { a: 0,-2 } })",
       "LayerElementUV that does not fit"},
      {"mapping that is not known", R"(LayerElementUV: 0 { MappingInformationType: "ByMagic"
        ReferenceInformationType: "Direct"  UV: *8 { a: 0,0,1,0,0,1,1,1 } })",
       "LayerElementUV that does not fit"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const auto read = ReadText(SceneText(MeshText(row.element), ""));
    ASSERT_TRUE(read->Error().empty()) << read->Error();
    const FbxMesh& mesh = *read->All<FbxMesh>()[0];
    EXPECT_EQ(mesh.polygonStarts, (std::vector<int>{0, 3, 6}));
    EXPECT_EQ(mesh.polygonVertices, (std::vector<int>{0, 1, 2, 2, 1, 3}));
    const bool isLeftOut = row.log[0] != 0;
    EXPECT_EQ(mesh.uvs.empty(), isLeftOut);
    EXPECT_NE(read->Log().find(isLeftOut ? row.log : ""), std::string::npos) << read->Log();
  }
  const auto read = ReadText(SceneText(MeshText(R"(Smoothness: 2
    PreviewDivisionLevels: 1
    RenderDivisionLevels: 3
    LayerElementSmoothing: 0 { MappingInformationType: "ByEdge" ReferenceInformationType: "Direct"
      Smoothing: *2 { a: 0,1 } }
    LayerElementMaterial: 0 { MappingInformationType: "ByPolygon" ReferenceInformationType: "IndexToDirect"
      Materials: *2 { a: 1,-1 } }
    LayerElementColor: 0 { })"),
                                       ""));
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

std::string CurveText(const std::string& keys) {
  return SceneText(kStack + "AnimationCurve: 23, \"AnimCurve::\", \"\" { " + keys + " }", kStackLinks);
}

// One second is 46186158000 ticks; 4.5 is 1083179008 as a pattern of bits, 218434821 a third and a third.
const char* const kThreeKeys = "KeyTime: *3 { a: 0,46186158000,92372316000 } KeyValueFloat: *3 { a: 0,1,4 } ";

TEST(FbxSceneReader, KeysOfCurves) {
  struct Row {
    const char* name;
    const char* attributes;
    std::vector<KeyShape> shapes;
  };
  const float third = 1.0f / 3;
  const Row rows[] = {
      {"none said", "", {KeyShape{}}},
      {"constant",
       "KeyAttrFlags: *1 { a: 2 } KeyAttrDataFloat: *4 { a: 0,0,0,0 } KeyAttrRefCount: *1 { a: 3 }",
       {{Interpolation::Constant}}},
      {"constant next",
       "KeyAttrFlags: *1 { a: 258 } KeyAttrDataFloat: *4 { a: 0,0,0,0 } KeyAttrRefCount: *1 { a: 3 }",
       {{Interpolation::ConstantNext}}},
      {"linear",
       "KeyAttrFlags: *1 { a: 4 } KeyAttrDataFloat: *4 { a: 0,0,0,0 } KeyAttrRefCount: *1 { a: 3 }",
       {{Interpolation::Linear}}},
      {"slopes as patterns",
       "KeyAttrFlags: *1 { a: 1032 } KeyAttrDataFloat: *4 { a: 1083179008,-1082130432,218434821,0 } "
       "KeyAttrRefCount: *1 { a: 3 }",
       {{Interpolation::Cubic, 4.5f, -1, third, third}}},
      {"slopes as numbers",
       "KeyAttrFlags: *1 { a: 1032 } KeyAttrDataFloat: *4 { a: 4.5,-1,0,0 } KeyAttrRefCount: *1 { a: 3 }",
       {{Interpolation::Cubic, 4.5f, -1, third, third}}},
      // 0.2 and 0.9: 1999.8 and 8999.1 of 9999, rounded to 2000 and 8999.
      {"weights, right only in force",
       "KeyAttrFlags: *1 { a: 16778248 } KeyAttrDataFloat: *4 { a: 0,0,589760464,0 } KeyAttrRefCount: *1 { a: 3 }",
       {{Interpolation::Cubic, 0, 0, 2000 / 9999.0f, third}}},
      {"runs",
       "KeyAttrFlags: *2 { a: 4,2 } KeyAttrDataFloat: *8 { a: 0,0,0,0,0,0,0,0 } KeyAttrRefCount: *2 { a: 1,2 }",
       {{Interpolation::Linear}, {Interpolation::Constant}, {Interpolation::Constant}}},
      // Flat ends; the middle key rises by 4 in 2 seconds from neighbour to neighbour, or by 1 and 3 evenly mixed.
      {"automatic",
       "KeyAttrFlags: *1 { a: 264 } KeyAttrDataFloat: *4 { a: 0,0,0,0 } KeyAttrRefCount: *1 { a: 3 }",
       {{Interpolation::Cubic, 0, 2}, {Interpolation::Cubic, 2, 0}, {Interpolation::Cubic, 0, 0}}},
      {"automatic beside a key with slopes",
       "KeyAttrFlags: *3 { a: 1032,8456,1032 } KeyAttrDataFloat: *12 { a: 7.5,8,0,0, 0,3,0,0, 1,1,0,0 } "
       "KeyAttrRefCount: *3 { a: 1,1,1 }",
       {{Interpolation::Cubic, 7.5f, 2}, {Interpolation::Cubic, 2, 3}, {Interpolation::Cubic, 1, 1}}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const auto read = ReadText(CurveText(std::string(kThreeKeys) + row.attributes));
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
    const char* name;
    int flags;
    const char *times, *values;
    float slope;
  };
  // Seconds 0, 1, 2 and 0, 1, 4.
  const char *const even = "0,46186158000,92372316000", *const uneven = "0,46186158000,184744632000";
  const Row rows[] = {
      {"free", 0x2108, even, "0,9,10", 5},
      {"flat beside an equal value", 0x3108, even, "0,10,10", 0},
      {"clamped, no equal value", 0x3108, even, "0,9,10", 5},
      // Three times the rise to the neighbour is the most that a cubic with weights of a third stands.
      {"progressive", 0x6108, even, "0,9,10", 3},
      {"progressive at a top", 0x6108, even, "0,9,2", 0},
      {"progressive, falling", 0x6108, even, "10,1,0", -3},
      {"whatever its time", 0x2108, uneven, "0,3,6", 1.5f},
      // Rises of 3 and 1 a second; the left one is three times as near.
      {"by its time", 0x108, uneven, "0,3,6", 2.5f},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const auto read =
        ReadText(CurveText(std::string("KeyTime: *3 { a: ") + row.times + " } KeyValueFloat: *3 { a: " + row.values +
                           " } KeyAttrFlags: *1 { a: " + std::to_string(row.flags) +
                           " } KeyAttrDataFloat: *4 { a: 0,0,0,0 } KeyAttrRefCount: *1 { a: 3 }"));
    ASSERT_TRUE(read->Error().empty()) << read->Error();
    const FbxAnimCurve& curve = read->All<FbxAnimCurveNode>()[0]->curves[1];
    EXPECT_NEAR(curve.shapes[1].rightSlope, row.slope, 1e-5);
    EXPECT_NEAR(curve.shapes[0].nextLeftSlope, row.slope, 1e-5);
  }
}

TEST(FbxSceneReader, Ticks) {
  struct Row {
    const char* header;
    int64_t second;  // ticks of the file that are one second
  };
  const Row rows[] = {
      {"FBXHeaderExtension: { FBXHeaderVersion: 1003 OtherFlags: { TCDefinition: 0 } }", 46186158000},
      {"FBXHeaderExtension: { FBXHeaderVersion: 1004 }", 46186158000},
      {"FBXHeaderExtension: { FBXHeaderVersion: 1004 OtherFlags: { TCDefinition: 127 } }", 46186158000},
      {"FBXHeaderExtension: { FBXHeaderVersion: 1004 OtherFlags: { TCDefinition: 0 } }", 141120000},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.header);
    const std::string one = std::to_string(row.second);
    const auto read = ReadText(
        SceneText(kStack + "AnimationCurve: 23, \"AnimCurve::\", \"\" { KeyTime: *2 { a: 0," + one +
                      " } KeyValueFloat: *2 { a: 0,1 } }",
                  kStackLinks, row.header + std::string("\nTakes: { Take: \"take\" { LocalTime: 0,") + one + " } }"));
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
  const ErrorRow rows[] = {
      {"polygon outside",
       SceneText(R"(Geometry: 5, "Geometry::bad", "Mesh" { Vertices: *3 { a: 0,0,0 }
        PolygonVertexIndex: *3 { a: 0,1,-1 } })",
                 ""),
       "Objects/Geometry \"bad\": a polygon points at point 1 of 1"},
      {"open polygon",
       SceneText(R"(Geometry: 5, "Geometry::bad", "Mesh" { Vertices: *3 { a: 0,0,0 }
        PolygonVertexIndex: *3 { a: 0,0,0 } })",
                 ""),
       "the last polygon has no end"},
      {"half a point", SceneText(R"(Geometry: 5, "Geometry::bad", "Mesh" { Vertices: *2 { a: 0,0 } })", ""),
       "not whole points"},
      {"values do not match times", CurveText("KeyTime: *2 { a: 0,1 } KeyValueFloat: *1 { a: 0 }"),
       "a Lcl Translation: 2 key times but 1 values"},
      {"runs lie",
       CurveText("KeyTime: *2 { a: 0,1 } KeyValueFloat: *2 { a: 0,0 } KeyAttrFlags: *1 { a: 4 } "
                 "KeyAttrDataFloat: *4 { a: 0,0,0,0 } KeyAttrRefCount: *1 { a: 2147483647 }"),
       "the runs count 2147483647 keys, there are 2"},
      {"runs below zero",
       CurveText("KeyTime: *1 { a: 0 } KeyValueFloat: *1 { a: 0 } KeyAttrFlags: *2 { a: 4,4 } "
                 "KeyAttrDataFloat: *8 { a: 0,0,0,0,0,0,0,0 } KeyAttrRefCount: *2 { a: 2,-1 }"),
       "negative length"},
      {"attributes lack",
       CurveText("KeyTime: *1 { a: 0 } KeyValueFloat: *1 { a: 0 } KeyAttrFlags: *1 { a: 4 } "
                 "KeyAttrDataFloat: *3 { a: 0,0,0 } KeyAttrRefCount: *1 { a: 1 }"),
       "do not agree"},
      {"weights lack",
       SceneText(R"(Deformer: 6, "Deformer::s", "Skin" { }
        Deformer: 7, "SubDeformer::c", "Cluster" { Indexes: *2 { a: 0,1 } Weights: *1 { a: 1 } })",
                 "C: \"OO\",7,6"),
       "Objects/Deformer \"c\": 2 indices but 1 weights"},
      {"offsets lack",
       SceneText(R"(Deformer: 6, "SubDeformer::c", "BlendShapeChannel" { }
        Geometry: 7, "Geometry::smile", "Shape" { Indexes: *2 { a: 0,1 } Vertices: *3 { a: 0,0,0 } })",
                 "C: \"OO\",7,6"),
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
      {"unknown kind", SceneText("Constraint: 9, \"Constraint::aim\", \"\" { }", ""),
       "Objects of kind Constraint are left out: aim"},
      {"unknown attribute", SceneText("NodeAttribute: 9, \"NodeAttribute::lod\", \"LodGroup\" { }", ""),
       "Nodes of kind LodGroup come in as plain nodes: lod"},
      {"same number", SceneText(nodes + "Model: 1, \"Model::again\", \"Null\" { }", ""), "the same number"},
      {"no such object", SceneText(nodes, "C: \"OO\",1,77"), "not in the file: 77"},
      {"no parent", SceneText(nodes, "C: \"OO\",1,0"), "put under the root: b"},
      {"two parents", SceneText(nodes, "C: \"OO\",1,0\nC: \"OO\",2,1\nC: \"OO\",2,0"), "stays with the first: b"},
      {"odd links", SceneText(nodes + "Material: 3, \"Material::m\", \"\" { }", "C: \"OO\",1,3"),
       "no meaning here are left out: a to m"},
      {"links of another kind", SceneText(nodes, "C: \"PP\",1,2"), "Links from properties"},
      {"two attributes",
       SceneText(nodes + R"(NodeAttribute: 3, "NodeAttribute::x", "Null" { }
        NodeAttribute: 4, "NodeAttribute::y", "Null" { })",
                 "C: \"OO\",3,1\nC: \"OO\",4,1\nC: \"OO\",3,1"),
       "Only the first attribute of a node is read: a\n"},
      {"dual quaternions", SceneText("Deformer: 6, \"Deformer::s\", \"Skin\" { SkinningType: \"DualQuaternion\" }", ""),
       "Skinning of type DualQuaternion is read as linear: s"},
      {"falling keys", CurveText("KeyTime: *3 { a: 5,4,6 } KeyValueFloat: *3 { a: 0,0,0 }"),
       "out of the order of time were left out: a Lcl Translation"},
      {"values that are no numbers", CurveText("KeyTime: *1 { a: 5 } KeyValueFloat: *1 { a: nan }"),
       "no numbers were set to 0"},
      {"unit",
       SceneText("", "", "GlobalSettings: { Properties70: { P: \"UnitScaleFactor\", \"double\", \"\", \"\",-1 } }"),
       "The unit is no length"},
      {"picture inside", SceneText("Video: 3, \"Video::v\", \"Clip\" { Content: \"abc\" }", ""), "Pictures inside"},
      {"weights outside",
       SceneText(MeshText("") + R"(Deformer: 6, "Deformer::s", "Skin" { }
        Deformer: 7, "SubDeformer::c", "Cluster" { Indexes: *2 { a: 4,1 } Weights: *2 { a: 1,0.5 } })",
                 "C: \"OO\",7,6\nC: \"OO\",6,5"),
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

TEST(FbxSceneReader, LoopsOfNodesAreCut) {
  // 1 to 3 in a circle, 4 below them, 5 its own parent.
  std::string objects;
  for (int i = 1; i <= 5; ++i) {
    objects += "Model: " + std::to_string(i) + ", \"Model::n" + std::to_string(i) + "\", \"Null\" { }\n";
  }
  const auto read =
      ReadText(SceneText(objects, "C: \"OO\",4,2\nC: \"OO\",1,2\nC: \"OO\",2,3\nC: \"OO\",3,1\nC: \"OO\",5,5\n"));
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
  std::string objects, wide, deep, repeated;
  for (int i = 1; i <= kCount; ++i) {
    const std::string id = std::to_string(i);
    objects += "Model: " + id + ", \"Model::n\", \"LimbNode\" { }\n";
    wide += "C: \"OO\"," + id + ",1\n";
    deep += "C: \"OO\"," + std::to_string(kCount + 1 - i) + "," + std::to_string(kCount - i) + "\n";
    repeated += "C: \"OO\",2,1\nC: \"OO\",1,2\n";
  }
  const auto one = ReadText(SceneText(objects, wide));
  EXPECT_EQ(one->scene->Nodes()[0]->GetChildCount(), kCount - 1);
  const auto two = ReadText(SceneText(objects, deep));
  EXPECT_EQ(two->scene->GetRootNode()->GetChildCount(), 1);
  EXPECT_EQ(SceneEvaluator(*two->scene, nullptr).World(two->scene->Nodes().back(), {}), Affine());
  const auto three = ReadText(SceneText(objects, repeated));
  EXPECT_EQ(three->scene->GetRootNode()->GetChildCount(), kCount - 1);
}

TEST(FbxSceneReader, SurfacesAndTextures) {
  const auto read = ReadText(SceneText(R"(
    Model: 1, "Model::a", "Mesh" { }
    Material: 2, "Material::skin", "" { ShadingModel: "lambert" Properties70: {
      P: "DiffuseColor", "Color", "", "A",0.25,0.5,1
      P: "TransparencyFactor", "Number", "", "A",0.5 } }
    Texture: 3, "Texture::t", "" { FileName: "C:\x\t.png" RelativeFilename: "t.png"
      Properties70: { P: "UVSet", "KString", "", "", "Lightmap" } }
    Texture: 4, "Texture::u", "" { }
    LayeredTexture: 5, "LayeredTexture::l", "" { })",
                                       R"(C: "OO",1,0
    C: "OO",2,1
    C: "OP",3,2, "DiffuseColor"
    C: "OP",5,2, "Bump"
    C: "OO",4,5
    C: "OO",3,5)",
                                       R"(Definitions: { ObjectType: "Material" { PropertyTemplate: "FbxSurfacePhong" {
      Properties70: { P: "SpecularFactor", "Number", "", "A",0.75 } } } })"));
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
    std::vector<const char*> off;
    size_t meshes, skins, channels, materials, stacks;
  };
  const char* const animation = "Import|AdvOptGrp|FileFormat|Fbx|Animation";
  const char* const material = "Import|AdvOptGrp|FileFormat|Fbx|Material";
  const char* const shape = "Import|AdvOptGrp|FileFormat|Fbx|Shape";
  const char* const deformation = "Import|IncludeGrp|Animation|Deformation";
  const char* const skins = "Import|IncludeGrp|Animation|Deformation|Skins";
  const Row rows[] = {
      {{}, 1, 1, 3, 2, 1},
      {{animation}, 1, 1, 3, 2, 0},
      {{material}, 1, 1, 3, 0, 1},
      {{shape}, 1, 1, 0, 2, 1},
      {{skins}, 1, 0, 3, 2, 1},
      {{deformation}, 1, 0, 0, 2, 1},
      {{material, deformation, skins}, 0, 0, 0, 0, 1},
  };
  for (const Row& row : rows) {
    Imported read;
    for (const char* path : row.off) read.manager->GetIOSettings().SetBoolProp(path, false);
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
