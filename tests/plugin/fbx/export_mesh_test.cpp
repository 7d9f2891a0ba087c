// SPDX-License-Identifier: MIT
// Meshes, skins, blend shapes and materials of an exported scene.
#include <random>
#include <set>

#include "plugin/fbx/closed_form_test.h"
#include "plugin/fbx/export_scene_test.h"
#include "plugin/fbx/exporter/skin_export.h"
#include "plugin/frame/animation_manager_mod.h"

namespace tavrilon {
namespace {

using namespace fbx;
using namespace mesh_samples;

class ExportMesh : public ExportTest {
 protected:
  static FbxMesh& MeshOut(const FbxScene& scene, const std::string& name) {
    return *static_cast<FbxMesh*>(FindOut(scene, name)->GetNodeAttribute());
  }
  /// A node "skin" with a mesh that nothing is done to.
  static INode* Cube2() {
    INode* node = MeshNode(FullCube(2));
    node->SetName(L"skin");
    return node;
  }
  /// Bound where everything stands at 0.
  static SkinModifier* Bind(INode* node, const std::vector<INode*>& bones) {
    auto* skin = new SkinModifier;
    node->AddModifier(skin);
    for (INode* bone : bones) skin->AddBone(bone, bone->GetNodeTM(0));
    skin->SetMeshBindTM(node->GetObjectTM(0));
    return skin;
  }
  static std::shared_ptr<const SkinWeights> Weights(int points, std::vector<SkinWeight> ofEach) {
    auto weights = std::make_shared<SkinWeights>();
    for (int i = 0; i < points; ++i) weights->Add(ofEach);
    return weights;
  }
  void ExpectRefused(const WStr& error) {
    EXPECT_FALSE(Build(AllNodes()));
    EXPECT_EQ(ToUtf8(report.error), ToUtf8(error));
  }
};

/// Moves nothing, but is none of the host's own.
class StrangeModifier final : public Modifier {
 public:
  Class_ID ClassID() const override { return {0x7E570008, 1}; }
  WStr GetClassName() const override { return L"Melt"; }
};

void AddMorpher(INode* node, const std::vector<MorphTarget>& smile) {
  auto* morpher = new MorpherModifier;
  node->AddModifier(morpher);
  morpher->AddChannel(L"smile")->SetTargets(Targets(smile));
}

/// Modifiers by letters, the first one lowest: S skin, M morpher, D subdivision, d one that is off, A manager, X other.
void Stack(INode* node, const std::vector<INode*>& bones, const std::string& letters) {
  for (const char letter : letters) {
    if (letter == 'S') {
      auto* skin = new SkinModifier;
      node->AddModifier(skin);
      for (INode* bone : bones) skin->AddBone(bone, {});
      skin->SetWeights(Rigid(std::vector<int>(8, 0)));
    }
    if (letter == 'M') AddMorpher(node, {{100, {7}, {{1, 0, 0}}}});
    if (letter == 'D' || letter == 'd') {
      auto* subdivision = new SubdivisionModifier;
      node->AddModifier(subdivision);
      subdivision->GetParamBlock()->SetValue(SubdivisionModifier::kEnabled, 0, letter == 'D');
    }
    if (letter == 'A') node->AddModifier(new AnimationManagerMod);
    if (letter == 'X') node->AddModifier(new StrangeModifier);
  }
}

TEST_F(ExportMesh, StacksOfModifiers) {
  const WStr subdivision = L"Mesh 'skin' may have only a single subdivision modifier above its Skin and Morpher.";
  const WStr morpher =
      L"Mesh 'skin' must have one Morpher directly below the Skin, or at the top of an unskinned mesh.";
  struct Row {
    const char* letters;
    WStr error;
  };
  const Row kRows[] = {
      {"", L""},
      {"M", L""},
      {"S", L""},
      {"MS", L""},
      {"MSD", L""},
      {"AMASAD", L""},
      {"dMdSDd", L""},
      {"DD", subdivision},
      {"DS", subdivision},
      {"MDS", subdivision},
      {"DM", subdivision},
      {"SM", morpher},
      {"MM", morpher},
      {"MMS", morpher},
      {"SS", L"Mesh 'skin' has more than one Skin, which cannot be exported."},
      {"MSX",
       L"Mesh 'skin' has the modifier 'Melt', which cannot be exported: only Skin, Morpher and a subdivision "
       L"on top of them can."},
  };
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.letters);
    ReplaceScene(std::make_unique<Scene>());
    INode* bone = Bone(L"bone");
    Stack(Cube2(), {bone}, row.letters);
    const auto scene = Build(AllNodes());
    ASSERT_EQ(ToUtf8(report.error), ToUtf8(row.error));
    if (!scene) continue;
    const FbxMesh& mesh = MeshOut(*scene, "skin");
    const auto has = [&](char letter) { return std::string(row.letters).find(letter) != std::string::npos; };
    EXPECT_EQ(mesh.skins.size(), has('S') ? 1u : 0u);
    EXPECT_EQ(mesh.blendShapes.size(), has('M') ? 1u : 0u);
    EXPECT_EQ(mesh.smoothness, has('D') ? 2 : 0);
    EXPECT_EQ(mesh.previewLevels, mesh.renderLevels);
    EXPECT_EQ(HasLogged(L"turned off"), has('d'));
  }
}

