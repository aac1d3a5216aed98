#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ground/date.h"

namespace lotwise {

class Database;

// The Taxpayer File's own Client row and its portfolios.
struct ClientOnFile {
  std::string name;
  std::string sort_name;
  std::string code;
  std::string second_line;
  std::optional<Date> year_end;
};

// The Client row with that code (compared without regard to case).
std::optional<ClientOnFile> FindClient(Database& client, std::string_view code);
// The name and code of the file's first Client row: what tells whose file
// it is, readable before the file is brought up to the current version.
std::optional<ClientOnFile> ReadClientNameAndCode(Database& client);
// The second line and year end of the file's first Client row.
std::optional<ClientOnFile> ReadClientHeading(Database& client);

struct PortfolioOnFile {
  std::string name;
  std::string second_line;
};

// The portfolio of that name.
std::optional<PortfolioOnFile> FindPortfolio(Database& client, std::string_view name);
// Every portfolio, by name.
std::vector<PortfolioOnFile> ListPortfolios(Database& client);
// The rows of the Open / Delete Portfolio list, in the order its own query
// gives.
std::vector<PortfolioOnFile> ReadPortfolioPickList(Database& client);

}  // namespace lotwise
