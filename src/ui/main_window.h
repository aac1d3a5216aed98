#pragma once

#include <QMainWindow>
#include <QSize>
#include <functional>
#include <map>
#include <string>
#include <string_view>

class QAction;
class QButtonGroup;
class QFrame;
class QLabel;
class QLineEdit;
class QMenu;
class QProgressBar;
class QPushButton;
class QTableView;
class QTimer;
class QToolBar;

namespace lotwise {

class Application;

namespace ui {

class BlocksModel;
class SecListModel;
class TransactionsModel;

// The program's main window. It holds no state of its own: every menu item,
// tool-bar key and panel button runs its command through the core
// (RunMenuCommand), and afterwards the window mirrors the core's
// Application::window (what is enabled and shown, check marks, caption
// panels, the security list and the security panel).
class MainWindow : public QMainWindow {
  Q_OBJECT

 public:
  // The smallest size at which the lists and the security panel can be
  // laid out; a smaller window is put back to its last good size.
  static constexpr QSize kMinimumSize{640, 420};
  static constexpr const char* kTooSmallText =
      "Lotwise can not be sized that small. It will be re-sized to it's previous size.";
  static constexpr const char* kTooSmallTitle = "Invalid Size";

  explicit MainWindow(Application& app, QWidget* parent = nullptr);
  ~MainWindow() override;

  // Shows the core's window state in the widgets.
  void Refresh();
  // Runs the command of the control `name` ("mnuFileOpenClient", "NewPort",
  // "btnSell") and shows its outcome. Returns false when the core refused
  // it (not available in the current state) or another command is running.
  bool RunCommand(std::string_view name);

  // The help bar and its gauge (the UI port's).
  void SetHelpBarText(const QString& text);
  void ShowGauge(int percent);
  void HideGauge();

  // Takes the window's present size as its last good size.
  void RecordGoodSize();
  QSize last_good_size() const { return last_good_size_; }

 protected:
  void closeEvent(QCloseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void BuildMenus();
  void BuildToolBar(QWidget* parent);
  QWidget* BuildSecurityPanel(QWidget* parent);
  // The parts of the security panel, built into sec_display_.
  QLayout* BuildSecurityFields();
  QLayout* BuildBlocksColumn();
  QLayout* BuildTransactionsColumn();
  QLayout* BuildTotalShares();
  QWidget* BuildPanelButtons();
  QWidget* BuildHelpBar(QWidget* parent);
  void AddHelp(QWidget* control, const char* text);
  void ConnectGrids();
  void RefreshSecurityPanel();
  // A procedure of the core run from a widget, then mirrored.
  template <typename Procedure>
  void RunCore(Procedure procedure);
  // Runs `body`; when it ends the program, shuts the program down here:
  // the exception must not reach Qt.
  void EndsHere(const std::function<void()>& body);
  void StoreSecurityField(QLineEdit* field);
  void RestoreGoodSize();

  Application& app_;
  std::map<std::string, QMenu*, std::less<>> menus_;
  // Menu items by name and tool-bar buttons by key.
  std::map<std::string, QAction*, std::less<>> actions_;
  std::map<std::string, QPushButton*, std::less<>> panel_buttons_;

  QFrame* tool_bar_panel_ = nullptr;
  QToolBar* tool_bar_ = nullptr;
  QFrame* help_bar_row_ = nullptr;
  QLabel* help_bar_ = nullptr;
  QFrame* gauge_panel_ = nullptr;
  QProgressBar* gauge_ = nullptr;
  QLabel* client_panel_ = nullptr;
  QLabel* portfolio_panel_ = nullptr;
  QLabel* clock_ = nullptr;

  QTableView* sec_list_ = nullptr;
  QFrame* sec_display_ = nullptr;
  QLineEdit* sec_name_ = nullptr;
  QLineEdit* sec_cusip_ = nullptr;
  QLineEdit* second_line_ = nullptr;
  QLabel* sell_method_ = nullptr;
  QTableView* blocks_ = nullptr;
  QTableView* transactions_ = nullptr;
  QLabel* transactions_caption_ = nullptr;
  QLabel* display_trans_ = nullptr;
  QFrame* trans_filter_ = nullptr;
  QButtonGroup* trans_filter_group_ = nullptr;
  QLabel* total_shares_ = nullptr;

  SecListModel* sec_list_model_ = nullptr;
  BlocksModel* blocks_model_ = nullptr;
  TransactionsModel* transactions_model_ = nullptr;

  // True while a command runs; a second one waits for it to end.
  bool command_running_ = false;
  // Set once a command has ended the program: the window closes.
  bool program_ended_ = false;
  // True while Refresh writes into the widgets: the signals that raises are
  // the mirror's own, not the user's.
  bool mirroring_ = false;
  // While a command holds a dialog open, mirrors what it has stored so far
  // (each "Next" of an entry dialog adds a block behind the dialog).
  QTimer* command_refresh_ = nullptr;
  QSize last_good_size_;
  bool size_check_pending_ = false;
};

}  // namespace ui
}  // namespace lotwise
