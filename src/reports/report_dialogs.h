#pragma once

#include <string>
#include <string_view>

#include "ground/date.h"
#include "ground/ui_port.h"

namespace lotwise {

class Application;

// The Basis Analysis and Schedule D option dialog dlgBasisOptions. Its
// caption is its mode: "Basis Analysis Options" or "Schedule D Options".
struct BasisOptionsForm : DialogForm {
  static constexpr const char* kBasisCaption = "Basis Analysis Options";
  static constexpr const char* kSchedDCaption = "Schedule D Options";
  static constexpr const char* kYearEndLabel = "Enter the Year End date for this Taxpayer:";
  static constexpr const char* kScopeLabel = "Report On:";
  static constexpr const char* kReportTypeLabel = "Report Type:";
  static constexpr const char* kIncludeSchedDCaption = "include Schedule D Attachment";
  static constexpr const char* kExcludeEmptyCaption =
      "Exclude securities if no shares owned at Year End date. ";
  static constexpr const char* kElectionsCaption = "include Schedule D Elections";
  // CSoptReportType.
  static constexpr int kDetail = 0;
  static constexpr int kSummary = 1;

  std::string year_end = kEmptyDateText;  // dtYearEnd, as typed
  int scope = 0;                          // CSoptScope: taxpayer, portfolio, security
  int report_type = kDetail;              // CSoptReportType
  bool include_sched_d = false;           // chkSchedD (Basis Analysis only)
  bool exclude_empty = false;             // chkRemove0Sec (Basis Analysis only)
  bool elections = false;                 // chkElections (Schedule D only)

  std::string_view Name() const override { return "dlgBasisOptions"; }
};

// The transaction listing's option dialog dlgTransListOptions.
struct TransListOptionsForm : DialogForm {
  static constexpr const char* kCaption = "Transaction Listing Options";

  int scope = 0;                            // CSoptScope: taxpayer, portfolio, security
  std::string begin_date = kEmptyDateText;  // dtBeginDate, as typed
  std::string end_date = kEmptyDateText;    // dtEndDate, as typed

  std::string_view Name() const override { return "dlgTransListOptions"; }
};

// "Taxpayer Listing Options": dlgClientListOptions.
struct ClientListOptionsForm : DialogForm {
  static constexpr const char* kCaption = "Taxpayer Listing Options";

  int sort_by = 1;  // CSoptSortBy: 0 "Taxpayer &Code", 1 "Taxpayer &Name"

  std::string_view Name() const override { return "dlgClientListOptions"; }
};

// "Security Listing Options": dlgSecListOptions.
struct SecListOptionsForm : DialogForm {
  static constexpr const char* kCaption = "Security Listing Options";

  int list_from = 0;  // CSOptListFrom: 0 "this &Taxpayer", 1 "this &Portfolio"
  int sort_by = 0;    // CSoptSortBy: 0 "Security &Symbol", 1 "P&ortfolio"

  std::string_view Name() const override { return "dlgSecListOptions"; }
};

// The about box dlgAbout.
struct AboutForm : DialogForm {
  // caption: "About Lotwise"
  std::string program_name;    // lblProgram
  std::string version;         // lblVersion
  std::string usage;           // lblUsage: how many times the program was started
  std::string ssf_folder;      // lblSsfFolder: where the Security Symbols File lives
  std::string client_folder;   // lblClientFolder: where the Taxpayer Files live
  std::string program_folder;  // lblProgramFolder

  std::string_view Name() const override { return "dlgAbout"; }
};

// The Reports menu: each fills its dialog from the report preferences (and
// the taxpayer's year end where none is stored) and shows it. The dialogs
// that report on the open taxpayer show nothing while none is open.
void ShowTaxpayerListingDialog(Application& app);
void ShowSecListingDialog(Application& app);
void ShowTransListingDialog(Application& app);
void ShowBasisAnalysisDialog(Application& app);
void ShowScheduleDDialog(Application& app);
// Help > About: the program's name and version, the usage count and the
// data folders.
void ShowAbout(Application& app);

// The dialogs as they open, without showing them.
BasisOptionsForm LoadBasisOptions(Application& app, const std::string& caption);
TransListOptionsForm LoadTransListOptions(Application& app);
ClientListOptionsForm LoadClientListOptions(Application& app);
SecListOptionsForm LoadSecListOptions(Application& app);
AboutForm LoadAbout(Application& app);

// View (screen) and Print: store the dialog's choices as the report
// preferences, then run the report. The dialog closes when the report ran
// (or the program is ending); otherwise it stays open as the user left it,
// the focus on the field to correct where there is one.
void BasisOptions_View(Application& app, BasisOptionsForm& form);
void BasisOptions_Print(Application& app, BasisOptionsForm& form);
void TransListOptions_View(Application& app, TransListOptionsForm& form);
void TransListOptions_Print(Application& app, TransListOptionsForm& form);
void ClientListOptions_View(Application& app, ClientListOptionsForm& form);
void ClientListOptions_Print(Application& app, ClientListOptionsForm& form);
void SecListOptions_View(Application& app, SecListOptionsForm& form);
void SecListOptions_Print(Application& app, SecListOptionsForm& form);
// Cancel: closes the dialog; the preferences stay as they were.
void ReportOptions_Cancel(Application& app, BasisOptionsForm& form);
void ReportOptions_Cancel(Application& app, TransListOptionsForm& form);
void ReportOptions_Cancel(Application& app, ClientListOptionsForm& form);
void ReportOptions_Cancel(Application& app, SecListOptionsForm& form);
void About_OK(Application& app, AboutForm& form);

// The help-bar texts of the dialogs' controls; empty for a control without
// one.
std::string HelpText(const BasisOptionsForm& form, std::string_view control);
std::string HelpText(const TransListOptionsForm& form, std::string_view control);
std::string HelpText(const ClientListOptionsForm& form, std::string_view control);
std::string HelpText(const SecListOptionsForm& form, std::string_view control);

// Help > Contents: the manual's first page. Help on Help: its page on
// finding one's way around the manual. Both tell the user when the manual
// is not where the program expects it.
void ShowHelpContents(Application& app);
void ShowHelpOnHelp(Application& app);
// The manual's page on using the help window, beside its contents page.
inline constexpr const char* kHelpOnHelpPage = "using_help.html";

}  // namespace lotwise
