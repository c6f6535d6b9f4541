// Every stage of the work in the window: its words, and that they fit.

#include "WindowFixture.h"
#include "tests/translations/InLanguage.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <map>

#include <QtCore/QRegularExpression>
#include <QtGui/QAccessible>
#include <QtTest/QTest>

namespace {

namespace Demo = ZephrimarkOffload::Demo;

class WindowTexts : public WindowTest {
 protected:
  /// What of an item can be seen, in the window.
  static QRectF seen(const QQuickItem* item) {
    QRectF area(item->mapToScene({0, 0}), item->size());
    for (const QQuickItem* outer = item->parentItem(); outer; outer = outer->parentItem()) {
      if (outer->clip()) area &= QRectF(outer->mapToScene({0, 0}), outer->size());
    }
    return area;
  }

  [[nodiscard]] std::vector<QQuickItem*> textItems() const {
    std::vector<QQuickItem*> found = items();
    found.erase(std::remove_if(found.begin(), found.end(),
                               [](const QQuickItem* item) {
                                 return !item->inherits("QQuickText") ||
                                        item->property("text").toString().isEmpty() ||
                                        seen(item).isEmpty();
                               }),
                found.end());
    return found;
  }

  /// What a visible text suffers from where the window is too small for it.
  [[nodiscard]] QStringList misfits() const {
    constexpr int kElideNone = 3;
    constexpr double kLeastOfElided = 20;
    const QRectF whole(QPointF(), QSizeF(demo_->window().size()));
    QStringList found;
    for (const QQuickItem* item : textItems()) {
      const QString text = item->property("text").toString();
      const bool isElided = item->property("elide").toInt() != kElideNone;
      if (!whole.contains(seen(item))) found << text + " leaves the window";
      // Only upwards and downwards can be scrolled.
      if (seen(item).width() < item->width() - 0.5) found << text + " is cut off at its side";
      if (isElided && item->width() < kLeastOfElided) found << text + " is squeezed away";
      if (isElided) continue;
      if (item->property("contentWidth").toReal() > item->width() + 0.5 ||
          item->property("contentHeight").toReal() > item->height() + 0.5) {
        found << text + " is cut off";
      }
    }
    return found;
  }

  void expectFit(const std::string& scene) const {
    const bool isPlain = Demo::sceneNamed(scene)->dialog.empty();
    const auto faults = [&] { return misfits() + (isPlain ? overlaps() : QStringList()); };
    // Layouts within layouts take a few rounds.
    EXPECT_TRUE(QTest::qWaitFor([&] { return faults().isEmpty(); }))
        << faults().join(u'\n').toStdString();
  }

  [[nodiscard]] QStringList overlaps() const {
    QStringList found;
    const auto items = textItems();
    for (std::size_t i = 0; i < items.size(); ++i) {
      for (std::size_t j = i + 1; j < items.size(); ++j) {
        const QRectF both = seen(items[i]) & seen(items[j]);
        if (both.width() < 1 || both.height() < 1) continue;
        found << items[i]->property("text").toString() + " lies on " +
                     items[j]->property("text").toString();
      }
    }
    return found;
  }
};

const std::map<std::string, QStringList> kTexts = {
    {"setup-empty",
     {"Insert a card, or choose a folder to offload.", "Up to 3 drives, written at the same time",
      "Connect the drives you want to copy to.", "Choose a card to offload.",
      "Every copy is read back from the drive and compared with the card. Checksums are saved in "
      "each folder as an ASC MHL file.",
      "Available when offloading a whole card."}},
    {"setup-ready",
     {"A001", "64.21 GB used of 128 GB", "1204 files · 64.21 GB · Canon", "Shuttle 1",
      "Top level of the drive", "1.62 TB free", "Add Archive", "Files go into", "2026-10-07/A001",
      "on each drive", "128 GB on Backup", "64.21 GB to 2 drives",
      "Ready. Check the folder name, then press Start Offload."}},
    {"setup-blocked", {"Archive doesn't have room for this card.", "20 GB free"}},
    {"setup-custom", {"Folder", "Harbour Film/2026-10-07_Canon/A001", "Project"}},
    {"setup-long-names", {"64.21 GB to 2 drives"}},
    {"running",
     {"Offloading A001", "37%", "459 of 1204", "About 3 min 41 s", "So far",
      "Found 1204 files, 64.21 GB", "459 verified", "Backup: The copy didn't match the original",
      "Keep the card and drives connected until the offload is verified."}},
    {"stop-question", {"Stop the offload?", "Keep Going"}},
    {"done",
     {"Offload verified", "1,204 · 64.21 GB", "1204 of 1204 verified", "XXH64, card read twice",
      "Every file from A001 was copied and read back identical on both drives.", "Show in Files"}},
    {"done-failed",
     {"Some files weren't verified", "1159 of 1204 verified · stopped: The drive was disconnected",
      "Not verified everywhere", "…and 15 more, listed in the report.", "Try Again"}},
    {"done-unreadable",
     {"Some of the card couldn't be read", "Could not be read from the card",
      "CLIPS/A021: Input/output error"}},
    {"done-image",
     {"Card image",
      "128 GB verified · 3 unreadable blocks saved as zeros · open it in Zephrimark "
      "Kestrine to look for deleted files"}},
    {"failed",
     {"The offload couldn't start", "Backup (A001) needs 64.31 GB free but has 51.2 GB.", "Back"}},
    {"about", {"OK", "Qt 6", "LGPL-3.0-only", "CLI11", "BSD-3-Clause", "Inter", "OFL-1.1"}}};

}  // namespace

