#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QTableView>

#include "lots/sell_shares.h"
#include "support/golden.h"
#include "ui_lot_dialogs/lot_window_fixture.h"

namespace lotwise::testing {
namespace {

// Blocks of 100 shares bought 01/02/2024 and 03/01/2024, open in the main
// window under the sell method of each test.
class SaleWindowTest : public LotWindowTest {
 protected:
  void Arrange(lotwise::SellMethod method) {
    Buy("01/02/2024", 100, "1000");
    Buy("03/01/2024", 100, "1200");
    Open(method);
  }
  // A grid's rows as "block shares", and the totals panels, as shown.
  static std::string Selection(QDialog& dialog) {
    std::string shown;
    for (const char* name : {"SSdgSharesLeft", "SSdgSharesSold"}) {
      const QAbstractItemModel* model = Get<QTableView>(dialog, name)->model();
      for (int row = 0; row < model->rowCount(); ++row) {
        shown += ui::FromQ(model->index(row, 0).data().toString() + " " +
                           model->index(row, 1).data().toString() + ", ");
      }
      shown += "| ";
    }
    return shown + ui::FromQ(Get<QLabel>(dialog, "pnlSharesLeft")->text() + " / " +
                             Get<QLabel>(dialog, "pnlSharesSold")->text());
  }
};

// A FIFO sale typed in the window is written as one Sell row per block,
// oldest first, the price and fee apportioned to the cent.
TEST_F(SaleWindowTest, FifoSaleOk_AddsSellRows) {
  Arrange(SellMethod::kFifo);
  OnWindow("dlgSellShares", [&](QDialog& dialog) {
    EXPECT_EQ(ui::FromQ(Get<QComboBox>(dialog, "SScboSellMethod")->currentText()), "FIFO");
    EXPECT_FALSE(Get<QPushButton>(dialog, "btnSelect")->isEnabled());
    TypeTab(dialog, "dtDate", "06032024");
    TypeTab(dialog, "DblNumShares", "150");
    TypeTab(dialog, "CurrSalePrice", "1000");
    TypeTab(dialog, "CurrFee", "10");
    EXPECT_EQ(Shown(dialog, "CurrTotalSale"), "990");
    Click(dialog, "btnOK");
  });
  ShowSellShares(*app_);
  EXPECT_EQ(SellRows(), (Strings{"01/02/2024-1|-100|666.67|6.67", "03/01/2024-1|-50|333.33|3.33"}));
  EXPECT_EQ(app_->client->IntegrityCheck(), "ok");
}

// Under specific identification a click on the shares field opens the
// selection; Enter on a block's row adds from it, asking for the number
// (the minus key refused, more than the block holds refused, Enter moving
// on to OK); the lists and totals follow, and OK puts the selected total
// into the sale, which takes its shares from that block.
TEST_F(SaleWindowTest, SpecificSale_SelectsFromChosenBlock) {
  Arrange(SellMethod::kSpecificId);
  OnWindow("dlgSellShares", [&](QDialog& dialog) {
    EXPECT_TRUE(Get<QPushButton>(dialog, "btnSelect")->isEnabled());
    EXPECT_TRUE(Get(dialog, "DblNumShares")->isReadOnly());
    TypeTab(dialog, "dtDate", "06032024");
    Click(dialog, "DblNumShares");
    EXPECT_EQ(Shown(dialog, "DblNumShares"), "30");
    TypeTab(dialog, "CurrSalePrice", "450");
    Click(dialog, "btnOK");
  });
  OnWindow("dlgSellSpecific", [&](QDialog& dialog) {
    EXPECT_EQ(Selection(dialog), "01/02/2024-1 100, 03/01/2024-1 100, | | 200 / 0");
    auto* left = Get<QTableView>(dialog, "SSdgSharesLeft");
    QTest::mouseClick(left->viewport(), Qt::LeftButton, {},
                      left->visualRect(left->model()->index(1, 0)).center());
    QTest::keyClick(left, Qt::Key_Return);  // as Add
    EXPECT_EQ(Selection(dialog),
              "01/02/2024-1 100, 03/01/2024-1 70, | 03/01/2024-1 30, | 170 / 30");
    Click(dialog, "btnOK");
  });
  OnWindow("dlgNumShares", [&](QDialog& dialog) {
    EXPECT_EQ(ui::FromQ(dialog.windowTitle() + " " + Get<QLabel>(dialog, "lblNote")->text()),
              "Add Shares Enter the number of shares you want to Add\n(0 - 100)");
    EXPECT_EQ(Shown(dialog, "DblNumShares"), "100");
    Type(dialog, "DblNumShares", "-101");
    EXPECT_EQ(Shown(dialog, "DblNumShares"), "101");
    ExpectSaid(ui_, __FILE__, "too many shares");
    Click(dialog, "btnOK");
    Type(dialog, "DblNumShares", "30");
    QTest::keyClick(Get(dialog, "DblNumShares"), Qt::Key_Return);
    EXPECT_EQ(FocusName(), "btnOK");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
  });
  ShowSellShares(*app_);
  EXPECT_EQ(SellRows(), Strings{"03/01/2024-1|-30|450|0"});
}

// Changing the drop-down away from the method in force asks first: No puts
// the old method back; Yes announces and keeps the new one, and the window
// switches between typed shares and the selection accordingly.
TEST_F(SaleWindowTest, DropDownChange_AsksBeforeChanging) {
  Arrange(SellMethod::kFifo);
  for (const Answer answer : {Answer::kNo, Answer::kYes}) {
    const bool yes = answer == Answer::kYes;
    OnWindow("dlgSellShares", [&](QDialog& dialog) {
      // Tabbing through to the drop-down: each check on the way passes.
      TypeTab(dialog, "dtDate", "06032024");
      TypeTab(dialog, "DblNumShares", "10");
      TypeTab(dialog, "CurrSalePrice", "100");
      TypeTab(dialog, "CurrFee", "0");
      ASSERT_EQ(FocusName(), "SScboSellMethod");
      ExpectSaid(ui_, __FILE__, "method change", answer);
      if (yes) ExpectSaid(ui_, __FILE__, "method changed");
      QTest::keyClick(QApplication::focusWidget(), Qt::Key_Up);
      EXPECT_EQ(ui::FromQ(Get<QComboBox>(dialog, "SScboSellMethod")->currentText()),
                yes ? "Specific Identification" : "FIFO");
      EXPECT_EQ(Get<QPushButton>(dialog, "btnSelect")->isEnabled(), yes);
      EXPECT_EQ(FocusName(), yes ? "btnSelect" : "DblNumShares");
      QTest::keyClick(&dialog, Qt::Key_Escape);
    });
    ShowSellShares(*app_);
    EXPECT_EQ(app_->window.display.sell_method, yes ? SellMethod::kSpecificId : SellMethod::kFifo);
  }
}

}  // namespace
}  // namespace lotwise::testing