TEST_F(ExportMesh, RefusesWhatItCannotRead) {
  struct Row {
    const char* name;
    std::function<void(INode* mesh, INode* bone)> spoil;
    const wchar_t* error;
  };
  const Row kRows[] = {
      {"levels",
       [](INode* mesh, INode*) {
         auto* subdivision = new SubdivisionModifier;
         mesh->AddModifier(subdivision);
         subdivision->GetParamBlock()->SetValue(SubdivisionModifier::kLevels, 0, 40);
       },
       L"Could not read supported subdivision levels for mesh 'skin'."},
      {"flat offset",
       [](INode* mesh, INode*) {
         mesh->SetObjOffsetScale({{1, 0, 1}, {}});
       },
       L"Mesh 'skin' has an invalid or singular vertex transform."},
      {"no bones", [](INode* mesh, INode*) { Bind(mesh, {}); }, L"Skin has no bones on mesh 'skin'."},
      {"bone deleted",
       [](INode* mesh, INode* bone) {
         Bind(mesh, {bone});
         GetScene().DeleteNode(bone);
       },
       L"Skin bone '<missing>' is missing from the exported hierarchy."},
      {"flat bone",
       [](INode* mesh, INode* bone) {
         Bind(mesh, {})->AddBone(bone, ScaleMatrix({1, 0, 1}));
       },
       L"Skin bone 'bone' has an invalid or singular bind transform."},
      {"flat bind",
       [](INode* mesh, INode* bone) {
         Bind(mesh, {bone})->SetMeshBindTM(ScaleMatrix({1, 0, 1}));
       },
       L"Mesh 'skin' has a singular export or bind transform."},
      {"another mesh's weights",
       [](INode* mesh, INode* bone) {
         Bind(mesh, {bone})->SetWeights(Rigid({0, 0, 0}));
       },
       L"Skin vertex count does not match the exported mesh 'skin'."},
      {"no weight",
       [](INode* mesh, INode* bone) {
         Bind(mesh, {bone})->SetWeights(Weights(8, {{0, 1e-7f}}));
       },
       L"Unweighted Skin vertex 0 on mesh 'skin'."},
      {"progressive",
       [](INode* mesh, INode*) {
         AddMorpher(mesh, {{50, {7}, {{1, 0, 0}}}, {100, {7}, {{2, 0, 0}}}});
       },
       L"Morpher channel 'smile' of mesh 'skin' has progressive targets, which cannot be exported."},
      {"another mesh's target",
       [](INode* mesh, INode*) {
         AddMorpher(mesh, {{100, {8}, {{1, 0, 0}}}});
       },
       L"Morpher channel 'smile' of mesh 'skin' has invalid vertex data."},
  };
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.name);
    ReplaceScene(std::make_unique<Scene>());
    INode* bone = Bone(L"bone");
    row.spoil(Cube2(), bone);
    ExpectRefused(row.error);
  }
  // A bone that nobody picked.
  ReplaceScene(std::make_unique<Scene>());
  INode* mesh = Cube2();
  Bind(mesh, {Bone(L"bone")})->SetWeights(Rigid(std::vector<int>(8, 0)));
  EXPECT_FALSE(Build({mesh}));
  EXPECT_EQ(report.error, L"Skin bone 'bone' is missing from the exported hierarchy.");
  EXPECT_TRUE(HasLogged(L"select it too"));
}

