#include "Updates/Version.h"

#include <vector>

#include <gtest/gtest.h>

namespace Updates::Testing {
namespace {

TEST(Version, OrdersNumbersAndPreReleases) {
  // Every version is before all that follow; those in one row are the same.
  const std::vector<std::vector<QString>> rows = {{"0-a"},
                                                  {"0", "0.0"},
                                                  {"0.9.9"},
                                                  {"1-1"},
                                                  {"1.0-alpha"},
                                                  {"1.0.0-alpha.1"},
                                                  {"1-beta"},
                                                  {"1-rc"},
                                                  {"1.0.0-rc2", "1-rc.2", "1-rc-02"},
                                                  {"1-rc10"},
                                                  {"1", "1.0", "01.0.0"},
                                                  {"1.9"},
                                                  {"1.10.0", "1.10"},
                                                  {"1.10.0.1"},
                                                  {"2.0-a"},
                                                  {"999999999.999999999.0.0.0.0.0.1"}};
  for (std::size_t row = 0; row < rows.size(); ++row) {
    for (std::size_t other = 0; other < rows.size(); ++other) {
      for (const QString& one : rows[row]) {
        for (const QString& two : rows[other]) {
          const auto left = Version::parse(one);
          const auto right = Version::parse(two);
          ASSERT_TRUE(left && right) << qPrintable(one + " " + two);
          EXPECT_EQ(left->isBefore(*right), row < other) << qPrintable(one + " " + two);
        }
      }
    }
  }
}

TEST(Version, RefusesWhatIsNoVersion) {
  for (const QString& text : {QString(),
                              QString("v1.0"),
                              QString("1."),
                              QString(".1"),
                              QString("1..2"),
                              QString("1.0 "),
                              QString("1.0\n"),
                              QString("-1"),
                              QString("1.0-"),
                              QString("1.0-."),
                              QString("1.0-ü"),
                              QString("1.0+5"),
                              QString("1,0"),
                              QString("1.x"),
                              QString("٣.١"),
                              QString("1.0-<b>"),
                              QString("1234567890"),
                              QString("1.1.1.1.1.1.1.1.1"),
                              "1-" + QString(41, 'a'),
                              QString(100000, '1')}) {
    EXPECT_FALSE(Version::parse(text)) << qPrintable(text.left(50));
  }
}

}  // namespace
}  // namespace Updates::Testing
