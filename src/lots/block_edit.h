#pragma once

#include <cstdint>

#include "ground/date.h"

namespace lotwise {

class Application;

// Re-dates block `block_no` of security `sec_id` and gives it the block id
// for its new date. Returns false when the user declines.
bool UpdateBlock(Application& app, int64_t sec_id, int64_t block_no, Date date);

// Deletes the block selected in the main window, with its transactions,
// after the user confirms.
void DeleteBlock(Application& app);

}  // namespace lotwise
