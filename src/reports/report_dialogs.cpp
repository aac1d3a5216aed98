#include "reports/report_dialogs.h"

#include <algorithm>
#include <optional>

#include "data/application.h"
#include "data/central_file.h"
#include "data/error_handler.h"
#include "data/schema.h"
#include "ground/date.h"
#include "ground/paths.h"
#include "reports/basis_report.h"
#include "reports/listings.h"
#include "reports/trans_list.h"

namespace lotwise {

namespace {

std::string Trimmed(std::string_view text) {
  const size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(' ') - first + 1));
}

std::optional<Date> ParseField(std::string_view text) { return Date::Parse(Trimmed(text)); }

// A stored date opens the field; else the fallback (the taxpayer's year
// end) when there is one; else the empty mask.
std::string DateFieldFromPref(const std::string& pref, const std::string& fallback = {}) {
  if (auto date = ParseField(pref)) return date->ToString();
  if (auto date = ParseField(fallback)) return date->ToString();
  return kEmptyDateText;
}

// The INI keeps what was typed, with the mask's place holders as blanks so
// that an empty field reads as the INI's own empty date.
std::string PrefFromDateField(const std::string& field) {
  if (auto date = ParseField(field)) return date->ToString();
  if (std::none_of(field.begin(), field.end(), [](char c) { return c >= '0' && c <= '9'; })) {
    return kEmptyDateMask;
  }
  std::string pref = field;
  std::replace(pref.begin(), pref.end(), '_', ' ');
  return pref;
}

// An INI edited by hand may hold any number; an unknown choice opens as
// the dialog's default.
int Choice(int value, int count, int fallback) {
  return value >= 0 && value < count ? value : fallback;
}

ReportDestination Destination(bool print) {
  return print ? ReportDestination::kPrinter : ReportDestination::kScreen;
}

void RunBasisOptions(Application& app, BasisOptionsForm& form, bool print) {
  TrapVoid(app, "BasisOptions_OK", [&] {
    const bool sched_d = form.caption == BasisOptionsForm::kSchedDCaption;
    if (!sched_d && form.caption != BasisOptionsForm::kBasisCaption) {
      app.ui().MessageBox("dlgBasisOptions has incorrect caption!", "Error", Icon::kCritical,
                          Buttons::kOk);
      return;
    }
    BasisReportRequest request;
    request.year_end = form.year_end;
    request.scope = static_cast<ReportScope>(Choice(form.scope, 3, 0));
    request.detail = form.report_type == BasisOptionsForm::kDetail;
    request.destination = Destination(print);
    if (sched_d) {
      app.prefs.sch_d_fye = PrefFromDateField(form.year_end);
      request.kind = BasisKind::kScheduleD;
      request.elections = form.elections;
    } else {
      app.prefs.basis_ye = PrefFromDateField(form.year_end);
      app.prefs.remove_0_sec = form.exclude_empty;
      app.prefs.add_sch_d_rpt = form.include_sched_d;
      request.kind = form.include_sched_d ? BasisKind::kBoth : BasisKind::kBasis;
      request.exclude_empty = form.exclude_empty;
    }
    if (RunBasisSchedDReport(app, request)) {
      form.closed = true;
    } else if (!ParseField(form.year_end)) {
      form.focus = "dtYearEnd";
    }
  });
}

void RunTransListOptions(Application& app, TransListOptionsForm& form, bool print) {
  TrapVoid(app, "TransListOptions_OK", [&] {
    app.prefs.xact_scope = form.scope;
    app.prefs.xact_start = PrefFromDateField(form.begin_date);
    app.prefs.xact_end = PrefFromDateField(form.end_date);
    if (RunTransListRpt(app, static_cast<ReportScope>(Choice(form.scope, 3, 0)), form.begin_date,
                        form.end_date, Destination(print))) {
      form.closed = true;
      return;
    }
    const auto begin = ParseField(form.begin_date);
    const auto end = ParseField(form.end_date);
    if (!begin) {
      form.focus = "dtBeginDate";
    } else if (!end || *begin >= *end) {
      form.focus = "dtEndDate";
    }
  });
}

void RunClientListOptions(Application& app, ClientListOptionsForm& form, bool print) {
  TrapVoid(app, "ClientListOptions_OK", [&] {
    form.sort_by = Choice(form.sort_by, 2, 1);
    app.prefs.client_order = form.sort_by;
    if (RunClientReport(app, Destination(print), static_cast<ClientSort>(form.sort_by))) {
      form.closed = true;
    }
  });
}

