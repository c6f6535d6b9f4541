#include "ZephrimarkUI/DitheredGradient.h"

#include <array>
#include <cmath>

#include <QtGui/QImage>
#include <QtGui/QPainter>
#include <QtQuick/QQuickWindow>

namespace ZephrimarkUI {

namespace {

constexpr int kPatternEdge = 8;

// The thresholds of an 8 x 8 Bayer matrix: each pixel rounds at a level of its own.
constexpr std::array<std::array<int, kPatternEdge>, kPatternEdge> kThresholds = {{
    {{0, 32, 8, 40, 2, 34, 10, 42}},
    {{48, 16, 56, 24, 50, 18, 58, 26}},
    {{12, 44, 4, 36, 14, 46, 6, 38}},
    {{60, 28, 52, 20, 62, 30, 54, 22}},
    {{3, 35, 11, 43, 1, 33, 9, 41}},
    {{51, 19, 59, 27, 49, 17, 57, 25}},
    {{15, 47, 7, 39, 13, 45, 5, 37}},
    {{63, 31, 55, 23, 61, 29, 53, 21}},
}};

float threshold(int x, int y) {
  const auto row = static_cast<std::size_t>(y % kPatternEdge);
  const auto column = static_cast<std::size_t>(x % kPatternEdge);
  return (static_cast<float>(kThresholds[row][column]) + 0.5F) / (kPatternEdge * kPatternEdge);
}

int level(float from, float to, float part, float threshold) {
  return static_cast<int>((from + (to - from) * part) * 255.0F + threshold);
}

QImage gradient(const QSize& size, const QColor& from, const QColor& to) {
  QImage image(size, QImage::Format_RGB32);
  // How far along the diagonal a pixel lies: its projection on it, from 0 to 1.
  const auto width = static_cast<float>(size.width());
  const auto height = static_cast<float>(size.height());
  const float across = width / (width * width + height * height);
  const float down = height / (width * width + height * height);
  for (int y = 0; y < size.height(); ++y) {
    auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
    for (int x = 0; x < size.width(); ++x) {
      // Each channel turns the pattern its own way, so that their patterns do not add up.
      const float part = static_cast<float>(x) * across + static_cast<float>(y) * down;
      line[x] = qRgb(level(from.redF(), to.redF(), part, threshold(x, y)),
                     level(from.greenF(), to.greenF(), part, threshold(y, x + 3)),
                     level(from.blueF(), to.blueF(), part, threshold(x + 5, y + 2)));
    }
  }
  return image;
}

}  // namespace

DitheredGradient::DitheredGradient(QQuickItem* parent) : QQuickPaintedItem(parent) {
  setOpaquePainting(true);
}

void DitheredGradient::setFrom(const QColor& color) {
  if (color == from_) return;
  from_ = color;
  emit colorsChanged();
  update();
}

void DitheredGradient::setTo(const QColor& color) {
  if (color == to_) return;
  to_ = color;
  emit colorsChanged();
  update();
}

void DitheredGradient::paint(QPainter* painter) {
  const qreal scale = window() != nullptr ? window()->effectiveDevicePixelRatio() : 1.0;
  const QSize size(static_cast<int>(std::ceil(width() * scale)),
                   static_cast<int>(std::ceil(height() * scale)));
  if (size.isEmpty()) return;
  QImage image = gradient(size, from_, to_);
  image.setDevicePixelRatio(scale);
  painter->drawImage(QPointF(0, 0), image);
}

}  // namespace ZephrimarkUI
