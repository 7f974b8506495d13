// The part of a file's name that chooses its format. Reading and writing look at different parts.
#pragma once

#include <string>
#include <string_view>

namespace Persistence {

/// The extension in lower case: from the first "." behind the last separator ("/" or "\\") up to the next ".".
/// A name without "." there gives what no format is called, two characters or more of which the second is the
/// separator; one that has no separator either, or has it at its very front, raises std::out_of_range with the text
/// "basic_string::substr".
std::string ExtensionForLoading(std::string_view path);

/// The last four characters in upper case; empty for a shorter path.
std::string ExtensionForWriting(std::string_view path);

} // namespace Persistence
