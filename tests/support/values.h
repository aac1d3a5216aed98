#pragma once

#include "ground/currency.h"
#include "ground/date.h"

namespace lotwise::testing {

// Values as the user types them: "mm/dd/yyyy", "1234.5".
inline Date D(const char* text) { return *Date::Parse(text); }
inline Currency Money(const char* text) { return *Currency::Parse(text); }

}  // namespace lotwise::testing
