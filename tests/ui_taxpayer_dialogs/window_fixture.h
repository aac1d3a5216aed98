#pragma once

#include <gtest/gtest.h>

#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QTimer>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "data/application.h"
#include "data/database.h"
#include "support/app_fixture.h"
#include "support/real_windows.h"
#include "ui/dialog_registry.h"

namespace lotwise::testing {

// An open central file and the real windows of the core's dialog forms
// (see ShowWindow); messages, pickers and the help bar stay scripted on ui_.
class DialogWindowTest : public AppTest {
 protected:
  void SetUp() override {
    AppTest::SetUp();
    OpenFreshCentral();
  }
  void OnWindow(const char* name, std::function<void(QDialog&)> drive) {
    testing::OnWindow(ui_, *app_, name, std::move(drive));
  }

  // Types "field=keys;..." into the window's fields, leaving each with Tab.
  static void Fill(QDialog& window, const char* entries) {
    for (const QString& entry : QString(entries).split(';')) {
      TypeTab(window, entry.section('=', 0, 0).toLatin1(), entry.section('=', 1));
    }
  }
  static void Choose(QDialog& window, const char* grid, int row) {
    Get<QTableWidget>(window, grid)->setCurrentCell(row, 0);
  }
  // The grid's rows as "cell|cell/cell|cell".
  static std::string GridRows(QDialog& window, const char* name) {
    auto* grid = Get<QTableWidget>(window, name);
    QStringList rows;
    for (int r = 0; r < grid->rowCount(); ++r) {
      QStringList cells;
      for (int c = 0; c < grid->columnCount(); ++c) cells << grid->item(r, c)->text();
      rows << cells.join('|');
    }
    return rows.join('/').toStdString();
  }
  // The rows `sql` selects from `db`, "value|value;" per row.
  static std::string Rows(Database& db, const std::string& sql) {
    std::string out;
    Query q = db.Select(sql);
    while (q.Next()) {
      for (int c = 0; c < q.ColumnCount(); ++c)
        out += (c > 0 ? "|" : "") + q.Text(q.ColumnName(c).c_str());
      out += ";";
    }
    return out;
  }
};

}  // namespace lotwise::testing
