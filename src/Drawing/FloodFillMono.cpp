// FloodFillMono: fills a region around a point, up to pixels of the value that is written.
#include "Drawing.h"
#include "Drawing/DrawingFrame.h"
#include "Drawing/DrawnPlane.h"
#include "Drawing/FloodRegion.h"
#include "Drawing/Ink.h"

namespace Drawing::FloodFill {
namespace {

constexpr const char *FunctionName = "FloodFillMono";

// Required: one word per pixel type for the whole process, that of the first fill that writes a pixel of the type.
// The boundary goes by the value of each call.
template <class T>
T FillWord(const AnyBoundary &boundary, TDataType type) {
    static const T word = PixelValueOf<T>(boundary.Logic.Value, Image::BitsOf(type));
    return word;
}

template <class T>
void FillLinearOrTable(const DrawnPlane &plane, orvBase::Point start, const AnyBoundary &boundary) {
    using Pixel = typename Scan::Loose<T>::Type;
    if (boundary(T{*reinterpret_cast<const Pixel *>(plane.Pixel(start.X, start.Y))}))
        return;
    const Image::TableSteps steps = Image::CommonSteps({plane.Table, plane.Width, plane.Table, plane.Height});
    const Image::PlaneView view = {plane.Base,   plane.Table, plane.Table, plane.Width,
                                   plane.Height, sizeof(T),   steps.X,     steps.Y};
    FillRegion(view, start, boundary, FillWord<T>(boundary, plane.Type));
}

/// Pixels of fewer bytes than T has, as an array of T.
template <class T>
class WidenedPixels {
public:
    explicit WidenedPixels(const Canvas &canvas)
        : canvas_(canvas), pixels_(static_cast<std::size_t>(canvas.Plane.Width * canvas.Plane.Height)),
          table_(static_cast<std::size_t>(std::max(canvas.Plane.Width, canvas.Plane.Height))) {
        constexpr auto bytes = static_cast<std::intptr_t>(sizeof(T));
        for (std::size_t i = 0; i < table_.size(); ++i) {
            const auto place = static_cast<std::intptr_t>(i);
            table_[i] = {place * bytes, place * bytes * canvas.Plane.Width};
        }
        ForEach([](T &pixel, char *stored, std::size_t count) { std::memcpy(&pixel, stored, count); });
    }

    Image::PlaneView View() {
        const DrawnPlane &plane = canvas_.Plane;
        constexpr auto bytes = static_cast<std::intptr_t>(sizeof(T));
        return {reinterpret_cast<char *>(pixels_.data()),
                table_.data(),
                table_.data(),
                plane.Width,
                plane.Height,
                bytes,
                bytes,
                bytes * plane.Width};
    }
    /// Stores the pixels again that are equal to a word.
    void Store(T word) {
        ForEach([word](const T &pixel, char *stored, std::size_t count) {
            if (std::memcmp(&pixel, &word, sizeof word) == 0)
                std::memcpy(stored, &pixel, count);
        });
    }

private:
    template <class Visit>
    void ForEach(const Visit &visit) {
        const DrawnPlane &plane = canvas_.Plane;
        for (std::intptr_t y = 0; y < plane.Height; ++y)
            for (std::intptr_t x = 0; x < plane.Width; ++x) {
                char *const stored = plane.Pixel(x, y);
                const auto count = std::min<std::intptr_t>(canvas_.TrimmedBytes, canvas_.TrimmedEnd - stored);
                visit(pixels_[static_cast<std::size_t>(y * plane.Width + x)], stored,
                      static_cast<std::size_t>(count));
            }
    }

    Canvas canvas_;
    std::vector<T> pixels_;
    std::vector<VPAEntry> table_;
};

template <class T>
void FillWidened(const Canvas &canvas, orvBase::Point start, const AnyBoundary &boundary) {
    WidenedPixels<T> pixels(canvas);
    const Image::PlaneView view = pixels.View();
    if (boundary(*reinterpret_cast<const T *>(view.Pixel(start.X, start.Y))))
        return;
    const T word = FillWord<T>(boundary, canvas.Plane.Type);
    FillRegion(view, start, boundary, word);
    pixels.Store(word);
}

template <class T>
void Fill(const DrawnPlane &plane, orvBase::Point start, const AnyBoundary &boundary) {
    if (!plane.Contains(start.X, start.Y))
        return;
    const Canvas canvas = CanvasOf(plane, {ModeReplace, boundary.Logic.Value});
    if (canvas.TrimmedBytes == 0)
        FillLinearOrTable<T>(plane, start, boundary);
    else
        FillWidened<T>(canvas, start, boundary);
}

} // namespace
} // namespace Drawing::FloodFill

int32_t FloodFillMono(void *image, intptr_t plane, intptr_t x, intptr_t y, double value, double tolerance) {
    using namespace Drawing;
    return RunOnImage(image, FloodFill::FunctionName, [=](pOLE::IImageVPA &held) {
        const DrawnPlane drawn = PlaneOf(held, plane);
        const FloodFill::AnyBoundary boundary = {{value, tolerance}};
        ForDrawnType(drawn.Type, [&]<class T>() { FloodFill::Fill<T>(drawn, {LowWord(x), LowWord(y)}, boundary); });
    });
}
