#include "import_forms.h"

#include "app/add_mod_sec.h"
#include "app/app_state.h"
#include "app/portfolio_dialogs.h"
#include "data/application.h"
#include "data/client_info.h"
#include "data/database.h"
#include "data/query_builders.h"
#include "data/security_rows.h"

namespace lotwise::cli {

DialogPlay::DialogPlay(ConsoleUi& ui, ConsoleUi::ModalHandler play)
    : ui_(ui), previous_(ui.modal_handler()) {
  ui_.SetModalHandler(std::move(play));
}

DialogPlay::~DialogPlay() { ui_.SetModalHandler(std::move(previous_)); }

std::optional<std::string> FindPortfolio(Application& app, const std::string& name) {
  std::optional<PortfolioOnFile> port = lotwise::FindPortfolio(*app.client, name);
  if (!port) return std::nullopt;
  return port->name;
}

std::optional<std::string> FindSecurity(Application& app, const std::string& port_name,
                                        const std::string& symbol) {
  std::optional<SecurityOnFile> security = lotwise::FindSecurity(*app.client, port_name, symbol);
  if (!security) return std::nullopt;
  return security->symbol;
}

bool NewPortfolio(Session& session, const std::string& name, const std::string& second_line) {
  Application& app = session.app;
  bool created = false;
  DialogPlay play(session.ui, [&](DialogForm& dialog) {
    auto* form = dynamic_cast<NewModPortForm*>(&dialog);
    if (form == nullptr) return false;
    form->port_name = name;
    form->second_line = second_line;
    NewModPort_OK(app, *form);
    created = form->accepted;
    // A refused name leaves the dialog open; the user gives up.
    if (!form->closed) NewModPort_Cancel(app, *form);
    return true;
  });
  ShowNewPort(app);
  return created && State(app, kStateQuery) == kPortOpen;
}

bool AddSecurity(Session& session, const SecurityFields& fields) {
  Application& app = session.app;
  bool pressed = false;
  bool added = false;
  DialogPlay play(session.ui, [&](DialogForm& dialog) {
    auto* form = dynamic_cast<AddModSecForm*>(&dialog);
    if (form == nullptr) return false;
    // A refused entry shows the dialog again: the user gives up then
    // rather than pressing OK on the same values for ever.
    if (pressed) {
      AddModSec_Cancel(app, *form);
      return true;
    }
    pressed = true;
    form->symbol = fields.symbol;
    // Leaving the symbol box fills in what the Security Symbols File knows.
    FillInNameCusip(app, *form);
    if (!fields.name.empty()) form->sec_name = fields.name;
    if (!fields.cusip.empty()) form->cusip = fields.cusip;
    form->second_line = fields.second_line;
    AddModSec_Ok(app, *form);
    added = form->accepted;
    return true;
  });
  ShowAddSec(app);
  return added && State(app, kStateQuery) == kSecOpen;
}

}  // namespace lotwise::cli
