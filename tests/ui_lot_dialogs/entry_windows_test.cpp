#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QStringList>
#include <ostream>

#include "lots/adjust_block.h"
#include "lots/buy_reinvest.h"
#include "lots/modify_trans.h"
#include "lots/rollback.h"
#include "lots/sell_method.h"
#include "lots/sell_shares.h"
#include "lots/split_dividend.h"
#include "ui_lot_dialogs/lot_window_fixture.h"

namespace lotwise::testing {
namespace {

using Strings = std::vector<std::string>;

void ShowSplit(Application& app) { lotwise::ShowSplit(app, "Stock Split"); }
void ShowDividend(Application& app) { lotwise::ShowSplit(app, "Stock Dividend"); }
void ShowMethod(Application& app) {
  int16_t option = 0;
  RetrieveSellMethod(app, kSellFifo, "", "", option);
}
// The command as the Sell row of the transaction list (its second) is chosen.
void ShowModifySell(Application& app) {
  app.window.display.selected_transaction = 1;
  ShowModifyTrans(app);
}

const char* const kBackupWarning =
    "When transactions are rolled back, they are removed from the file. Also, any blocks that "
    "have no transactions after a rollback will be removed from the file. For this reason, it is "
    "recommended that you backup your files before doing a rollback. By making a backup, you "
    "will be able to retrieve your original file if you rollback the wrong, or too many, "
    "transactions.";
const char* const kInvalidDate =
    " is not valid.  Please re-enter the date. If you are cancelling, click OK, and then click "
    "Cancel again.";

// A block of 100 shares bought 01/02/2024 for 1,000.00 and sold down by 40
// on 03/01/2024, sold by FIFO, open in the main window.
class EntryWindowTest : public LotWindowTest {
 protected:
  void Arrange(void (*show)(Application&)) {
    Buy("01/02/2024", 100, "1000");
    ASSERT_TRUE(AddSell(*app_, 1, D("03/01/2024"), Money("500"), Currency(), -40, ""));
    Open(kSellFifo);
    if (show == ShowRollBack) ui_.Expect(kBackupWarning, "Warning!", Answer::kOk);
  }
  // An empty date field has the focus when a window opens; filled, moving
  // on from it to `field` draws no date message.
  static void DateFirst(QDialog& dialog, std::string_view field) {
    auto* date = dialog.findChild<QLineEdit*>("dtDate");
    if (field != "dtDate" && date != nullptr && date->displayText() == "__/__/____") {
      Type(dialog, "dtDate", "03152024");
    }
  }
  static void Escape(QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); }
};

// Every window opens captioned by its mode with its controls under their
// own names, the security shown with a literal "&"; Cancel stores nothing.
struct CaptionCase {
  const char* name;
  void (*show)(Application&);
  const char* window;
  const char* caption;
  const char* controls;        // separated by blanks
  const char* security_label;  // the label showing the security, or null
};
void PrintTo(const CaptionCase& c, std::ostream* os) { *os << c.name; }

class CaptionTest : public EntryWindowTest, public ::testing::WithParamInterface<CaptionCase> {};

TEST_P(CaptionTest, Opens_WithCaptionAndControls) {
  const CaptionCase& c = GetParam();
  Arrange(c.show);
  OnWindow(c.window, [&](QDialog& dialog) {
    EXPECT_EQ(ui::FromQ(dialog.windowTitle()), c.caption);
    for (const QString& control : QString(c.controls).split(' ')) {
      Get<QWidget>(dialog, control.toUtf8().constData());
    }
    if (c.security_label != nullptr) {
      EXPECT_EQ(ui::FromQ(Get<QLabel>(dialog, c.security_label)->text()), "AT&T");
    }
    Click(dialog, "btnCancel");
  });
  c.show(*app_);
  EXPECT_TRUE(ui_.Done());
  EXPECT_EQ(BuyRows(), Strings{"01/02/2024-1|100|1000|0|"});
  EXPECT_EQ(SellRows(), Strings{"01/02/2024-1|-40|500|0"});
}

INSTANTIATE_TEST_SUITE_P(
    LotWindows, CaptionTest,
    ::testing::Values(
        CaptionCase{"Buy", ShowBuyShares, "dlgBuyReinvest", "Buy Shares",
                    "dtDate DblNumShares CurrCostOfShares CurrFee CurrTotalCost txtNotes "
                    "pnlSecurity btnOK btnNext",
                    "lblSecurity"},
        CaptionCase{"Reinvest", ShowReinvest, "dlgBuyReinvest", "Reinvestment", "btnNext",
                    "lblSecurity"},
        CaptionCase{"Sell", ShowSellShares, "dlgSellShares", "Sell Shares",
                    "dtDate DblNumShares CurrSalePrice CurrFee CurrTotalSale SScboSellMethod "
                    "btnSelect txtNotes btnOK",
                    "lblSecurity"},
        CaptionCase{"Method", ShowMethod, "dlgMethod", "Sell Method",
                    "fraMethod CSoptMethod_0 CSoptMethod_3 lblMessageLine chkOption1 btnOK",
                    nullptr},
        CaptionCase{"Split", ShowSplit, "dlgSplitDiv", "Stock Split",
                    "dtDate DblPreRatio DblPostRatio CSoptBlocks_0 CSoptBlocks_1 txtNotes "
                    "lblBlock lblExplanation btnOK",
                    "lblSecurity"},
        CaptionCase{"Dividend", ShowDividend, "dlgSplitDiv", "Stock Dividend", "CSoptBlocks",
                    "lblSecurity"},
        CaptionCase{"Adjust", ShowAdjustBlock, "dlgAdjustBlock", "Adjustment",
                    "dtDate DblNumShares CurrCostBasis txtNotes pnlBlock btnOK", "pnlSecurity"},
        CaptionCase{"ModifyBuy", ShowModifyTrans, "dlgModifyTrans", "Modify Buy",
                    "dtDate DblNumShares CurrCostOfShares CurrFee txtNotes pnlBlock lblBlock "
                    "lblUniqueID btnOK",
                    "lblSecurity"},
        CaptionCase{"ModifySell", ShowModifySell, "dlgModifyTrans", "Modify Sell", "CurrFee",
                    "lblSecurity"},
        CaptionCase{"Rollback", ShowRollBack, "dlgRollback", "Rollback",
                    "dtDate chkBuys chkReinvests chkSells chkSplits chkDividends chkAdjusts "
                    "CSoptBlocks_1 CSoptBlocks_2 lblBlock btnOK",
                    nullptr}),
    [](const auto& info) { return std::string(info.param.name); });

// Enter in a field moves the focus on, the help bar showing the next
// control's text, and never accepts: nothing is stored.
struct EnterCase {
  const char* name;
  void (*show)(Application&);
  const char* window;
  const char* field;
  const char* keys;
  const char* next;
  const char* next_help;
};
void PrintTo(const EnterCase& c, std::ostream* os) { *os << c.name; }

class EnterTest : public EntryWindowTest, public ::testing::WithParamInterface<EnterCase> {};

TEST_P(EnterTest, Enter_MovesFocusWithoutAccepting) {
  const EnterCase& c = GetParam();
  Arrange(c.show);
  OnWindow(c.window, [&](QDialog& dialog) {
    DateFirst(dialog, c.field);
    Type(dialog, c.field, c.keys);
    QTest::keyClick(Field(dialog, c.field), Qt::Key_Return);
    EXPECT_EQ(FocusName(), c.next);
    EXPECT_EQ(HelpBar(), c.next_help);
    EXPECT_TRUE(dialog.isVisible());
    Escape(dialog);
  });
  c.show(*app_);
  EXPECT_EQ(BuyRows().size() + SellRows().size(), 2u);
}

INSTANTIATE_TEST_SUITE_P(
    LotWindows, EnterTest,
    ::testing::Values(
        EnterCase{"BuyDate", ShowBuyShares, "dlgBuyReinvest", "dtDate", "03152024", "DblNumShares",
                  "Enter the Number of Shares added to this Security"},
        EnterCase{"BuyNotes", ShowBuyShares, "dlgBuyReinvest", "txtNotes", "DRIP", "btnOK",
                  "Click here to Enter this transaction"},
        EnterCase{"SellPrice", ShowSellShares, "dlgSellShares", "CurrSalePrice", "100", "CurrFee",
                  "Enter any Fees that were charged to make the Sale"},
        EnterCase{"DividendPre", ShowDividend, "dlgSplitDiv", "DblPreRatio", ".1", "DblPostRatio",
                  "Enter the second part of the Dividend ratio (1 if dividend is .1 per 1)"},
        EnterCase{"AdjustShares", ShowAdjustBlock, "dlgAdjustBlock", "DblNumShares", "-5",
                  "CurrCostBasis", "Enter the adjustment to the Cost Basis for this Block"},
        EnterCase{"ModifyNotes", ShowModifySell, "dlgModifyTrans", "txtNotes", "x", "btnOK",
                  "Click here to enter this modification"},
        EnterCase{"RollbackDate", ShowRollBack, "dlgRollback", "dtDate", "02012024", "chkBuys",
                  "Click here to Rollback Buys"}),
    [](const auto& info) { return std::string(info.param.name); });

// Leaving a field runs its check with its exact messages; a refused value
// is reset where the check resets it, and the focus goes back to the field
// where the check sends it.
struct LeaveCase {
  const char* name;
  void (*show)(Application&);
  const char* window;
  const char* field;
  const char* keys;
  std::string message;  // text "|" title, a second message after "||"
  const char* shown;
  const char* focus;
};
void PrintTo(const LeaveCase& c, std::ostream* os) { *os << c.name; }

class LeaveTest : public EntryWindowTest, public ::testing::WithParamInterface<LeaveCase> {};

TEST_P(LeaveTest, LeavingField_RunsItsCheck) {
  const LeaveCase& c = GetParam();
  Arrange(c.show);
  OnWindow(c.window, [&](QDialog& dialog) {
    DateFirst(dialog, c.field);
    for (const QString& message : QString::fromStdString(c.message).split("||")) {
      ui_.Expect(message.section('|', 0, 0).toStdString(), message.section('|', 1).toStdString());
    }
    TypeTab(dialog, c.field, c.keys);
    EXPECT_TRUE(ui_.Done()) << "a message was not shown";
    EXPECT_EQ(Shown(dialog, c.field), c.shown);
    EXPECT_EQ(FocusName(), c.focus);
    Escape(dialog);
  });
  c.show(*app_);
}

INSTANTIATE_TEST_SUITE_P(
    LotWindows, LeaveTest,
    ::testing::Values(
        LeaveCase{"BuyNegativeFee", ShowBuyShares, "dlgBuyReinvest", "CurrFee", "-5",
                  "The Fee can not be less than zero. Please re-enter the Fee|Warning", "0",
                  "CurrFee"},
        LeaveCase{"BuyZeroShares", ShowBuyShares, "dlgBuyReinvest", "DblNumShares", "0",
                  "The Number of Shares entered is zero. This is probably a mistake.|Warning!", "0",
                  "CurrCostOfShares"},
        LeaveCase{"BuyDoubtfulDate", ShowBuyShares, "dlgBuyReinvest", "dtDate", "01011905",
                  "The date, 01/01/1905, should not be earlier than " +
                      Date::FromSerial(4750).ToString() + "!|WARNING!",
                  "01/01/1905", "DblNumShares"},
        LeaveCase{"AdjustEmptyDate", ShowAdjustBlock, "dlgAdjustBlock", "dtDate", "",
                  std::string("Please enter a date.|WARNING||The date entered as __/__/____") +
                      kInvalidDate + "|Invalid Date",
                  "__/__/____", "dtDate"},
        LeaveCase{"SellNegativePrice", ShowSellShares, "dlgSellShares", "CurrSalePrice", "-10",
                  "The Sale Price can not be less than zero. Please re-enter the Sale "
                  "Price|Warning",
                  "0", "CurrFee"},
        LeaveCase{"SplitZeroPost", ShowSplit, "dlgSplitDiv", "DblPostRatio", "0",
                  "The second part of the Ratio is either negative or zero. Please re-enter the "
                  "second part of the ratio.|Please Re-enter",
                  "0", "DblPostRatio"},
        LeaveCase{"ModifySellPositiveShares", ShowModifySell, "dlgModifyTrans", "DblNumShares",
                  "100",
                  "The Number of Shares can not be greater than zero. Because this is a sale, the "
                  "shares sold should be listed as a negative amount. (if 100 shares were sold "
                  "then enter -100.) Please correct this.|Invalid Number of Shares",
                  "100", "DblNumShares"},
        LeaveCase{"RollbackInvalidDate", ShowRollBack, "dlgRollback", "dtDate", "13452024",
                  std::string("The date entered as 13/45/2024") + kInvalidDate + "|Invalid Date",
                  "13/45/2024", "dtDate"}),
    [](const auto& info) { return std::string(info.param.name); });

// Leaving a field for Cancel defers its check: cancelling draws no message
// about an entry being thrown away; moving on from Cancel runs it.
TEST_F(EntryWindowTest, LeavingForCancel_ChecksOnlyWhenNotCancelling) {
  OnWindow("dlgBuyReinvest", [&](QDialog& dialog) {
    Type(dialog, "dtDate", "03152024");
    Type(dialog, "CurrFee", "-5");
    auto* cancel = Get<QPushButton>(dialog, "btnCancel");
    cancel->setFocus(Qt::MouseFocusReason);
    ui_.Expect("The Fee can not be less than zero. Please re-enter the Fee", "Warning");
    QTest::keyClick(cancel, Qt::Key_Tab);
    EXPECT_EQ(Shown(dialog, "CurrFee"), "0");
    EXPECT_EQ(FocusName(), "CurrFee");
    Type(dialog, "dtDate", "");
    Click(dialog, "btnCancel");
  });
  ShowBuyShares(*app_);
}

// OK enters the buy through the core, a block of its own with the amounts
// as typed and the total shown as cost plus fee; Next stores and keeps the
// window open, cleared, for another.
TEST_F(EntryWindowTest, BuyOkAndNext_StoreBlocks) {
  OnWindow("dlgBuyReinvest", [&](QDialog& dialog) {
    TypeTab(dialog, "dtDate", "03152024");
    TypeTab(dialog, "DblNumShares", "12.5");
    TypeTab(dialog, "CurrCostOfShares", "1,250.25");
    TypeTab(dialog, "CurrFee", "4.75");
    EXPECT_EQ(Shown(dialog, "CurrTotalCost"), "1255");
    Type(dialog, "txtNotes", "DRIP");
    Click(dialog, "btnNext");
    EXPECT_EQ(Shown(dialog, "dtDate") + Shown(dialog, "DblNumShares") + Shown(dialog, "txtNotes"),
              "__/__/____0");
    EXPECT_EQ(FocusName(), "dtDate");
    TypeTab(dialog, "dtDate", "04012024");
    // "0," can start no number and is not taken; a half-typed "1,2" and an
    // amount beyond the range are refused, never read as 0 (nor as 12).
    Type(dialog, "DblNumShares", "0,5");
    EXPECT_EQ(Shown(dialog, "DblNumShares"), "05");
    ui_.Expect(
        "The Number of Shares entered as 1,2 is not a number. A \",\" may only separate "
        "groups of three digits before the decimal point, as in 1,234.50. Please re-enter "
        "the Number of Shares.",
        "Invalid Number");
    TypeTab(dialog, "DblNumShares", "1,2");
    EXPECT_EQ(FocusName(), "DblNumShares");
    TypeTab(dialog, "DblNumShares", "3");
    ui_.Expect(
        "The Cost of Shares entered as 99999999999999999999 is too large. An amount must "
        "be less than 922,337,203,685,477. Please re-enter the Cost of Shares.",
        "Invalid Number");
    TypeTab(dialog, "CurrCostOfShares", "99999999999999999999");
    EXPECT_EQ(FocusName(), "CurrCostOfShares");
    TypeTab(dialog, "CurrCostOfShares", "30");
    Click(dialog, "btnOK");
  });
  ShowBuyShares(*app_);
  EXPECT_EQ(BuyRows(), (Strings{"03/15/2024-1|12.5|1250.25|4.75|DRIP", "04/01/2024-1|3|30|0|"}));
  EXPECT_EQ(app_->client->IntegrityCheck(), "ok");
}

// A split typed in the window files a row under every block holding shares.
TEST_F(EntryWindowTest, SplitOk_AddsRowPerBlock) {
  Buy("01/02/2024", 100, "1000");
  Buy("03/01/2024", 50, "600");
  Open(kSellFifo);
  OnWindow("dlgSplitDiv", [&](QDialog& dialog) {
    EXPECT_EQ(ui::FromQ(Get<QLabel>(dialog, "lblExplanation")->text()),
              "For a 2 to 1 Stock Split, 'Ratio of Number of New Shares:' would be 2, and 'To "
              "Number of Old Shares:' would be 1.");
    EXPECT_TRUE(Get<QRadioButton>(dialog, "CSoptBlocks_1")->isChecked());
    TypeTab(dialog, "dtDate", "06012024");
    TypeTab(dialog, "DblPreRatio", "2");
    TypeTab(dialog, "DblPostRatio", "1");
    Click(dialog, "btnOK");
  });
  ShowSplit(*app_);
  EXPECT_EQ(Rows(R"(SELECT "Block No", "Type", "Pre Ratio", "Shares" FROM "Split")", "ttnn"),
            (Strings{"1|11|2|100", "2|11|2|50"}));
}

// An adjustment before the block's purchase is refused, the window staying
// open; corrected, it is filed under the block with its signs.
TEST_F(EntryWindowTest, AdjustOk_RefusesEarlyDateThenAdds) {
  Buy("01/02/2024", 100, "1000");
  Open(kSellFifo);
  OnWindow("dlgAdjustBlock", [&](QDialog& dialog) {
    TypeTab(dialog, "dtDate", "01012024");
    TypeTab(dialog, "DblNumShares", "-5");
    TypeTab(dialog, "CurrCostBasis", "-12.5");
    ui_.Expect(
        "You can't enter an Adjustment that is before the original purchase of this "
        "block of shares. Please correct the date, and make sure you are adding this to "
        "the correct block.",
        "Incorrect Date");
    Click(dialog, "btnOK");
    EXPECT_EQ(FocusName(), "dtDate");
    TypeTab(dialog, "dtDate", "01022024");
    Click(dialog, "btnOK");
  });
  ShowAdjustBlock(*app_);
  EXPECT_EQ(Rows(R"(SELECT "Block No", "Shares", "Cost" FROM "Adjust")", "tnm"),
            Strings{"1|-5|-12.5"});
}

// A modification rewrites the selected row with the values typed.
TEST_F(EntryWindowTest, ModifyBuyOk_RewritesRow) {
  Arrange(ShowModifyTrans);
  OnWindow("dlgModifyTrans", [&](QDialog& dialog) {
    EXPECT_EQ(Shown(dialog, "dtDate") + " " + Shown(dialog, "DblNumShares"), "01/02/2024 100");
    TypeTab(dialog, "DblNumShares", "120");
    TypeTab(dialog, "CurrCostOfShares", "1200");
    Type(dialog, "txtNotes", "corrected");
    Click(dialog, "btnOK");
  });
  ShowModifyTrans(*app_);
  EXPECT_EQ(BuyRows(), Strings{"01/02/2024-1|120|1200|0|corrected"});
}

// A roll-back of buys in all blocks removes the later purchase and so its
// block, which the list of removed blocks shows and prints.
TEST_F(EntryWindowTest, RollbackOk_ListsAndPrintsRemovedBlocks) {
  Buy("01/02/2024", 100, "1000");
  Buy("03/01/2024", 50, "600");
  Open(kSellFifo);
  ui_.Expect(kBackupWarning, "Warning!", Answer::kOk);
  OnWindow("dlgRollback", [&](QDialog& dialog) {
    TypeTab(dialog, "dtDate", "02012024");
    Click(dialog, "chkBuys");
    Click(dialog, "CSoptBlocks_1");
    ui_.Expect(
        "You are about to Rollback transactions in all blocks in this security! Are you "
        "sure you want to do this?",
        "Are you sure?", Answer::kYes);
    OnWindow("dlgRemBlocks", [&](QDialog& list_window) {
      EXPECT_EQ(ui::FromQ(Get<QLabel>(list_window, "lblNote")->text()),
                "These blocks were removed becuase all transactions were removed from them");
      auto* list = Get<QListWidget>(list_window, "SSdgRemBlocks");
      ASSERT_EQ(list->count(), 1);
      EXPECT_EQ(ui::FromQ(list->item(0)->text()), "03/01/2024-1");
      Click(list_window, "btnPrint");
      Click(list_window, "btnClose");
    });
    Click(dialog, "btnOK");
  });
  ShowRollBack(*app_);
  EXPECT_EQ(Rows(R"(SELECT "Block ID" FROM "Blocks")", "t"), Strings{"01/02/2024-1"});
  EXPECT_EQ(ui_.printed(),
            (Strings{"Listing of Blocks that have been removed", "Taxpayer Name: John Doe",
                     "Portfolio:     Growth", "Security:      T", "Blocks:  03/01/2024-1"}));
  EXPECT_EQ(app_->client->IntegrityCheck(), "ok");
}

// The method dialog chooses by P, F, S and D typed anywhere in it, in
// either case; OK returns the method chosen.
TEST_F(EntryWindowTest, MethodKeys_ChooseMethod) {
  OnWindow("dlgMethod", [&](QDialog& dialog) {
    EXPECT_TRUE(Get<QRadioButton>(dialog, "CSoptMethod_1")->isChecked());
    EXPECT_FALSE(Get<QWidget>(dialog, "chkOption1")->isVisibleTo(&dialog));
    for (const char* key_option : {"d3", "P0", "s2", "F1", "x1", "D3"}) {
      QTest::keyClick(QApplication::focusWidget(), key_option[0]);
      const std::string option = std::string("CSoptMethod_") + key_option[1];
      EXPECT_TRUE(Get<QRadioButton>(dialog, option.c_str())->isChecked()) << key_option;
    }
    Click(dialog, "btnOK");
  });
  int16_t option = 0;
  EXPECT_EQ(RetrieveSellMethod(*app_, kSellFifo, "", "", option), kSellAvgDouble);
}

}  // namespace
}  // namespace lotwise::testing
