#include "Persistence/StreamText.h"

#include <algorithm>
#include <cstring>

#include "Persistence/Tree/StreamBytes.h"

namespace Persistence {
namespace {

std::uint64_t LengthOf(const char *text) {
    return text == nullptr ? 0 : std::strlen(text) + 1;
}

void WriteText(CtkStream &stream, std::uint64_t lengthField, const char *text) {
    WriteValue(stream, lengthField);
    if (text != nullptr)
        WriteExactly(stream, text, LengthOf(text));
}

/// The length may claim anything: the block grows with what has really come.
StreamText ReadText(CtkStream &stream, std::size_t length) {
    constexpr std::size_t firstPortion = 4096;
    StreamText text;
    for (std::size_t loaded = 0; loaded < length;) {
        const std::size_t portion = std::min(length - loaded, std::max(loaded, firstPortion));
        auto *grown = static_cast<char *>(std::realloc(text.get(), loaded + portion));
        if (grown == nullptr)
            throw CtkExceptionObject("Impossible to load TBuffer.");
        static_cast<void>(text.release());
        text.reset(grown);
        ReadExactly(stream, grown + loaded, portion);
        loaded += portion;
    }
    return text;
}

} // namespace

void WriteCString(CtkStream &stream, const char *text) {
    WriteText(stream, LengthOf(text), text);
}

void WriteCStringBigEndian(CtkStream &stream, const char *text) {
    WriteText(stream, __builtin_bswap32(static_cast<std::uint32_t>(LengthOf(text))), text);
}

// Required: of the 8 bytes of a written length the readers take 4; whoever reads both skips the rest.
StreamText ReadCString(CtkStream &stream) {
    return ReadText(stream, ReadValue<std::uint32_t>(stream));
}

StreamText ReadCStringBigEndian(CtkStream &stream) {
    return ReadText(stream, __builtin_bswap32(ReadValue<std::uint32_t>(stream)));
}

} // namespace Persistence
