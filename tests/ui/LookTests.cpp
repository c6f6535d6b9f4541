#include "UiFixture.h"
#include "ZephrimarkUI/IconProvider.h"

#include <cmath>

#include <QtCore/QDir>
#include <QtGui/QGuiApplication>
#include <QtGui/QPalette>
#include <QtTest/QTest>

namespace {

const QStringList kIcons = {"sdcard",
                            "folder",
                            "externaldrive",
                            "externaldrive.fill",
                            "laptopcomputer",
                            "checkmark",
                            "checkmark.circle.fill",
                            "checkmark.seal.fill",
                            "circle",
                            "plus.circle",
                            "minus.circle",
                            "exclamationmark.triangle",
                            "exclamationmark.triangle.fill",
                            "exclamationmark.circle.fill",
                            "checkmark.shield",
                            "info.circle",
                            "arrow.down.doc",
                            "eject",
                            "chevron.down",
                            "menu",
                            "doc.text",
                            "arrow.clockwise",
                            "spinner",
                            "appicon"};

double luminance(const QColor& color) {
  const auto linear = [](double part) {
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
         0.0722 * linear(color.blueF());
}

double contrast(const QColor& one, const QColor& other) {
  const double first = luminance(one);
  const double second = luminance(other);
  return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
}

class Look : public UiTest {
 protected:
  void TearDown() override {
    QGuiApplication::setPalette(QPalette());
    UiTest::TearDown();
  }

  static void choose(const QColor& window, const QColor& highlight) {
    QPalette palette = QGuiApplication::palette();
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::Highlight, highlight);
    QGuiApplication::setPalette(palette);
    QCoreApplication::processEvents();
  }

  QColor brand(const QString& name) { return value("Brand." + name).value<QColor>(); }
};

}  // namespace

TEST_F(Look, iconsAreDrawnInTheColourAskedFor) {
  ZephrimarkUI::IconProvider icons;
  for (const QString& name : kIcons) {
    for (const int edge : {16, 45}) {
      QSize size;
      const QImage image = icons.requestImage(name + "/ff0000", &size, {edge, edge});
      ASSERT_EQ(image.size(), QSize(edge, edge)) << name.toStdString();
      EXPECT_EQ(size, image.size());
      int inked = 0;
      bool foreign = false;
      for (int i = 0; i < edge * edge; ++i) {
        const QColor pixel = image.pixelColor(i % edge, i / edge);
        if (pixel.alpha() < 64) continue;
        ++inked;
        foreign = foreign || pixel.green() > 8 || pixel.blue() > 8;
      }
      EXPECT_GT(inked, edge / 2) << name.toStdString();
      EXPECT_LT(inked, edge * edge) << name.toStdString() << " has no transparent pixel";
      EXPECT_EQ(foreign, name == "appicon") << name.toStdString();
    }
  }
  const QImage faint = icons.requestImage("externaldrive.fill/80ff0000", nullptr, {24, 24});
  EXPECT_NEAR(faint.pixelColor(12, 8).alpha(), 128, 2);
  EXPECT_EQ(icons.requestImage("checkmark/ff0000", nullptr, {}).size(), QSize(24, 24));
  for (const char* wrong :
       {"nothing/ff0000", "checkmark/reddish", "checkmark", "", "../Brand/ff0000"}) {
    EXPECT_TRUE(icons.requestImage(wrong, nullptr, {24, 24}).isNull()) << wrong;
  }
}

TEST_F(Look, textCanBeReadInTheDarkAndInTheLightWithAnyAccent) {
  for (const QColor window : {QColor(0x20, 0x20, 0x20), QColor(Qt::white)}) {
    for (const QColor accent : {QColor(0, 0, 128), QColor(255, 220, 0), QColor(Qt::red),
                                QColor(130, 255, 130), QColor(60, 0, 90)}) {
      choose(window, accent);
      ASSERT_EQ(value("Brand.dark").toBool(), window != QColor(Qt::white));
      for (const char* text :
           {"text", "secondaryText", "tertiaryText", "accent", "green", "orange", "red"}) {
        for (const char* background : {"window", "panel", "field"}) {
          EXPECT_GE(contrast(brand(text), brand(background)), 4.5)
              << text << " on " << background << ", accent " << accent.name().toStdString();
        }
      }
      const QColor selected = brand("mixed(Brand.panel, Brand.accent, 0.1)");
      EXPECT_GE(contrast(brand("text"), selected), 4.5);
      EXPECT_GE(contrast(brand("secondaryText"), selected), 4.5);
      EXPECT_GE(contrast(brand("accentInk"), brand("accentFill")), 4.5);
      EXPECT_GE(contrast(brand("accentInk"), brand("redFill")), 4.5);
      EXPECT_GE(contrast(brand("focusRing"), brand("window")), 3.0);
    }
  }
}

TEST_F(Look, followsTheDesktopWhileItRuns) {
  show();
  choose(Qt::white, QColor(0, 0, 128));
  EXPECT_EQ(window_->color(), brand("window"));
  EXPECT_GT(luminance(window_->color()), 0.8);
  EXPECT_EQ(brand("chosenAccent"), brand("offload")) << "Qt's own highlight is nobody's choice";
  EXPECT_EQ(brand("offload"), QColor::fromRgbF(0.17F, 0.42F, 0.86F));

  choose(QColor(0x22, 0x22, 0x24), QColor(200, 60, 160));
  EXPECT_LT(luminance(window_->color()), 0.05);
  EXPECT_EQ(brand("chosenAccent"), QColor(200, 60, 160));
  choose(QColor(0x22, 0x22, 0x24), QColor(120, 122, 120));
  EXPECT_EQ(brand("chosenAccent"), brand("offload"));
}

TEST_F(Look, gradientHasNoBands) {
  const auto made = make(
      "import QtQuick; import ZephrimarkUI; Window { width: 800; height: 64; visible: true;"
      "DitheredGradient { anchors.fill: parent; from: '#dde6f6'; to: '#f0f3f9' } }");
  auto* window = qobject_cast<QQuickWindow*>(made.get());
  ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
  const QImage image = window->grabWindow();
  for (int left = 0; left < 800; left += 8) {
    double red = 0;
    double ideal = 0;
    for (int i = 0; i < 64 * 8; ++i) {
      const int x = left + i % 8;
      const int y = i / 8;
      red += image.pixelColor(x, y).red() / 512.0;
      const double part = (x * 800.0 + y * 64.0) / (800.0 * 800.0 + 64.0 * 64.0);
      ideal += (0xdd + (0xf0 - 0xdd) * part) / 512.0;
    }
    EXPECT_NEAR(red, ideal, 0.1) << left;
  }
}

TEST_F(Look, runningNumbersKeepTheirWidth) {
  const auto width = [this](const QString& text) {
    return make("import ZephrimarkUI; Figures { text: '" + text + "' }")
        ->property("width")
        .toReal();
  };
  EXPECT_GT(width("8"), 4);
  EXPECT_DOUBLE_EQ(width("111.1 MB/s"), width("888.4 MB/s"));
  EXPECT_GT(width("1,111"), width("111"));
}
