// SPDX-License-Identifier: MIT
// Catmull and Clark. A level gives the old points first, then a point for each edge, then one for each polygon. What a
// new point takes of the old ones is a row of weights; levels are joined by multiplying the rows.
#include <algorithm>
#include <tuple>
#include <utility>

#include "host/mesh/mesh.h"

namespace corvanta {

namespace {

/// Where to stop: a further level would not fit in memory. A level is left out when it would pass this.
constexpr size_t kMaxPolygons = size_t{4} << 20;
constexpr size_t kMaxWeights = size_t{256} << 20;

struct Edge {
  int a, b;
  int faces = 0;
  int face[2] = {-1, -1};
};

/// Edges among indices that run round polygons; each is there once, whichever way its polygons run.
struct Edges {
  std::vector<Edge> edges;
  /// The edge from each corner to the next.
  std::vector<int> ofCorner;

  Edges(const std::vector<int>& starts, const std::vector<int>& corners) : ofCorner(corners.size()) {
    struct Half {
      int a, b, corner, face;
    };
    std::vector<Half> halves;
    halves.reserve(corners.size());
    for (size_t f = 0; f + 1 < starts.size(); ++f) {
      for (int c = starts[f]; c < starts[f + 1]; ++c) {
        const int from = corners[static_cast<size_t>(c)];
        const int to = corners[static_cast<size_t>(c + 1 < starts[f + 1] ? c + 1 : starts[f])];
        halves.push_back({std::min(from, to), std::max(from, to), c, static_cast<int>(f)});
      }
    }
    std::sort(halves.begin(), halves.end(),
              [](const Half& x, const Half& y) { return std::tie(x.a, x.b, x.corner) < std::tie(y.a, y.b, y.corner); });
    for (const Half& half : halves) {
      if (edges.empty() || edges.back().a != half.a || edges.back().b != half.b) edges.push_back({half.a, half.b});
      Edge& edge = edges.back();
      if (edge.faces < 2) edge.face[edge.faces] = half.face;
      ++edge.faces;
      ofCorner[static_cast<size_t>(half.corner)] = static_cast<int>(edges.size()) - 1;
    }
  }
};

/// Compressed rows of weights.
struct Rows {
  std::vector<int> starts{0}, sources;
  std::vector<float> weights;
  size_t Count() const { return starts.size() - 1; }
};

/// Sums up one row at a time; sources come out in rising order.
class RowMaker {
 public:
  RowMaker(size_t sources, Rows& rows) : weight_(sources, 0), used_(sources, false), rows_(rows) {}
  void Add(int source, double weight) {
    const auto at = static_cast<size_t>(source);
    if (!used_[at]) touched_.push_back(source);
    used_[at] = true;
    weight_[at] += weight;
  }
  void Finish() {
    std::sort(touched_.begin(), touched_.end());
    for (const int source : touched_) {
      const auto at = static_cast<size_t>(source);
      rows_.sources.push_back(source);
      rows_.weights.push_back(static_cast<float>(weight_[at]));
      weight_[at] = 0;
      used_[at] = false;
    }
    rows_.starts.push_back(static_cast<int>(rows_.sources.size()));
    touched_.clear();
  }

 private:
  std::vector<double> weight_;
  std::vector<bool> used_;
  std::vector<int> touched_;
  Rows& rows_;
};

/// What is around each point.
struct PointRing {
  int faces = 0, edges = 0, borders = 0;
};

class Level {
 public:
  explicit Level(const Mesh& mesh) : mesh_(mesh), edges_(mesh.starts, mesh.corners) {}

  Rows MakeRows() {
    Rows rows;
    const size_t points = mesh_.points.size();
    CollectRings();
    // The weights of a point's ring, gathered from the polygons and edges around it.
    std::vector<std::vector<std::pair<int, double>>> smooth(points);
    for (size_t i = 0; i < points; ++i) StartPoint(static_cast<int>(i), smooth[i]);
    AddFaces(smooth);
    AddEdges(smooth);
    RowMaker maker(points, rows);
    for (const auto& row : smooth) {
      for (const auto& [source, weight] : row) maker.Add(source, weight);
      maker.Finish();
    }
    for (const Edge& edge : edges_.edges) EdgeRow(edge, maker);
    for (int f = 0; f < mesh_.NumPolygons(); ++f) {
      AddFacePoint(f, 1, maker);
      maker.Finish();
    }
    return rows;
  }

