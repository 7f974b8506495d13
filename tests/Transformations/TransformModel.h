/* Naive models of the geometric transforms: both samplers, the size of a result, the affine transform of an area, the
 * cut of a turned area and the transform by a function. One pixel at a time, through plain vectors.
 * How exports are called and compared with these models stands in TransformChecks.h. */
#ifndef ORV_TESTS_TRANSFORM_MODEL_H
#define ORV_TESTS_TRANSFORM_MODEL_H

#include "Matrices.h"
#include "Scan/MappingModel.h"

namespace TransformModel {

using namespace MappingModel;

template <class T>
struct ModelPlane {
    std::vector<T> Pixels;
    std::intptr_t Width, Height;
    bool Overlay; ///< of any plane of the image

    /// One column and row beyond the last repeat it.
    T At(std::intptr_t x, std::intptr_t y) const {
        x = std::min(x, Width - 1);
        y = std::min(y, Height - 1);
        return Pixels[static_cast<std::size_t>(y * Width + x)];
    }
    T WithOverlay(T result, T pixel) const {
        if constexpr (std::is_integral_v<T>)
            return Overlay ? static_cast<T>((result & static_cast<T>(~T{1})) | (pixel & T{1})) : result;
        else
            return result;
    }
};

/// What a pixel without a source gets where positions are fixed-point numbers.
template <class T>
T FixedOutside() {
    return sizeof(T) == 1 ? static_cast<T>(0x81) : static_cast<T>(0x7FFF);
}

/// What it gets where they are doubles.
template <class T>
T RealOutside() {
    if constexpr (std::is_integral_v<T> && std::is_unsigned_v<T>)
        return static_cast<T>(std::numeric_limits<T>::max() / 2);
    else
        return T{0};
}

template <class T>
T SampleReal(const ModelPlane<T> &plane, double x, double y) {
    const std::int32_t ix = CutTo32(x), iy = CutTo32(y);
    if (ix < 0 || ix >= plane.Width || iy < 0 || iy >= plane.Height)
        return RealOutside<T>();
    const double fx = x - ix, fy = y - iy;
    const auto pixel = [&](std::intptr_t i, std::intptr_t j) {
        return static_cast<double>(plane.At(ix + i, iy + j));
    };
    const double s = pixel(0, 0) * (1.0 - fx) * (1.0 - fy) + pixel(1, 0) * fx * (1.0 - fy) +
                     pixel(0, 1) * (1.0 - fx) * fy + pixel(1, 1) * fx * fy;
    return plane.WithOverlay(CutTo<T>(s + Range<T>::Rounding), plane.At(ix, iy));
}

/// sx, sy: the position in units of 1/16 pixel.
template <class T>
T SampleFixed(const ModelPlane<T> &plane, std::int64_t sx, std::int64_t sy) {
    const std::int64_t ix = sx >> 4, iy = sy >> 4, fx = sx & 15, fy = sy & 15;
    if (ix < 0 || ix >= plane.Width || iy < 0 || iy >= plane.Height)
        return FixedOutside<T>();
    const auto pixel = [&](std::int64_t i, std::int64_t j) {
        return static_cast<std::int64_t>(plane.At(ix + i, iy + j));
    };
    const std::int64_t s = (pixel(0, 0) * (16 - fx) + pixel(1, 0) * fx) * (16 - fy) + pixel(0, 1) * (16 - fx) * fy +
                           pixel(1, 1) * fx * fy;
    return plane.WithOverlay(static_cast<T>((s + 8) >> 8), plane.At(ix, iy));
}

/// An image as the models see it: read once, independent of the image from then on.
struct ModelSource {
    ImageSize Size{};
    std::vector<TDataType> Types;
    std::vector<PlaneBytes> Planes;
    bool Overlay = false;
    TCoordinateMap Coordinates = IdentityMap;

    explicit ModelSource(void *image) : Size(SizeOf(image)) {
        for (std::intptr_t plane = 0; plane < Size.Planes; ++plane) {
            Types.push_back(TypeOf(image, plane));
            Planes.push_back(PixelBytes(image, plane));
            Overlay = Overlay || (Types.back() != DataTypeNone && (Types.back() & DataTypeOverlay) != 0);
        }
        EXPECT_EQ(ImageInterface(image)->GetCoordinateMap(&Coordinates), 0);
    }

