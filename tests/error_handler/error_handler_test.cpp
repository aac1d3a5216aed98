#include "data/error_handler.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "support/app_fixture.h"

namespace lotwise {
namespace {

using testing::AppTest;

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

const char* const kPathAdvice =
    " This is usually due to a directory path in the .ini file being invalid. If you have added "
    "any path information to the .ini file, please verify that it is correct, and the directory "
    "exists.";
const char* const kAccessAdvice =
    " This error usually occurs when a file, needed by Lotwise has been opened by another "
    "program, or is missing. Please make sure you have not opened any Lotwise files before "
    "starting this program again.";
const char* const kReportFileAdvice =
    " Report File not located in default directory. This error indicates that a report file that "
    "Lotwise needs is missing. Please contact technical support.";

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
  bool alone;
  const char* advice;  // "": nothing shown
  const char* title;
  Icon icon;
  bool result;
};

class HandleErrorTable : public ErrorHandlerTest,
                         public ::testing::WithParamInterface<HandlerCase> {};

TEST_P(HandleErrorTable, ShowsAdviceAndAnswers) {
  const HandlerCase& c = GetParam();
  const std::string header = ErrorHeader(c.number, c.text, "Proc");
  if (*c.advice) ui_.Expect((c.alone ? "" : header) + c.advice, c.title, c.icon, Buttons::kOk);
  EXPECT_EQ(HandleError(*app_, c.number, c.text, "Proc"), c.result);
  EXPECT_EQ(ReadLog(), c.result ? "" : Logged("11-22-2026", c.number, c.text, "Proc"));
  EXPECT_EQ(env_->end_calls(), 0);
}

INSTANTIATE_TEST_SUITE_P(
    Table, HandleErrorTable,
    ::testing::Values(
        HandlerCase{68, "Device unavailable", false,
                    " The device you are trying to access is currently unavailable.  If you are "
                    "are trying to access a floppy disk drive, make sure there is a disk in the "
                    "drive.",
                    "Error!", Icon::kCritical, true},
        HandlerCase{75, "Path/File access error", false, kAccessAdvice, "Error!", Icon::kCritical,
                    false},
        HandlerCase{76, "Path not found", false, kPathAdvice, "Error!", Icon::kCritical, false},
        HandlerCase{3044, "not a valid path", false, kPathAdvice, "Error!", Icon::kCritical, false},
        HandlerCase{3000, "Reserved error (-8194); in use", true,
                    "the file being accessed is currently unavailable. This is probably because "
                    "either another user is is working with it, or a Taxpayer File needed by the "
                    "TWS - Lotwise has been opened by another program. \nIf this is the case, you "
                    "will need to close the file in any other applications before this operation "
                    "can be performed successfully.",
                    "Warning", Icon::kInformation, true},
        HandlerCase{3000, "Reserved error (-1209); damaged", true,
                    "the file being accessed has been damaged. You will need to Repair and "
                    "Compress the file before using it. These options are available under the "
                    "File menu.\nIf you are running reports, please follow the instructions "
                    "above, AND restart the Lotwise before trying to run reports again.",
                    "Warning!", Icon::kInformation, true},
        HandlerCase{3000, "Reserved error (-1524)", false, "", "", Icon::kNone, false},
        HandlerCase{3050, "Couldn't lock file", false,
                    "\n The file SHARE.EXE needs to be loaded for Lotwise to work. You need to add "
                    "the following line to your AUTOEXEC.BAT file, \n\nC:\\DOS\\SHARE.EXE /L:500. "
                    "You must reboot your machine after making this change for it to take "
                    "effect!\n\nIf you are unfamiliar with editing your AUTOEXEC.BAT file please "
                    "contact our technical support department and we will assist you.",
                    "Error!", Icon::kCritical, false},
        HandlerCase{3052, "File sharing lock count exceeded", false,
                    "\n Lotwise needs to have 500 file locks available. You will need to increase "
                    "the file locks in your AUTOEXEC.BAT file. To do this add the parameter "
                    "\n\n/L:500\n\nto the SHARE.EXE call. It should then look similar to the "
                    "following:\n\nC:\\DOS\\SHARE.EXE /L:500\n\nIf you are unfamiliar with "
                    "editing your AUTOEXEC.BAT file please contact our technical support "
                    "department and we will assist you.",
                    "Error!", Icon::kCritical, false},
        HandlerCase{3343, "Unrecognized database format", false,
                    "\r\n\r\nThe database file has been damaged. This is very serious. The best "
                    "solution is to restore from the last good backup that was created before the "
                    "file was damaged. Sometimes data corruption can be fixed. From the File menu "
                    "use the Repair routine followed by the Compress routine.",
                    "Possible Error!", Icon::kInformation, false},
        HandlerCase{20504, "report file not found", false, kReportFileAdvice, "Report File Missing",
                    Icon::kInformation, true},
        HandlerCase{20513, "print job cancelled", false,
                    " This error can sometimes be generated by clicking the Cancel button on the "
                    "Printing screen. If this is the case you can continue your work. If you did "
                    "not click the Cancel button on a Printing screen, then you should contact "
                    "Tarnwick Software. (Please note what you were doing when this error "
                    "occurred.)",
                    "Possible Error!", Icon::kInformation, true},
        HandlerCase{20526, "no default printer", false,
                    " You have not setup a default printer in Windows. This must be done before "
                    "you can generate reports, even if the computer is not connected to a "
                    "printer. Please setup a default printer and try again.",
                    "No Default Printer", Icon::kInformation, true},
        HandlerCase{31013, "database or disk is full", false,
                    " The program will now shut down to prevent errors in your data and "
                    "calculations.",
                    "Warning!", Icon::kCritical, false}));

// Out of memory asks: OK carries on unlogged, Cancel logs and stops. The
// log grows by one entry per fatal error and is never rewritten.
TEST_F(ErrorHandlerTest, OutOfMemoryAsks_LogAppends) {
  const std::string message = ErrorHeader(7, "Out of memory", "Calc") +
                              "There is not enough memory for this program to operate properly. "
                              "Please close some other programs to free up memory and try the "
                              "operation you attempted again. ";
  ui_.Expect(message, "Out of Memory", Icon::kInformation, Buttons::kOkCancel, Answer::kOk);
  ui_.Expect(message, "Out of Memory", Icon::kInformation, Buttons::kOkCancel, Answer::kCancel);
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
  ui_.Expect(ErrorHeader(75, "Path/File access error", "X") + kAccessAdvice, "Error!");
  ui_.Expect(
      "An error occurred in HandleError() while handling error 75. The program will now "
      "shut down to prevent errors in your data. Please contact Tarnwick Software with this "
      "error message.",
      "Fatal Error!");
  EXPECT_THROW(HandleError(*app_, 75, "Path/File access error", "X"), ProgramEnded);
}

// ReportError ends the program exactly when the handler says so; Trap reports
// an escaping exception.
TEST_F(ErrorHandlerTest, ReportErrorAndTrap_EndOnlyOnFalse) {
  ui_.Expect(ErrorHeader(20504, "gone", "Run") + kReportFileAdvice, "Report File Missing");
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
