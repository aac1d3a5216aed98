#include <gtest/gtest.h>

#include <QDir>
#include <QImage>
#include <QPixmap>
#include <cstdlib>
#include <set>
#include <string>

#include "data/transaction_store.h"
#include "ui_main_window/main_window_fixture.h"

namespace lotwise::testing {
namespace {

Date D(const char* text) { return *Date::Parse(text); }

// How many different colours the image holds, counted up to `enough`.
size_t DistinctColours(const QImage& image, size_t enough) {
  std::set<QRgb> colours;
  for (int y = 0; y < image.height() && colours.size() < enough; ++y) {
    for (int x = 0; x < image.width(); ++x) colours.insert(image.pixel(x, y));
  }
  return colours.size();
}

// A picture of the window in every state, with a portfolio of three
// securities and IBM's history open in the last: each must show real
// content (a window that failed to paint is one or two flat colours). With
// LOTWISE_SCREENSHOT_DIR set the pictures are kept there as PNG files.
class ScreenshotTest : public MainWindowTest {
 protected:
  void SetUp() override {
    MainWindowTest::SetUp();
    ibm_ = AddSecurity("IBM", "Intl Business Machines", "459200101", "Inherited from J. Doe Sr.");
    SetSellMethod("IBM", 1);
    AddSecurity("MSFT", "Microsoft Corp", "594918104");
    AddSecurity("VTI", "Vanguard Total Stock Market ETF", "922908769");
    const int64_t first = Buy("01/15/2019", 100, 1214550);
    Buy("06/03/2020", 40, 486020);
    Buy("12/10/2021", 12.5, 147690, kTypeReinvest);
    EXPECT_TRUE(AddSplit(*app_, first, kTypeSplit, D("05/01/2021"), 1, 2, 100, "2 for 1"));
    EXPECT_TRUE(AddSell(*app_, first, D("03/14/2023"), Currency::FromCents(1603875),
                        Currency::FromCents(995), -125, "partial sale"));
  }

  int64_t Buy(const char* date, double shares, int64_t cost_cents, int16_t type = kTypeBuy) {
    std::string block_id;
    EXPECT_TRUE(AddBuy(*app_, ibm_, block_id, type, D(date), Currency::FromCents(cost_cents),
                       shares, Currency(), ""));
    return BlockNo(block_id);
  }
};

TEST_F(ScreenshotTest, Grab_EveryStateShowsContent) {
  const char* folder = std::getenv("LOTWISE_SCREENSHOT_DIR");
  if (folder != nullptr && *folder != '\0') QDir().mkpath(folder);
  struct Shot {
    int16_t state;
    const char* name;
  };
  for (const Shot& shot : {Shot{kClientClosed, "client-closed"}, Shot{kClientOpen, "client-open"},
                           Shot{kPortOpen, "portfolio-open"}, Shot{kSecOpen, "security-open"}}) {
    Enter(shot.state);
    QTest::qWait(20);
    const QImage image = window_->grab().toImage();
    ASSERT_FALSE(image.isNull()) << shot.name;
    EXPECT_GE(DistinctColours(image, 64), 16u) << shot.name;
    if (folder == nullptr || *folder == '\0') continue;
    const QString path = QString("%1/main-window-%2.png").arg(folder, shot.name);
    EXPECT_TRUE(image.save(path)) << path.toStdString();
    if (shot.state == kSecOpen) {
      EXPECT_TRUE(image.save(QString(folder) + "/main-window.png"));
    }
  }
}

}  // namespace
}  // namespace lotwise::testing
