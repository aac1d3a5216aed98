#include "data/error_handler.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "app/app_state.h"
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
};

const char* const kHeaderDiskFull =
    "An error has occurred in the TWS - Lotwise.\n\nError Number:   31013\nError Type:        "
    "database or disk is full\nLocation:           AddBuy\n\n";

// The header: fixed labels with their blanks, then a blank line.
TEST(ErrorHeader, ExactLayout) {
  EXPECT_EQ(ErrorHeader(31013, "database or disk is full", "AddBuy"), kHeaderDiskFull);
}

// Each error number gets its advice, title, icon and result; a false
// result is logged, a true one is not.
struct HandlerCase {
  const char* name;
  int number;
  const char* text;
  bool shows;
  bool alone;
  const char* advice;
  const char* title;
  Icon icon;
  bool result;
};

class HandleErrorTable : public ErrorHandlerTest,
                         public ::testing::WithParamInterface<HandlerCase> {};

TEST_P(HandleErrorTable, ShowsAdviceAndAnswers) {
  const HandlerCase& c = GetParam();
  std::string header = ErrorHeader(c.number, c.text, "SomeProcedure");
  if (c.shows) {
    ui_.Expect(c.alone ? std::string(c.advice) : header + c.advice, c.title, c.icon, Buttons::kOk);
  }
  EXPECT_EQ(HandleError(*app_, c.number, c.text, "SomeProcedure"), c.result);
  std::string log = ReadLog();
  if (c.result) {
    EXPECT_EQ(log, "");
  } else {
    EXPECT_EQ(log, "11-22-2026 -> " + header + "\r\n");
  }
  EXPECT_EQ(env_->end_calls(), 0) << "HandleError itself never ends the program";
}

const char* const kPathAdvice =
    " This is usually due to a directory path in the .ini file being invalid. If you have added "
    "any path information to the .ini file, please verify that it is correct, and the directory "
    "exists.";

