#include "Persistence/FileExtension.h"

#include <algorithm>
#include <stdexcept>

namespace Persistence {
namespace {

/// Touches the ASCII letters only, whatever the process's locale is.
char ToLower(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}
char ToUpper(char character) {
    return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A') : character;
}

} // namespace

std::string ExtensionForLoading(std::string_view path) {
    const std::size_t separator = path.find_last_of("/\\");
    const std::size_t searchStart = separator == std::string_view::npos ? 0 : separator;
    // Required: where nothing is found, the unsigned sum leads to the character in front of the separator, or, when
    // there is no such character, behind the end of the string.
    const std::size_t start = searchStart + path.substr(searchStart).find('.');
    if (start > path.size())
        throw std::out_of_range("basic_string::substr");
    std::string extension(path.substr(start));
    extension.resize(std::min(extension.size(), extension.find('.', 1)));
    std::transform(extension.begin(), extension.end(), extension.begin(), ToLower);
    return extension;
}

std::string ExtensionForWriting(std::string_view path) {
    constexpr std::size_t Length = 4;
    if (path.size() < Length)
        return {};
    std::string extension(path.substr(path.size() - Length));
    std::transform(extension.begin(), extension.end(), extension.begin(), ToUpper);
    return extension;
}

} // namespace Persistence
