// SPDX-License-Identifier: MIT
// Draws the template of every kind of rig, seen from the front and from its left, into one picture:
// draw_templates docs/templates.png
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <algorithm>
#include <cstdio>

#include "plugin/rig/point_place.h"
#include "plugin/rig/template.h"
#include "plugin/rig/type_defaults.h"

namespace {

using namespace tavrilon;

struct Figure {
  RigType type;
  const char* title;
  RigPoints points;
};

std::vector<Figure> Figures() {
  std::vector<Figure> figures;
  for (int i = 0; i <= static_cast<int>(RigType::Face); ++i) {
    const RigType type = static_cast<RigType>(i);
    if (type == RigType::Ears) continue;
    figures.push_back({type, "", BuildTemplate(type, ParamsForType(type), {}, {})});
  }
  TemplateParams rich = ParamsForType(RigType::Biped);
  rich[rig_param::kFace] = rich[rig_param::kMetacarpals] = rich[rig_param::kMetatarsals] = 1;
  rich[rig_param::kToes] = 5;
  rich[rig_param::kToeBones] = 2;
  rich[rig_param::kTails] = 2;
  rich[rig_param::kPonytails] = 3;
  rich[rig_param::kFangs] = 1;
  rich[rig_param::kArmPairs] = 2;
  rich[rig_param::kUseTailBones] = 1;
  rich[rig_param::kNeckControls] = 2;
  rich[rig_param::kUseNeckBones] = 1;
  RigExtra ear{L"ear", L"head", kSideBoth, 2, 3, true};
  figures.push_back({RigType::Biped, " (all parts)", BuildTemplate(RigType::Biped, rich, {}, {ear})});
  TemplateParams horse = ParamsForType(RigType::Quadruped);
  horse[rig_param::kPonytails] = 1;
  horse[rig_param::kFace] = horse[rig_param::kFangs] = 1;
  horse[rig_param::kNeckControls] = 3;
  figures.push_back({RigType::Quadruped, " (mane, face)", BuildTemplate(RigType::Quadruped, horse, {}, {})});
  return figures;
}

QColor ColorOf(const RigPoint& point) {
  const int side = point.Side();
  return side == kSideRight ? QColor(230, 90, 40) : side == kSideLeft ? QColor(220, 200, 30) : QColor(90, 140, 255);
}

/// One view: the picture's axes are `across` and `up`.
void DrawView(QPainter& painter, const RigPoints& points, const QRectF& area, const Point3& across, const Point3& up) {
  const PointPlaces places(points);
  const corvanta::Box3 box = places.Bounds();
  const float size = std::max({box.max.x - box.min.x, box.max.y - box.min.y, box.max.z - box.min.z, .1f});
  const double scale = std::min(area.width(), area.height()) * .86 / size;
  const Point3 center = box.Center();
  const auto at = [&](const Point3& p) {
    return QPointF(area.center().x() + Dot(p - center, across) * scale,
                   area.center().y() - Dot(p - center, up) * scale);
  };
  for (size_t i = 0; i < points.size(); ++i) {
    const int n = static_cast<int>(i);
    painter.setPen(QPen(ColorOf(points[i]), 1));
    if (points[i].IsInBetween()) {
      painter.fillRect(QRectF(at(places[n]) - QPointF(1, 1), QSizeF(2, 2)), Qt::white);
      continue;
    }
    if (points[i].parent >= 0) painter.drawLine(at(places[n]), at(places[points[i].parent]));
    const QPointF c = at(places[n]);
    painter.drawLine(c - QPointF(2, 0), c + QPointF(2, 0));
    painter.drawLine(c - QPointF(0, 2), c + QPointF(0, 2));
  }
}

}  // namespace

int main(int argc, char** argv) {
  QGuiApplication application(argc, argv);
  const std::vector<Figure> figures = Figures();
  constexpr int kColumns = 4, kWidth = 400, kHeight = 230;
  const int rows = (static_cast<int>(figures.size()) + kColumns - 1) / kColumns;
  QImage image(kColumns * kWidth, rows * kHeight, QImage::Format_RGB32);
  image.fill(QColor(40, 42, 46));
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  for (size_t i = 0; i < figures.size(); ++i) {
    const QPointF origin(static_cast<int>(i) % kColumns * kWidth, static_cast<int>(i) / kColumns * kHeight);
    const QRectF cell(origin, QSizeF(kWidth, kHeight));
    painter.setPen(QColor(70, 72, 78));
    painter.drawRect(cell);
    painter.setPen(Qt::white);
    painter.drawText(cell.adjusted(8, 4, 0, 0),
                     QString::fromWCharArray(kRigTypeNames[static_cast<int>(figures[i].type)]) + figures[i].title);
    DrawView(painter, figures[i].points, QRectF(origin + QPointF(0, 16), QSizeF(kWidth / 2, kHeight - 20)), {1, 0, 0},
             {0, 0, 1});
    // The second view is from the figure's left, for hands and feet from above.
    const bool flat = figures[i].type == RigType::Hands || figures[i].type == RigType::Arms ||
                      figures[i].type == RigType::Feet || figures[i].type == RigType::FrontPaws;
    DrawView(painter, figures[i].points, QRectF(origin + QPointF(kWidth / 2, 16), QSizeF(kWidth / 2, kHeight - 20)),
             flat ? Point3{1, 0, 0} : Point3{0, 1, 0}, flat ? Point3{0, 1, 0} : Point3{0, 0, 1});
  }
  painter.end();
  if (argc < 2 || !image.save(QString::fromLocal8Bit(argv[1]))) {
    std::fprintf(stderr, "draw_templates: could not write %s\n", argc < 2 ? "(no file named)" : argv[1]);
    return 1;
  }
  return 0;
}
