// What drawing does to a pixel: the value and the draw mode, made once per call into one of a few writers.
// Every writer gives the same result however often it is used on a pixel, so that lines may be cut where they repeat.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "Drawing/DrawnPlane.h"
#include "Image/VectorRegisters.h"

namespace Drawing {

/// Draw modes; floating point pixels are replaced in all of them.
constexpr std::uint32_t ModeReplace = 0;
constexpr std::uint32_t ModeAnd = 1;
constexpr std::uint32_t ModeOr = 2;

/// Throws std::invalid_argument "Unsupported draw mode" for any other.
void RequireMode(std::uint32_t mode);

/// The value and the mode as given.
struct Pen {
    std::uint32_t Mode;
    double Value;
};

/// pixel = (pixel AND Keep) OR Add, on the Bytes that a pixel is stored in.
struct Ink {
    std::uint64_t Keep;
    std::uint64_t Add;
    std::intptr_t Bytes;
    bool Replaces() const { return Keep == 0; }
};
/// Throws for a mode or a type that can't be drawn, in this order.
Ink InkOf(TDataType type, const Pen &pen);

/// A plane with what to draw on it.
struct Canvas {
    DrawnPlane Plane;
    Ink Colour;
    /// Pixels of fewer bytes than they are stored in are written with care for what lies behind them: at most
    /// TrimmedBytes, and none from TrimmedEnd on. 0 for all others.
    std::intptr_t TrimmedBytes = 0;
    const char *TrimmedEnd = nullptr;
};
Canvas CanvasOf(const DrawnPlane &plane, const Pen &pen);
/// True when any two pixels have either all bytes in common or none, so that the order of writing does not matter.
/// Planes that are arranged otherwise are taken for ones where it does in doubt. Cost: one look at the whole table.
bool HasSeparatePixels(const Canvas &canvas);

template <class Word>
struct Replacer {
    static constexpr std::intptr_t Bytes = sizeof(Word);
    Word Value;
    ORV_INLINE void operator()(char *pixel) const { std::memcpy(pixel, &Value, sizeof Value); }
};

template <class Word>
struct Blender {
    static constexpr std::intptr_t Bytes = sizeof(Word);
    Word Keep, Add;
    ORV_INLINE void operator()(char *pixel) const {
        Word word;
        std::memcpy(&word, pixel, sizeof word);
        word = static_cast<Word>((word & Keep) | Add);
        std::memcpy(pixel, &word, sizeof word);
    }
};

struct TrimmedBlender {
    static constexpr std::intptr_t Bytes = 0; ///< never taken for dense
    std::uint64_t Keep, Add;
    std::intptr_t MostBytes;
    const char *End;
    void operator()(char *pixel) const {
        const auto count = static_cast<std::size_t>(std::min<std::intptr_t>(MostBytes, End - pixel));
        std::uint64_t word = 0;
        std::memcpy(&word, pixel, count);
        word = (word & Keep) | Add;
        std::memcpy(pixel, &word, count);
    }
};

/// Calls operation(writer) with the writer of a canvas.
template <class Operation>
void WithWriter(const Canvas &canvas, Operation &&operation) {
    const Ink &ink = canvas.Colour;
    const auto withWord = [&]<class Word>(Word) {
        if (ink.Replaces())
            operation(Replacer<Word>{static_cast<Word>(ink.Add)});
        else
            operation(Blender<Word>{static_cast<Word>(ink.Keep), static_cast<Word>(ink.Add)});
    };
    if (canvas.TrimmedBytes != 0)
        operation(TrimmedBlender{ink.Keep, ink.Add, canvas.TrimmedBytes, canvas.TrimmedEnd});
    else if (ink.Bytes == 1)
        withWord(std::uint8_t{});
    else if (ink.Bytes == 2)
        withWord(std::uint16_t{});
    else if (ink.Bytes == 4)
        withWord(std::uint32_t{});
    else
        withWord(std::uint64_t{});
}

} // namespace Drawing
