#pragma once

#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "ground/lw_error.h"
#include "ground/program_ended.h"

namespace lotwise {

class Application;

// Returns the header every error message and log entry starts with.
std::string ErrorHeader(int number, std::string_view text, std::string_view location);

// The central error handler: tells the user about the error chosen by its
// number, logs it to "LWERR.LOG" when the program must stop, and returns
// true iff the program may carry on. An error inside the handler itself
// shows "Fatal Error!" and ends the program (throws ProgramEnded).
bool HandleError(Application& app, int number, std::string_view text, std::string_view location);

// Hands `error` to HandleError under `location`. Returns true when the
// program may carry on; otherwise it ends: throws ProgramEnded.
bool ReportError(Application& app, const LwError& error, std::string_view location);

// Runs `body`; any exception it lets out is reported under `location`
// (ReportError) and `failure` is returned instead. Procedures first catch
// the errors they expect inside `body` and rethrow the rest. The end of the
// program passes through untouched.
template <class Body, class Result>
Result Trap(Application& app, std::string_view location, Result failure, Body&& body) {
  try {
    return std::forward<Body>(body)();
  } catch (const ProgramEnded&) {
    throw;
  } catch (...) {
    ReportError(app, CurrentError(), location);
    return failure;
  }
}

// As Trap, for procedures that return nothing.
template <class Body>
void TrapVoid(Application& app, std::string_view location, Body&& body) {
  try {
    std::forward<Body>(body)();
  } catch (const ProgramEnded&) {
    throw;
  } catch (...) {
    ReportError(app, CurrentError(), location);
  }
}

// Warns when a typed transaction date is no date or earlier than 1/1/1913.
// Blocks nothing: the caller goes on either way.
void ChkTransDate(Application& app, std::string_view date_text);

}  // namespace lotwise
