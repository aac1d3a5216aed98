#include <gtest/gtest.h>

#include <fstream>

#include "app/app_state.h"
#include "app/error_handler.h"
#include "data/taxpayer_file.h"
#include "taxpayer_fixture.h"

namespace lotwise::testing {
namespace {

// A Taxpayer File that is no database, or a damaged one, reaches the user
// as the error handler's message for it; the program stops only where that message says
// so, and neither file gains a row.
class DamagedFileTest : public TaxpayerTest {
 protected:
  void SetUp() override {
    TaxpayerTest::SetUp();
    WriteTaxpayerFile("DOE0101.mdb", "DOE01", "John Doe");
    path_ = app_->taxpayer_folder + "DOE0101.mdb";
    TaxpayerIndex("DOE01", "John Doe", "Doe, John", "DOE0101.mdb");
  }

  // Overwrites the file from byte `from` on, keeping its length.
  void Scribble(std::streamoff from) {
    std::fstream file(path_, std::ios::in | std::ios::out | std::ios::binary);
    file.seekg(0, std::ios::end);
    std::streamoff size = file.tellg();
    file.seekp(from);
    file << std::string(static_cast<size_t>(size - from), '\xA5');
  }

  std::string path_;
};

TEST_F(DamagedFileTest, NotADatabase_PossibleErrorAndStop) {
  Scribble(0);
  ui_.Expect(ErrorHeader(3343, "Unrecognized database format '" + path_ + "'.", "OpenClient") +
                 "\r\n\r\nThe database file has been damaged. This is very serious. The best "
                 "solution is to restore from the last good backup that was created before the "
                 "file was damaged. Sometimes data corruption can be fixed. From the File menu use "
                 "the Repair routine followed by the Compress routine.",
             "Possible Error!", Icon::kInformation, Buttons::kOk);
  EXPECT_THROW(OpenClient(*app_, "DOE01"), ProgramEnded);
  EXPECT_EQ(app_->client, nullptr);
}

TEST_F(DamagedFileTest, DamagedPages_WarningAndCarryOn) {
  // The 100-byte header survives, so SQLite knows the file as its own and
  // finds the pages behind it damaged.
  Scribble(100);
  ui_.Expect(
      "the file being accessed has been damaged. You will need to Repair and Compress the file "
      "before using it. These options are available under the File menu.\nIf you are running "
      "reports, please follow the instructions above, AND restart the Lotwise before trying to "
      "run reports again.",
      "Warning!", Icon::kInformation, Buttons::kOk);
  EXPECT_FALSE(OpenClient(*app_, "DOE01"));
  EXPECT_EQ(env_->end_calls(), 0);
  EXPECT_EQ(app_->client, nullptr);
  EXPECT_EQ(State(*app_, kStateQuery), kClientClosed);
  EXPECT_EQ(CentralRow("DOE01"), "John Doe|Doe, John|DOE01|DOE0101.mdb");
  EXPECT_EQ(app_->central->IntegrityCheck(), "ok");
}

}  // namespace
}  // namespace lotwise::testing