// Weights that the host's own skin never has, but another program's file may.
TEST(ReduceWeights, SortsCutsAndScales) {
  using fbx_export::ReducedWeights;
  using fbx_export::ReduceWeights;
  const fbx_export::MeshLayout layout = fbx_export::LayOut(Cube(1), {});
  struct Row {
    const char* name;
    std::vector<SkinWeight> weights;
    const wchar_t* error;
    /// By bone; -1 for a bone without the point.
    std::vector<double> expected;
  };
  const Row kRows[] = {
      {"one", {{2, 1}}, L"", {-1, -1, 1, -1}},
      {"too many", {{3, 0.1f}, {0, 0.2f}, {1, 0.3f}, {2, 0.4f}}, L"", {-1, 0.3 / 0.7, 0.4 / 0.7, -1}},
      {"too many, all equal", {{3, 0.25f}, {2, 0.25f}, {1, 0.25f}, {0, 0.25f}}, L"", {0.5, 0.5, -1, -1}},
      {"sum of a half", {{0, 0.125f}, {1, 0.375f}}, L"", {0.25, 0.75, -1, -1}},
      {"bone beyond", {{4, 1}}, L"Invalid Skin weight or bone reference at vertex 0 of mesh 'm'.", {}},
      {"negative bone", {{-1, 1}}, L"Invalid Skin weight or bone reference at vertex 0 of mesh 'm'.", {}},
      {"negative", {{0, 2}, {1, -1}}, L"Invalid Skin weight or bone reference at vertex 0 of mesh 'm'.", {}},
      {"no number",
       {{0, std::numeric_limits<float>::quiet_NaN()}},
       L"Invalid Skin weight or bone reference at vertex 0 of mesh 'm'.",
       {}},
      {"none", {}, L"Unweighted Skin vertex 0 on mesh 'm'.", {}},
  };
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.name);
    SkinWeights weights;
    for (int i = 0; i < 8; ++i) weights.Add(row.weights);
    ReducedWeights reduced;
    EXPECT_EQ(ToUtf8(ReduceWeights(weights, 4, 2, layout, L"m", reduced)), ToUtf8(row.error));
    for (size_t bone = 0; bone < row.expected.size(); ++bone) {
      const fbx_export::BoneWeights& out = reduced.bones[bone];
      ASSERT_EQ(out.points.size(), row.expected[bone] < 0 ? 0u : 8u);
      for (const double weight : out.weights) EXPECT_NEAR(weight, row.expected[bone], 1e-7);
    }
  }
}