  Mesh MakeTopology() const {
    Mesh out;
    MakeQuads(edges_, mesh_.NumPoints(), mesh_.corners, &out.corners);
    for (size_t i = 0; i < mesh_.corners.size(); ++i) out.starts.push_back(static_cast<int>(i + 1) * 4);
    Spread(mesh_.materials, &out.materials);
    Spread(mesh_.smoothing, &out.smoothing);
    if (out.smoothing.empty()) out.smoothing.assign(mesh_.corners.size(), 1);
    for (const MeshMap& map : mesh_.maps) out.maps.push_back(SubdivideMap(map));
    return out;
  }

 private:
  bool IsFixed(const PointRing& ring) const { return ring.edges < 2 || (ring.borders != 0 && ring.borders != 2); }

  void CollectRings() {
    rings_.assign(mesh_.points.size(), {});
    for (const int point : mesh_.corners) ++rings_[static_cast<size_t>(point)].faces;
    for (const Edge& edge : edges_.edges) {
      for (const int point : {edge.a, edge.b}) {
        ++rings_[static_cast<size_t>(point)].edges;
        rings_[static_cast<size_t>(point)].borders += edge.faces != 2;
      }
    }
  }

  using Sum = std::vector<std::pair<int, double>>;

  /// A point inside goes to (F + 2 R + (n - 3) P) / n, with F the mean of the polygons around it, R that of the edges'
  /// midpoints; one on a border to 3/4 P and 1/8 of each neighbour on the border.
  void StartPoint(int point, Sum& sum) const {
    const PointRing& ring = rings_[static_cast<size_t>(point)];
    const double n = ring.edges;
    sum.push_back({point, IsFixed(ring) ? 1.0 : ring.borders ? 0.75 : (n - 3) / n});
  }

  void AddFaces(std::vector<Sum>& sums) const {
    for (int f = 0; f < mesh_.NumPolygons(); ++f) {
      const auto polygon = mesh_.Polygon(f);
      for (const int point : polygon) {
        const PointRing& ring = rings_[static_cast<size_t>(point)];
        if (IsFixed(ring) || ring.borders) continue;
        const double weight = 1.0 / ring.edges / ring.faces / static_cast<double>(polygon.size());
        for (const int other : polygon) sums[static_cast<size_t>(point)].push_back({other, weight});
      }
    }
  }

  void AddEdges(std::vector<Sum>& sums) const {
    for (const Edge& edge : edges_.edges) {
      for (const int point : {edge.a, edge.b}) {
        const PointRing& ring = rings_[static_cast<size_t>(point)];
        if (IsFixed(ring)) continue;
        Sum& sum = sums[static_cast<size_t>(point)];
        if (!ring.borders) {
          // 2 R / n with R the mean of n midpoints.
          const double weight = 1.0 / ring.edges / ring.edges;
          sum.push_back({edge.a, weight});
          sum.push_back({edge.b, weight});
        } else if (edge.faces != 2) {
          sum.push_back({edge.a == point ? edge.b : edge.a, 0.125});
        }
      }
    }
  }

  void AddFacePoint(int face, double weight, RowMaker& maker) const {
    const auto polygon = mesh_.Polygon(face);
    for (const int point : polygon) maker.Add(point, weight / static_cast<double>(polygon.size()));
  }

  void EdgeRow(const Edge& edge, RowMaker& maker) const {
    const bool inside = edge.faces == 2;
    maker.Add(edge.a, inside ? 0.25 : 0.5);
    maker.Add(edge.b, inside ? 0.25 : 0.5);
    for (const int face : edge.face)
      if (inside) AddFacePoint(face, 0.25, maker);
    maker.Finish();
  }

  /// For each corner a quad: the corner, the middle of the edge behind it, of the polygon, of the edge before it.
  void MakeQuads(const Edges& edges, int points, const std::vector<int>& corners, std::vector<int>* out) const {
    const int firstFace = points + static_cast<int>(edges.edges.size());
    out->reserve(corners.size() * 4);
    for (int f = 0; f < mesh_.NumPolygons(); ++f) {
      const int from = mesh_.starts[static_cast<size_t>(f)], to = mesh_.starts[static_cast<size_t>(f) + 1];
      for (int c = from; c < to; ++c) {
        const auto before = static_cast<size_t>(c > from ? c - 1 : to - 1);
        out->push_back(corners[static_cast<size_t>(c)]);
        out->push_back(points + edges.ofCorner[static_cast<size_t>(c)]);
        out->push_back(firstFace + f);
        out->push_back(points + edges.ofCorner[before]);
      }
    }
  }

