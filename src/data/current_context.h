#pragma once

#include <string>
#include <string_view>

#include "ground/current_context.h"

namespace lotwise {

class Application;

// Reloads the taxpayer part of the context from the open Taxpayer File.
void UpdateCurrClient(Application& app, std::string_view file_name, std::string_view code);
// Reloads the portfolio part of the context and the portfolio panel.
void UpdateCurrPort(Application& app, std::string_view port_name);
// "[Client Name]", "[Sort Name]", "[Client Code]", "[2nd Line]", "[Year End]";
// any other field name gives empty text.
std::string GetCurrClientInfo(const Application& app, std::string_view field);
// "[Port Name]", "[2nd Line]", "[Client Code]"; anything else, empty text.
std::string GetCurrPortInfo(const Application& app, std::string_view field);
// The full path of the open Taxpayer File.
std::string GetCurrClientDBName(const Application& app);

}  // namespace lotwise
