#include "maintenance/maint_fixture.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "data/database.h"
#include "data/transaction_store.h"

namespace lotwise::testing {

namespace {

std::string RowText(const Query& q) {
  std::string text;
  for (int i = 0; i < q.ColumnCount(); ++i) {
    const std::string name = q.ColumnName(i);
    if (name == "Shares Left" || name == "lw_rowid") continue;
    text += name + "=" + q.Text(name.c_str()) + "|";
  }
  return text;
}

std::string RowKey(const std::string& table, const Query& q) {
  return table == Database::kSavedQueriesTable ? q.Text("Name") : q.Text("lw_rowid");
}

std::vector<std::string> Tables(Database& db) {
  std::vector<std::string> tables;
  Query q = db.Select(
      "SELECT name FROM sqlite_master WHERE type = 'table' AND name NOT LIKE 'sqlite%' ORDER BY "
      "name");
  while (q.Next()) tables.push_back(q.Text("name"));
  return tables;
}

}  // namespace

void MaintenanceTest::SetUp() {
  AppTest::SetUp();
  OpenFreshCentral();
}

void MaintenanceTest::FillTaxpayer(const std::string& path, int blocks) {
  auto db = Database::Open(path);
  Database::Transaction unit(*db);
  Scenario file(*db);
  file.Portfolio("Main");
  for (int s = 0; s < 10; ++s) file.Security("SYM" + std::to_string(s), "Main");
  const std::string notes(120, 'n');
  for (int b = 0; b < blocks; ++b) {
    const int64_t block = file.Buy(1 + b % 10, "01/02/2020", 10, Currency::FromUnits(b * 10000 + 1),
                                   "0", kTypeBuy, "01/02/2020-" + std::to_string(b), notes);
    file.Sell(block, "03/04/2021", 4, Currency::FromUnits(b * 7000 + 3), "0", notes);
  }
  unit.Commit();
}

Rows MaintenanceTest::ReadRows(const std::string& path) {
  auto db = Database::Open(path, Database::Mode::kReadOnly);
  Rows rows;
  for (const std::string& table : Tables(*db)) {
    Query q = db->Select("SELECT rowid AS lw_rowid, * FROM \"" + table + "\"");
    while (q.Next()) rows[table][RowKey(table, q)] = RowText(q);
  }
  return rows;
}

void MaintenanceTest::DamagePages(const std::string& path, const std::vector<Damage>& damage) {
  std::vector<int64_t> chosen;
  {
    auto db = Database::Open(path, Database::Mode::kReadOnly);
    for (const Damage& d : damage) {
      std::vector<int64_t> pages;
      Query q = db->Select(
          "SELECT pageno FROM dbstat WHERE name = :t AND pagetype = :type ORDER BY pageno",
          {{"t", d.table}, {"type", d.page_type}});
      while (q.Next()) pages.push_back(q.Int("pageno"));
      ASSERT_GT(pages.size(), static_cast<size_t>(d.count * d.stride)) << d.table;
      const size_t first = pages.size() / 2 - static_cast<size_t>(d.count * d.stride) / 2;
      for (int i = 0; i < d.count; ++i)
        chosen.push_back(pages[first + static_cast<size_t>(i * d.stride)]);
    }
  }
  std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
  const std::string junk(4096, '\xff');
  for (int64_t page : chosen) {
    file.seekp(static_cast<std::streamoff>((page - 1) * 4096));
    file.write(junk.data(), static_cast<std::streamsize>(junk.size()));
  }
}

Rows MaintenanceTest::ReadableRows(const std::string& path, const Rows& before) {
  auto db = Database::Open(path, Database::Mode::kReadOnly);
  auto lookup = [&](const std::string& table, const std::string& key, std::string& text,
                    std::string& parent) {
    try {
      const bool by_name = table == Database::kSavedQueriesTable;
      Query q = db->Select("SELECT rowid AS lw_rowid, * FROM \"" + table + "\" WHERE " +
                               (by_name ? "Name = :key" : "rowid = :key"),
                           {{"key", key}});
      if (!q.Next()) return false;
      text = RowText(q);
      if (table == "Blocks") parent = q.Text("Sec ID");
      if (table == "Buy" || table == "Sell") parent = q.Text("Block No");
      return true;
    } catch (const LwError&) {
      return false;
    }
  };
  Rows readable;
  std::map<std::string, std::map<std::string, std::string>> parents;
  for (const auto& [table, rows] : before) {
    for (const auto& [id, expected] : rows) {
      std::string text;
      std::string parent;
      if (lookup(table, id, text, parent) && text == expected) {
        readable[table][id] = text;
        parents[table][id] = parent;
      }
    }
  }
  for (const char* child : {"Blocks", "Buy", "Sell"}) {
    const std::string parent_table = std::string(child) == "Blocks" ? "Security" : "Blocks";
    for (const auto& [id, parent] : parents[child]) {
      if (readable[parent_table].count(parent) == 0) readable[child].erase(id);
    }
  }
  return readable;
}

std::string MaintenanceTest::FileBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::string MaintenanceTest::Integrity(const std::string& path) {
  try {
    return Database::Open(path, Database::Mode::kReadOnly)->IntegrityCheck();
  } catch (const LwError& error) {
    return error.text();
  }
}

std::string MaintenanceTest::Diff(const Rows& actual, const Rows& expected) {
  auto flat = [](const Rows& rows) {
    std::set<std::string> lines;
    for (const auto& [table, keyed] : rows) {
      for (const auto& [key, text] : keyed) lines.insert(table + " " + key + ": " + text);
    }
    return lines;
  };
  const std::set<std::string> a = flat(actual), e = flat(expected);
  std::vector<std::string> diff;
  std::set_symmetric_difference(a.begin(), a.end(), e.begin(), e.end(), std::back_inserter(diff));
  std::string shown;
  for (size_t i = 0; i < diff.size() && i < 5; ++i) {
    shown += (a.count(diff[i]) ? "extra or changed " : "missing ") + diff[i].substr(0, 80) + "\n";
  }
  return shown;
}

long long MaintenanceTest::RowCount(const Rows& rows) {
  long long n = 0;
  for (const auto& [table, r] : rows) n += static_cast<long long>(r.size());
  return n;
}

void MaintenanceTest::Index(const std::string& code, const std::string& name,
                            const std::string& file_name) {
  TaxpayerIndex(code, name, name, file_name);
}

}  // namespace lotwise::testing
