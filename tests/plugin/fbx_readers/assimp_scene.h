// SPDX-License-Identifier: MIT
// An FBX file as assimp reads it, in plain structures, to compare what we write with what others take it for.
//
// What to know of that reader: with its pivots on it applies PreRotation twice on animated nodes, so they are off here;
// it counts key times from the stack's LocalStart; it turns no Z-up file and applies no unit; of two layers the later
// replaces the first; it splits meshes by material and gives each corner a vertex of its own.
#pragma once

#include <assimp/anim.h>

#include <map>
#include <string>
#include <vector>

#include "plugin/fbx/format/affine.h"

namespace tavrilon::fbx {

/// Rows as in affine.h.
struct AssimpNode {
  std::string name;
  int parent = -1;
  Affine local;
  /// Parts of `AssimpFile::meshes`, one a material.
  std::vector<int> meshes;
};

struct AssimpMesh {
  std::string material;
  /// By corner of its polygons in their order.
  std::vector<Vector3> points, normals;
  std::vector<std::vector<Vector2>> uvs;
  /// Corners of each polygon.
  std::vector<int> polygonSizes;
  /// By bone, then by corner.
  std::map<std::string, std::map<int, double>> weights;
  /// From the mesh at bind to the bone, by bone.
  std::map<std::string, Affine> offsets;
  /// Points in full, by corner, for each blend shape.
  std::map<std::string, std::vector<Vector3>> shapes;
};

struct AssimpMaterial {
  std::string name;
  Vector3 diffuse;
  std::string diffuseTexture;
};

class AssimpFile {
 public:
  /// Reads an FBX file's bytes. False with `error` set.
  bool Read(const std::vector<unsigned char>& bytes);

  std::string error;
  /// Parents in front of their children; the first is the root.
  std::vector<AssimpNode> nodes;
  std::vector<AssimpMesh> meshes;
  std::vector<AssimpMaterial> materials;
  /// Names of animations.
  std::vector<std::string> animations;

  /// -1 when there is none.
  int Find(const std::string& name) const;
  /// World matrix at `seconds` from the first animation's LocalStart, keys interpolated as assimp's documentation
  /// tells: positions and scales linear, rotations by the shorter arc.
  Affine World(int node, double seconds) const;
  /// The weight, 0 to 1, of the first animated mesh's blend shape of this index at the last key up to `seconds` from
  /// LocalStart; -1 without a curve.
  double MorphWeight(unsigned shape, double seconds) const;

 private:
  /// Times in seconds.
  struct Channel {
    std::vector<aiVectorKey> positions;
    std::vector<aiQuatKey> rotations;
    std::vector<aiVectorKey> scales;
  };
  Affine Local(int node, double seconds) const;
  std::map<std::string, Channel> channels_;
  std::map<unsigned, std::vector<std::pair<double, double>>> morphs_;
};

}  // namespace tavrilon::fbx
