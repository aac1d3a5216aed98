#pragma once

#include <cstdint>

#include "ground/window_state.h"

namespace lotwise {

class Application;

// Moves the application to `new_state` (1 to 4), or sets 0 without any
// display change, or (kStateQuery) only reads it. Any other value is refused
// with the "Incorrect Usage!" message. Returns the state after the call.
int16_t State(Application& app, int16_t new_state);

// Flip the tool bar's / help bar's check mark and show or hide the bar.
void ToggleToolBar(Application& app);
void ToggleHelpBar(Application& app);
// Flip the check marks of mnuShowToolTips and mnuOpenOnlyPort.
void ToggleToolTips(Application& app);
void ToggleOpenOnlyPort(Application& app);
// Flips the check mark of mnuRecalcShares; turned on while a security is
// shown, its total is computed at once instead of waiting for a click.
void ToggleRecalcShares(Application& app);

}  // namespace lotwise