// An offset that moves, turns, stretches and mirrors goes into points and normals; the outside stays outside.
TEST_F(ExportMesh, OffsetIsInThePoints) {
  for (const float mirror : {1.0f, -1.0f}) {
    ReplaceScene(std::make_unique<Scene>());
    Mesh cube = FullCube(2);
    cube.normals.clear(), cube.normalCorners.clear();
    cube.smoothing.clear();
    cube.points.push_back({9, 9, 9});  // no polygon has it
    const int line[] = {0, 1, 0};
    cube.AddPolygon(line);
    cube.materials.push_back(0);
    for (int i = 0; i < 3; ++i) cube.maps[0].corners.push_back(0);
    INode* node = MeshNode(cube);
    node->SetName(L"skin");
    node->SetObjOffsetPos({10, 20, 30});
    node->SetObjOffsetRot(QuatFromAngAxis(AngAxis{{0, 0, 1}, 0.3f}));
    node->SetObjOffsetScale({{1, 2 * mirror, 3}, {}});
    node->SetNodeTM(0, RotateXMatrix(0.5f) * TransMatrix({5, 6, 7}));
    const auto scene = BuildAll();
    ASSERT_TRUE(scene);
    const FbxMesh& mesh = MeshOut(*scene, "skin");
    ASSERT_EQ(mesh.controlPoints.size(), 8u);
    ASSERT_EQ(mesh.NumPolygons(), 6);
    EXPECT_TRUE(HasLogged(L"1 points without a polygon"));
    EXPECT_TRUE(HasLogged(L"1 polygons of fewer"));

    SceneEvaluator evaluator(*scene, nullptr);
    const Affine world = evaluator.World(FindOut(*scene, "skin"), {});
    Vector3 middle;
    for (size_t i = 0; i < 8; ++i) {
      const Vector3 shown = fbx_export::ToVector(cube.points[i] * node->GetObjectTM(0));
      EXPECT_LT(Length(mesh.controlPoints[i] * world - shown), 1e-4);
      middle = middle + mesh.controlPoints[i] * 0.125;
    }
    for (int p = 0; p < 6; ++p) {
      const auto corner = [&](int i) { return static_cast<size_t>(mesh.polygonStarts[static_cast<size_t>(p)] + i); };
      const auto at = [&](int i) { return mesh.controlPoints[static_cast<size_t>(mesh.polygonVertices[corner(i)])]; };
      const Vector3 outside = Cross(at(1) - at(0), at(2) - at(0));
      EXPECT_GT(Dot(outside, at(0) - middle), 0);
      const Vector3& normal = *mesh.normals.At(corner(0));
      EXPECT_NEAR(Dot(normal, outside) / Length(outside), 1, 1e-5) << "flat polygons";
      for (int i = 0; i < 4; ++i) {
        // Each corner keeps its own texture coordinates.
        const auto old = std::find_if(cube.points.begin(), cube.points.end(), [&](const Point3& point) {
          return Length(fbx_export::ToVector(point * node->GetObjOffsetTM()) - at(i)) < 1e-4;
        });
        const std::span<const int> polygon = cube.Polygon(p);
        const auto place = std::find(polygon.begin(), polygon.end(), static_cast<int>(old - cube.points.begin()));
        ASSERT_NE(place, polygon.end());
        const auto source = static_cast<size_t>(cube.starts[static_cast<size_t>(p)] + (place - polygon.begin()));
        const Point3& uv = cube.maps[0].values[static_cast<size_t>(cube.maps[0].corners[source])];
        EXPECT_EQ(*mesh.uvs.at(0).At(corner(i)), (Vector2{uv.x, uv.y}));
      }
    }
    EXPECT_EQ(mesh.uvs.at(0).name, "UVChannel_1");
    EXPECT_EQ(mesh.smoothing.mapping, Mapping::ByEdge);
    for (const int soft : mesh.smoothing.values) EXPECT_EQ(soft, 0) << "a cube without groups has hard edges";
  }
}

/// A grown cube with all weights and shapes at random on three moving bones and a moving mesh.
class ExportSkinned : public ExportMesh {
 protected:
  void MakeFigure(unsigned seed, bool skinned) {
    std::mt19937 rng(seed);
    std::uniform_real_distribution<float> unit(0, 1), angle(-2, 2);
    const auto moving = [&](const Point3& at) {
      const Point3 speed{angle(rng), angle(rng), angle(rng)};
      return [=](TimeValue t) {
        const float s = static_cast<float>(t) / 800;
        return RotateXMatrix(s * speed.x) * RotateYMatrix(s * speed.y) * RotateZMatrix(s * speed.z) *
               TransMatrix(at + speed * s);
      };
    };
    node = Cube2();
    node->SetTMController(new TimedMatrix(moving({1, 2, 3})));
    node->SetObjOffsetPos({0, 0, 1});
    node->SetObjOffsetScale({{1, 1, 1.5f}, {}});
    INode* root = Helper(L"root", nullptr, moving({0, 0, 4}));
    std::vector<INode*> bones{Bone(L"hip", root, moving({0, 0, 1}))};
    bones.push_back(Bone(L"knee", bones[0], moving({1, 0, 0})));
    bones.push_back(Helper(L"foot", bones[1], moving({1, 0, 0})));

    auto* morpher = new MorpherModifier;
    node->AddModifier(morpher);
    for (const wchar_t* name : {L"smile", L"frown"}) {
      MorphChannel* channel = morpher->AddChannel(name);
      MorphTarget target;
      for (int i = 0; i < 8; i += 2) {
        target.points.push_back(i);
        target.offsets.push_back({unit(rng), unit(rng), unit(rng)});
      }
      channel->SetTargets(Targets({target}));
      channel->SetWeight(0, 100 * unit(rng));
    }
    AnimateOn();
    morpher->GetChannel(0)->SetWeight(600, 90);
    AnimateOff();
    if (!skinned) return;

    SkinModifier* skin = Bind(node, bones);
    // Bound in another pose than that of any sample.
    skin->SetMeshBindTM(node->GetObjectTM(-300));
    auto weights = std::make_shared<SkinWeights>();
    for (int i = 0; i < 8; ++i) {
      const float a = unit(rng), b = unit(rng) * (1 - a);
      weights->Add(std::vector<SkinWeight>{{0, a}, {1, b}, {2, 1 - a - b}});
    }
    skin->SetWeights(weights);
  }
  INode* node = nullptr;
};

