// SPDX-License-Identifier: MIT
// Meshes in views: what is drawn, in which colours, and that it can be picked.
#include "host/view/mesh_display.h"

#include <map>
#include <set>

#include "host/scene/mesh_samples_test.h"
#include "host/view/recorder.h"
#include "host/view/scene_view.h"
#include "support/alloc_counter.h"

namespace corvanta {
namespace {

using namespace mesh_samples;

class MeshDisplayTest : public testing_objects::SceneTest {
 protected:
  static std::vector<Primitive> Drawn(INode* node) {
    RecordingWindow window;
    DisplayNode(window, *node, 0);
    return window.Primitives();
  }
};

/// Counts triangles and keeps nothing.
class CountingWindow final : public GraphicsWindow {
 public:
  CountingWindow() : GraphicsWindow(Camera()) {}
  void Polyline(std::span<const Point3>, bool) override {}
  void Triangles(const TriangleList& mesh) override { triangles += mesh.triangles.size(); }
  void Marker(const Point3&, MarkerKind, float) override {}
  void Text(Point2, std::wstring_view, TextAnchor) override {}
  void WorldText(const Point3&, std::wstring_view, TextAnchor) override {}
  size_t triangles = 0;
};

Mesh Sheet(int side) {
  Mesh mesh;
  for (int i = 0; i < (side + 1) * (side + 1); ++i)
    mesh.points.push_back({static_cast<float>(i % (side + 1)), static_cast<float>(i / (side + 1)), 0});
  for (int y = 0; y < side; ++y)
    for (int x = 0; x < side; ++x) {
      const int at = y * (side + 1) + x;
      mesh.AddPolygon(std::array{at, at + 1, at + side + 2, at + side + 1});
    }
  mesh.smoothing.assign(static_cast<size_t>(side * side), 1);
  return mesh;
}

TEST_F(MeshDisplayTest, MaterialsColourTheirPolygonsElseTheWire) {
  Mesh cube = Cube(2);
  cube.materials = {3, 1, 0, 2, 0, 1};
  INode* node = MeshNode(cube);
  node->SetWireColor(0xFF8000);
  for (const Primitive& p : Drawn(node)) EXPECT_EQ(PackColour(p.state.colour), 0xFF8000u);
  auto* list = new MultiMaterial;
  node->SetMtl(list);
  for (const Colour& colour : {Colour{1, 0, 0}, Colour{0, 1, 0}}) {
    auto* material = new PhysicalMaterial;
    list->AppendSubMtl(material);
    material->GetParamBlock()->SetValue(PhysicalMaterial::kBaseColor, 0, colour);
  }
  std::map<uint32_t, size_t> triangles;
  for (const Primitive& p : Drawn(node)) {
    triangles[PackColour(p.state.colour)] += p.triangles.size();
    for (const auto& t : p.triangles)
      for (const int i : t) ASSERT_LT(static_cast<size_t>(i), p.points.size());
  }
  // 0 and 2 are the first material, 1 and 3 the second, modulo two.
  EXPECT_EQ(triangles, (std::map<uint32_t, size_t>{{0xFF0000, 6}, {0x00FF00, 6}}));
}

// Each triangle lies where its polygon does, whatever the order by material.
TEST_F(MeshDisplayTest, GroupedTrianglesAreThoseOfTheMesh) {
  Mesh cube = Cube(2);
  cube.materials = {7, 7, 2, 7, 2, 0};
  float area = 0;
  std::set<std::array<float, 3>> places;
  for (const Primitive& p : Drawn(MeshNode(cube)))
    for (const auto& t : p.triangles) {
      const Point3 a = p.points[static_cast<size_t>(t[0])];
      const Point3 cross = Cross(p.points[static_cast<size_t>(t[1])] - a, p.points[static_cast<size_t>(t[2])] - a);
      EXPECT_GT(Dot(cross, a - Point3{1, 1, 1}), 0) << "faces outward";
      area += Length(cross) / 2;
      const Point3 sum = a + p.points[static_cast<size_t>(t[1])] + p.points[static_cast<size_t>(t[2])];
      places.insert({sum.x, sum.y, sum.z});
    }
  EXPECT_FLOAT_EQ(area, 24);
  EXPECT_EQ(places.size(), 12u) << "no triangle is there twice";
}

TEST_F(MeshDisplayTest, SkinnedMeshIsPickedWhereItShows) {
  INode* node = MeshNode(Cube(2));
  INode* bone = BoneNode(L"bone");
  auto* skin = new SkinModifier;
  node->AddModifier(skin);
  skin->AddBone(bone, Matrix3());
  skin->SetWeights(Rigid(std::vector<int>(8, 0)));
  Place(bone, TransMatrix({50, 0, 0}));
  EXPECT_EQ(node->GetWorldBoundBox(0).min.x, 50);
  Camera camera(ViewKind::Top, 400, 400);
  camera.LookAt({51, 1, 0}, 10);
  SceneViewOptions options;
  options.filter = [bone](INode& n) { return &n != bone; };
  EXPECT_EQ(PickNode(GetScene(), camera, {200, 200}, options), node);
  camera.LookAt({1, 1, 0}, 10);
  EXPECT_EQ(PickNode(GetScene(), camera, {200, 200}, options), nullptr);
}

TEST_F(MeshDisplayTest, LargeMeshesAllocateNothingAFrame) {
  INode* node = MeshNode(Sheet(100));
  auto* morpher = new MorpherModifier;
  node->AddModifier(morpher);
  MorphChannel* channel = morpher->AddChannel(L"up");
  channel->SetTargets(Targets({{100, {0}, {{0, 0, 1}}}}));
  CountingWindow window;
  channel->SetWeight(0, 1);
  DisplayNode(window, *node, 0);
  ASSERT_EQ(window.triangles, 20000u);
  const tests::AllocCounter counter;
  for (int i = 2; i < 5; ++i) {
    channel->SetWeight(0, static_cast<float>(i));
    DisplayNode(window, *node, 0);
  }
  EXPECT_EQ(counter.Count(), 0u);
}

}  // namespace
}  // namespace corvanta
