#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "data/database.h"
#include "data/transaction_store.h"
#include "ground/currency.h"
#include "ground/date.h"
#include "ground/sell_method_codes.h"

namespace lotwise::testing {

// A date as the user types it ("mm/dd/yyyy") or as a value.
struct Day {
  Day(const char* text);           // NOLINT(google-explicit-constructor)
  Day(Date date) : value(date) {}  // NOLINT(google-explicit-constructor)
  Date value;
};

// An amount as the user types it ("1234.5") or as a value.
struct Amount {
  Amount(const char* text);                   // NOLINT(google-explicit-constructor)
  Amount(Currency amount) : value(amount) {}  // NOLINT(google-explicit-constructor)
  Currency value;
};

// The rows a user would have entered, written straight into a Taxpayer File
// (and the names of the central file), so that a test states its history in
// a few lines. Tests that need a row no procedure would write (an old file's
// extra decimals, a damaged file) write it themselves.
class Scenario {
 public:
  explicit Scenario(Database& client, Database* central = nullptr);

  // The file's Client row (year end 12/31/2025).
  void Taxpayer(const std::string& code, const std::string& name,
                const std::string& second_line = " ");
  // The central file's index row of a Taxpayer File.
  void TaxpayerIndex(const std::string& code, const std::string& name, const std::string& sort_name,
                     const std::string& file_name);
  void Portfolio(const std::string& name, const std::string& second_line = " ",
                 const std::string& code = "DOE01");
  // The symbol held in `port`; a null `second_line` leaves the field null.
  int64_t Security(const std::string& symbol, const std::string& port = "Growth",
                   const char* second_line = " ");
  // The symbol's entry in the central Security Symbols File.
  void SecurityName(const std::string& symbol, const std::string& name,
                    const std::string& cusip = "NO CUSIP");
  // The symbol's stored method; a number can also be one no method has.
  void SellMethod(const std::string& symbol, int method);
  void SellMethod(const std::string& symbol, lotwise::SellMethod method) {
    SellMethod(symbol, int{CodeOf(method)});
  }

  // A new block of `sec_id` with its Buy (kTypeBuy) or Reinvestment
  // (kTypeReinvest) row; returns its number. An empty `block_id` becomes
  // "date-n", n counting the file's blocks of that date.
  int64_t Buy(int64_t sec_id, Day date, double shares, Amount cost = "0", Amount fee = "0",
              int16_t type = kTypeBuy, const std::string& block_id = "",
              const std::string& notes = "");
  // A sale of `shares` (positive) from the block.
  void Sell(int64_t block_no, Day date, double shares, Amount price = "0", Amount fee = "0",
            const std::string& notes = "");
  // A split (kTypeSplit) or stock dividend (kTypeDividend) adding `shares`.
  void Split(int64_t block_no, Day date, double pre, double post, double shares,
             int16_t type = kTypeSplit);
  void Adjust(int64_t block_no, Day date, double shares, Amount cost = "0");

 protected:
  // For fixtures whose files are opened and reopened after construction.
  Scenario(std::function<Database&()> client, std::function<Database*()> central);

 private:
  std::function<Database&()> client_;
  std::function<Database*()> central_;
};

}  // namespace lotwise::testing
