// SPDX-License-Identifier: MIT
// What a file says, worked out in double precision and without the host: where the points of a mesh stand; and how far
// matrices are apart.
#pragma once

#include <gtest/gtest.h>

#include <cmath>

#include "plugin/fbx/format/sdk.h"

namespace tavrilon::fbx {

/// Keeps the larger; what is no number is beyond any bound.
inline void KeepWorst(double& worst, double distance) {
  if (!(distance <= worst)) worst = std::isnan(distance) ? INFINITY : distance;
}

/// How far matrices are apart: places, turns of axes in degrees, lengths of axes as a share.
struct Deviation {
  double place = 0, degrees = 0, scale = 0;
  void Add(const Affine& found, const Affine& wanted) {
    KeepWorst(place, Length(found.row[3] - wanted.row[3]));
    for (int i = 0; i < 3; ++i) {
      const Vector3 &f = found.row[i], &w = wanted.row[i];
      KeepWorst(degrees, std::atan2(Length(Cross(f, w)), Dot(f, w)) / kDegreesToRadians);
      KeepWorst(scale, std::abs(Length(f) / Length(w) - 1));
    }
  }
};

// What a figure of two metres may be off after an import, or after both ways: a tenth of a millimetre, in centimetres,
// and a hundredth of a degree. Lengths of axes: a tenth of a millimetre a metre.
inline constexpr Deviation kFigureBounds{0.01, 0.01, 1e-4};

inline void ExpectClose(const Deviation& worst, const Deviation& bounds = kFigureBounds) {
  EXPECT_LT(worst.place, bounds.place);
  EXPECT_LT(worst.degrees, bounds.degrees);
  EXPECT_LT(worst.scale, bounds.scale);
}

/// From the world of a file's scene to one of other axes and another unit.
struct WorldChange {
  Affine turn;
  double unit = 1;
  WorldChange() = default;
  WorldChange(const FbxScene& from, const FbxAxisSystem& axes, double centimetres)
      : turn(from.GetGlobalSettings().GetAxisSystem().ConversionTo(axes)),
        unit(from.GetGlobalSettings().GetSystemUnit().centimetres / centimetres) {}
  Affine operator()(Affine m) const {
    m = m * turn;
    m.row[3] = m.row[3] * unit;
    return m;
  }
  Vector3 operator()(const Vector3& p) const { return p * turn * unit; }
};

/// By the format library's own reader: a file's name, or its bytes and a name for messages.
template <class... Source>
std::unique_ptr<FbxScene> ReadFbx(const Source&... source) {
  const auto manager = FbxManager::Create();
  const auto importer = FbxImporter::Create(*manager, "reader");
  auto scene = FbxScene::Create("twin");
  EXPECT_TRUE(importer->Initialize(source...) && importer->Import(*scene)) << importer->GetStatus().GetErrorString();
  return scene;
}

/// Control points with their blend shapes, of one target each.
inline std::vector<Vector3> ShapedPoints(SceneEvaluator& evaluator, const FbxMesh& mesh, FbxTime t) {
  std::vector<Vector3> points = mesh.controlPoints;
  for (const FbxBlendShape* blend : mesh.blendShapes) {
    for (const FbxBlendShapeChannel* channel : blend->channels) {
      EXPECT_EQ(channel->shapes.size(), 1u);
      const double share = evaluator.DeformPercent(channel, t) / 100;
      const FbxShape& shape = channel->shapes[0];
      for (size_t i = 0; i < shape.indices.size(); ++i) {
        Vector3& point = points[static_cast<size_t>(shape.indices[i])];
        point = point + shape.offsets[i] * share;
      }
    }
  }
  return points;
}

/// In the world of the file: shapes, geometric transform, then linear blend skinning or the node's own place.
inline std::vector<Vector3> PointsInTheWorld(SceneEvaluator& evaluator, const FbxNode& node, FbxTime t) {
  const auto& mesh = static_cast<const FbxMesh&>(*node.GetNodeAttribute());
  const Affine geometric = GeometricMatrix(node.transform);
  const std::vector<Vector3> points = ShapedPoints(evaluator, mesh, t);
  std::vector<Vector3> placed(points.size());
  if (mesh.skins.empty()) {
    const Affine world = geometric * evaluator.World(&node, t);
    for (size_t i = 0; i < points.size(); ++i) placed[i] = points[i] * world;
    return placed;
  }
  for (const FbxCluster& cluster : mesh.skins[0]->clusters) {
    const Affine toWorld = geometric * cluster.transform * evaluator.World(cluster.link, t);
    for (size_t i = 0; i < cluster.indices.size(); ++i) {
      const auto point = static_cast<size_t>(cluster.indices[i]);
      placed[point] = placed[point] + points[point] * toWorld * cluster.weights[i];
    }
  }
  return placed;
}

}  // namespace tavrilon::fbx
