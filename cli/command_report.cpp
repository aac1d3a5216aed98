// `report ...`: the reports of the Reports menu, shown as plain text or
// saved as PDF, with their tables as JSON and the Schedule D export file.
#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "commands.h"
#include "data/application.h"
#include "data/database.h"
#include "data/security_rows.h"
#include "ground/lw_error.h"
#include "lots/sell_shares.h"
#include "report_output.h"
#include "reports/basis_report.h"
#include "reports/listings.h"
#include "reports/trans_list.h"

namespace lotwise::cli {
namespace {

namespace fs = std::filesystem;

// The exit code of a command line that cannot be run as given.
constexpr int kUsageError = 2;

// Where a report's documents and tables go besides the console.
struct OutputOptions {
  std::string pdf;
  std::string json;
};

// What a report covers and what must be opened for it.
struct ScopeOptions {
  std::string taxpayer;
  std::string portfolio;
  std::string security;
  std::string scope;  // empty: the narrowest that the names given allow
};

struct BasisOptions {
  BasisKind kind = BasisKind::kBasis;
  ScopeOptions where;
  std::string year_end;
  bool summary = false;
  bool exclude_empty = false;
  bool elections = false;
  bool with_schedule_d = false;
  std::string unsold_method;
  std::string csv;
  OutputOptions out;
};

struct TransListOptions {
  ScopeOptions where;
  std::string from;
  std::string to;
  OutputOptions out;
};

struct TaxpayerListOptions {
  std::string sort = "code";
  OutputOptions out;
};

struct SecurityListOptions {
  std::string taxpayer;
  std::string portfolio;
  std::string sort = "symbol";
  OutputOptions out;
};

std::string AbsolutePath(const std::string& path) {
  if (path.empty()) return path;
  std::error_code ec;
  fs::path absolute = fs::absolute(path, ec);
  return ec ? path : absolute.lexically_normal().string();
}

// The scope the options ask for; nullopt (after saying why) when they
// contradict each other.
std::optional<ReportScope> ResolveScope(const ScopeOptions& where) {
  if (where.scope.empty()) {
    if (!where.security.empty()) return ReportScope::kSecurity;
    if (!where.portfolio.empty()) return ReportScope::kPortfolio;
    return ReportScope::kTaxpayer;
  }
  if (where.scope == "security") {
    if (where.security.empty()) {
      std::cerr << "--scope security needs --security SYMBOL\n";
      return std::nullopt;
    }
    return ReportScope::kSecurity;
  }
  if (where.scope == "portfolio") {
    if (where.portfolio.empty()) {
      std::cerr << "--scope portfolio needs --portfolio NAME\n";
      return std::nullopt;
    }
    return ReportScope::kPortfolio;
  }
  return ReportScope::kTaxpayer;
}

// The one portfolio of the open taxpayer that holds `symbol`; empty (after
// saying why) when none or several do.
std::string OnlyPortfolioHolding(Session& session, const std::string& symbol) {
  std::vector<std::string> holders;
  try {
    for (const SecurityOnFile& holding : HoldingsOfSecurity(*session.app.client, symbol, "*")) {
      holders.push_back(holding.port_name);
    }
  } catch (const LwError& error) {
    std::cerr << "cannot look up the portfolios of " << symbol << ": " << error.text() << '\n';
    return {};
  }
  if (holders.size() == 1) return holders.front();
  if (holders.empty()) {
    std::cerr << "security " << symbol << " is in no portfolio of this taxpayer\n";
  } else {
    std::cerr << "security " << symbol << " is in " << holders.size()
              << " portfolios; name one with --portfolio\n";
  }
  return {};
}

// Opens the taxpayer, and the portfolio and security when named (a security
// named without its portfolio is looked up in the one portfolio holding it).
bool OpenScope(Session& session, const ScopeOptions& where) {
  if (!session.OpenTaxpayer(where.taxpayer)) return false;
  std::string portfolio = where.portfolio;
  if (portfolio.empty() && !where.security.empty()) {
    portfolio = OnlyPortfolioHolding(session, where.security);
    if (portfolio.empty()) return false;
  }
  if (!portfolio.empty() && !session.OpenPortfolio(portfolio)) return false;
  return where.security.empty() || session.OpenSecurity(where.security);
}

// Saves or prints what the run showed. Returns true iff every output asked
// for was written.
bool DeliverOutputs(Session& session, const OutputOptions& out,
                    const std::vector<std::string>& tables) {
  bool written = true;
  if (!out.json.empty()) written = WriteTablesJson(session, tables, out.json) && written;
  const std::vector<ReportDocument> documents = DocumentsSince(session, 0);
  if (!out.pdf.empty()) {
    written = WriteDocumentsPdf(documents, out.pdf) && written;
  } else {
    PrintDocuments(std::cout, documents);
  }
  return written;
}

int RunBasis(const Context& context, const BasisOptions& options) {
  const std::optional<ReportScope> scope = ResolveScope(options.where);
  if (!scope) return kUsageError;
  SellMethod unsold_method = SellMethod::kNotSelected;
  if (!options.unsold_method.empty()) unsold_method = SellMethodFromName(options.unsold_method);
  // An option the run would not act on is refused, never passed over.
  const bool schedule_d = options.kind != BasisKind::kBasis || options.with_schedule_d;
  for (const auto& [given, name] :
       {std::pair{!options.csv.empty(), "--csv"}, std::pair{options.elections, "--elections"}}) {
    if (given && !schedule_d) {
      std::cerr << name
                << " needs a Schedule D attachment: use report schedule-d or --with-schedule-d\n";
      return kUsageError;
    }
  }
  if (options.exclude_empty && options.kind == BasisKind::kScheduleD) {
    std::cerr << "--exclude-empty leaves securities out of the Basis Analysis only: use report "
                 "basis\n";
    return kUsageError;
  }

  Session session(context.location, context.global);
  return session.Run([&] {
    if (!session.Start() || !OpenScope(session, options.where)) return false;

    BasisReportRequest request;
    request.kind = options.kind == BasisKind::kBasis && options.with_schedule_d ? BasisKind::kBoth
                                                                                : options.kind;
    request.detail = !options.summary;
    request.scope = *scope;
    request.year_end = options.year_end;
    request.destination = ReportDestination::kScreen;
    request.exclude_empty = options.exclude_empty;
    request.elections = options.elections;
    const bool ran =
        RunBasisWithoutWindow(session, request, unsold_method, AbsolutePath(options.csv));
    // Nothing shown: nothing was computed. A report that failed still leaves
    // the others and the tables they were run from to deliver.
    if (!ran && DocumentsSince(session, 0).empty()) return false;
    const bool delivered = DeliverOutputs(session, options.out, kBasisTables);
    return ran && delivered;
  });
}

int RunTransList(const Context& context, const TransListOptions& options) {
  const std::optional<ReportScope> scope = ResolveScope(options.where);
  if (!scope) return kUsageError;
  Session session(context.location, context.global);
  return session.Run([&] {
    if (!session.Start() || !OpenScope(session, options.where)) return false;
    if (!RunTransListRpt(session.app, *scope, options.from, options.to,
                         ReportDestination::kScreen)) {
      return false;
    }
    return DeliverOutputs(session, options.out, kTransListTables);
  });
}

int RunTaxpayerList(const Context& context, const TaxpayerListOptions& options) {
  Session session(context.location, context.global);
  return session.Run([&] {
    if (!session.Start()) return false;
    const ClientSort sort = options.sort == "name" ? ClientSort::kName : ClientSort::kCode;
    if (!RunClientReport(session.app, ReportDestination::kScreen, sort)) {
      return false;
    }
    return DeliverOutputs(session, options.out, kTaxpayerListTables);
  });
}

int RunSecurityList(const Context& context, const SecurityListOptions& options) {
  Session session(context.location, context.global);
  return session.Run([&] {
    if (!session.Start() || !OpenScope(session, {options.taxpayer, options.portfolio, {}, {}})) {
      return false;
    }
    const int list_from = static_cast<int>(options.portfolio.empty() ? SecListFrom::kTaxpayer
                                                                     : SecListFrom::kPortfolio);
    const int sort_choice = options.sort == "portfolio" ? 1 : 0;
    if (!RunSecReport(session.app, ReportDestination::kScreen, list_from, sort_choice)) {
      return false;
    }
    return DeliverOutputs(session, options.out, kSecurityListTables);
  });
}

void AddOutputOptions(CLI::App* command, OutputOptions& out) {
  command->add_option("--pdf", out.pdf,
                      "Save every report the run showed into this PDF file instead of printing "
                      "its text");
  command->add_option("--json", out.json, "Save the report tables the run filled as JSON");
}

void AddScopeOptions(CLI::App* command, ScopeOptions& where) {
  command->add_option("--taxpayer", where.taxpayer, "Taxpayer code")->required();
  command->add_option("--portfolio", where.portfolio, "Portfolio name");
  command->add_option("--security", where.security, "Security symbol");
  command
      ->add_option("--scope", where.scope,
                   "What the report covers (default: the security if named, else the portfolio "
                   "if named, else the taxpayer)")
      ->check(CLI::IsMember({"taxpayer", "portfolio", "security"}, CLI::ignore_case));
}

void AddBasisCommand(CLI::App* report, Context& context, std::vector<Command>& commands,
                     const char* name, BasisKind kind, const char* description) {
  auto options = std::make_shared<BasisOptions>();
  options->kind = kind;
  CLI::App* command = report->add_subcommand(name, description);
  AddScopeOptions(command, options->where);
  command->add_option("--year-end", options->year_end, "Year end, mm/dd/yyyy")->required();
  command->add_flag("--summary", options->summary, "Summary instead of detail");
  command->add_flag("--exclude-empty", options->exclude_empty,
                    "Leave out of the Basis Analysis the securities with no shares owned at the "
                    "year end");
  command->add_flag("--elections", options->elections,
                    "Also run the Schedule D elections (with a Schedule D attachment)");
  if (kind == BasisKind::kBasis) {
    command->add_flag("--with-schedule-d", options->with_schedule_d,
                      "Also run the Schedule D attachment");
  }
  command
      ->add_option("--unsold-method", options->unsold_method,
                   "Sell method for securities that have none yet (default: leave them out)")
      ->check(CLI::IsMember({"FIFO", "Specific", "AvgSingle", "AvgDouble"}, CLI::ignore_case));
  command->add_option("--csv", options->csv, "Write the Schedule D export file here");
  AddOutputOptions(command, options->out);
  command->fallthrough();
  commands.push_back({command, [&context, options] { return RunBasis(context, *options); }});
}

}  // namespace

void AddReportCommands(CLI::App& parser, Context& context, std::vector<Command>& commands) {
  CLI::App* report = parser.add_subcommand("report", "Run a report");
  report->require_subcommand(1);

  AddBasisCommand(report, context, commands, "basis", BasisKind::kBasis, "Basis Analysis");
  AddBasisCommand(report, context, commands, "schedule-d", BasisKind::kScheduleD,
                  "Schedule D attachment");

  auto trans = std::make_shared<TransListOptions>();
  CLI::App* transactions = report->add_subcommand("transactions", "Transaction listing");
  AddScopeOptions(transactions, trans->where);
  transactions->add_option("--from", trans->from, "Beginning date, mm/dd/yyyy")->required();
  transactions->add_option("--to", trans->to, "Ending date, mm/dd/yyyy")->required();
  AddOutputOptions(transactions, trans->out);
  transactions->fallthrough();
  commands.push_back({transactions, [&context, trans] { return RunTransList(context, *trans); }});

  auto clients = std::make_shared<TaxpayerListOptions>();
  CLI::App* taxpayers = report->add_subcommand("taxpayers", "Taxpayer listing");
  taxpayers->add_option("--sort", clients->sort, "Order: code or name")
      ->capture_default_str()
      ->check(CLI::IsMember({"code", "name"}, CLI::ignore_case));
  AddOutputOptions(taxpayers, clients->out);
  taxpayers->fallthrough();
  commands.push_back(
      {taxpayers, [&context, clients] { return RunTaxpayerList(context, *clients); }});

  auto secs = std::make_shared<SecurityListOptions>();
  CLI::App* securities = report->add_subcommand("securities", "Security listing");
  securities->add_option("--taxpayer", secs->taxpayer, "Taxpayer code")->required();
  securities->add_option("--portfolio", secs->portfolio, "List only this portfolio's securities");
  securities->add_option("--sort", secs->sort, "Order: symbol or portfolio")
      ->capture_default_str()
      ->check(CLI::IsMember({"symbol", "portfolio"}, CLI::ignore_case));
  AddOutputOptions(securities, secs->out);
  securities->fallthrough();
  commands.push_back({securities, [&context, secs] { return RunSecurityList(context, *secs); }});
  report->fallthrough();
}

}  // namespace lotwise::cli
