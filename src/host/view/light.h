// SPDX-License-Identifier: MIT
// The light of shaded faces: it stands by the viewer, a little to the upper left so that forms read well, and both
// sides of a face are lit alike.
#pragma once

#include "host/view/camera.h"

namespace corvanta {

class Headlight {
 public:
  Headlight(const Camera& camera, const Matrix3& localToWorld)
      : toLight_(Normalize(camera.Up() * 0.45f - camera.Right() * 0.35f - camera.Forward())),
        forward_(camera.Forward()),
        eye_(camera.Eye()),
        perspective_(camera.IsPerspective()),
        mirrored_(Determinant(localToWorld) < 0) {
    // Normals go through the cofactors, which keeps them at right angles to stretched faces.
    const Point3* r = localToWorld.row;
    normals_.row[0] = Cross(r[1], r[2]), normals_.row[1] = Cross(r[2], r[0]), normals_.row[2] = Cross(r[0], r[1]);
  }

  /// Whether the face turns its back: seen clockwise, or counterclockwise under a mirroring matrix.
  bool IsBack(const Point3 world[3]) const {
    const Point3 toFace = perspective_ ? world[0] - eye_ : forward_;
    return (Dot(Cross(world[1] - world[0], world[2] - world[0]), toFace) > 0) != mirrored_;
  }
  /// Brightness 0 to 1 of a flat face.
  float OnFace(const Point3 world[3]) const {
    const Point3 normal = Normalize(Cross(world[1] - world[0], world[2] - world[0]));
    return Brightness(IsBack(world) != mirrored_ ? -normal : normal);
  }
  /// Brightness at a local normal; `back` turns it to the viewer.
  float OnNormal(const Point3& local, bool back) const {
    const Point3 normal = Normalize(VectorTransform(normals_, local));
    return Brightness(back != mirrored_ ? -normal : normal);
  }

 private:
  float Brightness(const Point3& n) const {
    const float lit = Dot(n, toLight_);
    return 0.30f + 0.70f * (lit > 0 ? lit : 0);
  }

  Point3 toLight_, forward_, eye_;
  bool perspective_, mirrored_;
  Matrix3 normals_;
};

}  // namespace corvanta
