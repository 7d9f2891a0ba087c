// SPDX-License-Identifier: MIT
// Text of a picture, by Qt's painter on the finished image.
#include <QFont>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainter>
#include <algorithm>
#include <cmath>

#include "host/view/raster.h"

namespace corvanta {
namespace {

constexpr int kMaxLetters = 500;  // of one text: more does not fit into any picture
constexpr float kReach = 100000;  // the painter's coordinates stay in its own safe range

float Finite(float value, float otherwise) { return std::isfinite(value) ? value : otherwise; }

// A fixed family and a size in pixels: the same letters whatever the resolution of the platform.
QFont LabelFont(float size) {
  QFont font(QStringLiteral("DejaVu Sans"));
  font.setPixelSize(static_cast<int>(std::clamp(Finite(size, 13), 4.0f, 400.0f)));
  font.setStyleStrategy(QFont::PreferAntialias);
  font.setHintingPreference(QFont::PreferNoHinting);
  return font;
}

}  // namespace

bool CanDrawText() {
  return qobject_cast<QGuiApplication*>(QCoreApplication::instance()) && !QFontDatabase().families().isEmpty();
}

void SoftwareWindow::Text(Point2 screen, std::wstring_view text, TextAnchor anchor) {
  if (!(std::fabs(screen.x) < kReach && std::fabs(screen.y) < kReach)) return;
  labels_.push_back({screen, 0, false, std::wstring(text.substr(0, kMaxLetters)), anchor, Ink().rgb, State().textSize});
}

void SoftwareWindow::WorldText(const Point3& p, std::wstring_view text, TextAnchor anchor) {
  ScreenVertex v;
  if (!projector_.Point(ToWorld(p), v)) return;
  const float x = static_cast<float>(v.x) / FrameBuffer::kSamples, y = static_cast<float>(v.y) / FrameBuffer::kSamples;
  Text({x, y}, text, anchor);
  // A label stands for its point, which may lie on a surface: it is hidden only by what is clearly nearer.
  labels_.back().key = static_cast<float>(projector_.Nearer(v.key, 8));
  labels_.back().depthTest = State().depthTest;
}

void SoftwareWindow::DrawLabels(QImage& image) const {
  if (labels_.empty() || !CanDrawText()) return;
  QPainter painter(&image);
  painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
  for (const Label& label : labels_) {
    const float x = label.at.x * FrameBuffer::kSamples, y = label.at.y * FrameBuffer::kSamples;
    if (label.depthTest && buffer_.KeyAt(x, y) > label.key) continue;
    const QString text = QString::fromStdWString(label.text);
    painter.setFont(LabelFont(label.size));
    const double share = label.anchor == TextAnchor::Left ? 0 : label.anchor == TextAnchor::Centre ? 0.5 : 1;
    const double width = share > 0 ? QFontMetricsF(painter.font()).horizontalAdvance(text) : 0;
    // Whole pixels: letters of one text then look alike wherever it stands.
    const QPointF at(std::round(label.at.x - width * share), std::round(label.at.y));
    painter.setPen(QColor(0, 0, 0, 150));
    painter.drawText(at + QPointF(1, 1), text);
    painter.setPen(QColor::fromRgb(label.rgb));
    painter.drawText(at, text);
  }
}

}  // namespace corvanta
