#include <gtest/gtest.h>

#include <QDir>
#include <QImage>
#include <QPixmap>
#include <cstdlib>
#include <set>

#include "data/transaction_store.h"
#include "support/values.h"
#include "ui_main_window/main_window_fixture.h"

namespace lotwise::testing {
namespace {

// A picture of the window in every state, with a portfolio of three
// securities and IBM's history open in the last: each must show real
// content (a window that failed to paint is one or two flat colours). With
// LOTWISE_SCREENSHOT_DIR set the pictures are kept there as PNG files.
TEST_F(MainWindowTest, Screenshot_EveryStateShowsContent) {
  ibm_ = AddSecurity("IBM", "Intl Business Machines", "459200101", "Inherited from J. Doe Sr.");
  SellMethod("IBM", 1);
  AddSecurity("MSFT", "Microsoft Corp", "594918104");
  AddSecurity("VTI", "Vanguard Total Stock Market ETF", "922908769");
  const int64_t first = Scenario::Buy(ibm_, "01/15/2019", 100, "12145.50");
  Scenario::Buy(ibm_, "06/03/2020", 40, "4860.20");
  Scenario::Buy(ibm_, "12/10/2021", 12.5, "1476.90", "0", kTypeReinvest);
  EXPECT_TRUE(AddSplit(*app_, first, kTypeSplit, D("05/01/2021"), 1, 2, 100, "2 for 1"));
  EXPECT_TRUE(AddSell(*app_, first, D("03/14/2023"), Money("16038.75"), Money("9.95"), -125, ""));

  const char* folder = std::getenv("LOTWISE_SCREENSHOT_DIR");
  const bool keep = folder != nullptr && *folder != '\0';
  if (keep) QDir().mkpath(folder);
  for (const auto& [state, name] :
       {std::pair{kClientClosed, "client-closed"}, std::pair{kClientOpen, "client-open"},
        std::pair{kPortOpen, "portfolio-open"}, std::pair{kSecOpen, "security-open"}}) {
    Enter(state);
    QTest::qWait(20);
    const QImage image = window_->grab().toImage();
    std::set<QRgb> colours;
    for (int y = 0; y < image.height() && colours.size() < 16; ++y) {
      for (int x = 0; x < image.width(); ++x) colours.insert(image.pixel(x, y));
    }
    EXPECT_GE(colours.size(), 16u) << name;
    if (!keep) continue;
    EXPECT_TRUE(image.save(QString("%1/main-window-%2.png").arg(folder, name)));
    if (state == kSecOpen) {
      EXPECT_TRUE(image.save(QString(folder) + "/main-window.png"));
    }
  }
}

}  // namespace
}  // namespace lotwise::testing