TEST_F(ExportSkinned, PointsAreThoseOfTheHost) {
  for (const bool skinned : {false, true})
    for (unsigned seed = 1; seed <= 4; ++seed) {
      ReplaceScene(std::make_unique<Scene>());
      GetScene().time.range = {0, 4 * 200};
      MakeFigure(seed, skinned);
      const auto scene = BuildAll();
      ASSERT_TRUE(scene);
      SceneEvaluator evaluator(*scene, scene->CurrentStack());
      const FbxNode* out = FindOut(*scene, "skin");
      for (TimeValue t = 0; t <= 800; t += 200) {
        const std::vector<Vector3> points = PointsInTheWorld(evaluator, *out, fbx_export::ToFileTime(t));
        const MeshState* shown = EvaluatedMesh(node, t);
        const Matrix3 objectTM = node->GetObjectTM(t);
        ASSERT_EQ(points.size(), shown->points.size());
        // Places of some ten units through a chain of float matrices, and the host's own way back into its object.
        for (size_t i = 0; i < points.size(); ++i)
          ASSERT_LT(Length(points[i] - fbx_export::ToVector(shown->points[i] * objectTM)), 5e-4) << t << " " << i;
      }
    }
}

// The still pose, the clusters and the bind pose tell the same places.
TEST_F(ExportSkinned, BindPoseIsOneForAll) {
  for (const UpAxis up : {UpAxis::Z, UpAxis::Y}) {
    ReplaceScene(std::make_unique<Scene>());
    GetScene().units.upAxis = up;
    MakeFigure(7, true);
    const auto scene = BuildAll();
    ASSERT_TRUE(scene);
    SceneEvaluator still(*scene, nullptr);
    const FbxMesh& mesh = MeshOut(*scene, "skin");
    ASSERT_EQ(mesh.skins.at(0)->clusters.size(), 3u);
    EXPECT_EQ(mesh.skins[0]->GetName(), "Skin");
    const Affine meshWorld = still.World(FindOut(*scene, "skin"), {});
    for (const FbxCluster& cluster : mesh.skins[0]->clusters) {
      EXPECT_EQ(cluster.name, cluster.link->GetName());
      EXPECT_EQ(cluster.link->GetNodeAttribute()->Kind(), AttributeKind::Skeleton) << cluster.name;
      const MatrixDifference bone = Difference(still.World(cluster.link, {}), cluster.transformLink);
      const MatrixDifference skin = Difference(cluster.transform * cluster.transformLink, meshWorld);
      // The still values are neat ones where they nearly are; see the limits of thinning.
      for (const MatrixDifference& d : {bone, skin}) {
        EXPECT_LT(d.turn, 1e-5);
        EXPECT_LT(d.place, 1e-4);
      }
    }
    ASSERT_EQ(scene->Poses().size(), 1u);
    const FbxPose& pose = *scene->Poses()[0];
    EXPECT_EQ(pose.GetName(), "BindPose");
    EXPECT_TRUE(pose.isBindPose);
    std::set<std::string> names;
    for (const FbxPose::Entry& entry : pose.entries) {
      names.insert(entry.node->GetName());
      EXPECT_LT(Difference(entry.matrix, still.World(entry.node, {})).place, 1e-4) << entry.node->GetName();
    }
    EXPECT_EQ(names, (std::set<std::string>{"skin", "root", "hip", "knee", "foot"}));
  }
}

