// SPDX-License-Identifier: MIT
// Arithmetic, comparison, conversion and the properties of plain values.
#pragma once

#include "host/script/value.h"

namespace corvanta::script {

enum class BinaryOp : uint8_t {
  Add,
  Subtract,
  Multiply,
  Divide,
  Power,
  Equal,
  NotEqual,
  Less,
  Greater,
  LessEqual,
  GreaterEqual
};

/// "+", "==" and so on, for messages.
const wchar_t* OpText(BinaryOp op);
/// Throws on kinds that the operator does not join, on division of an integer by zero and on integer overflow.
/// Numbers beside times are frames.
Value Apply(BinaryOp op, const Value& a, const Value& b);
Value Negate(const Value& a);
/// -1, 0, 1 for numbers, times, strings and names; throws for other pairs. Not-a-number comes last.
int Compare(const Value& a, const Value& b);

/// The types that `as` knows.
enum class ConversionType : uint8_t {
  Boolean,
  Integer,
  Float,
  Time,
  String,
  Name,
  Point2,
  Point3,
  Point4,
  Quat,
  Matrix3,
  Color,
  Array
};
/// The type of a lower-case name; false when `as` does not know it.
bool FindConversion(const WStr& name, ConversionType& type);
/// Throws when `value` has no such form; a string that holds no number becomes `undefined`.
Value Convert(const Value& value, ConversionType type);

/// `.count`, `.x`, `.row1`, ... of plain values; `name` in lower case. False when there is none.
bool GetValueProperty(const Value& value, const WStr& name, Value& out);
/// Changes the part `name` of a point, quaternion, matrix, colour or interval in place; false when there is none.
bool SetValueProperty(Value& value, const WStr& name, const Value& part);
/// `value[key]` for arrays, strings, points and matrices, from 1. Beyond an array's end: undefined.
Value GetIndex(const Value& value, const Value& key);
/// Arrays grow; the others change in place.
void SetIndex(Value& value, const Value& key, const Value& item);
/// True for kinds that are copied on assignment and written back part by part.
bool IsPlainCompound(Kind kind);

/// Ticks a frame of the present frame rate.
int TicksPerFrame();
void SetTicksPerFrame(int ticks);
/// Rounded to the nearest tick and limited to the range of times.
TimeValue TicksFromFrames(double frames);
double FramesFromTicks(TimeValue ticks);

}  // namespace corvanta::script
