// SPDX-License-Identifier: MIT
#include "host/mesh/mesh.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <random>
#include <set>

#include "support/alloc_counter.h"

namespace corvanta {
namespace {

/// The corners by bits: 1 x, 2 y, 4 z.
Mesh Cube(float size) {
  Mesh mesh;
  for (int i = 0; i < 8; ++i) mesh.points.push_back({i & 1 ? size : 0, i & 2 ? size : 0, i & 4 ? size : 0});
  constexpr int kSides[6][4] = {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4}, {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}};
  for (const auto& side : kSides) mesh.AddPolygon(side);
  return mesh;
}

/// Rings of quads between two caps of triangles, of radius 1.
Mesh Sphere(int rings, int sectors) {
  Mesh mesh;
  mesh.points.push_back({0, 0, 1});
  for (int r = 1; r < rings; ++r) {
    for (int s = 0; s < sectors; ++s) {
      const float theta = kPi * static_cast<float>(r) / static_cast<float>(rings);
      const float phi = kTwoPi * static_cast<float>(s) / static_cast<float>(sectors);
      mesh.points.push_back({std::sin(theta) * std::cos(phi), std::sin(theta) * std::sin(phi), std::cos(theta)});
    }
  }
  mesh.points.push_back({0, 0, -1});
  const int last = mesh.NumPoints() - 1;
  const auto at = [&](int r, int s) { return 1 + (r - 1) * sectors + s % sectors; };
  for (int s = 0; s < sectors; ++s) {
    mesh.AddPolygon(std::array{0, at(1, s), at(1, s + 1)});
    for (int r = 1; r + 1 < rings; ++r)
      mesh.AddPolygon(std::array{at(r, s), at(r + 1, s), at(r + 1, s + 1), at(r, s + 1)});
    mesh.AddPolygon(std::array{at(rings - 1, s), last, at(rings - 1, s + 1)});
  }
  return mesh;
}

/// A flat grid of quads in X and Y.
Mesh Grid(int nx, int ny) {
  Mesh mesh;
  for (int y = 0; y <= ny; ++y)
    for (int x = 0; x <= nx; ++x) mesh.points.push_back({static_cast<float>(x), static_cast<float>(y), 0});
  const auto at = [&](int x, int y) { return y * (nx + 1) + x; };
  for (int y = 0; y < ny; ++y)
    for (int x = 0; x < nx; ++x) mesh.AddPolygon(std::array{at(x, y), at(x + 1, y), at(x + 1, y + 1), at(x, y + 1)});
  return mesh;
}

Mesh Polygon(const std::vector<Point3>& points) {
  Mesh mesh;
  mesh.points = points;
  std::vector<int> all;
  for (int i = 0; i < mesh.NumPoints(); ++i) all.push_back(i);
  mesh.AddPolygon(all);
  return mesh;
}

Point3 AreaVector(const Mesh& mesh, const std::array<int, 3>& t) {
  const auto at = [&](int i) { return mesh.points[static_cast<size_t>(t[static_cast<size_t>(i)])]; };
  return Cross(at(1) - at(0), at(2) - at(0)) * 0.5f;
}

double Volume(const Mesh& mesh) {
  double volume = 0;
  for (const auto& t : Triangulate(mesh).points)
    volume += double{Dot(mesh.points[static_cast<size_t>(t[0])], AreaVector(mesh, t))} / 3;
  return volume;
}

double SumOfAreas(const Mesh& mesh) {
  double area = 0;
  for (const auto& t : Triangulate(mesh).points) area += double{Length(AreaVector(mesh, t))};
  return area;
}

int CountEdges(const Mesh& mesh) {
  std::set<std::pair<int, int>> edges;
  for (int i = 0; i < mesh.NumPolygons(); ++i) {
    const auto p = mesh.Polygon(i);
    for (size_t k = 0; k < p.size(); ++k) edges.insert(std::minmax(p[k], p[(k + 1) % p.size()]));
  }
  return static_cast<int>(edges.size());
}

int Euler(const Mesh& mesh) { return mesh.NumPoints() - CountEdges(mesh) + mesh.NumPolygons(); }

TEST(Mesh, FaultsAreFound) {
  const struct {
    const char* fault;
    std::function<void(Mesh&)> spoil;
  } rows[] = {
      {"polygon 1 uses point 8 of 8", [](Mesh& m) { m.corners[5] = 8; }},
      {"polygon 0 uses point -1 of 8", [](Mesh& m) { m.corners[0] = -1; }},
      {"polygon 2 has 2 corners", [](Mesh& m) { m.starts[3] = 10; }},
      {"polygon 5 has -20 corners", [](Mesh& m) { m.starts[6] = 0; }},
      {"does not start at corner 0", [](Mesh& m) { m.starts.clear(); }},
      {"does not start at corner 0", [](Mesh& m) { m.starts[0] = 1; }},
      {"have 24 corners, and there are 25", [](Mesh& m) { m.corners.push_back(0); }},
      {"point 3 is not a finite", [](Mesh& m) { m.points[3].y = std::nanf(""); }},
      {"tab of normals has 0 corners of 24", [](Mesh& m) { m.normals.push_back({}); }},
      {"takes value 1 of 1 at corner 0",
       [](Mesh& m) {
         m.normals.push_back({});
         m.normalCorners.assign(24, 1);
       }},
      {"1 smoothing groups for 6", [](Mesh& m) { m.smoothing = {1}; }},
      {"7 material IDs for 6", [](Mesh& m) { m.materials.assign(7, 0); }},
      {"map channel 2 is there twice",
       [](Mesh& m) {
         m.maps.assign(2, {2, L"", {{}}, std::vector<int>(24, 0)});
       }},
      {"map channel 1 has 0 corners",
       [](Mesh& m) {
         m.maps.assign(1, {1, L"", {{}}, {}});
       }},
  };
  EXPECT_EQ(FaultOf(Mesh()), "");
  EXPECT_EQ(FaultOf(Cube(1)), "");
  for (const auto& row : rows) {
    Mesh mesh = Cube(1);
    row.spoil(mesh);
    EXPECT_NE(FaultOf(mesh).find(row.fault), std::string::npos) << FaultOf(mesh) << " for " << row.fault;
  }
}

TEST(Mesh, CubeAndSphereHaveTheirVolume) {
  EXPECT_NEAR(Volume(Cube(3)), 27, 1e-4);  // whole numbers but for the thirds
  EXPECT_EQ(Euler(Cube(1)), 2);
  const Mesh sphere = Sphere(60, 120);
  EXPECT_EQ(Euler(sphere), 2);
  // An inscribed sphere of this fineness lacks about a quarter of a percent.
  EXPECT_NEAR(Volume(sphere), 4 * double{kPi} / 3, 0.015);
  EXPECT_LT(Volume(sphere), 4 * double{kPi} / 3);
}

TEST(Triangulate, CoversEachPolygonOnce) {
  const struct {
    const char* name;
    std::vector<Point3> points;
    double area;
  } rows[] = {
      {"square", {{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}}, 4},
      {"dart", {{0, 0, 0}, {4, 0, 0}, {1, 1, 0}, {0, 4, 0}}, 4},
      {"dart from its dent", {{1, 1, 0}, {0, 4, 0}, {0, 0, 0}, {4, 0, 0}}, 4},
      {"L", {{0, 0, 0}, {3, 0, 0}, {3, 1, 0}, {1, 1, 0}, {1, 3, 0}, {0, 3, 0}}, 5},
      {"comb",
       {{0, 0, 0},
        {5, 0, 0},
        {5, 3, 0},
        {4, 3, 0},
        {4, 1, 0},
        {3, 1, 0},
        {3, 3, 0},
        {2, 3, 0},
        {2, 1, 0},
        {1, 1, 0},
        {1, 3, 0},
        {0, 3, 0}},
       11},
      {"points in line", {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {2, 2, 0}, {1, 2, 0}, {1, 1, 0}, {0, 1, 0}}, 3},
  };
  std::mt19937 rng(2);
  std::uniform_real_distribution<float> angle(-3, 3);
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    // Any way round in space, and far from the origin.
    for (int turn = 0; turn < 20; ++turn) {
      Mesh mesh = Polygon(row.points);
      const Matrix3 tm = RotateXMatrix(angle(rng)) * RotateYMatrix(angle(rng)) * TransMatrix({50, -20, 7});
      for (Point3& p : mesh.points) p = p * tm;
      const MeshTriangles triangles = Triangulate(mesh);
      EXPECT_EQ(triangles.points.size(), row.points.size() - 2);
      // Coordinates of some tens with an error of 4e-6 each, over edges of 5.
      EXPECT_NEAR(SumOfAreas(mesh), row.area, 1e-3);
      const Point3 normal = PolygonNormal(mesh, mesh.points, 0);
      for (const auto& t : triangles.points) EXPECT_GE(Dot(normal, AreaVector(mesh, t)), -1e-3f);
    }
  }
}

