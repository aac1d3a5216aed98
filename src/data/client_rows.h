#pragma once

#include <cstdint>
#include <string>

#include "data/client_info.h"

namespace lotwise {

class Database;

// Writers of a Taxpayer File's own rows: its Client row, its portfolios and
// the securities they hold. Texts are stored as given; each writes inside
// the caller's unit of work if there is one.

// Writes the Client row of a new file.
void InsertClientRow(Database& client, const ClientOnFile& row);
// Gives the file's one Client row the values of `row`; a file that lost
// its row gets it back.
void WriteClientRow(Database& client, const ClientOnFile& row);

// A name the file already holds fails as a duplicate key.
void InsertPortfolioRow(Database& client, const PortfolioOnFile& row,
                        const std::string& client_code);
// Renames the portfolio `current` and sets its second line; its securities
// follow the new name through the key's ON UPDATE CASCADE. Returns the rows
// changed.
int64_t ChangePortfolioRow(Database& client, const std::string& current, const PortfolioOnFile& now,
                           const std::string& client_code);
// Its securities, blocks and transactions go with it (ON DELETE CASCADE).
void DeletePortfolioRow(Database& client, const std::string& name);

// A symbol the portfolio already holds fails as a duplicate key.
void InsertSecurityRow(Database& client, const std::string& port_name, const std::string& symbol,
                       const std::string& second_line);
// Its blocks and their transactions go with it (ON DELETE CASCADE).
void DeleteSecurityRow(Database& client, const std::string& port_name, const std::string& symbol);
void SetSecuritySecondLine(Database& client, const std::string& port_name,
                           const std::string& symbol, const std::string& second_line);

}  // namespace lotwise
