#include "data/error_handler.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "support/app_fixture.h"
#include "support/golden.h"

namespace lotwise {
namespace {

using testing::AppTest;
using testing::ExpectSaid;

class ErrorHandlerTest : public AppTest {
 protected:
  std::string ReadLog() {
    std::ifstream in(app_->ProgramFile("LWERR.LOG"), std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
  }
  static std::string Logged(const char* day, int number, const char* text, const char* where) {
    return std::string(day) + " -> " + ErrorHeader(number, text, where) + "\r\n";
  }
};

// The header: fixed labels with their blanks, then a blank line.
TEST(ErrorHeader, ExactLayout) {
  EXPECT_EQ(ErrorHeader(31013, "database or disk is full", "AddBuy"),
            "An error has occurred in the TWS - Lotwise.\n\nError Number:   31013\nError Type:    "
            "    database or disk is full\nLocation:           AddBuy\n\n");
}

// Each error number gets its advice (after the header, or alone), title,
// icon and result; a false result is logged, a true one is not, and the
// handler itself never ends the program.
struct HandlerCase {
  int number;
  const char* text;
  const char* key;  // nullptr: nothing shown
  bool result;
};

class HandleErrorTable : public ErrorHandlerTest,
                         public ::testing::WithParamInterface<HandlerCase> {};

TEST_P(HandleErrorTable, ShowsAdviceAndAnswers) {
  const HandlerCase& c = GetParam();
  const std::string header = ErrorHeader(c.number, c.text, "Proc");
  if (c.key) ExpectSaid(ui_, __FILE__, c.key, Answer::kOk, {header});
  EXPECT_EQ(HandleError(*app_, c.number, c.text, "Proc"), c.result);
  EXPECT_EQ(ReadLog(), c.result ? "" : Logged("11-22-2026", c.number, c.text, "Proc"));
  EXPECT_EQ(env_->end_calls(), 0);
}

INSTANTIATE_TEST_SUITE_P(
    Table, HandleErrorTable,
    ::testing::Values(HandlerCase{68, "Device unavailable", "68", true},
                      HandlerCase{75, "Path/File access error", "access", false},
                      HandlerCase{76, "Path not found", "path", false},
                      HandlerCase{3044, "not a valid path", "path", false},
                      HandlerCase{3000, "Reserved error (-8194); in use", "busy", true},
                      HandlerCase{3000, "Reserved error (-1209); damaged", "damaged", true},
                      HandlerCase{3000, "Reserved error (-1524)", nullptr, false},
                      HandlerCase{3050, "Couldn't lock file", "3050", false},
                      HandlerCase{3052, "File sharing lock count exceeded", "3052", false},
                      HandlerCase{3343, "Unrecognized database format", "3343", false},
                      HandlerCase{20504, "report file not found", "report_file", true},
                      HandlerCase{20513, "print job cancelled", "20513", true},
                      HandlerCase{20526, "no default printer", "20526", true},
                      HandlerCase{31013, "database or disk is full", "31013", false}));

// Out of memory asks: OK carries on unlogged, Cancel logs and stops. The
// log grows by one entry per fatal error and is never rewritten.
TEST_F(ErrorHandlerTest, OutOfMemoryAsks_LogAppends) {
  const std::string header = ErrorHeader(7, "Out of memory", "Calc");
  ExpectSaid(ui_, __FILE__, "memory", Answer::kOk, {header});
  ExpectSaid(ui_, __FILE__, "memory", Answer::kCancel, {header});
  EXPECT_TRUE(HandleError(*app_, 7, "Out of memory", "Calc"));
  EXPECT_EQ(ReadLog(), "");
  EXPECT_FALSE(HandleError(*app_, 7, "Out of memory", "Calc"));
  env_->AdvanceSeconds(86400);
  EXPECT_FALSE(HandleError(*app_, 3000, "second", "B"));
  EXPECT_EQ(ReadLog(), Logged("11-22-2026", 7, "Out of memory", "Calc") +
                           Logged("11-23-2026", 3000, "second", "B"));
}

// A failure inside the handler (the log cannot be written) is fatal at once.
TEST_F(ErrorHandlerTest, FailureInsideHandler_IsFatalAndUnlogged) {
  std::filesystem::create_directory(app_->ProgramFile("LWERR.LOG"));
  ExpectSaid(ui_, __FILE__, "access", Answer::kOk,
             {ErrorHeader(75, "Path/File access error", "X")});
  ExpectSaid(ui_, __FILE__, "fatal");
  EXPECT_THROW(HandleError(*app_, 75, "Path/File access error", "X"), ProgramEnded);
}

// ReportError ends the program exactly when the handler says so; Trap reports
// an escaping exception.
TEST_F(ErrorHandlerTest, ReportErrorAndTrap_EndOnlyOnFalse) {
  ExpectSaid(ui_, __FILE__, "report_file", Answer::kOk, {ErrorHeader(20504, "gone", "Run")});
  EXPECT_TRUE(ReportError(*app_, LwError(20504, "gone"), "Run"));
  // A fatal error ends the program, and the end passes every outer Trap
  // unreported.
  auto inner = [&] { return Trap(*app_, "Proc", -1, []() -> int { throw LwError(3000, "q"); }); };
  EXPECT_THROW(Trap(*app_, "Outer", 0, inner), ProgramEnded);
  EXPECT_EQ(ReadLog(), Logged("11-22-2026", 3000, "q", "Proc"));
}

// ChkTransDate warns but never blocks; 1/1/1913 is the first plausible day.
TEST_F(ErrorHandlerTest, ChkTransDate_PlausibleDatesSayNothing) {
  ChkTransDate(*app_, "1/1/1913");
  ChkTransDate(*app_, "11/22/2026");
}

}  // namespace
}  // namespace lotwise