INSTANTIATE_TEST_SUITE_P(
    Table, HandleErrorTable,
    ::testing::Values(
        HandlerCase{
            "DeviceUnavailable", 68, "Device unavailable", true, false,
            " The device you are trying to access is currently unavailable.  If you are are "
            "trying to access a floppy disk drive, make sure there is a disk in the drive.",
            "Error!", Icon::kCritical, true},
        HandlerCase{"PathFileAccess", 75, "Path/File access error", true, false,
                    " This error usually occurs when a file, needed by Lotwise has been opened by "
                    "another program, or is missing. Please make sure you have not opened any "
                    "Lotwise files before starting this program again.",
                    "Error!", Icon::kCritical, false},
        HandlerCase{"PathNotFound", 76, "Path not found", true, false, kPathAdvice, "Error!",
                    Icon::kCritical, false},
        HandlerCase{"InvalidPath", 3044, "not a valid path", true, false, kPathAdvice, "Error!",
                    Icon::kCritical, false},
        HandlerCase{
            "Busy", 3000, "Reserved error (-8194); in use", true, true,
            "the file being accessed is currently unavailable. This is probably because "
            "either another user is is working with it, or a Taxpayer File needed by the TWS "
            "- Lotwise has been opened by another program. \nIf this is the case, you will "
            "need to close the file in any other applications before this operation can be "
            "performed successfully.",
            "Warning", Icon::kInformation, true},
        HandlerCase{
            "Damaged", 3000, "Reserved error (-1209); damaged", true, true,
            "the file being accessed has been damaged. You will need to Repair and Compress "
            "the file before using it. These options are available under the File menu.\nIf "
            "you are running reports, please follow the instructions above, AND restart the "
            "Lotwise before trying to run reports again.",
            "Warning!", Icon::kInformation, true},
        HandlerCase{"ReservedOther", 3000, "Reserved error (-1524)", false, false, "", "",
                    Icon::kNone, false},
        HandlerCase{
            "ShareNotLoaded", 3050, "Couldn't lock file", true, false,
            "\n The file SHARE.EXE needs to be loaded for Lotwise to work. You need to add "
            "the following line to your AUTOEXEC.BAT file, \n\nC:\\DOS\\SHARE.EXE /L:500. You "
            "must reboot your machine after making this change for it to take effect!\n\nIf "
            "you are unfamiliar with editing your AUTOEXEC.BAT file please contact our "
            "technical support department and we will assist you.",
            "Error!", Icon::kCritical, false},
        HandlerCase{"TooManyLocks", 3052, "File sharing lock count exceeded", true, false,
                    "\n Lotwise needs to have 500 file locks available. You will need to increase "
                    "the file locks in your AUTOEXEC.BAT file. To do this add the parameter "
                    "\n\n/L:500\n\nto the SHARE.EXE call. It should then look similar to the "
                    "following:\n\nC:\\DOS\\SHARE.EXE /L:500\n\nIf you are unfamiliar with editing "
                    "your AUTOEXEC.BAT file please contact our technical support department and we "
                    "will assist you.",
                    "Error!", Icon::kCritical, false},
        HandlerCase{
            "NotADatabase", 3343, "Unrecognized database format", true, false,
            "\r\n\r\nThe database file has been damaged. This is very serious. The best "
            "solution is to restore from the last good backup that was created before the "
            "file was damaged. Sometimes data corruption can be fixed. From the File menu use "
            "the Repair routine followed by the Compress routine.",
            "Possible Error!", Icon::kInformation, false},
        HandlerCase{"ReportFileMissing", 20504, "report file not found", true, false,
                    " Report File not located in default directory. This error indicates that a "
                    "report file that Lotwise needs is missing. Please contact technical support.",
                    "Report File Missing", Icon::kInformation, true},
        HandlerCase{
            "PrintCancelled", 20513, "print job cancelled", true, false,
            " This error can sometimes be generated by clicking the Cancel button on the "
            "Printing screen. If this is the case you can continue your work. If you did not "
            "click the Cancel button on a Printing screen, then you should contact Tarnwick "
            "Software. (Please note what you were doing when this error occurred.)",
            "Possible Error!", Icon::kInformation, true},
        HandlerCase{
            "NoDefaultPrinter", 20526, "no default printer", true, false,
            " You have not setup a default printer in Windows. This must be done before you "
            "can generate reports, even if the computer is not connected to a printer. "
            "Please setup a default printer and try again.",
            "No Default Printer", Icon::kInformation, true},
        HandlerCase{"AnyOther", 31013, "database or disk is full", true, false,
                    " The program will now shut down to prevent errors in your data and "
                    "calculations.",
                    "Warning!", Icon::kCritical, false}),
    [](const auto& info) { return std::string(info.param.name); });

// Out of memory asks; OK carries on unlogged, Cancel logs and stops.
TEST_F(ErrorHandlerTest, OutOfMemory_OkCarriesOnCancelStops) {
  std::string message = ErrorHeader(7, "Out of memory", "Calc") +
                        "There is not enough memory for this program to operate properly. Please "
                        "close some other programs to free up memory and try the operation you "
                        "attempted again. ";
  ui_.Expect(message, "Out of Memory", Icon::kInformation, Buttons::kOkCancel, Answer::kOk);
  EXPECT_TRUE(HandleError(*app_, 7, "Out of memory", "Calc"));
  EXPECT_EQ(ReadLog(), "");
  ui_.Expect(message, "Out of Memory", Icon::kInformation, Buttons::kOkCancel, Answer::kCancel);
  EXPECT_FALSE(HandleError(*app_, 7, "Out of memory", "Calc"));
  EXPECT_EQ(ReadLog(), "11-22-2026 -> " + ErrorHeader(7, "Out of memory", "Calc") + "\r\n");
}

