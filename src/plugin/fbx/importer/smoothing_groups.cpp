// SPDX-License-Identifier: MIT
#include "plugin/fbx/importer/smoothing_groups.h"

#include <numeric>
#include <unordered_map>

namespace tavrilon::fbx_import {

using namespace corvanta;

namespace {

/// Patches of polygons, as a forest in which each points towards the one that stands for its patch.
class Patches {
 public:
  explicit Patches(size_t count) : parent_(count), size_(count, 1) { std::iota(parent_.begin(), parent_.end(), 0); }
  int Of(int polygon) {
    int& parent = parent_[static_cast<size_t>(polygon)];
    while (parent != parent_[static_cast<size_t>(parent)]) parent = parent_[static_cast<size_t>(parent)];
    return parent;
  }
  void Join(int a, int b) {
    a = Of(a);
    b = Of(b);
    if (a == b) return;
    if (Size(a) < Size(b)) std::swap(a, b);
    parent_[static_cast<size_t>(b)] = a;
    size_[static_cast<size_t>(a)] += Size(b);
  }
  int Size(int patch) const { return size_[static_cast<size_t>(patch)]; }

 private:
  std::vector<int> parent_, size_;
};

using PolygonPair = std::pair<int, int>;

template <class F>
void ForEachEdge(const Mesh& mesh, F&& f) {
  for (int p = 0; p < mesh.NumPolygons(); ++p) {
    const std::span<const int> polygon = mesh.Polygon(p);
    for (size_t c = 0; c < polygon.size(); ++c) f(p, EdgeKey(polygon[c], polygon[(c + 1) % polygon.size()]));
  }
}

/// Joins polygons over soft edges; returns those that meet at hard ones.
std::vector<PolygonPair> JoinPatches(const Mesh& mesh, const std::unordered_set<uint64_t>& softEdges,
                                     Patches& patches) {
  std::unordered_map<uint64_t, int> first;
  std::vector<PolygonPair> hard;
  ForEachEdge(mesh, [&](int polygon, uint64_t edge) {
    const auto [found, isNew] = first.emplace(edge, polygon);
    if (isNew) return;
    if (softEdges.contains(edge))
      patches.Join(found->second, polygon);
    else
      hard.emplace_back(found->second, polygon);
  });
  return hard;
}

uint32_t LowestFree(uint32_t taken) {
  for (uint32_t bit = 1; bit != 0; bit <<= 1)
    if (!(taken & bit)) return bit;
  return 0x80000000u;
}

}  // namespace

std::vector<uint32_t> GroupsOfEdges(const Mesh& mesh, const std::unordered_set<uint64_t>& softEdges) {
  const auto count = static_cast<size_t>(mesh.NumPolygons());
  Patches patches(count);
  const std::vector<PolygonPair> hard = JoinPatches(mesh, softEdges, patches);
  std::unordered_map<int, std::vector<int>> neighbours;
  for (const auto& [a, b] : hard) {
    const int pa = patches.Of(a), pb = patches.Of(b);
    if (pa == pb || patches.Size(pa) == 1 || patches.Size(pb) == 1) continue;
    neighbours[pa].push_back(pb);
    neighbours[pb].push_back(pa);
  }
  std::vector<uint32_t> ofPatch(count, 0), groups(count, 0);
  for (size_t p = 0; p < count; ++p) {
    const int patch = patches.Of(static_cast<int>(p));
    if (patches.Size(patch) == 1) continue;
    uint32_t& group = ofPatch[static_cast<size_t>(patch)];
    if (group == 0) {
      uint32_t taken = 0;
      for (const int neighbour : neighbours[patch]) taken |= ofPatch[static_cast<size_t>(neighbour)];
      group = LowestFree(taken);
    }
    groups[p] = group;
  }
  return groups;
}

}  // namespace tavrilon::fbx_import
