// Frames of one thing, as from a noisy camera in front of which a bright spot passes by, and what is made of them:
// minimum, maximum, mean and deviation at each pixel, and their sum.
#pragma once

#include "views.h"

inline constexpr intptr_t frameCount = 8;
inline constexpr int mostNoise = 6; ///< grey levels up or down
inline constexpr int spotBrightness = 30;

/// Where the spot is in a frame; it never touches a place twice. Without a radius where the frames are too small.
struct Spot {
    intptr_t x = 0;
    intptr_t y = 0;
    intptr_t radius = 0;

    bool Covers(intptr_t atX, intptr_t atY) const {
        return radius > 0 && (atX - x) * (atX - x) + (atY - y) * (atY - y) <= radius * radius;
    }
};

struct FrameStack {
    ImageHandle thing{}; ///< one plane: what all frames show, without noise and spot
    std::vector<ImageHandle> frames{};
    std::vector<Spot> spots{};
    ImageHandle planes{}; ///< the frames as the planes of one image, which shares their pixels
    ImageHandle minimum{};
    ImageHandle maximum{};
    ImageHandle mean{};
    ImageHandle deviation{};
    ImageHandle sum{};    ///< unsigned 16-bit pixels
    ImageHandle mapped{}; ///< the sum led back to 8 bits
};

/// Takes frames of the middle of a grey picture, of 800 x 600 pixels at most, always with the same noise.
FrameStack TakeFrames(void *grey);
