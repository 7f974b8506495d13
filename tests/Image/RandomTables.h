/* Images of random size whose tables come from twenty families of layouts, over a block with bytes in front and
 * behind that no pixel has. What pitches can describe is at times an image over a pointer, all else of the tests' own
 * class. */
#ifndef ORV_TESTS_RANDOM_TABLES_H
#define ORV_TESTS_RANDOM_TABLES_H

#include "Image/ViewSupport.h"
#include "ImageCreation.h"

#include <memory>
#include <random>

namespace TestSupport {

using Random = std::mt19937_64;

/// A number of [low, high].
inline std::intptr_t Draw(Random &random, std::intptr_t low, std::intptr_t high) {
    return low + static_cast<std::intptr_t>(random() % static_cast<std::uint64_t>(high - low + 1));
}
inline bool OneIn(Random &random, std::intptr_t count) {
    return Draw(random, 1, count) == 1;
}

enum class Family {
    Planar,
    Padded,
    Interleaved,
    InterleavedAnyOrder,
    InterleavedWithGap, ///< three planes in pixels of four, and the like
    InterleavedOpposed, ///< the rows of every other plane run the other way
    ByLine,             ///< a line of each plane in turn
    Mirrored,
    BottomUp,
    TurnedAround,
    ColumnsFirst,
    ColumnsFirstReversed,
    Rescaled,
    Scattered,
    OverlappingPitches,
    EveryRowTheSame,
    EveryColumnTheSame,
    SharedMemory, ///< all planes are one
    AnySteps,
    EachPlaneOtherwise
};
inline constexpr int FamilyCount = 20;
inline constexpr const char *FamilyNames[FamilyCount] = {"planar",
                                                         "padded",
                                                         "interleaved",
                                                         "interleaved in any order",
                                                         "interleaved with a gap",
                                                         "interleaved, rows opposed",
                                                         "by line",
                                                         "mirrored",
                                                         "bottom-up",
                                                         "turned around",
                                                         "columns first",
                                                         "columns first reversed",
                                                         "rescaled",
                                                         "scattered",
                                                         "overlapping pitches",
                                                         "every row the same",
                                                         "every column the same",
                                                         "shared memory",
                                                         "any steps",
                                                         "each plane otherwise"};

struct ImageForm {
    Family Kind;
    std::intptr_t Width, Height;
    std::vector<TDataType> Types; ///< one per plane
};

/// Where the columns and rows of a plane stand.
struct PlaneOffsets {
    Offsets X, Y;
};

inline Offsets Steps(std::intptr_t count, std::intptr_t start, std::intptr_t step) {
    Offsets offsets;
    for (std::intptr_t i = 0; i < count; ++i)
        offsets.push_back(start + i * step);
    return offsets;
}

class RandomImage {
public:
    static constexpr std::intptr_t Margin = 48;

    RandomImage(const ImageForm &form, Random &random) : Form(form) {
        LayOut(random);
        std::intptr_t lowest = 0, highest = 0;
        for (const PlaneOffsets &plane : planes) {
            lowest = std::min(lowest, *std::min_element(plane.X.begin(), plane.X.end()) +
                                          *std::min_element(plane.Y.begin(), plane.Y.end()));
            highest = std::max(highest, *std::max_element(plane.X.begin(), plane.X.end()) +
                                            *std::max_element(plane.Y.begin(), plane.Y.end()));
        }
        Block.resize(static_cast<std::size_t>(highest - lowest + size + 2 * Margin));
        Build(Block.data() + Margin - lowest, random);
    }
    void *Get() const { return fake ? fake->Handle() : external.Get(); }
    void Fill(Random &random) {
        for (std::size_t i = 0; i < Block.size(); i += 8) {
            const std::uint64_t word = random();
            std::memcpy(Block.data() + i, &word, std::min<std::size_t>(8, Block.size() - i));
        }
    }
    /// True for an image over a pointer.
    bool IsExternal() const { return fake == nullptr; }

    ImageForm Form;
    PlaneBytes Block;

private:
    struct Pitches {
        std::intptr_t X, Y, Plane;
        std::vector<std::intptr_t> Order; ///< plane numbers by address
    };