TEST_F(WindowTexts, everySceneSaysWhatItIsAbout) {
  for (const std::string& scene : Demo::sceneNames()) {
    open(scene);
    ASSERT_EQ(kTexts.count(scene), 1U) << scene;
    for (const QString& text : kTexts.at(scene)) {
      EXPECT_TRUE(shows(text)) << scene << " lacks " << text.toStdString() << ":\n"
                               << texts().join(u'\n').toStdString();
    }
  }
}

TEST_F(WindowTexts, fitIntoTheSmallestWindow) {
  constexpr QSize kSmallest{720, 600};
  for (const std::string& scene : Demo::sceneNames()) {
    SCOPED_TRACE(scene);
    open(scene, {1, 1});
    EXPECT_EQ(window().size(), kSmallest);
    EXPECT_EQ(window().minimumSize(), kSmallest);
    ASSERT_TRUE(shows(kTexts.at(scene).front()));
    expectFit(scene);
  }
}

TEST_F(WindowTexts, areInTheUsersLanguageAndFitInItToo) {
  const InLanguage german("de");
  for (const std::string& scene : Demo::sceneNames()) {
    for (const QSize size : {QSize(720, 600), QSize(820, 840)}) {
      SCOPED_TRACE(scene);
      open(scene, size);
      ASSERT_TRUE(shows("Kopieren und prüfen"));
      for (const QString& text : texts()) {
        EXPECT_FALSE(text.contains(QRegularExpression("\\b(the|is|to|of|files|drives?)\\b")) &&
                     scene != "setup-long-names")
            << text.toStdString();
      }
      expectFit(scene);
    }
  }
}

TEST_F(WindowTexts, assistiveTechnologyHearsTheSame) {
  struct Heard {
    const char* scene;
    QAccessible::Role role;
    const char* name;
    const char* description;
  };
  const std::vector<Heard> all = {
      {"setup-ready", QAccessible::Heading, "Copy to",
       "Complete. Up to 3 drives, written at the same time"},
      {"setup-ready", QAccessible::ListItem, "Shuttle 1", "Top level of the drive, 1.62 TB free"},
      {"setup-ready", QAccessible::ComboBox, "Checksum, XXH64", ""},
      {"setup-ready", QAccessible::Button, "Start Offload", ""},
      {"running", QAccessible::Heading, "Offloading A001", ""},
      {"running", QAccessible::ProgressBar, "Progress", "37 percent"},
      {"running", QAccessible::StaticText, "About 3 min 41 s", ""},
      {"running", QAccessible::ListItem, "Shuttle 1: /media/kim/Shuttle 1", "459 verified"},
      {"done", QAccessible::Heading, "Offload verified", ""},
      {"done", QAccessible::ListItem, "Backup", "1204 of 1204 verified"}};
  for (const Heard& heard : all) {
    open(heard.scene);
    const auto isHeard = [&] {
      const auto shown = items();
      return std::any_of(shown.begin(), shown.end(), [&](QQuickItem* item) {
        QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(item);
        return accessible != nullptr && accessible->role() == heard.role &&
               accessible->text(QAccessible::Name) == heard.name &&
               accessible->text(QAccessible::Description) == heard.description;
      });
    };
    EXPECT_TRUE(QTest::qWaitFor(isHeard)) << heard.scene << ": " << heard.name;
  }
}

TEST_F(WindowTexts, aBurstOfReportsEndsWithTheLatest) {
  auto scene = Demo::sceneNamed("running").value();
  scene.script = [](const Demo::ScriptedRun& run) -> OffloadKit::OffloadResult {
    for (std::size_t i = 1; i <= 1000; ++i) {
      OffloadKit::OffloadProgress progress;
      progress.phase = OffloadKit::OffloadProgress::Phase::copying;
      progress.filesDone = i;
      progress.filesTotal = 1000;
      progress.fraction = static_cast<double>(i) / 1000;
      progress.drives = {{i, 0, {}}, {i - 1, 1, OffloadKit::Reason::ofDrive(ENOSPC)}};
      run.report(progress);
    }
    run.wait(std::chrono::hours(1));
    return {};
  };
  open(scene);
  for (const char* text : {"1000 of 1000", "100%", "1000 verified"})
    EXPECT_TRUE(shows(text)) << text;
}

TEST_F(WindowTexts, growingNumbersMoveNothing) {
  auto scene = Demo::sceneNamed("running").value();
  std::atomic<bool> grown = false;
  scene.script = [&grown](const Demo::ScriptedRun& run) -> OffloadKit::OffloadResult {
    OffloadKit::OffloadProgress progress;
    progress.filesTotal = 123'456;
    progress.drives.resize(2);
    while (true) {
      progress.filesDone = grown ? 123'455 : 1;
      progress.fraction = grown ? 0.999 : 0.03;
      progress.bytesPerSecond = grown ? 2'888'800'000 : 1'000;
      for (auto& drive : progress.drives) drive.verified = progress.filesDone;
      run.report(progress);
      run.wait(std::chrono::milliseconds(20));
    }
  };
  open(scene);
  const auto places = [this] {
    window().grabWindow();  // lays everything out
    std::map<QString, QPointF> found;
    for (const QQuickItem* item : textItems()) {
      const QString text = item->property("text").toString();
      const bool isPartOfFigures = item->parentItem()->inherits("QQuickRow");
      const bool isNumber = text.contains(QRegularExpression("\\d"));
      if (!isPartOfFigures && !isNumber) found[text] = seen(item).topLeft();
    }
    return found;
  };
  ASSERT_TRUE(shows("1 of 123456"));
  const auto before = places();
  EXPECT_EQ(before.count("Speed"), 1U);
  grown = true;
  ASSERT_TRUE(shows("123455 of 123456"));
  for (const auto& [text, place] : places()) {
    if (before.count(text) == 0) continue;
    EXPECT_EQ(place, before.at(text)) << text.toStdString();
  }
  demo_.reset();  // the script uses `grown`
}
