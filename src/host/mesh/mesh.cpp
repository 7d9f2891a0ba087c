// SPDX-License-Identifier: MIT
#include "host/mesh/mesh.h"

#include <cmath>
#include <set>

namespace corvanta {

namespace {

using std::to_string;

bool IsFinite(const Point3& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); }

std::string FaultOfValues(const std::vector<Point3>& values, const std::string& what) {
  for (size_t i = 0; i < values.size(); ++i)
    if (!IsFinite(values[i])) return what + " " + to_string(i) + " is not a finite number";
  return {};
}

std::string FaultOfPolygons(const Mesh& mesh) {
  const std::vector<int>& starts = mesh.starts;
  if (starts.empty() || starts[0] != 0) return "the first polygon does not start at corner 0";
  for (size_t i = 0; i + 1 < starts.size(); ++i) {
    // Compared as wide numbers: what a file tells may overflow.
    const int64_t count = int64_t{starts[i + 1]} - starts[i];
    if (count < 3) return "polygon " + to_string(i) + " has " + to_string(count) + " corners";
  }
  if (static_cast<size_t>(starts.back()) != mesh.corners.size())
    return "the polygons have " + to_string(starts.back()) + " corners, and there are " +
           to_string(mesh.corners.size());
  for (int i = 0; i < mesh.NumPolygons(); ++i)
    for (const int point : mesh.Polygon(i))
      if (point < 0 || point >= mesh.NumPoints())
        return "polygon " + to_string(i) + " uses point " + to_string(point) + " of " + to_string(mesh.NumPoints());
  return {};
}

/// Values that corners take by index.
std::string FaultOfCorners(const Mesh& mesh, const std::vector<int>& corners, size_t values, const std::string& what) {
  if (corners.size() != mesh.corners.size())
    return what + " has " + to_string(corners.size()) + " corners of " + to_string(mesh.corners.size());
  for (size_t i = 0; i < corners.size(); ++i)
    if (corners[i] < 0 || static_cast<size_t>(corners[i]) >= values)
      return what + " takes value " + to_string(corners[i]) + " of " + to_string(values) + " at corner " + to_string(i);
  return {};
}

std::string FaultOfTab(size_t count, const Mesh& mesh, const char* what) {
  const auto polygons = static_cast<size_t>(mesh.NumPolygons());
  if (count == 0 || count == polygons) return {};
  return std::string("there are ") + to_string(count) + " " + what + " for " + to_string(polygons) + " polygons";
}

std::string FaultOfNormals(const Mesh& mesh) {
  if (mesh.normals.empty() && mesh.normalCorners.empty()) return {};
  if (std::string fault = FaultOfValues(mesh.normals, "normal"); !fault.empty()) return fault;
  return FaultOfCorners(mesh, mesh.normalCorners, mesh.normals.size(), "the tab of normals");
}

std::string FaultOfMaps(const Mesh& mesh) {
  std::set<int> channels;
  for (const MeshMap& map : mesh.maps) {
    const std::string name = "map channel " + to_string(map.channel);
    if (map.channel < 0) return name + " is below 0";
    if (!channels.insert(map.channel).second) return name + " is there twice";
    if (std::string fault = FaultOfValues(map.values, name + ": value"); !fault.empty()) return fault;
    if (std::string fault = FaultOfCorners(mesh, map.corners, map.values.size(), name); !fault.empty()) return fault;
  }
  return {};
}

}  // namespace

void Mesh::AddPolygon(std::span<const int> points) {
  corners.insert(corners.end(), points.begin(), points.end());
  starts.push_back(static_cast<int>(corners.size()));
}

std::string FaultOf(const Mesh& mesh) {
  for (std::string fault : {FaultOfValues(mesh.points, "point"), FaultOfPolygons(mesh)})
    if (!fault.empty()) return fault;
  for (std::string fault : {FaultOfNormals(mesh), FaultOfTab(mesh.smoothing.size(), mesh, "smoothing groups"),
                            FaultOfTab(mesh.materials.size(), mesh, "material IDs"), FaultOfMaps(mesh)})
    if (!fault.empty()) return fault;
  return {};
}

}  // namespace corvanta