TEST(Triangulate, RandomStarsKeepTheirArea) {
  std::mt19937 rng(4);
  std::uniform_real_distribution<float> radius(0.2f, 3);
  for (int round = 0; round < 100; ++round) {
    std::vector<Point3> points;
    const int count = 5 + static_cast<int>(rng() % 40);
    for (int i = 0; i < count; ++i) {
      const float a = kTwoPi * static_cast<float>(i) / static_cast<float>(count), r = radius(rng);
      points.push_back({r * std::cos(a), r * std::sin(a), 0});
    }
    double area = 0;  // of the star from its centre
    for (size_t i = 0; i < points.size(); ++i) area += double{Cross(points[i], points[(i + 1) % points.size()]).z} / 2;
    EXPECT_NEAR(SumOfAreas(Polygon(points)), area, 1e-3);
  }
}

// What has no sensible triangles gets some all the same, of its own corners.
TEST(Triangulate, BearsCrossedAndDegeneratePolygons) {
  std::vector<Point3> wheel(5000);
  for (size_t i = 0; i < wheel.size(); ++i) wheel[i] = {static_cast<float>(i % 7), static_cast<float>(i % 11), 0};
  for (const std::vector<Point3>& points :
       {std::vector<Point3>{{0, 0, 0}, {1, 1, 0}, {1, 0, 0}, {0, 1, 0}}, std::vector<Point3>(6), wheel}) {
    const Mesh mesh = Polygon(points);
    const MeshTriangles triangles = Triangulate(mesh);
    EXPECT_EQ(triangles.points.size(), points.size() - 2);
    for (size_t i = 0; i < triangles.points.size(); ++i)
      for (size_t k = 0; k < 3; ++k)
        EXPECT_EQ(mesh.corners[static_cast<size_t>(triangles.corners[i][k])], triangles.points[i][k]);
  }
}