  MeshMap SubdivideMap(const MeshMap& map) const {
    const Edges edges(mesh_.starts, map.corners);
    MeshMap out{map.channel, map.name, map.values, {}};
    const auto value = [&](int i) { return map.values[static_cast<size_t>(i)]; };
    for (const Edge& edge : edges.edges) out.values.push_back((value(edge.a) + value(edge.b)) * 0.5f);
    for (int f = 0; f < mesh_.NumPolygons(); ++f) {
      Point3 sum;
      const int from = mesh_.starts[static_cast<size_t>(f)], to = mesh_.starts[static_cast<size_t>(f) + 1];
      for (int c = from; c < to; ++c) sum += value(map.corners[static_cast<size_t>(c)]);
      out.values.push_back(sum / static_cast<float>(to - from));
    }
    MakeQuads(edges, static_cast<int>(map.values.size()), map.corners, &out.corners);
    return out;
  }

  template <class T>
  void Spread(const std::vector<T>& ofPolygons, std::vector<T>* out) const {
    for (size_t f = 0; f < ofPolygons.size(); ++f)
      out->insert(out->end(), mesh_.Polygon(static_cast<int>(f)).size(), ofPolygons[f]);
  }

  const Mesh& mesh_;
  Edges edges_;
  std::vector<PointRing> rings_;
};

Rows Identity(size_t count) {
  Rows rows;
  for (size_t i = 0; i < count; ++i) {
    rows.sources.push_back(static_cast<int>(i));
    rows.weights.push_back(1);
    rows.starts.push_back(static_cast<int>(i + 1));
  }
  return rows;
}

/// How many weights the product has at most.
size_t BoundOf(const Rows& outer, const Rows& inner) {
  size_t bound = 0;
  for (const int source : outer.sources) {
    const auto at = static_cast<size_t>(source);
    bound += static_cast<size_t>(inner.starts[at + 1] - inner.starts[at]);
  }
  return bound;
}

Rows Product(const Rows& outer, const Rows& inner, size_t sources) {
  Rows rows;
  RowMaker maker(sources, rows);
  for (size_t i = 0; i < outer.Count(); ++i) {
    for (int k = outer.starts[i]; k < outer.starts[i + 1]; ++k) {
      const auto middle = static_cast<size_t>(outer.sources[static_cast<size_t>(k)]);
      for (int j = inner.starts[middle]; j < inner.starts[middle + 1]; ++j)
        maker.Add(inner.sources[static_cast<size_t>(j)],
                  double{outer.weights[static_cast<size_t>(k)]} * double{inner.weights[static_cast<size_t>(j)]});
    }
    maker.Finish();
  }
  return rows;
}

}  // namespace

void Subdivision::MovePoints(std::span<const Point3> from, std::vector<Point3>& to) const {
  const size_t count = starts.empty() ? 0 : starts.size() - 1;
  to.resize(count);
  for (size_t i = 0; i < count; ++i) {
    Point3 sum;
    for (auto k = static_cast<size_t>(starts[i]), end = static_cast<size_t>(starts[i + 1]); k < end; ++k)
      sum += from[static_cast<size_t>(sources[k])] * weights[k];
    to[i] = sum;
  }
}

Subdivision Subdivide(const Mesh& mesh, int levels) {
  auto result = std::make_shared<Mesh>(mesh);
  result->normals.clear();
  result->normalCorners.clear();
  Rows rows = Identity(mesh.points.size());
  for (int i = 0; i < levels; ++i) {
    if (result->corners.size() > kMaxPolygons) break;
    Level level(*result);
    const Rows step = level.MakeRows();
    if (BoundOf(step, rows) > kMaxWeights) break;
    auto next = std::make_shared<Mesh>(level.MakeTopology());
    rows = Product(step, rows, mesh.points.size());
    next->points.resize(rows.Count());
    result = std::move(next);
  }
  Subdivision out;
  out.starts = std::move(rows.starts);
  out.sources = std::move(rows.sources);
  out.weights = std::move(rows.weights);
  out.MovePoints(mesh.points, result->points);
  out.mesh = std::move(result);
  return out;
}

}  // namespace corvanta