void RunSecListOptions(Application& app, SecListOptionsForm& form, bool print) {
  TrapVoid(app, "SecListOptions_OK", [&] {
    form.sort_by = Choice(form.sort_by, 2, 0);
    app.prefs.sec_order = form.sort_by;
    if (RunSecReport(app, Destination(print), form.list_from, form.sort_by)) {
      form.closed = true;
    }
  });
}

// The folder part of a path, with its separator.
std::string FolderOf(const std::string& path) {
  const size_t cut = path.find_last_of("\\/");
  return cut == std::string::npos ? std::string() : path.substr(0, cut + 1);
}

void ShowHelpPage(Application& app, std::string_view location, const std::string& path) {
  TrapVoid(app, location, [&] {
    if (!FileExists(path)) {
      app.ui().MessageBox(
          "The help file " + path + " could not be found. Please reinstall Lotwise to restore it.",
          "Help Not Found", Icon::kExclamation, Buttons::kOk);
      return;
    }
    app.ui().ShowHelp(path, "");
  });
}

const char* const kViewHelp = "Click here to view the report on the screen";
const char* const kPrintHelp = "Click here to print the report";
const char* const kCancelHelp = "Click here to close this window without running the report";

// The buttons every option dialog shares.
std::string ButtonHelpText(std::string_view control) {
  if (control == "btnView") return kViewHelp;
  if (control == "btnPrint") return kPrintHelp;
  if (control == "btnCancel") return kCancelHelp;
  return {};
}

std::string ScopeHelpText(std::string_view what) {
  return "Select whether the " + std::string(what) +
         " covers the whole Taxpayer, the open Portfolio or the open Security";
}

}  // namespace

BasisOptionsForm LoadBasisOptions(Application& app, const std::string& caption) {
  BasisOptionsForm form;
  form.caption = caption;
  const bool sched_d = caption == BasisOptionsForm::kSchedDCaption;
  form.year_end =
      DateFieldFromPref(sched_d ? app.prefs.sch_d_fye : app.prefs.basis_ye, app.current.year_end);
  if (!sched_d) {
    form.include_sched_d = app.prefs.add_sch_d_rpt;
    form.exclude_empty = app.prefs.remove_0_sec;
  }
  form.focus = "dtYearEnd";
  return form;
}

TransListOptionsForm LoadTransListOptions(Application& app) {
  TransListOptionsForm form;
  form.scope = Choice(app.prefs.xact_scope, 3, 0);
  // With nothing stored the listing covers every date the program knows.
  form.begin_date = DateFieldFromPref(app.prefs.xact_start, Date::Min().ToString());
  form.end_date = DateFieldFromPref(app.prefs.xact_end, Date::Max().ToString());
  form.focus = "dtBeginDate";
  return form;
}

ClientListOptionsForm LoadClientListOptions(Application& app) {
  ClientListOptionsForm form;
  form.sort_by = Choice(app.prefs.client_order, 2, 1);
  form.focus = "CSoptSortBy";
  return form;
}

SecListOptionsForm LoadSecListOptions(Application& app) {
  SecListOptionsForm form;
  form.sort_by = Choice(app.prefs.sec_order, 2, 0);
  form.focus = "CSOptListFrom";
  return form;
}

AboutForm LoadAbout(Application& app) {
  AboutForm form;
  form.caption = "About Lotwise";
  form.program_name = "Lotwise";
  form.version = std::string("Version ") + kCurrentDataVersion;
  const int32_t usage = app.central ? GetUsageCount(app) : 0;
  form.usage = "Usage Count: " + std::to_string(usage);
  form.ssf_folder = app.ssf_folder;
  form.client_folder = app.taxpayer_folder;
  form.program_folder = WithTrailingSeparator(app.program_folder);
  return form;
}

void ShowTaxpayerListingDialog(Application& app) {
  TrapVoid(app, "ShowTaxpayerListingDialog", [&] {
    ClientListOptionsForm form = LoadClientListOptions(app);
    app.ui().RunModal(form);
  });
}

void ShowSecListingDialog(Application& app) {
  TrapVoid(app, "ShowSecListingDialog", [&] {
    if (!app.client) return;
    SecListOptionsForm form = LoadSecListOptions(app);
    app.ui().RunModal(form);
  });
}

void ShowTransListingDialog(Application& app) {
  TrapVoid(app, "ShowTransListingDialog", [&] {
    if (!app.client) return;
    TransListOptionsForm form = LoadTransListOptions(app);
    app.ui().RunModal(form);
  });
}