TEST_F(ExportSkinned, ShapesStandInFullAndAreSparse) {
  MakeFigure(3, false);
  auto* object = static_cast<MeshObject*>(node->GetBaseObject());
  Mesh smooth = object->GetMesh();
  smooth.normals.clear(), smooth.normalCorners.clear();
  smooth.smoothing.assign(6, 1);
  object->SetMesh(Share(smooth));
  auto* morpher = static_cast<MorpherModifier*>(node->Modifiers()[0]);
  morpher->AddChannel(L"smile")->SetTargets(Targets({{100, {1, 5}, {{0, 0, 1e-8f}, {0, 3, 0}}}}));
  morpher->AddChannel(L"nothing");
  const auto scene = BuildAll();
  const FbxBlendShape& blend = *MeshOut(*scene, "skin").blendShapes.at(0);
  ASSERT_EQ(blend.channels.size(), 3u);
  EXPECT_EQ(blend.channels[2]->GetName(), "smile_1");
  EXPECT_TRUE(HasLogged(L"'nothing'"));
  for (const FbxBlendShapeChannel* channel : blend.channels) {
    EXPECT_EQ(channel->fullWeights, std::vector<double>{100});
    ASSERT_EQ(channel->shapes.size(), 1u);
    EXPECT_EQ(channel->shapes[0].normals.size(), channel->shapes[0].indices.size());
  }
  const FbxShape& shape = blend.channels[2]->shapes[0];
  EXPECT_EQ(shape.indices, std::vector<int>{5});
  EXPECT_LT(Length(shape.offsets[0] - Vector3{0, 3, 0}), 1e-6);
  EXPECT_GT(Length(shape.normals[0]), 0.1) << "a corner that moves away leans";
  EXPECT_EQ(blend.channels[0]->deformPercent, morpher->GetChannel(0)->GetParamBlock()->GetFloat(MorphChannel::kWeight));

  size_t curves = 0;
  for (const FbxAnimCurveNode* curve : scene->Stacks()[0]->layers[0]->curveNodes)
    curves += curve->property == "DeformPercent";
  EXPECT_EQ(curves, 3u) << "a weight without a curve is lost by readers";
}