// The log grows by one entry per fatal error and is never rewritten.
TEST_F(ErrorHandlerTest, Log_AppendsEntries) {
  EXPECT_FALSE(HandleError(*app_, 3000, "first", "A"));
  env_->AdvanceSeconds(86400);
  EXPECT_FALSE(HandleError(*app_, 3000, "second", "B"));
  EXPECT_EQ(ReadLog(), "11-22-2026 -> " + ErrorHeader(3000, "first", "A") + "\r\n" +
                           "11-23-2026 -> " + ErrorHeader(3000, "second", "B") + "\r\n");
}

// A failure inside the handler (the log cannot be written) is fatal at once.
TEST_F(ErrorHandlerTest, FailureInsideHandler_IsFatalAndUnlogged) {
  std::filesystem::create_directory(app_->ProgramFile("LWERR.LOG"));
  ui_.Expect(ErrorHeader(75, "Path/File access error", "X") +
                 " This error usually occurs when a file, needed by Lotwise has been opened by "
                 "another program, or is missing. Please make sure you have not opened any Lotwise "
                 "files before starting this program again.",
             "Error!");
  ui_.Expect(
      "An error occurred in HandleError() while handling error 75. The program will now "
      "shut down to prevent errors in your data. Please contact Tarnwick Software with this "
      "error message.",
      "Fatal Error!");
  EXPECT_THROW(HandleError(*app_, 75, "Path/File access error", "X"), ProgramEnded);
}

// ReportError ends the program exactly when the handler says so.
TEST_F(ErrorHandlerTest, ReportError_EndsOnlyOnFalse) {
  ui_.Expect(ErrorHeader(20504, "gone", "Run") +
                 " Report File not located in default directory. This error indicates that a "
                 "report file that Lotwise needs is missing. Please contact technical support.",
             "Report File Missing");
  EXPECT_TRUE(ReportError(*app_, LwError(20504, "gone"), "Run"));
  EXPECT_THROW(ReportError(*app_, LwError(3000, "silent"), "Run"), ProgramEnded);
}

// Trap reports an escaping exception; a fatal one ends the program, and the
// end passes every outer Trap unreported.
TEST_F(ErrorHandlerTest, Trap_FatalErrorEndsThroughOuterTraps) {
  auto inner = [&] { return Trap(*app_, "Proc", -1, []() -> int { throw LwError(3000, "q"); }); };
  EXPECT_THROW(Trap(*app_, "Outer", 0, inner), ProgramEnded);
  EXPECT_EQ(ReadLog(), "11-22-2026 -> " + ErrorHeader(3000, "q", "Proc") + "\r\n");
}

// ChkTransDate warns but never blocks; 1/1/1913 is the first plausible day.
TEST_F(ErrorHandlerTest, ChkTransDate_Table) {
  ui_.Expect("Please enter a date.", "WARNING", Icon::kExclamation, Buttons::kOk);
  ChkTransDate(*app_, "not a date");
  ui_.Expect("The date, 12/31/1912, should not be earlier than 01/01/1913!", "WARNING!",
             Icon::kExclamation, Buttons::kOk);
  ChkTransDate(*app_, "12/31/1912");
  ChkTransDate(*app_, "1/1/1913");
  ChkTransDate(*app_, "11/22/2026");
}

// State: the query value reads, a wrong value is refused and changes nothing.
TEST_F(ErrorHandlerTest, State_QueryAndMisuse) {
  EXPECT_EQ(State(*app_, kClientClosed), kClientClosed);
  EXPECT_EQ(State(*app_, kStateQuery), kClientClosed);
  ui_.Expect("Incorrect usage of function State", "Incorrect Usage!", Icon::kExclamation,
             Buttons::kOk);
  EXPECT_EQ(State(*app_, 5), kClientClosed);
  EXPECT_EQ(ui_.hourglass_depth(), 0);
}

}  // namespace
}  // namespace lotwise
