#include "data/error_handler.h"

#include <fstream>

#include "data/application.h"
#include "ground/date.h"
#include "ground/environment.h"
#include "ground/ui_port.h"

namespace lotwise {

namespace {

constexpr const char* kProgramName = "TWS - Lotwise";

// What the handler does about one error number: the advice shown after
// (or, with `advice_only`, instead of) the error header, under `title`;
// whether anything is shown at all; and whether the program may go on
// (false: the error is logged and the program ends).
struct ErrorMessage {
  std::string advice;
  bool advice_only = false;
  std::string title;
  Icon icon = Icon::kCritical;
  bool shown = true;
  bool goes_on = false;
};

const char* const kPathAdvice =
    " This is usually due to a directory path in the .ini file being invalid. If you have added "
    "any path information to the .ini file, please verify that it is correct, and the directory "
    "exists.";

ErrorMessage ChooseMessage(int number, std::string_view text) {
  switch (number) {
    case err::kOutOfMemory:
      // The answer decides the result; see HandleError.
      return {
          .advice =
              "There is not enough memory for this program to operate properly. Please close some "
              "other programs to free up memory and try the operation you attempted again. ",
          .title = "Out of Memory",
          .icon = Icon::kInformation,
          .goes_on = true};
    case err::kDeviceUnavailable:
      return {.advice =
                  " The device you are trying to access is currently unavailable.  If you are are "
                  "trying to access a floppy disk drive, make sure there is a disk in the drive.",
              .title = "Error!",
              .icon = Icon::kCritical,
              .goes_on = true};
    case err::kPathFileAccess:
      return {.advice =
                  " This error usually occurs when a file, needed by Lotwise has been opened by "
                  "another "
                  "program, or is missing. Please make sure you have not opened any Lotwise files "
                  "before starting this program again.",
              .title = "Error!",
              .icon = Icon::kCritical};
    case err::kPathNotFound:
    case err::kInvalidPath:
      return {.advice = kPathAdvice, .title = "Error!", .icon = Icon::kCritical};
    case err::kReserved:
      if (text.find("-8194") != std::string_view::npos) {
        return {
            .advice =
                "the file being accessed is currently unavailable. This is probably because either "
                "another user is is working with it, or a Taxpayer File needed by the TWS - "
                "Lotwise has been opened by another program. \nIf this is the case, you will need "
                "to close the file in any other applications before this operation can be "
                "performed successfully.",
            .advice_only = true,
            .title = "Warning",
            .icon = Icon::kInformation,
            .goes_on = true};
      }
      if (text.find("-1209") != std::string_view::npos) {
        return {
            .advice =
                "the file being accessed has been damaged. You will need to Repair and Compress "
                "the "
                "file before using it. These options are available under the File menu.\nIf you "
                "are running reports, please follow the instructions above, AND restart the "
                "Lotwise "
                "before trying to run reports again.",
            .advice_only = true,
            .title = "Warning!",
            .icon = Icon::kInformation,
            .goes_on = true};
      }
      return {.advice = "", .title = "", .icon = Icon::kNone, .shown = false};
    case err::kCannotLock:
      return {
          .advice =
              "\n The file SHARE.EXE needs to be loaded for Lotwise to work. You need to add the "
              "following line to your AUTOEXEC.BAT file, \n\nC:\\DOS\\SHARE.EXE /L:500. You must "
              "reboot your machine after making this change for it to take effect!\n\nIf you are "
              "unfamiliar with editing your AUTOEXEC.BAT file please contact our technical support "
              "department and we will assist you.",
          .title = "Error!",
          .icon = Icon::kCritical};
    case err::kTooManyLocks:
      return {
          .advice =
              "\n Lotwise needs to have 500 file locks available. You will need to increase the "
              "file "
              "locks in your AUTOEXEC.BAT file. To do this add the parameter \n\n/L:500\n\nto the "
              "SHARE.EXE call. It should then look similar to the following:\n\nC:\\DOS\\SHARE.EXE "
              "/L:500\n\nIf you are unfamiliar with editing your AUTOEXEC.BAT file please contact "
              "our technical support department and we will assist you.",
          .title = "Error!",
          .icon = Icon::kCritical};
    case err::kNotADatabase:
      return {
          .advice =
              "\r\n\r\nThe database file has been damaged. This is very serious. The best solution "
              "is "
              "to restore from the last good backup that was created before the file was damaged. "
              "Sometimes data corruption can be fixed. From the File menu use the Repair routine "
              "followed by the Compress routine.",
          .title = "Possible Error!",
          .icon = Icon::kInformation};
    case err::kReportFileMissing:
      return {
          .advice =
              " Report File not located in default directory. This error indicates that a report "
              "file that Lotwise needs is missing. Please contact technical support.",
          .title = "Report File Missing",
          .icon = Icon::kInformation,
          .goes_on = true};
    case err::kPrintCancelled:
      return {
          .advice =
              " This error can sometimes be generated by clicking the Cancel button on the "
              "Printing "
              "screen. If this is the case you can continue your work. If you did not click the "
              "Cancel button on a Printing screen, then you should contact Tarnwick Software. "
              "(Please note what you were doing when this error occurred.)",
          .title = "Possible Error!",
          .icon = Icon::kInformation,
          .goes_on = true};
    case err::kNoDefaultPrinter:
      return {
          .advice =
              " You have not setup a default printer in Windows. This must be done before you can "
              "generate reports, even if the computer is not connected to a printer. Please setup "
              "a "
              "default printer and try again.",
          .title = "No Default Printer",
          .icon = Icon::kInformation,
          .goes_on = true};
    default:
      return {
          .advice =
              " The program will now shut down to prevent errors in your data and calculations.",
          .title = "Warning!",
          .icon = Icon::kCritical};
  }
}

void AppendLogEntry(Application& app, const std::string& header) {
  std::string path = app.ProgramFile(kErrorLogName);
  std::ofstream log(path, std::ios::binary | std::ios::app);
  if (!log) throw LwError(err::kPathFileAccess, "Path/File access error");
  log << Today(app.env()).ToDashed() << " -> " << header << "\r\n";
  log.close();
  if (!log) throw LwError(err::kPathFileAccess, "Path/File access error");
}

}  // namespace

std::string ErrorHeader(int number, std::string_view text, std::string_view location) {
  std::string header = std::string("An error has occurred in the ") + kProgramName + ".";
  header += "\n\nError Number:   " + std::to_string(number);
  header += "\nError Type:        " + std::string(text);
  header += "\nLocation:           " + std::string(location);
  header += "\n\n";
  return header;
}

bool HandleError(Application& app, int number, std::string_view text, std::string_view location) {
  try {
    std::string header = ErrorHeader(number, text, location);
    ErrorMessage message = ChooseMessage(number, text);
    bool result = message.goes_on;
    if (message.shown) {
      std::string shown = message.advice_only ? message.advice : header + message.advice;
      if (number == err::kOutOfMemory) {
        Answer answer = app.ui().MessageBox(shown, message.title, message.icon, Buttons::kOkCancel);
        result = answer == Answer::kOk;
      } else {
        app.ui().MessageBox(shown, message.title, message.icon, Buttons::kOk);
      }
    }
    if (!result) AppendLogEntry(app, header);
    return result;
  } catch (...) {
    app.ui().MessageBox("An error occurred in HandleError() while handling error " +
                            std::to_string(number) +
                            ". The program will now shut down to prevent errors in your data. "
                            "Please contact Tarnwick Software with this error message.",
                        "Fatal Error!", Icon::kCritical, Buttons::kOk);
    throw ProgramEnded{};
  }
}

bool ReportError(Application& app, const LwError& error, std::string_view location) {
  // Error numbers are 16-bit in the handler's table.
  int number = static_cast<int16_t>(error.number());
  if (!HandleError(app, number, error.text(), location)) throw ProgramEnded{};
  return true;
}

void ChkTransDate(Application& app, std::string_view date_text) {
  auto date = Date::Parse(date_text);
  if (!date) {
    app.ui().MessageBox("Please enter a date.", "WARNING", Icon::kExclamation, Buttons::kOk);
    return;
  }
  const Date earliest = Date::FromSerial(4750);
  if (*date < earliest) {
    app.ui().MessageBox("The date, " + std::string(date_text) + ", should not be earlier than " +
                            earliest.ToString() + "!",
                        "WARNING!", Icon::kExclamation, Buttons::kOk);
  }
}

}  // namespace lotwise
