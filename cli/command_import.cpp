// `import`: a ledger of transactions from a CSV file, entered all or nothing.
#include <CLI/CLI.hpp>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>

#include "commands.h"
#include "data/application.h"
#include "import_ledger.h"

namespace lotwise::cli {
namespace {

struct ImportOptions {
  std::string taxpayer;
  std::string file;
};

int RunImport(const Context& context, const ImportOptions& options) {
  std::ifstream csv(options.file, std::ios::binary);
  if (!csv) {
    std::cerr << options.file << ": cannot be opened\n";
    return 1;
  }
  Session session(context.location, context.global);
  return session.Run([&] {
    if (!session.Start()) return false;
    int stored = 0;
    const bool imported = ImportLedger(session, options.taxpayer, csv, options.file, &stored);
    if (imported) {
      std::cout << "imported " << stored << (stored == 1 ? " transaction" : " transactions")
                << " for " << session.app.current.client_code << '\n';
    }
    return imported;
  });
}

}  // namespace

void AddImportCommand(CLI::App& parser, Context& context, std::vector<Command>& commands) {
  auto options = std::make_shared<ImportOptions>();
  CLI::App* command = parser.add_subcommand(
      "import", "Enter the transactions of a CSV ledger; nothing is kept unless every line is");
  command->add_option("--taxpayer", options->taxpayer, "Taxpayer code")->required();
  command
      ->add_option("file", options->file,
                   "CSV file: a header row naming Portfolio, Symbol, Date, Action, Shares, "
                   "Amount, Fee, Ratio, Block, Method, Notes (Name and CUSIP optional)")
      ->required();
  commands.push_back({command, [&context, options] { return RunImport(context, *options); }});
}

}  // namespace lotwise::cli
