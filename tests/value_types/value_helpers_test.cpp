#include <gtest/gtest.h>

#include "app/value_helpers.h"

namespace lotwise {
namespace {

TEST(RoundDouble, Smoke) { EXPECT_DOUBLE_EQ(RoundDouble(1.005, 2), 1.01); }

}  // namespace
}  // namespace lotwise
