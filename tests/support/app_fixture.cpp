#include "support/app_fixture.h"

#include <filesystem>
#include <random>

#include "data/database.h"
#include "data/error_handler.h"
#include "data/schema.h"
#include "ground/paths.h"

namespace lotwise::testing {

namespace fs = std::filesystem;

namespace {

std::string UniqueFolder(const std::string& prefix) {
  static std::mt19937_64 random(std::random_device{}());
  fs::path base = fs::temp_directory_path();
  for (;;) {
    fs::path candidate = base / (prefix + std::to_string(random() % 1000000000000ULL));
    std::error_code ec;
    if (fs::create_directory(candidate, ec)) return WithTrailingSeparator(candidate.string());
  }
}

}  // namespace

const std::string& TemplateFolder() {
  static const std::string folder = [] {
    std::string f = UniqueFolder("lotwise-templates-");
    CreateTemplate(FileKind::kCentral, f + kCentralTemplateName);
    CreateTemplate(FileKind::kTaxpayer, f + kClientTemplateName);
    CreateTemplate(FileKind::kReport, f + kReportTemplateName);
    return f;
  }();
  return folder;
}

AppTest::AppTest()
    : Scenario([this]() -> Database& { return *app_->client; },
               [this] { return app_->central.get(); }) {}

void AppTest::SetUp() {
  root_ = UniqueFolder("lotwise-test-");
  program_folder_ = root_ + "program";
  fs::create_directories(program_folder_);
  for (const char* name : {kCentralTemplateName, kClientTemplateName, kReportTemplateName}) {
    fs::copy_file(TemplateFolder() + name, JoinPath(program_folder_, name));
  }
  // The report definition files ship beside the program.
  for (const auto& entry : fs::directory_iterator(LOTWISE_REPORT_DEFINITIONS_DIR)) {
    if (entry.path().extension() == ".RPT") {
      fs::copy_file(entry.path(), JoinPath(program_folder_, entry.path().filename().string()));
    }
  }
  fs::create_directories(root_ + "tmp");
  fs::create_directories(root_ + "data/central");
  fs::create_directories(root_ + "data/client");
  env_ = std::make_unique<FakeEnvironment>(root_ + "tmp/");
  app_ = std::make_unique<Application>(ui_, *env_, program_folder_, "lotwise");
  ui_.ForbidQuestionsWhile([this] {
    return (app_->client && app_->client->InUnit()) || (app_->central && app_->central->InUnit());
  });
  app_->settings_store_path = root_ + "config/Tarnwick/Lw.ini";
  app_->temp_folder = root_ + "tmp/";
  app_->ssf_folder = root_ + "data/central/";
  app_->taxpayer_folder = root_ + "data/client/";
  app_->central_path = app_->ssf_folder + kCentralFileName;
  app_->ini_path = JoinPath(program_folder_, "lotwise.INI");
  app_->report_db_path = root_ + "tmp/~LWTEST.MDB";
  fs::copy_file(JoinPath(program_folder_, kReportTemplateName), app_->report_db_path);
}

void AppTest::TearDown() {
  ui_.VerifyDone();
  app_.reset();
  std::error_code ec;
  fs::remove_all(root_, ec);
}

void AppTest::OpenFreshCentral() {
  fs::copy_file(JoinPath(program_folder_, kCentralTemplateName), app_->central_path);
  app_->central = Database::Open(app_->central_path);
}

void AppTest::WriteTaxpayerFile(const std::string& file_name, const std::string& code,
                                const std::string& name) {
  std::string path = app_->taxpayer_folder + file_name;
  fs::copy_file(JoinPath(program_folder_, kClientTemplateName), path);
  auto db = Database::Open(path);
  Scenario(*db).Taxpayer(code, name);
}

void AppTest::OpenFreshTaxpayer(const std::string& code, const std::string& name,
                                const std::string& file_name) {
  WriteTaxpayerFile(file_name, code, name);
  if (app_->central) TaxpayerIndex(code, name, name, file_name);
  client_path_ = app_->taxpayer_folder + file_name;
  app_->client = Database::Open(client_path_);
  CurrentContext& c = app_->current;
  c.client_db_path = app_->taxpayer_folder + file_name;
  c.client_name = name;
  c.sort_name = name;
  c.client_code = code;
  c.client_2nd_line = " ";
  c.year_end = "12/31/2025";
  app_->window.state = kClientOpen;
}

int64_t AppTest::BlockNo(const std::string& block_id) {
  Query q = app_->client->Select(R"(SELECT "Block No" FROM "Blocks" WHERE "Block ID" = :id)",
                                 {{"id", block_id}});
  EXPECT_TRUE(q.Next()) << block_id;
  return q.Int("Block No");
}

void AppTest::ExpectFatal(int number, const std::string& text, const std::string& location) {
  ui_.Expect(ErrorHeader(number, text, location) +
                 " The program will now shut down to prevent errors in your data and "
                 "calculations.",
             "Warning!", Icon::kCritical, Buttons::kOk);
}

void AppTest::UseStorageFaults() {
  app_->client.reset();
  app_->storage_faults = &faults_;
  app_->client = Database::Open(client_path_, Database::Mode::kShared, &faults_);
}

long long AppTest::CountOnDisk(const std::string& table, const std::string& where) {
  auto db = Database::Open(client_path_);
  Query q = db->Select("SELECT count(*) AS n FROM \"" + table + "\" WHERE " + where);
  q.Next();
  return q.Int("n");
}

std::string AppTest::IntegrityOnDisk() { return Database::Open(client_path_)->IntegrityCheck(); }

long long AppTest::CountClientRows(const std::string& table) {
  Query q = app_->client->Select("SELECT count(*) AS n FROM \"" + table + "\"");
  q.Next();
  return q.Int("n");
}

long long AppTest::CountCentralRows(const std::string& table) {
  Query q = app_->central->Select("SELECT count(*) AS n FROM \"" + table + "\"");
  q.Next();
  return q.Int("n");
}

std::string AppTest::CentralRow(const std::string& code) {
  Query q = app_->central->Select(
      R"(SELECT * FROM "Clients" WHERE "Client Code" = :c COLLATE BINARY)", {{"c", code}});
  if (!q.Next()) return "-";
  return q.Text("Client Name") + "|" + q.Text("Sort Name") + "|" + q.Text("Client Code") + "|" +
         q.Text("File Name");
}

std::string AppTest::ClientRow(const std::string& file_name) {
  auto db = Database::Open(app_->taxpayer_folder + file_name, Database::Mode::kReadOnly);
  Query q = db->Select(R"(SELECT * FROM "Client")");
  if (!q.Next()) return "-";
  return q.Text("Client Name") + "|" + q.Text("Sort Name") + "|" + q.Text("Client Code") + "|" +
         q.Text("2nd Line") + "|" + q.Text("Year End");
}

}  // namespace lotwise::testing
