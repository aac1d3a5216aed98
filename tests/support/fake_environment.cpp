#include "support/fake_environment.h"

#include "ground/date.h"

namespace lotwise::testing {

void FakeEnvironment::Pause(std::chrono::milliseconds duration) {
  ++pauses_;
  pending_ms_ += duration.count();
  if (pending_ms_ >= 1000) {
    AdvanceSeconds(static_cast<int>(pending_ms_ / 1000));
    pending_ms_ %= 1000;
  }
}

void FakeEnvironment::AdvanceSeconds(int seconds) {
  long long total = now_.hour * 3600LL + now_.minute * 60LL + now_.second + seconds;
  int days = static_cast<int>(total / 86400);
  total %= 86400;
  now_.hour = static_cast<int>(total / 3600);
  now_.minute = static_cast<int>(total / 60 % 60);
  now_.second = static_cast<int>(total % 60);
  if (days > 0) {
    Date d = Date::FromYmd(now_.year, now_.month, now_.day).AddDays(days);
    now_.year = d.year();
    now_.month = d.month();
    now_.day = d.day();
  }
}

}  // namespace lotwise::testing
