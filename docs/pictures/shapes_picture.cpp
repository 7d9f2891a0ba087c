// SPDX-License-Identifier: MIT
// Draws docs/shapes.png: every outline of the library with its number and name.
//   shapes_picture OUT.png
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <cstdio>

#include "plugin/shapes/outline.h"
#include "plugin/shapes/shape_type.h"

namespace {

using namespace tavrilon;

constexpr int kColumns = 8, kCellWidth = 190, kCellHeight = 208, kRadius = 74, kCaption = 26, kMargin = 10;

// Anything with depth is shown from above at an angle.
bool HasDepth(const Outline& outline) {
  const Box3 box = BoundsOf(outline, 6);
  return !box.IsEmpty() && box.max.z - box.min.z > 1e-4f;
}

QPointF Project(const Point3& p, bool turned) {
  if (!turned) return {p.x, -p.y};
  const float turn = 28 * corvanta::kDegToRad, tilt = 62 * corvanta::kDegToRad, fit = 0.92f;
  const float x = p.x * std::cos(turn) - p.y * std::sin(turn), y = p.x * std::sin(turn) + p.y * std::cos(turn);
  return {x * fit, -(y * std::cos(tilt) + p.z * std::sin(tilt)) * fit};
}

QColor StrokeColour(int type, int part) {
  static const QColor axes[] = {{230, 60, 60}, {60, 200, 60}, {70, 110, 255}};
  if (type == static_cast<int>(ShapeType::AxisTripod)) return axes[part];
  if (type == static_cast<int>(ShapeType::IKFK) && part == 1) return {120, 105, 60};
  return {245, 205, 90};
}

void DrawShape(QPainter& painter, int type) {
  OutlineInput in;
  in.type = type;
  in.size = 2;
  in.scale = type == static_cast<int>(ShapeType::Box) || type == static_cast<int>(ShapeType::Cylinder) ? 0.75f : 1;
  Outline outline;
  BuildOutline(in, outline);
  const bool turned = HasDepth(outline);
  std::vector<Point3> points;
  for (const Spline& spline : outline) {
    points.clear();
    Interpolate(spline, 6, points);
    QPolygonF line;
    for (const Point3& p : points) line << Project(p, turned) * kRadius;
    painter.setPen(QPen(StrokeColour(type, spline.part), 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    spline.closed ? painter.drawPolygon(line) : painter.drawPolyline(line);
  }
}

QImage DrawLibrary() {
  const int rows = (kShapeTypeCount + kColumns - 1) / kColumns;
  QImage image(kColumns * kCellWidth + 2 * kMargin, rows * kCellHeight + 2 * kMargin, QImage::Format_RGB32);
  image.fill(QColor(52, 54, 58));
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  QFont font("DejaVu Sans");
  font.setPixelSize(14);
  painter.setFont(font);
  for (int type = 0; type < kShapeTypeCount; ++type) {
    const QRect cell(kMargin + type % kColumns * kCellWidth, kMargin + type / kColumns * kCellHeight, kCellWidth,
                     kCellHeight);
    painter.setPen(QColor(70, 73, 78));
    painter.drawRect(cell);
    painter.setPen(QColor(215, 218, 222));
    painter.drawText(QRect(cell.left(), cell.bottom() - kCaption, kCellWidth, kCaption), Qt::AlignCenter,
                     QString("%1  %2").arg(type).arg(ShapeTypeName(type)));
    painter.save();
    painter.translate(cell.center() - QPointF(0, kCaption / 2));
    DrawShape(painter, type);
    painter.restore();
  }
  return image;
}

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QGuiApplication application(argc, argv);
  if (argc != 2) {
    std::fprintf(stderr, "usage: shapes_picture OUT.png\n");
    return 2;
  }
  if (DrawLibrary().save(argv[1])) return 0;
  std::fprintf(stderr, "shapes_picture: cannot write %s\n", argv[1]);
  return 1;
}
