#include "data/taxpayer_dialog.h"

#include "app/lw_error.h"

namespace lotwise {

namespace {
[[noreturn]] void NotBuilt(const char* name) {
  throw LwError(err::kUnexpected, std::string("not built yet: ") + name);
}
}  // namespace

void ShowNewModClient(Application&, const std::string&, const std::string&, const std::string&,
                      const std::string&) {
  NotBuilt("ShowNewModClient");
}

bool VerifyNewModClient(Application&, NewModClientForm&) { NotBuilt("VerifyNewModClient"); }

void NewModClient_OK(Application&, NewModClientForm&) { NotBuilt("NewModClient_OK"); }

void PressOkNewModClient(Application&, NewModClientForm&) { NotBuilt("PressOkNewModClient"); }

}  // namespace lotwise
