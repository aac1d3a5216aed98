// `taxpayer new`, `portfolio new`, `security add`: the program's dialogs for
// creating them, filled from the command line.
#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "app/taxpayer_dialog.h"
#include "commands.h"
#include "data/application.h"
#include "ground/date.h"
#include "import_forms.h"

namespace lotwise::cli {
namespace {

struct TaxpayerOptions {
  std::string code;
  std::string name;
  std::string sort_name;
  std::string second_line;
  std::string year_end;
};

struct PortfolioOptions {
  std::string taxpayer;
  std::string name;
  std::string second_line;
};

struct SecurityOptions {
  std::string taxpayer;
  std::string portfolio;
  SecurityFields fields;
};

int RunNewTaxpayer(const Context& context, const TaxpayerOptions& options) {
  // The dialog's date field takes only a date; what it cannot read it
  // would quietly replace, which a typed option must not be.
  if (!options.year_end.empty() && !Date::Parse(options.year_end)) {
    std::cerr << "--year-end " << options.year_end << " is not a date (mm/dd/yyyy)\n";
    return 1;
  }
  Session session(context.location, context.global);
  return session.Run([&] {
    if (!session.Start()) return false;
    Application& app = session.app;
    bool created = false;
    {
      DialogPlay play(session.ui, [&](DialogForm& dialog) {
        auto* form = dynamic_cast<NewModClientForm*>(&dialog);
        if (form == nullptr) return false;
        form->client_name = options.name;
        form->sort_name = options.sort_name;
        form->client_code = options.code;
        form->opt_line = options.second_line;
        form->year_end = options.year_end;
        PressOkNewModClient(app, *form);
        created = form->accepted;
        if (!form->closed) NewModClient_Cancel(app, *form);
        return true;
      });
      ShowNewClient(app);
    }
    if (created) {
      std::cout << "created taxpayer " << app.current.client_code << ": " << app.current.client_name
                << " (sort name " << app.current.sort_name << ", year end " << app.current.year_end
                << ")\n";
    }
    return created;
  });
}

int RunNewPortfolio(const Context& context, const PortfolioOptions& options) {
  Session session(context.location, context.global);
  return session.Run([&] {
    if (!session.Start() || !session.OpenTaxpayer(options.taxpayer)) return false;
    const bool created = NewPortfolio(session, options.name, options.second_line);
    if (created) {
      std::cout << "created portfolio " << session.app.current.port_name << " for "
                << session.app.current.client_code << '\n';
    }
    return created;
  });
}

int RunAddSecurity(const Context& context, const SecurityOptions& options) {
  Session session(context.location, context.global);
  return session.Run([&] {
    if (!session.Start() || !session.OpenTaxpayer(options.taxpayer)) return false;
    Application& app = session.app;
    std::optional<std::string> port = FindPortfolio(app, options.portfolio);
    if (!port) {
      std::cerr << "taxpayer " << app.current.client_code << " has no portfolio "
                << options.portfolio << '\n';
      return false;
    }
    if (!session.OpenPortfolio(*port)) return false;
    const bool added = AddSecurity(session, options.fields);
    if (added) {
      const SecurityDisplay& display = app.window.display;
      std::cout << "added " << app.current.sec_symbol << " to portfolio " << app.current.port_name
                << " of " << app.current.client_code << " ("
                << (display.sec_name.empty() ? "no name" : display.sec_name) << ", CUSIP "
                << display.sec_cusip << ")\n";
    }
    return added;
  });
}

}  // namespace

void AddEntityCommands(CLI::App& parser, Context& context, std::vector<Command>& commands) {
  CLI::App* taxpayer = parser.add_subcommand("taxpayer", "Taxpayers");
  taxpayer->require_subcommand(1);
  auto tax = std::make_shared<TaxpayerOptions>();
  CLI::App* new_taxpayer =
      taxpayer->add_subcommand("new", "Create a taxpayer and its Taxpayer File");
  new_taxpayer->add_option("--code", tax->code, "Taxpayer code")->required();
  new_taxpayer->add_option("--name", tax->name, "Taxpayer name")->required();
  new_taxpayer->add_option("--sort-name", tax->sort_name,
                           "Sort name (default: last word first, \"Public, John Q\")");
  new_taxpayer->add_option("--second-line", tax->second_line, "Optional second line");
  new_taxpayer->add_option("--year-end", tax->year_end, "Tax year end, mm/dd/yyyy");
  // The global options may follow the subcommand's name here too.
  new_taxpayer->fallthrough();
  commands.push_back({new_taxpayer, [&context, tax] { return RunNewTaxpayer(context, *tax); }});

  CLI::App* portfolio = parser.add_subcommand("portfolio", "Portfolios");
  portfolio->require_subcommand(1);
  auto port = std::make_shared<PortfolioOptions>();
  CLI::App* new_portfolio = portfolio->add_subcommand("new", "Create a portfolio of a taxpayer");
  new_portfolio->add_option("--taxpayer", port->taxpayer, "Taxpayer code")->required();
  new_portfolio->add_option("--name", port->name, "Portfolio name")->required();
  new_portfolio->add_option("--second-line", port->second_line, "Optional second line");
  new_portfolio->fallthrough();
  commands.push_back({new_portfolio, [&context, port] { return RunNewPortfolio(context, *port); }});

  CLI::App* security = parser.add_subcommand("security", "Securities");
  security->require_subcommand(1);
  auto sec = std::make_shared<SecurityOptions>();
  CLI::App* add_security = security->add_subcommand("add", "Add a security to a portfolio");
  add_security->add_option("--taxpayer", sec->taxpayer, "Taxpayer code")->required();
  add_security->add_option("--portfolio", sec->portfolio, "Portfolio name")->required();
  add_security->add_option("--symbol", sec->fields.symbol, "Security symbol")->required();
  add_security->add_option("--name", sec->fields.name,
                           "Security name (default: from the Security Symbols File)");
  add_security->add_option("--cusip", sec->fields.cusip,
                           "CUSIP (default: from the Security Symbols File)");
  add_security->add_option("--second-line", sec->fields.second_line, "Optional second line");
  add_security->fallthrough();
  commands.push_back({add_security, [&context, sec] { return RunAddSecurity(context, *sec); }});
}

}  // namespace lotwise::cli
