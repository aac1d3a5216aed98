#include "data/taxpayer_file.h"
#include "app/application.h"
#include "app/error_handler.h"
#include "app/lw_error.h"
#include "app/ui_port.h"
#include "data/database.h"
#include "data/schema.h"

namespace lotwise {

namespace {
[[noreturn]] void NotBuilt(const char* name) {
  throw LwError(err::kUnexpected, std::string("not built yet: ") + name);
}

// Cuts the text to at most `size` bytes without splitting a character.
std::string TruncateUtf8(const std::string& text, size_t size) {
  if (text.size() <= size) return text;
  size_t cut = size;
  while (cut > 0 && (static_cast<unsigned char>(text[cut]) & 0xC0) == 0x80) --cut;
  return text.substr(0, cut);
}

}  // namespace

std::string StoredSecondLine(std::string_view text) {
  std::string stored(text);
  while (!stored.empty() && stored.back() == ' ') stored.pop_back();
  return stored + " ";
}

std::string CalcClientFileName(Application&, std::string_view) {
  NotBuilt("CalcClientFileName");
}

void CreateClientFile(Application&, const std::string&, const std::string&, const std::string&, const std::string&, Date, const std::string&) {
  NotBuilt("CreateClientFile");
}

bool NewClient(Application&, const std::string&, const std::string&, const std::string&, const std::string&, Date) {
  NotBuilt("NewClient");
}

bool OpenClient(Application&, const std::string&) {
  NotBuilt("OpenClient");
}

void OpenClientFile(Application&, const std::string&) {
  NotBuilt("OpenClientFile");
}

void CloseClientFile(Application&) {
  NotBuilt("CloseClientFile");
}

bool ModClientInfo(Application&, const std::string&, const std::string&, const std::string&, const std::string&, Date) {
  NotBuilt("ModClientInfo");
}

void DelTaxpayer(Application&, const std::string&) {
  NotBuilt("DelTaxpayer");
}

void LogChange(Application& app, const std::string& port_name, int64_t sec_id, Date date,
               const std::string& description) {
  TrapVoid(app, "LogChange", [&] {
    std::string text = description;
    const auto size = static_cast<size_t>(DefinedTextSize("Change", "Description"));
    if (text.size() > size) {
      text = TruncateUtf8(text, size);
      app.ui().MessageBox(
          "Description length error in LogChange(). This error will not affect any of your data, "
          "and you may continue with your work. Please report the error to Tarnwick Software, Inc.",
          "Non-Fatal Error", Icon::kInformation, Buttons::kOk);
    }
    app.client->Execute(
        R"(INSERT INTO "Change" ("Date", "Port Name", "Sec ID", "Description") )"
        R"(VALUES (:date, :port, :sec, :description))",
        {{"date", date}, {"port", port_name}, {"sec", sec_id}, {"description", text}});
  });
}

bool NewPort(Application&, const std::string&, const std::string&) {
  NotBuilt("NewPort");
}

bool ModPort(Application&, const std::string&, const std::string&) {
  NotBuilt("ModPort");
}

bool DelPort(Application&, const std::string&) {
  NotBuilt("DelPort");
}

bool OpenPort(Application&, const std::string&) {
  NotBuilt("OpenPort");
}

void ClosePort(Application&) {
  NotBuilt("ClosePort");
}

bool VerifyNewModPort(Application&, const std::string&) {
  NotBuilt("VerifyNewModPort");
}

bool AddSec(Application&, const std::string&, const std::string&, std::string&, const std::string&, const std::string&) {
  NotBuilt("AddSec");
}

bool DelSec(Application&, const std::string&, const std::string&) {
  NotBuilt("DelSec");
}

void UpdateSec2ndLine(Application&, const std::string&, const std::string&) {
  NotBuilt("UpdateSec2ndLine");
}

void UpdateSecName(Application&, const std::string&, const std::string&) {
  NotBuilt("UpdateSecName");
}

void UpdateSecCusip(Application&, const std::string&, const std::string&) {
  NotBuilt("UpdateSecCusip");
}

}  // namespace lotwise