TEST(Normals, SphereIsSmoothAndFacesOutward) {
  Mesh sphere = Sphere(40, 80);
  sphere.smoothing.assign(static_cast<size_t>(sphere.NumPolygons()), 1);
  std::vector<Point3> normals;
  CornerNormals(sphere, sphere.points, normals);
  for (size_t i = 0; i < normals.size(); ++i)
    EXPECT_GT(Dot(normals[i], sphere.points[static_cast<size_t>(sphere.corners[i])]), 0.9999f);
}

TEST(Normals, GroupsAndPolygonsDecideWhatIsSmooth) {
  Mesh cube = Cube(2);
  std::vector<Point3> normals;
  const auto normalOf = [&](int polygon, int point) {
    CornerNormals(cube, cube.points, normals);
    const auto p = cube.Polygon(polygon);
    const auto at = std::find(p.begin(), p.end(), point) - p.begin();
    return normals[static_cast<size_t>(cube.starts[static_cast<size_t>(polygon)] + at)];
  };
  EXPECT_EQ(normalOf(1, 7), (Point3{0, 0, 1})) << "no groups: flat";
  cube.smoothing.assign(6, 4);
  const Point3 corner = Normalize(Point3{1, 1, 1});
  EXPECT_LT(Length(normalOf(1, 7) - corner), 1e-6f);
  cube.smoothing = {1, 1, 1, 1, 1, 2};
  EXPECT_LT(Length(normalOf(1, 7) - Normalize(Point3{0, 1, 1})), 1e-6f) << "the side at +X has a group of its own";
  EXPECT_LT(Length(normalOf(5, 7) - Point3{1, 0, 0}), 1e-6f);
  cube.smoothing = {0, 1, 0, 2, 0, 3};
  EXPECT_LT(Length(normalOf(5, 7) - corner), 1e-6f) << "two groups at once";
  EXPECT_LT(Length(normalOf(1, 7) - Normalize(Point3{1, 0, 1})), 1e-6f);
  EXPECT_EQ(normalOf(0, 3), (Point3{0, 0, -1})) << "group 0 is smooth with nobody";
}