TEST_F(ExportMesh, MaterialsByParameterNames) {
  auto* list = new MultiMaterial;
  INode* node = Cube2();
  node->SetMtl(list);
  auto* red = new PhysicalMaterial;
  red->SetName(L"red");
  const auto set = [](PhysicalMaterial* m, ParamID id, auto value) { m->GetParamBlock()->SetValue(id, 0, value); };
  set(red, PhysicalMaterial::kBaseColor, Colour{1, 0, 0});
  set(red, PhysicalMaterial::kTransparency, 0.25f);
  set(red, PhysicalMaterial::kRoughness, 0.5f);
  set(red, PhysicalMaterial::kMetalness, 1.0f);
  const auto picture = [](const wchar_t* file, int channel) {
    auto* map = new BitmapMap;
    map->GetParamBlock()->SetValue(BitmapMap::kFileName, 0, file);
    map->GetParamBlock()->SetValue(BitmapMap::kMapChannel, 0, channel);
    return static_cast<ReferenceTarget*>(map);
  };
  set(red, PhysicalMaterial::kBaseColorMap, picture(L"/tmp/maps/skin.png", 2));
  set(red, PhysicalMaterial::kCutoutMap, picture(L"/tmp/out/cut.png", 1));
  set(red, PhysicalMaterial::kGeometryOpacityMap, picture(L"opacity.png", 1));
  set(red, PhysicalMaterial::kBumpMap, picture(L"off.png", 1));
  set(red, PhysicalMaterial::kBumpMapOn, false);

  auto* mixed = new PhysicalMaterial;  // without a name
  auto* blend = new BlendMap;
  blend->SetName(L"mix");
  const auto mix = [&](ParamID id, auto value) { blend->GetParamBlock()->SetValue(id, 0, value); };
  mix(BlendMap::kColor1, Colour{1, 0, 0});
  mix(BlendMap::kColor2, Colour{0, 1, 0});
  mix(BlendMap::kMixAmount, 0.25f);
  mix(BlendMap::kOutput, 0.5f);
  set(mixed, PhysicalMaterial::kBaseColorMap, static_cast<ReferenceTarget*>(blend));
  set(mixed, PhysicalMaterial::kGeometryOpacityMap, picture(L"opacity.png", 1));
  for (Mtl* material : {static_cast<Mtl*>(red), static_cast<Mtl*>(mixed), static_cast<Mtl*>(red)})
    list->AppendSubMtl(material);

  auto mesh = std::make_shared<Mesh>(FullCube(2));
  mesh->materials = {0, 1, 2, 3, 4, 5};
  static_cast<MeshObject*>(node->GetBaseObject())->SetMesh(mesh);
  INode* other = MeshNode(Cube(1));
  other->SetName(L"other");
  other->SetMtl(red);
  MeshNode(Cube(1))->SetName(L"bare");
  const auto scene = BuildAll();
  const FbxNode* out = FindOut(*scene, "skin");
  ASSERT_EQ(out->materials.size(), 2u) << "one that is in the list twice goes out once";
  EXPECT_EQ(scene->Materials().size(), 2u) << "so does one on two nodes";
  EXPECT_EQ(FindOut(*scene, "other")->materials, std::vector<FbxSurfaceMaterial*>{out->materials[0]});
  EXPECT_EQ(MeshOut(*scene, "other").materials.mapping, Mapping::AllSame);
  EXPECT_TRUE(FindOut(*scene, "bare")->materials.empty());
  EXPECT_EQ(MeshOut(*scene, "skin").materials.values, (std::vector<int>{0, 1, 0, 0, 1, 0})) << "IDs go round the list";
  const FbxSurfaceMaterial& first = *out->materials[0];
  EXPECT_EQ(first.GetName(), "red");
  EXPECT_EQ(first.diffuse, (Vector3{1, 0, 0}));
  EXPECT_EQ(first.transparencyFactor, 0.25);
  EXPECT_DOUBLE_EQ(first.shininess, 6) << "2 / 0.5 ^ 2 - 2";
  EXPECT_TRUE(HasLogged(L"'red' is metallic"));
  struct Row {
    const char *property, *file, *relative, *uvSet;
  };
  const Row kRows[] = {{"DiffuseColor", "/tmp/maps/skin.png", "../maps/skin.png", "UVChannel_2"},
                       {"TransparentColor", "/tmp/out/cut.png", "cut.png", "UVChannel_1"}};
  ASSERT_EQ(first.textures.size(), std::size(kRows));
  for (size_t i = 0; i < std::size(kRows); ++i) {
    EXPECT_EQ(first.textures[i].property, kRows[i].property);
    EXPECT_EQ(first.textures[i].texture->fileName, kRows[i].file);
    EXPECT_EQ(first.textures[i].texture->relativeFileName, kRows[i].relative);
    EXPECT_EQ(first.textures[i].texture->uvSet, kRows[i].uvSet);
  }
  const FbxSurfaceMaterial& second = *out->materials[1];
  EXPECT_EQ(second.GetName(), "Material_1");
  EXPECT_LT(Length(second.diffuse - Vector3{0.375, 0.125, 0}), 1e-6);
  ASSERT_EQ(second.textures.size(), 1u);
  EXPECT_EQ(second.textures[0].property, "TransparentColor");

  mix(BlendMap::kMap2, picture(L"second.png", 1));
  const auto pictured = BuildAll();
  const FbxSurfaceMaterial& blended = *FindOut(*pictured, "skin")->materials[1];
  EXPECT_EQ(blended.textures.at(0).texture->fileName, "second.png");
  EXPECT_TRUE(HasLogged(L"'mix'"));
}

}  // namespace
}  // namespace tavrilon
