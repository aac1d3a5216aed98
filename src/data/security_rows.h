#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ground/sell_method_codes.h"

namespace lotwise {

class Database;

// A security as a portfolio of the Taxpayer File holds it, with the sell
// method kept for its symbol (nothing when none is).
struct SecurityOnFile {
  std::string port_name;
  std::string symbol;
  std::optional<std::string> second_line;
  int64_t sec_id = 0;
  std::optional<SellMethod> sell_method;
};

// The portfolio's security of that symbol.
std::optional<SecurityOnFile> FindSecurity(Database& client, std::string_view port_name,
                                           std::string_view symbol);
// Every security of every portfolio, by symbol, then portfolio.
std::vector<SecurityOnFile> AllSecurities(Database& client);
// The portfolio's securities, by symbol.
std::vector<SecurityOnFile> SecuritiesInPort(Database& client, std::string_view port_name);
// As SecuritiesInPort, without the sell methods: the rows of the security
// list.
std::vector<SecurityOnFile> SecurityListOfPort(Database& client, std::string_view port_name);

// The distinct symbols of the file with their sell methods, by symbol:
// only `symbol_filter`'s unless it is "*".
std::vector<SecurityOnFile> DistinctSecurities(Database& client, std::string_view symbol_filter);
// The portfolios holding `symbol` (only `port_filter` unless it is "*"), by
// name, with the security's id in each.
std::vector<SecurityOnFile> HoldingsOfSecurity(Database& client, std::string_view symbol,
                                               std::string_view port_filter);
// True iff `symbol` has a sale in a portfolio of the filter ("*": any).
bool SecuritySoldIn(Database& client, std::string_view symbol, std::string_view port_filter);
// The blocks of the securities in a portfolio and symbol filter ("*": all).
int64_t CountBlocksInScope(Database& client, std::string_view port_filter,
                           std::string_view symbol_filter);
// The security's shares: the sum of each transaction table's total, in
// the tables' fixed order, unrounded.
double TotalSharesOfSecurity(Database& client, int64_t sec_id);

}  // namespace lotwise