// Two triangles instead of a quad must not pull the corner their way.
TEST(Normals, CutsOfAFlatSideDoNotShow) {
  Mesh mesh;
  mesh.points = Cube(1).points;
  for (const auto& side : {std::vector<int>{4, 5, 7}, {4, 7, 6}, {1, 3, 7, 5}, {2, 6, 7, 3}}) mesh.AddPolygon(side);
  mesh.smoothing.assign(4, 1);
  std::vector<Point3> normals;
  CornerNormals(mesh, mesh.points, normals);
  EXPECT_LT(Length(normals[2] - Normalize(Point3{1, 1, 1})), 1e-6f);
}

TEST(Normals, ExplicitOnesTurnWithTheMesh) {
  std::mt19937 rng(6);
  std::uniform_real_distribution<float> angle(-3, 3);
  Mesh mesh = Sphere(8, 12);
  // Not the smooth ones: tilted, as a painted normal is.
  for (const Point3& p : mesh.points) mesh.normals.push_back(Normalize(p + Point3{0.2f, 0.1f, 0}));
  mesh.normalCorners = mesh.corners;
  std::vector<Point3> normals;
  CornerNormals(mesh, mesh.points, normals);
  for (size_t i = 0; i < normals.size(); ++i) EXPECT_EQ(normals[i], mesh.normals[static_cast<size_t>(mesh.corners[i])]);
  // Moved without a turn they stay; a turn without a twist about the normal they make.
  std::vector<Point3> moved = mesh.points;
  for (Point3& p : moved) p = p * 2 + Point3{1, 2, 3};
  CornerNormals(mesh, moved, normals);
  for (size_t i = 0; i < normals.size(); ++i)
    EXPECT_LT(Length(normals[i] - mesh.normals[static_cast<size_t>(mesh.corners[i])]), 1e-3f);
  const Mesh flat = [] {
    Mesh grid = Grid(2, 2);
    grid.normals = {Normalize(Point3{0.3f, 0, 1})};
    grid.normalCorners.assign(grid.corners.size(), 0);
    return grid;
  }();
  const Matrix3 tilt = RotateXMatrix(0.7f);
  moved = flat.points;
  for (Point3& p : moved) p = p * tilt;
  CornerNormals(flat, moved, normals);
  for (const Point3& n : normals) EXPECT_LT(Length(n - VectorTransform(tilt, flat.normals[0])), 1e-5f);
}

TEST(Normals, MovedPointsAllocateNothing) {
  for (const uint32_t other : {1u, 2u}) {
    Mesh sphere = Sphere(20, 20);
    sphere.smoothing.assign(static_cast<size_t>(sphere.NumPolygons()), 1);
    sphere.smoothing[0] = other;
    std::vector<Point3> normals;
    CornerNormals(sphere, sphere.points, normals);
    const tests::AllocCounter counter;
    CornerNormals(sphere, sphere.points, normals);
    EXPECT_EQ(counter.Count(), 0u);
  }
}