    /// The planes of a result, each pixel by sample(plane, x, y).
    template <class Sample>
    std::vector<PlaneBytes> Sampled(std::intptr_t width, std::intptr_t height, Sample sample) const {
        std::vector<PlaneBytes> results;
        for (std::size_t k = 0; k < Types.size(); ++k)
            ForPixelType(Types[k], [&](auto zero) {
                using T = decltype(zero);
                const ModelPlane<T> plane{ValuesOf<T>(Planes[k]), Size.Width, Size.Height, Overlay};
                std::vector<T> result;
                for (std::intptr_t y = 0; y < height; ++y)
                    for (std::intptr_t x = 0; x < width; ++x)
                        result.push_back(sample(plane, x, y));
                results.push_back(BytesOf(result));
            });
        return results;
    }
};

struct ModelResult {
    std::intptr_t Width, Height;
    std::vector<PlaneBytes> Planes;
    TCoordinateMap Coordinates;
};

/// 64-bit numbers; the map is moved so that the rectangle around the area begins at (0, 0).
inline bool ModelResultSize(const TArea &area, std::int64_t &width, std::int64_t &height, TCoordinateMap &map) {
    TRectangle around;
    BoundingRectangle(&around, area, map);
    width = CutTo64(std::floor(around.Right - around.Left + 1.0 + 0.5));
    height = CutTo64(std::floor(around.Bottom - around.Top + 1.0 + 0.5));
    if (!(std::fabs(MatrixDeterminant(map.Matrix)) > 1e-06))
        return false;
    map.X -= around.Left;
    map.Y -= around.Top;
    return true;
}

/// The four words of each index, in units of 1/256 pixel. A word that does not fit 32 bits is none.
class ModelTable {
public:
    using Word = std::optional<std::int64_t>;
    ModelTable(const TCoordinateMap &map, std::intptr_t length) {
        for (std::intptr_t n = 0; n < length; ++n) {
            const auto i = static_cast<double>(n);
            entries_.push_back({WordOf(i * map.Matrix.A11 + map.X), WordOf(i * map.Matrix.A12),
                                WordOf(i * map.Matrix.A21), WordOf(i * map.Matrix.A22 + map.Y)});
        }
    }
    Word SourceX(std::intptr_t x, std::intptr_t y) const { return Sum(At(x).XFromX, At(y).XFromY); }
    Word SourceY(std::intptr_t x, std::intptr_t y) const { return Sum(At(x).YFromX, At(y).YFromY); }

private:
    struct Entry {
        Word XFromX, XFromY, YFromX, YFromY;
    };
    std::vector<Entry> entries_;

    const Entry &At(std::intptr_t i) const { return entries_[static_cast<std::size_t>(i)]; }
    static Word WordOf(double pixels) {
        const double value = pixels * 16.0 * 16.0;
        if (!(value > -2147483649.0 && value < 2147483648.0))
            return std::nullopt;
        return static_cast<std::int64_t>(value);
    }
    static Word Sum(Word fromX, Word fromY) {
        if (!fromX || !fromY)
            return std::nullopt;
        const std::int64_t sum = *fromX + *fromY + 8;
        return sum == static_cast<std::int32_t>(sum) ? Word{sum} : std::nullopt;
    }
};

/// Each pixel through the map from the result to the source: fixed-point numbers for 8 and 16 bits, else doubles, the
/// terms of the row summed first.
inline std::vector<PlaneBytes> ModelAffinePixels(const ModelSource &source, std::intptr_t width, std::intptr_t height,
                                                 const TCoordinateMap &map) {
    const ModelTable table(map, std::max(width, height));
    return source.Sampled(width, height, [&](const auto &plane, std::intptr_t x, std::intptr_t y) {
        using T = typename std::remove_cvref_t<decltype(plane.Pixels)>::value_type;
        if constexpr (sizeof(T) <= 2) {
            const auto sx = table.SourceX(x, y), sy = table.SourceY(x, y);
            return sx && sy ? SampleFixed(plane, *sx >> 4, *sy >> 4) : FixedOutside<T>();
        } else {
            const auto i = static_cast<double>(x), j = static_cast<double>(y);
            return SampleReal(plane, i * map.Matrix.A11 + j * map.Matrix.A12 + map.X,
                              i * map.Matrix.A21 + j * map.Matrix.A22 + map.Y);
        }
    });
}

inline std::int64_t Reduced(std::int64_t extent, bool reduceSize) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(extent) - (reduceSize ? 1u : 0u));
}

