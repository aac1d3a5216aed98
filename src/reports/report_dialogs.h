#pragma once

namespace lotwise {

class Application;

// The report option dialogs of the Reports menu, each with View (screen),
// Print and Cancel, and the about box.
void ShowTaxpayerListingDialog(Application& app);
void ShowSecListingDialog(Application& app);
void ShowTransListingDialog(Application& app);
void ShowBasisAnalysisDialog(Application& app);
void ShowScheduleDDialog(Application& app);
void ShowAbout(Application& app);

// Help > Contents and Help on Help: the manual shipped with the program.
void ShowHelpContents(Application& app);
void ShowHelpOnHelp(Application& app);

}  // namespace lotwise
