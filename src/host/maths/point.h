// SPDX-License-Identifier: MIT
// Points and vectors of two, three and four floats.
#pragma once

#include <cmath>

namespace corvanta {

inline constexpr float kPi = 3.14159265358979323846f;
inline constexpr float kTwoPi = 2 * kPi;
inline constexpr float kHalfPi = kPi / 2;
inline constexpr float kDegToRad = 0.017453292f;
inline constexpr float kRadToDeg = 57.29578f;

struct Point2 {
  float x = 0, y = 0;
  float operator[](int i) const { return (&x)[i]; }
  float& operator[](int i) { return (&x)[i]; }
  bool operator==(const Point2&) const = default;
};
inline Point2 operator+(Point2 a, Point2 b) { return {a.x + b.x, a.y + b.y}; }
inline Point2 operator-(Point2 a, Point2 b) { return {a.x - b.x, a.y - b.y}; }
inline Point2 operator*(Point2 a, float s) { return {a.x * s, a.y * s}; }
inline float Dot(Point2 a, Point2 b) { return a.x * b.x + a.y * b.y; }
inline float Length(Point2 a) { return std::sqrt(Dot(a, a)); }

struct Point3 {
  float x = 0, y = 0, z = 0;
  float operator[](int i) const { return (&x)[i]; }
  float& operator[](int i) { return (&x)[i]; }
  Point3& operator+=(const Point3& b) {
    x += b.x, y += b.y, z += b.z;
    return *this;
  }
  Point3& operator-=(const Point3& b) {
    x -= b.x, y -= b.y, z -= b.z;
    return *this;
  }
  Point3& operator*=(float s) {
    x *= s, y *= s, z *= s;
    return *this;
  }
  bool operator==(const Point3&) const = default;
};
inline Point3 operator+(const Point3& a, const Point3& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
inline Point3 operator-(const Point3& a, const Point3& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline Point3 operator-(const Point3& a) { return {-a.x, -a.y, -a.z}; }
inline Point3 operator*(const Point3& a, float s) { return {a.x * s, a.y * s, a.z * s}; }
inline Point3 operator*(float s, const Point3& a) { return a * s; }
/// By component.
inline Point3 operator*(const Point3& a, const Point3& b) { return {a.x * b.x, a.y * b.y, a.z * b.z}; }
inline Point3 operator/(const Point3& a, float s) { return a * (1 / s); }
/// By component.
inline Point3 operator/(const Point3& a, const Point3& b) { return {a.x / b.x, a.y / b.y, a.z / b.z}; }
inline float Dot(const Point3& a, const Point3& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline Point3 Cross(const Point3& a, const Point3& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline float LengthSquared(const Point3& a) { return Dot(a, a); }
inline float Length(const Point3& a) { return std::sqrt(Dot(a, a)); }
/// The unit vector along `a`; the zero vector gives the zero vector.
inline Point3 Normalize(const Point3& a) {
  const float length = Length(a);
  return length > 0 ? a / length : Point3{};
}
inline Point3 Lerp(const Point3& a, const Point3& b, float f) { return a + (b - a) * f; }

struct Point4 {
  float x = 0, y = 0, z = 0, w = 0;
  float operator[](int i) const { return (&x)[i]; }
  float& operator[](int i) { return (&x)[i]; }
  bool operator==(const Point4&) const = default;
};
inline Point4 operator+(const Point4& a, const Point4& b) { return {a.x + b.x, a.y + b.y, a.z + b.z, a.w + b.w}; }
inline Point4 operator-(const Point4& a, const Point4& b) { return {a.x - b.x, a.y - b.y, a.z - b.z, a.w - b.w}; }
inline Point4 operator*(const Point4& a, float s) { return {a.x * s, a.y * s, a.z * s, a.w * s}; }

}  // namespace corvanta