/// Tests ask for results that are small or that no machine can hold.
inline bool IsBeyondMemory(std::int64_t width, std::int64_t height) {
    const double pixels = static_cast<double>(width) * static_cast<double>(height);
    if (pixels > 1e6 && pixels < 1e15)
        throw std::runtime_error("a test asks for a result that some machines can hold");
    return pixels >= 1e15;
}

/// None where the result can't be made. area: in pixels.
inline std::optional<ModelResult> ModelAffine(const ModelSource &source, const TArea &area, bool reduceSize,
                                              TCoordinateMap map) {
    std::int64_t width = 0, height = 0;
    if (!ModelResultSize(area, width, height, map))
        return std::nullopt;
    width = Reduced(width, reduceSize);
    height = Reduced(height, reduceSize);
    if (width == 0 || height == 0) {
        width = source.Size.Width;
        height = source.Size.Height;
    }
    if (width < 0 || height < 0 || IsBeyondMemory(width, height))
        return std::nullopt;
    TCoordinateMap backward, coordinates;
    if (!InverseCoordinateMap(&backward, map))
        return std::nullopt;
    ComposeCoordinateMaps(&coordinates, source.Coordinates, map);
    return ModelResult{width, height, ModelAffinePixels(source, width, height, backward), coordinates};
}

/// The whole image by a map.
inline std::optional<ModelResult> ModelWhole(const ModelSource &source, const TCoordinateMap &map) {
    TArea whole;
    SetRectArea(&whole, 0.0, 0.0, static_cast<double>(source.Size.Width), static_cast<double>(source.Size.Height));
    return ModelAffine(source, whole, true, map);
}

/// An area in image coordinates by a map.
inline std::optional<ModelResult> ModelArea(const ModelSource &source, const TArea &area, const TCoordinateMap &map) {
    TArea pixels;
    CoordinateMapTransformArea(&pixels, area, source.Coordinates);
    return ModelAffine(source, pixels, true, map);
}

/// An area in image coordinates, in the image's own coordinate system.
inline std::optional<ModelResult> ModelSubImage(const ModelSource &source, const TArea &area) {
    TArea pixels;
    CoordinateMapTransformArea(&pixels, area, source.Coordinates);
    TCoordinateMap inverse;
    if (!InverseCoordinateMap(&inverse, source.Coordinates))
        return std::nullopt;
    return ModelAffine(source, pixels, false, inverse);
}

/// Each pixel where position(&x, &y) leads.
template <class Position>
ModelResult ModelTransformed(const ModelSource &source, std::intptr_t width, std::intptr_t height,
                             Position position) {
    auto planes = source.Sampled(width, height, [&](const auto &plane, std::intptr_t i, std::intptr_t j) {
        auto x = static_cast<double>(i), y = static_cast<double>(j);
        position(&x, &y);
        return SampleReal(plane, x, y);
    });
    return {width, height, std::move(planes), IdentityMap};
}

/// The map from the result of a cut to the source, and the result's size before it is cut to whole numbers.
struct ModelCut {
    TCoordinateMap Map;
    double Width, Height;
};
inline ModelCut ModelCutOf(const ModelSource &source, const TArea &area) {
    const auto length = [](double dx, double dy) { return std::sqrt(dx * dx + dy * dy); };
    const double a = length(area.X2 - area.X0, area.Y2 - area.Y0) + 1.0;
    const double b = length(area.X1 - area.X0, area.Y1 - area.Y0) + 1.0;
    TArea q;
    CoordinateMapTransformArea(&q, area, source.Coordinates);
    return {{q.X0,
             q.Y0,
             {(q.X2 - q.X0 + 1.0) / a, (q.X1 - q.X0 + 1.0) / b, (q.Y2 - q.Y0 + 1.0) / a, (q.Y1 - q.Y0 + 1.0) / b}},
            a,
            b};
}

/// For areas that can be cut.
inline ModelResult ModelAreaSubImage(const ModelSource &source, const TArea &area) {
    const ModelCut cut = ModelCutOf(source, area);
    const TMatrix &m = cut.Map.Matrix;
    return ModelTransformed(source, CutTo64(cut.Width + 0.5), CutTo64(cut.Height + 0.5), [&](double *x, double *y) {
        const double oldX = *x, oldY = *y;
        *x = m.A11 * oldX + m.A12 * oldY + cut.Map.X;
        *y = m.A21 * oldX + m.A22 * oldY + cut.Map.Y;
    });
}

} // namespace TransformModel

#endif