    std::intptr_t Count() const { return static_cast<std::intptr_t>(Form.Types.size()); }

    /// The plane numbers from the first on.
    std::vector<std::intptr_t> PlainOrder() const {
        std::vector<std::intptr_t> order(Form.Types.size());
        std::iota(order.begin(), order.end(), std::intptr_t{0});
        return order;
    }

    void ByPitches(std::intptr_t x, std::intptr_t y, std::intptr_t plane) { ByPitches(x, y, plane, PlainOrder()); }
    void ByPitches(std::intptr_t x, std::intptr_t y, std::intptr_t plane, const std::vector<std::intptr_t> &order) {
        std::intptr_t start = 0;
        for (const std::intptr_t number : order) {
            planes[static_cast<std::size_t>(number)] = {Steps(Form.Width, start, x), Steps(Form.Height, 0, y)};
            start += plane;
        }
        pitches = std::make_unique<Pitches>(Pitches{x, y, plane, order});
    }

    /// True when CreateImageFromPointer takes the layout.
    bool IsMadeOfPitches() const {
        const auto suits = [this](std::intptr_t pitch, std::intptr_t count) {
            return count == 1 || std::abs(pitch) >= size;
        };
        return pitches && suits(pitches->X, Form.Width) && suits(pitches->Y, Form.Height) &&
               suits(pitches->Plane, Count());
    }

    void LayOut(Random &random) {
        planes.resize(Form.Types.size());
        for (const TDataType type : Form.Types)
            size = std::max(size, static_cast<std::intptr_t>(PixelSize(type)));
        const bool oneType = std::all_of(Form.Types.begin(), Form.Types.end(),
                                         [this](TDataType type) { return type == Form.Types.front(); });
        if (Form.Kind == Family::EachPlaneOtherwise || (!oneType && OneIn(random, 2)))
            LayOutEachOtherwise(random);
        else if (Form.Kind <= Family::InterleavedOpposed)
            LayOutTogether(random);
        else
            LayOutInOtherWays(random);
        if (!oneType)
            pitches = nullptr;
    }

    void LayOutTogether(Random &random) {
        const std::intptr_t row = Form.Width * size;
        const std::intptr_t group = size * Count();
        const std::intptr_t padded = row + Draw(random, 1, 9);
        std::vector<std::intptr_t> order = PlainOrder();
        std::shuffle(order.begin(), order.end(), random);
        switch (Form.Kind) {
        case Family::Planar:
            return ByPitches(size, row, row * Form.Height);
        case Family::Padded:
            return ByPitches(size, padded, padded * Form.Height);
        case Family::Interleaved:
            return ByPitches(group, group * Form.Width + (OneIn(random, 3) ? 5 : 0), size);
        case Family::InterleavedAnyOrder:
            return ByPitches(group, group * Form.Width * (OneIn(random, 4) ? -1 : 1), size, order);
        case Family::InterleavedWithGap:
            return ByPitches(group + size, (group + (OneIn(random, 4) ? 0 : size)) * Form.Width, size);
        default: {
            ByPitches(group, group * Form.Width, size);
            const bool fromOneRow = OneIn(random, 2); // the first pixels then stand side by side
            for (std::size_t plane = 1; plane < planes.size(); plane += 2)
                if (fromOneRow)
                    planes[plane].Y = Steps(Form.Height, 0, -pitches->Y);
                else
                    std::reverse(planes[plane].Y.begin(), planes[plane].Y.end());
            pitches = nullptr;
        }
        }
    }

