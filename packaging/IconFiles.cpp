#include "ZephrimarkUI/Setup.h"

#include <cstdlib>
#include <iostream>

#include <QPainter>

// IconFiles FOLDER EDGE...: draws the application's icon into FOLDER/EDGE.png, EDGE pixels wide.
// IconFiles --sheet FILE: all sizes in one picture, on light and dark ground.

namespace {

constexpr int kGap = 24;

bool save(const QImage& image, const QString& file) {
  if (image.save(file)) return true;
  std::cerr << "IconFiles: " << file.toStdString() << " could not be written.\n";
  return false;
}

QImage contactSheet() {
  const std::vector<int> edges = {16, 22, 24, 32, 48, 64, 128, 256};
  constexpr int kMagnified = 128;
  int width = kGap;
  for (const int edge : edges) width += edge + kGap;
  const int height = edges.back() + 2 * kGap;
  QImage sheet(width, 2 * height, QImage::Format_RGB32);
  QPainter painter(&sheet);
  int top = 0;
  for (const char* ground : {"#f6f7f9", "#1b1c1f"}) {
    painter.fillRect(0, top, width, height, QColor(ground));
    int left = kGap;
    for (const int edge : edges) {
      painter.drawImage(left, top + kGap, ZephrimarkUI::applicationImage(edge));
      left += edge + kGap;
    }
    // The two smallest ones that desktops use most, pixel by pixel.
    left = kGap;
    for (const int edge : {16, 32}) {
      const int bottom = top + height - kGap;
      painter.drawImage(QRect(left, bottom - kMagnified, kMagnified, kMagnified),
                        ZephrimarkUI::applicationImage(edge));
      left += kMagnified + kGap;
    }
    top += height;
  }
  return sheet;
}

}  // namespace

int main(int argc, char** argv) {
  // Drawing into memory needs no application, and so no screen.
  QStringList arguments;
  for (int i = 1; i < argc; ++i) arguments << QString::fromLocal8Bit(argv[i]);
  if (arguments.size() < 2) {
    std::cerr << "Usage: IconFiles FOLDER EDGE... | IconFiles --sheet FILE\n";
    return EXIT_FAILURE;
  }
  if (arguments[0] == "--sheet") {
    return save(contactSheet(), arguments[1]) ? EXIT_SUCCESS : EXIT_FAILURE;
  }
  for (const QString& edge : arguments.mid(1)) {
    const QString file = arguments[0] + "/" + edge + ".png";
    if (!save(ZephrimarkUI::applicationImage(edge.toInt()), file)) return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
