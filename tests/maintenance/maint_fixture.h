#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "support/app_fixture.h"

namespace lotwise::testing {

// Every row of a file: table -> row key -> the row's values as one text
// ("Shares Left" left out: it is derived from the transactions). The key is
// the row id, for saved queries their name.
using Rows = std::map<std::string, std::map<std::string, std::string>>;

// Files with many rows, their damage, and what can still be read of them.
class MaintenanceTest : public AppTest {
 protected:
  void SetUp() override;

  // Writes a portfolio, ten securities and `blocks` blocks, each with a Buy
  // and a Sell carrying long notes.
  static void FillTaxpayer(const std::string& path, int blocks);
  static Rows ReadRows(const std::string& path);
  // Which pages to overwrite with junk: `count` pages of `table` of the
  // type ("leaf", "overflow") from the middle of its list, `stride` apart.
  struct Damage {
    std::string table;
    int count;
    int stride;
    std::string page_type = "leaf";
  };
  static void DamagePages(const std::string& path, const std::vector<Damage>& damage);
  // The rows of `before` that can still be read one by one from the damaged
  // file, less those whose block, security or portfolio cannot.
  static Rows ReadableRows(const std::string& path, const Rows& before);
  static std::string FileBytes(const std::string& path);
  static std::string Integrity(const std::string& path);
  static long long RowCount(const Rows& rows);
  // Empty when the two agree, else the first differences.
  static std::string Diff(const Rows& actual, const Rows& expected);

  // Indexes a Taxpayer File in the open central file.
  void Index(const std::string& code, const std::string& name, const std::string& file_name);
};

}  // namespace lotwise::testing