TEST(Subdivide, CountsAndFormsStay) {
  for (const Mesh& mesh : {Cube(2), Sphere(5, 7), Grid(3, 2)}) {
    const int edges = CountEdges(mesh);
    const Subdivision once = Subdivide(mesh, 1);
    EXPECT_EQ(FaultOf(*once.mesh), "");
    EXPECT_EQ(once.mesh->NumPoints(), mesh.NumPoints() + edges + mesh.NumPolygons());
    EXPECT_EQ(once.mesh->NumPolygons(), mesh.NumCorners());
    for (const int levels : {0, 1, 2, 3}) {
      const Subdivision s = Subdivide(mesh, levels);
      EXPECT_EQ(Euler(*s.mesh), Euler(mesh)) << levels;
      EXPECT_EQ(s.mesh->NumPolygons(), levels == 0 ? mesh.NumPolygons() : mesh.NumCorners() << 2 * (levels - 1));
      for (size_t i = 0; i + 1 < s.starts.size(); ++i) {
        double sum = 0;
        for (int k = s.starts[i]; k < s.starts[i + 1]; ++k) sum += double{s.weights[static_cast<size_t>(k)]};
        EXPECT_NEAR(sum, 1, 1e-5);  // a point moves with the mesh; some tens of rounded weights
      }
    }
  }
}

// One level by hand, for a cube from -1 to 1. A corner goes to (F + 2 R + 0 P) / 3, where its sides' middles have the
// mean F = (1/3,1/3,1/3) and its edges' middles R = (2/3,2/3,2/3): to (5/9,5/9,5/9).
TEST(Subdivide, CubeByHand) {
  Mesh cube = Cube(2);
  for (Point3& p : cube.points) p -= {1, 1, 1};
  const Subdivision s = Subdivide(cube, 1);
  const auto has = [&](const Point3& p) {
    return std::any_of(s.mesh->points.begin(), s.mesh->points.end(),
                       [&](const Point3& q) { return Length(p - q) < 1e-5f; });
  };
  EXPECT_TRUE(has({5 / 9.0f, 5 / 9.0f, 5 / 9.0f})) << "corner";
  EXPECT_TRUE(has({0.75f, 0.75f, 0})) << "edge: ends at (1,1,+-1), sides' middles at (1,0,0) and (0,1,0)";
  EXPECT_TRUE(has({1, 0, 0})) << "side";
  EXPECT_NEAR(s.mesh->points[7].x, 5 / 9.0f, 1e-6f) << "old points come first";
}

// Borders are cubic curves: a flat sheet stays flat and its border depends on nothing inside.
TEST(Subdivide, BordersAreCurvesOfTheirOwn) {
  Mesh grid = Grid(4, 4);
  const Subdivision s = Subdivide(grid, 2);
  std::vector<Point3> flat, bulged;
  s.MovePoints(grid.points, flat);
  EXPECT_EQ(flat, s.mesh->points);
  std::vector<Point3> moved = grid.points;
  moved[12] = {2, 2, 5};  // the middle one
  s.MovePoints(moved, bulged);
  float highest = 0;
  for (size_t i = 0; i < flat.size(); ++i) {
    EXPECT_EQ(flat[i].z, 0);
    const bool inside = flat[i].x > 0.001f && flat[i].x < 3.999f && flat[i].y > 0.001f && flat[i].y < 3.999f;
    EXPECT_TRUE(inside || bulged[i] == flat[i]) << i;
    highest = std::max(highest, bulged[i].z);
  }
  // A regular point's limit is 4/9 of itself here; two levels are near it, from above.
  EXPECT_GT(highest, 5 * 4 / 9.0f);
  EXPECT_LT(highest, 5 * 0.6f);
}

