#include "data/transaction_store.h"
#include "app/lw_error.h"

namespace lotwise {

namespace {
[[noreturn]] void NotBuilt(const char* name) {
  throw LwError(err::kUnexpected, std::string("not built yet: ") + name);
}
}  // namespace

bool AddBuy(Application&, int64_t, std::string&, int16_t, Date, Currency, double, Currency, const std::string&) {
  NotBuilt("AddBuy");
}

bool AddSell(Application&, int64_t, Date, Currency, Currency, double, const std::string&) {
  NotBuilt("AddSell");
}

bool AddSplit(Application&, int64_t, int16_t, Date, double, double, double, const std::string&) {
  NotBuilt("AddSplit");
}

bool AddAdjust(Application&, int64_t, Date, double, Currency, const std::string&) {
  NotBuilt("AddAdjust");
}

bool ModifyBuy(Application&, int64_t, Date, Currency, Currency, double, const std::string&) {
  NotBuilt("ModifyBuy");
}

bool ModifySell(Application&, int64_t, Date, Currency, Currency, double, const std::string&) {
  NotBuilt("ModifySell");
}

bool ModifySplit(Application&, int64_t, Date, double, const std::string&) {
  NotBuilt("ModifySplit");
}

bool ModifyAdjust(Application&, int64_t, Date, Currency, double, const std::string&) {
  NotBuilt("ModifyAdjust");
}

bool UpdateBlock(Application&, int64_t, int64_t, Date) {
  NotBuilt("UpdateBlock");
}

void RollBackTable(Application&, std::string_view, int64_t, int16_t, Date) {
  NotBuilt("RollBackTable");
}

void DeleteBlock(Application&) {
  NotBuilt("DeleteBlock");
}

}  // namespace lotwise