void ShowBasisAnalysisDialog(Application& app) {
  TrapVoid(app, "ShowBasisAnalysisDialog", [&] {
    if (!app.client) return;
    BasisOptionsForm form = LoadBasisOptions(app, BasisOptionsForm::kBasisCaption);
    app.ui().RunModal(form);
  });
}

void ShowScheduleDDialog(Application& app) {
  TrapVoid(app, "ShowScheduleDDialog", [&] {
    if (!app.client) return;
    BasisOptionsForm form = LoadBasisOptions(app, BasisOptionsForm::kSchedDCaption);
    app.ui().RunModal(form);
  });
}

void ShowAbout(Application& app) {
  TrapVoid(app, "ShowAbout", [&] {
    AboutForm form = LoadAbout(app);
    app.ui().RunModal(form);
  });
}

void BasisOptions_View(Application& app, BasisOptionsForm& form) {
  RunBasisOptions(app, form, false);
}
void BasisOptions_Print(Application& app, BasisOptionsForm& form) {
  RunBasisOptions(app, form, true);
}
void TransListOptions_View(Application& app, TransListOptionsForm& form) {
  RunTransListOptions(app, form, false);
}
void TransListOptions_Print(Application& app, TransListOptionsForm& form) {
  RunTransListOptions(app, form, true);
}
void ClientListOptions_View(Application& app, ClientListOptionsForm& form) {
  RunClientListOptions(app, form, false);
}
void ClientListOptions_Print(Application& app, ClientListOptionsForm& form) {
  RunClientListOptions(app, form, true);
}
void SecListOptions_View(Application& app, SecListOptionsForm& form) {
  RunSecListOptions(app, form, false);
}
void SecListOptions_Print(Application& app, SecListOptionsForm& form) {
  RunSecListOptions(app, form, true);
}

void ReportOptions_Cancel(Application&, BasisOptionsForm& form) { form.closed = true; }
void ReportOptions_Cancel(Application&, TransListOptionsForm& form) { form.closed = true; }
void ReportOptions_Cancel(Application&, ClientListOptionsForm& form) { form.closed = true; }
void ReportOptions_Cancel(Application&, SecListOptionsForm& form) { form.closed = true; }
void About_OK(Application&, AboutForm& form) { form.closed = true; }

std::string HelpText(const BasisOptionsForm& form, std::string_view control) {
  const bool sched_d = form.caption == BasisOptionsForm::kSchedDCaption;
  const char* report = sched_d ? "Schedule D Attachment" : "Basis Analysis";
  if (control == "dtYearEnd") {
    return "Enter the last day of the tax year to report on (mm/dd/yyyy)";
  }
  if (control == "CSoptScope") return ScopeHelpText(report);
  if (control == "CSoptReportType") {
    return sched_d ? "Select Detailed to list every sale, or Summary for the totals"
                   : "Select Detailed to show every block and transaction, or Summary for one "
                     "line per security";
  }
  if (control == "chkSchedD") {
    return "Check here to produce the Schedule D Attachment together with the Basis Analysis";
  }
  if (control == "chkRemove0Sec") {
    return "Check here to leave out securities that have no shares at the Year End date";
  }
  if (control == "chkElections") {
    return "Check here to print the Schedule D Elections before the Schedule D Attachment";
  }
  return ButtonHelpText(control);
}

std::string HelpText(const TransListOptionsForm&, std::string_view control) {
  if (control == "CSoptScope") return ScopeHelpText("Transaction Listing");
  if (control == "dtBeginDate") {
    return "Enter the first date of the transactions to list (mm/dd/yyyy)";
  }
  if (control == "dtEndDate") return "Enter the last date of the transactions to list (mm/dd/yyyy)";
  return ButtonHelpText(control);
}

std::string HelpText(const ClientListOptionsForm&, std::string_view control) {
  if (control == "CSoptSortBy") {
    return "Select whether the Taxpayers are listed by their code or by their name";
  }
  return ButtonHelpText(control);
}

std::string HelpText(const SecListOptionsForm&, std::string_view control) {
  if (control == "CSOptListFrom") {
    return "Select whether to list the Securities of the whole Taxpayer or of the open Portfolio";
  }
  if (control == "CSoptSortBy") {
    return "Select whether the Securities are listed by symbol or by portfolio";
  }
  return ButtonHelpText(control);
}

void ShowHelpContents(Application& app) { ShowHelpPage(app, "ShowHelpContents", app.help_path); }

void ShowHelpOnHelp(Application& app) {
  ShowHelpPage(app, "ShowHelpOnHelp", FolderOf(app.help_path) + kHelpOnHelpPage);
}

}  // namespace lotwise