TEST(Subdivide, MapsMaterialsAndGroupsGoAlong) {
  Mesh grid = Grid(2, 1);
  grid.materials = {3, 5};
  grid.smoothing = {1, 2};
  grid.maps = {{1, L"uv", {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {0, 1, 2, 3, 0, 1, 2, 3}}};
  const Mesh fine = *Subdivide(grid, 2).mesh;
  ASSERT_EQ(FaultOf(fine), "");
  ASSERT_EQ(fine.NumPolygons(), 32);
  for (int i = 0; i < 32; ++i) {
    const auto at = static_cast<size_t>(i);
    EXPECT_EQ(fine.materials[at], i < 16 ? 3 : 5);
    EXPECT_EQ(fine.smoothing[at], i < 16 ? 1u : 2u);
    // Squares of the map stay squares, a quarter wide.
    const MeshMap& map = fine.maps[0];
    const auto value = [&](int k) {
      return map.values[static_cast<size_t>(map.corners[at * 4 + static_cast<size_t>(k)])];
    };
    EXPECT_NEAR(Length(Cross(value(1) - value(0), value(2) - value(1))), 1 / 16.0f, 1e-6f);
  }
}

// Whatever is wrong with the surface: no crash, no number that is none, and points that move with the mesh.
TEST(Subdivide, BearsAnyTopology) {
  std::mt19937 rng(9);
  std::uniform_real_distribution<float> place(-5, 5);
  for (int round = 0; round < 200; ++round) {
    Mesh mesh;
    for (unsigned i = 0, n = 1 + rng() % 8; i < n; ++i) mesh.points.push_back({place(rng), place(rng), place(rng)});
    for (unsigned i = 0, n = rng() % 8; i < n; ++i) {
      std::vector<int> polygon;
      for (unsigned k = 0, corners = 3 + rng() % 4; k < corners; ++k)
        polygon.push_back(static_cast<int>(rng() % mesh.points.size()));
      mesh.AddPolygon(polygon);
    }
    ASSERT_EQ(FaultOf(mesh), "");
    const Subdivision s = Subdivide(mesh, 2);
    EXPECT_EQ(FaultOf(*s.mesh), "");
    std::vector<Point3> moved = mesh.points, fine;
    for (Point3& p : moved) p += {10, 0, 0};
    s.MovePoints(moved, fine);
    for (size_t i = 0; i < fine.size(); ++i) EXPECT_LT(Length(fine[i] - s.mesh->points[i] - Point3{10, 0, 0}), 1e-3f);
  }
}

TEST(HitMesh, FindsTheNearestSide) {
  const Mesh cube = Cube(2);
  const MeshTriangles triangles = Triangulate(cube);
  const auto hit = [&](const Point3& from, const Point3& to, bool ignoreBack) {
    return HitMesh(cube, cube.points, triangles, from, to, ignoreBack);
  };
  const auto above = hit({0.5f, 0.7f, 10}, {0, 0, -2}, false);
  ASSERT_TRUE(above);
  EXPECT_EQ(above->polygon, 1);
  EXPECT_FLOAT_EQ(above->distance, 4) << "in lengths of the direction";
  EXPECT_FALSE(above->backFace);
  const auto inside = hit({1, 1, 1}, {1, 0, 0}, false);
  ASSERT_TRUE(inside);
  EXPECT_EQ(inside->polygon, 5);
  EXPECT_TRUE(inside->backFace);
  EXPECT_FALSE(hit({1, 1, 1}, {1, 0, 0}, true));
  EXPECT_FALSE(hit({5, 5, 5}, {1, 0, 0}, false)) << "past it";
  EXPECT_FALSE(hit({0.5f, 0.5f, 10}, {0, 0, 1}, false)) << "behind";
}

// Every ray from inside a sphere leaves it somewhere, at about its radius.
TEST(HitMesh, NoRaySlipsThroughASphere) {
  const Mesh sphere = Sphere(16, 24);
  const MeshTriangles triangles = Triangulate(sphere);
  std::mt19937 rng(8);
  std::normal_distribution<float> any;
  for (int i = 0; i < 500; ++i) {
    const Point3 direction = Normalize(Point3{any(rng), any(rng), any(rng)});
    const auto hit = HitMesh(sphere, sphere.points, triangles, {}, direction, false);
    ASSERT_TRUE(hit);
    EXPECT_NEAR(hit->distance, 1, 0.02f);
  }
}

}  // namespace
}  // namespace corvanta