    void LayOutInOtherWays(Random &random) {
        const std::intptr_t row = Form.Width * size;
        const std::intptr_t column = Form.Height * size;
        switch (Form.Kind) {
        case Family::ByLine:
            return ByPitches(size, row * Count(), row);
        case Family::Mirrored:
            return ByPitches(-size, row, row * Form.Height);
        case Family::BottomUp:
            return ByPitches(size, -row - (OneIn(random, 3) ? 4 : 0), row * Form.Height);
        case Family::TurnedAround:
            return ByPitches(-size, -row, row * Form.Height);
        case Family::ColumnsFirst:
            return ByPitches(column * (OneIn(random, 2) ? 1 : -1), size, row * Form.Height);
        case Family::ColumnsFirstReversed:
            return ByPitches(column * (OneIn(random, 2) ? 1 : -1), -size, row * Form.Height);
        case Family::OverlappingPitches:
            return ByPitches(Draw(random, size, 2 * size), Draw(random, size, row + size), Draw(random, size, row));
        case Family::EveryRowTheSame:
            return ByPitches(size, 0, row);
        case Family::EveryColumnTheSame:
            return ByPitches(0, size, column);
        case Family::SharedMemory:
            return ByPitches(size * (OneIn(random, 2) ? 1 : Count()), row * Count(), 0);
        case Family::AnySteps:
            return ByPitches(Draw(random, -20, 20), Draw(random, -90, 90), Draw(random, -70, 70));
        default:
            for (std::size_t plane = 0; plane < planes.size(); ++plane)
                LayOutAlone(plane, Form.Kind == Family::Rescaled ? 6 : 5, random);
        }
    }

    void LayOutEachOtherwise(Random &random) {
        for (std::size_t plane = 0; plane < planes.size(); ++plane)
            LayOutAlone(plane, Draw(random, 0, 6), random);
    }

    /// A plane behind the one before it.
    void LayOutAlone(std::size_t plane, std::intptr_t kind, Random &random) {
        const auto bytes = static_cast<std::intptr_t>(PixelSize(Form.Types[plane]));
        const std::intptr_t row = Form.Width * bytes;
        const std::intptr_t start = static_cast<std::intptr_t>(plane) * Form.Width * Form.Height * size;
        PlaneOffsets &to = planes[plane];
        to.X = Steps(Form.Width, start, bytes);
        to.Y = Steps(Form.Height, 0, row);
        if (kind == 1 || kind == 3)
            std::reverse(to.X.begin(), to.X.end());
        if (kind == 2 || kind == 3)
            std::reverse(to.Y.begin(), to.Y.end());
        if (kind == 4)
            to = {Steps(Form.Width, start, Form.Height * bytes), Steps(Form.Height, 0, bytes)};
        if (kind == 5 && !OneIn(random, 3))
            std::shuffle(to.X.begin(), to.X.end(), random);
        if (kind == 5 && !OneIn(random, 3))
            std::shuffle(to.Y.begin(), to.Y.end(), random);
        if (kind == 6)
            Rescale(to, random);
    }

    /// Repeats and leaves out columns and rows, as a scaled view of the plane does.
    static void Rescale(PlaneOffsets &plane, Random &random) {
        for (Offsets *axis : {&plane.X, &plane.Y}) {
            const Offsets before = *axis;
            const auto count = static_cast<std::intptr_t>(before.size());
            const std::intptr_t shown = Draw(random, 1, count);
            for (std::intptr_t i = 0; i < count; ++i)
                (*axis)[static_cast<std::size_t>(i)] = before[static_cast<std::size_t>(i * shown / count)];
        }
    }

    void Build(std::uint8_t *base, Random &random) {
        if (IsMadeOfPitches() && OneIn(random, 3)) {
            const int status = CreateImageFromPointer(base, 0, Form.Width, Form.Height, Count(), Form.Types[0],
                                                      pitches->X, pitches->Y, pitches->Plane, pitches->Order.data(),
                                                      nullptr, nullptr, external.Out());
            EXPECT_EQ(status, 0) << FamilyNames[static_cast<int>(Form.Kind)];
            return;
        }
        fake = std::make_unique<FakeImage>(Form.Width, Form.Height);
        // The base may be any address: the entries make up for it.
        const std::intptr_t lead = OneIn(random, 4) ? 1000 : 0;
        for (std::size_t plane = 0; plane < planes.size(); ++plane) {
            for (auto &offset : planes[plane].X)
                offset -= lead;
            for (auto &offset : planes[plane].Y)
                offset += lead;
            fake->AddPlane(base, Form.Types[plane], EntriesOf(planes[plane].X), EntriesOf(planes[plane].Y));
        }
    }

    std::intptr_t size = 1; ///< of the widest pixel
    std::vector<PlaneOffsets> planes;
    std::unique_ptr<Pitches> pitches;
    std::unique_ptr<FakeImage> fake;
    Handle external;
};

} // namespace TestSupport

#endif
