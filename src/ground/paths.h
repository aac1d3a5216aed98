#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lotwise {

// The platform's folder separator; folder values end with one.
inline constexpr char kSeparator = '/';

// Returns the folder with one separator at its end ("\" also counts).
std::string WithTrailingSeparator(std::string_view folder);

// Joins a folder and a name with exactly one separator between them.
std::string JoinPath(std::string_view folder, std::string_view name);

// Upper-cases ASCII letters; other bytes stay as they are.
std::string ToUpperAscii(std::string_view text);

// Returns true iff a file (not a folder) exists at the path.
bool FileExists(const std::string& path);

// Names of the files in `folder` whose names match `pattern` ("*.mdb",
// "~*.mdb"): "*" matches any run, "?" one character, letters without regard
// to case. Sorted by name.
std::vector<std::string> ListFiles(const std::string& folder, std::string_view pattern);

}  // namespace lotwise
