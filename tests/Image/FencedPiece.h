/* A piece of memory that touches an unreadable page on one side. What is left of its pages on the other side holds a
 * mark, which tells whether somebody wrote there. */
#ifndef ORV_TESTS_FENCED_PIECE_H
#define ORV_TESTS_FENCED_PIECE_H

#include "Support/ImageAccess.h"

namespace TestSupport {

class FencedPiece {
public:
    /// capacity: whole pages.
    FencedPiece(std::size_t capacity, FencedBlock::Fence fence)
        : block(capacity, fence), capacityBytes(capacity), side(fence) {}

    /// A fresh piece of some bytes, all holding the mark.
    std::uint8_t *Take(std::size_t bytes) {
        if (bytes > capacityBytes)
            throw std::runtime_error("a test takes more memory than there is");
        std::fill_n(block.Data(), capacityBytes, Mark);
        length = bytes;
        start = side == FencedBlock::Fence::Behind ? capacityBytes - bytes : 0;
        return block.Data() + start;
    }
    std::vector<std::uint8_t> Content() const { return {block.Data() + start, block.Data() + start + length}; }
    bool RestIsUnwritten() const {
        const auto isMark = [](std::uint8_t byte) { return byte == Mark; };
        return std::all_of(block.Data(), block.Data() + start, isMark) &&
               std::all_of(block.Data() + start + length, block.Data() + capacityBytes, isMark);
    }

private:
    static constexpr std::uint8_t Mark = 0x5B;
    FencedBlock block;
    std::size_t capacityBytes;
    FencedBlock::Fence side;
    std::size_t start = 0;
    std::size_t length = 0;
};

} // namespace TestSupport

#endif
