#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace lotwise {

class Application;
class Database;

// What GetSecInfoFromCDB answers for a symbol the file does not hold;
// callers show it in place of the name.
inline constexpr const char* kSymbolNotInCentral = "SYMBOL DOES NOT EXIST IN SECURITY SYMBOLS FILE";
// The CUSIP of a security whose CUSIP is not known; never a duplicate.
inline constexpr const char* kNoCusip = "NO CUSIP";

// Opens the Security Symbols File at `path` shared and read-write into
// app.central, then walks it up to the current data version.
void OpenCDB(Application& app, const std::string& path);
// Closes app.central if it is open.
void CloseCDB(Application& app);

// Adds a security to the Security Symbols File after the duplicate checks
// (an existing symbol is refused; a shared name or CUSIP needs the user's
// OK). Returns true iff the row was added.
bool AddSecToCDB(Application& app, const std::string& symbol, const std::string& name,
                 std::string& cusip);
// Changes the name and CUSIP of an existing symbol. Returns true iff done.
bool ModSecInCDB(Application& app, const std::string& symbol, const std::string& name,
                 const std::string& cusip);
// Deletes the symbol's row. Returns true iff no error occurred.
bool DelSecFromCDB(Application& app, const std::string& symbol);
// True iff the file holds `symbol` (compared as the key column compares).
bool CentralHasSymbol(Database& central, const std::string& symbol);
// Sets the name / the CUSIP of the symbol's row; returns the rows changed.
int64_t SetCentralSecName(Database& central, const std::string& symbol, const std::string& name);
int64_t SetCentralSecCusip(Database& central, const std::string& symbol, const std::string& cusip);
// Returns the field ("[Sec Name]", "CUSIP", "[Sec Symbol]") of the symbol's
// row, or kSymbolNotInCentral when there is none.
std::string GetSecInfoFromCDB(Application& app, const std::string& symbol, std::string_view field);
// Returns true iff no security other than `symbol` (exact comparison; empty
// text for a security not yet stored) carries `name`, or the user answers
// OK to the "Name already exists" question.
bool ConfirmSharedSecName(Application& app, Database& central, const std::string& name,
                          const std::string& symbol);
// As ConfirmSharedSecName for the CUSIP ("CUSIP already exists"); "NO CUSIP"
// is never shared.
bool ConfirmSharedSecCusip(Application& app, Database& central, const std::string& cusip,
                           const std::string& symbol);

// Counts one program start.
void AddUsage(Application& app, Database& central);

// One security of the Security Symbols File.
struct CentralSecurity {
  std::string symbol;
  std::string name;
  std::string cusip;
};
// Every security of the Security Symbols File, in symbol order.
std::vector<CentralSecurity> ListCentralSecurities(Database& central);
// Returns the number of program starts counted so far (0 after an error).
int32_t GetUsageCount(Application& app);

}  // namespace lotwise
