// The frames are images of their own: what makes them the planes of a stack is a list of their tables.
#include "frame_stack.h"

#include <algorithm>
#include <random>

namespace {

/// The middle of a picture with its contrast lessened, so that noise and spot stay within 0 to 255.
ImageHandle MiddleOf(void *grey) {
    const intptr_t width = std::min<intptr_t>(ImageWidth(grey), 800);
    const intptr_t height = std::min<intptr_t>(ImageHeight(grey), 600);
    const intptr_t left = (ImageWidth(grey) - width) / 2;
    const intptr_t top = (ImageHeight(grey) - height) / 2;
    const double lessContrast[] = {0.65, 45.0};
    ImageHandle middle, thing;
    Require(CreateImageMap(grey, left, top, left + width - 1, top + height - 1, width, height, middle.Out()),
            "CreateImageMap");
    Require(CreateLinearCombinationImage(middle.Get(), 0, lessContrast, thing.Out()) != 0,
            "CreateLinearCombinationImage");
    return thing;
}

Spot SpotIn(intptr_t frame, intptr_t width, intptr_t height) {
    const intptr_t radius = std::min(width / 24 - 1, height / 6);
    const intptr_t stride = width / frameCount;
    return {stride / 2 + frame * stride, height / 4 + frame * height / (2 * frameCount),
            std::max<intptr_t>(radius, 0)};
}

ImageHandle TakeFrame(void *thing, const Spot &spot, std::mt19937 &generator) {
    ImageHandle frame;
    Require(CreateDuplicateImage(thing, frame.Out()) != 0, "CreateDuplicateImage");
    const TPlaneRec plane = PlaneOf(frame.Get(), 0);
    for (intptr_t y = 0; y < plane.Height; ++y)
        for (intptr_t x = 0; x < plane.Width; ++x) {
            const int noise = static_cast<int>(generator() % (2 * mostNoise + 1)) - mostNoise;
            const int light = spot.Covers(x, y) ? spotBrightness : 0;
            unsigned char *const pixel = AddressOf(plane, x, y);
            *pixel = static_cast<unsigned char>(*pixel + noise + light);
        }
    return frame;
}

/// The sum of the frames goes beyond 8 bits.
ImageHandle AddUp(const std::vector<ImageHandle> &frames) {
    void *const first = frames.front().Get();
    ImageHandle sum;
    Require(CreateGenericImageDT(1, ImageWidth(first), ImageHeight(first), 16, sum.Out()), "CreateGenericImageDT");
    const TPlaneRec to = PlaneOf(sum.Get(), 0);
    std::vector<TPlaneRec> from;
    for (const ImageHandle &frame : frames)
        from.push_back(PlaneOf(frame.Get(), 0));
    for (intptr_t y = 0; y < to.Height; ++y)
        for (intptr_t x = 0; x < to.Width; ++x) {
            uint16_t value = 0;
            for (const TPlaneRec &plane : from)
                value = static_cast<uint16_t>(value + *AddressOf(plane, x, y));
            *reinterpret_cast<uint16_t *>(AddressOf(to, x, y)) = value;
        }
    return sum;
}

} // namespace

FrameStack TakeFrames(void *grey) {
    FrameStack stack;
    stack.thing = MiddleOf(grey);
    std::mt19937 generator(408);
    std::vector<void *> handles;
    for (intptr_t i = 0; i < frameCount; ++i) {
        stack.spots.push_back(SpotIn(i, ImageWidth(stack.thing.Get()), ImageHeight(stack.thing.Get())));
        stack.frames.push_back(TakeFrame(stack.thing.Get(), stack.spots.back(), generator));
        handles.push_back(stack.frames.back().Get());
    }
    Require(CreateConcatenatedImage(handles.data(), handles.size(), 1, stack.planes.Out()),
            "CreateConcatenatedImage");
    Require(CreateMinMaxImage(stack.planes.Get(), stack.minimum.Out(), stack.maximum.Out()) != 0,
            "CreateMinMaxImage");
    Require(CreateMeanVarianceImage(stack.planes.Get(), stack.mean.Out(), stack.deviation.Out()) != 0,
            "CreateMeanVarianceImage");
    stack.sum = AddUp(stack.frames);
    Require(MapTo8Bit(stack.sum.Get(), 1, stack.mapped.Out()) != 0, "MapTo8Bit");
    return stack;
}
