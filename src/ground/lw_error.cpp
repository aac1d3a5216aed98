#include "ground/lw_error.h"

#include <filesystem>
#include <new>
#include <system_error>

#include "ground/program_ended.h"

namespace lotwise {

namespace {

int FileSystemErrorNumber(const std::error_code& code) {
  if (code == std::errc::no_such_file_or_directory || code == std::errc::not_a_directory) {
    return err::kPathNotFound;
  }
  if (code == std::errc::no_such_device || code == std::errc::no_such_device_or_address ||
      code == std::errc::io_error) {
    return err::kDeviceUnavailable;
  }
  return err::kPathFileAccess;
}

}  // namespace

LwError CurrentError() {
  try {
    throw;
  } catch (const ProgramEnded&) {
    // The end of the program is no error to report: it goes on unwinding.
    throw;
  } catch (const LwError& e) {
    return e;
  } catch (const std::bad_alloc&) {
    return LwError(err::kOutOfMemory, "Out of memory");
  } catch (const std::filesystem::filesystem_error& e) {
    return LwError(FileSystemErrorNumber(e.code()), e.what());
  } catch (const std::system_error& e) {
    return LwError(FileSystemErrorNumber(e.code()), e.what());
  } catch (const std::exception& e) {
    return LwError(err::kUnexpected, e.what());
  } catch (...) {
    return LwError(err::kUnexpected, "Unknown error");
  }
}

}  // namespace lotwise
