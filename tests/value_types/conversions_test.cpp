#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <sstream>
#include <string>

#include "ground/currency.h"
#include "ground/date.h"
#include "ground/lw_error.h"
#include "ground/number_text.h"
#include "ground/value_helpers.h"
#include "support/golden.h"

namespace lotwise {
namespace {

std::string Fault(NumberFault fault) {
  return fault == NumberFault::kTooLarge ? "too large" : "not a number";
}

std::string Units(const std::optional<Currency>& amount, const std::string& typed) {
  return amount ? std::to_string(amount->units()) : Fault(Currency::ParseFault(typed));
}

// Each conversion of the case file, from the input text to the expected one.
const std::map<std::string, std::function<std::string(const std::string&)>> kConversions = {
    {"currency from double",
     [](const std::string& in) {
       return std::to_string(Currency::FromDouble(std::stod(in)).units());
     }},
    {"currency to the cent",
     [](const std::string& in) {
       return std::to_string(Currency::FromUnits(std::stoll(in)).RoundedToCent().units());
     }},
    {"divide half to even",
     [](const std::string& in) {
       int64_t a = 0, b = 0;
       std::istringstream(in) >> a >> b;
       return std::to_string(DivideHalfEven(a, b));
     }},
    {"currency text",
     [](const std::string& in) { return Currency::FromUnits(std::stoll(in)).ToString(); }},
    {"currency cents text",
     [](const std::string& in) { return Currency::FromCents(std::stoll(in)).ToCentsText(); }},
    {"currency typed", [](const std::string& in) { return Units(Currency::Parse(in), in); }},
    {"date typed",
     [](const std::string& in) {
       const auto date = Date::Parse(in);
       return date ? date->ToIso() : "not a date";
     }},
    {"add months",
     [](const std::string& in) {
       std::string from;
       int months = 0;
       std::istringstream(in) >> from >> months;
       return Date::ParseIso(from)->AddMonths(months).ToIso();
     }},
    {"round double",
     [](const std::string& in) {
       double value = 0;
       int16_t digits = 0;
       std::istringstream(in) >> value >> digits;
       return NumberText(RoundDouble(value, digits));
     }},
    {"sort name", [](const std::string& in) { return CalcSortName(in); }},
    {"ampersands", [](const std::string& in) { return FixAmpersand(in); }},
    {"file name", [](const std::string& in) { return GetFileNameFromPath(in); }},
    {"number text", [](const std::string& in) { return NumberText(std::stod(in)); }},
    {"number typed", [](const std::string& in) {
       const auto value = ParseNumber(in);
       return value ? NumberText(*value) : Fault(ParseNumberFault(in));
     }}};

TEST(Conversions, CaseFile) {
  for (const testing::GoldenCase& c : testing::ReadCases(__FILE__, "conversions.txt")) {
    const auto convert = kConversions.at(c.name);
    for (const std::string& line : c.Lines("")) {
      const size_t arrow = line.find(" => ");
      ASSERT_NE(arrow, std::string::npos) << line;
      std::string actual;
      try {
        actual = convert(line.substr(0, arrow));
      } catch (const LwError& e) {
        actual = "error " + std::to_string(e.number());
      }
      EXPECT_EQ(actual, line.substr(arrow + 4)) << c.name << ": " << line;
    }
  }
}

}  // namespace
}  // namespace lotwise
