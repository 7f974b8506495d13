// Copies of areas: what is copied where, by hand, then random areas in all types and layouts, and within one memory,
// against the model.
#include "AreaOperations.h"
#include "Image/Pictures.h"
#include "Scan/AreaModel.h"

namespace {

using namespace TestSupport;

std::int32_t Copy(const AreaCopy &copy) {
    return CopyImageArea(copy.Source, copy.Target, copy.SourcePlane, copy.TargetPlane, copy.TargetX, copy.TargetY,
                         copy.Area);
}

/// Copies between drawings and gives back what the target shows.
Rows Copied(const Rows &source, const Rows &target, std::int64_t targetX, std::int64_t targetY, const TArea &area,
            std::int32_t result = 1) {
    const auto from = Drawn(source), to = Drawn(target);
    ClearReports();
    EXPECT_EQ(CopyImageArea(from->Handle(), to->Handle(), 0, 0, targetX, targetY, area), result);
    ExpectNoReport();
    EXPECT_EQ(from->Count() + to->Count(), 2);
    EXPECT_EQ(Show(from->Handle()), source);
    return Show(to->Handle());
}

const Rows Letters = {"abcde", "fghij", "klmno", "pqrst"};
const Rows Dots = {".....", ".....", ".....", "....."};

} // namespace

TEST(CopyImageArea, BringsTheOriginOfTheAreaToTheTargetPosition) {
    EXPECT_EQ(Copied(Letters, Dots, 0, 0, {1, 1, 3, 1, 1, 2}), (Rows{"ghi..", "lmn..", ".....", "....."}));
    EXPECT_EQ(Copied(Letters, Dots, 2, 1, {0, 0, 2, 0, 0, 1}), (Rows{".....", "..abc", "..fgh", "....."}));
    EXPECT_EQ(Copied(Letters, Dots, 3, 2, {3, 2, 1, 2, 3, 1}), (Rows{".....", ".ghi.", ".lmn.", "....."}));
}

TEST(CopyImageArea, RoundsTheOriginHalvesUpAsTheWalkDoes) {
    EXPECT_EQ(Copied(Letters, Dots, 0, 0, {0.5, 1.5, 0.5, 1.5, 0.5, 1.5}),
              (Rows{"l....", ".....", ".....", "....."}));
    EXPECT_EQ(Copied(Letters, Dots, 0, 0, {1.49, 0.49, 2.49, 0.49, 1.49, 0.49}),
              (Rows{"bc...", ".....", ".....", "....."}));
    EXPECT_EQ(Copied(Letters, Dots, 1, 1, {-0.5, -0.5, 1, 0, 0, 0}), (Rows{".....", ".ab..", ".....", "....."}));
}

TEST(CopyImageArea, CopiesThePartInsideTheSource) {
    EXPECT_EQ(Copied(Letters, Dots, 0, 0, {3, 2, 4, 2, 3, 3}), (Rows{"no...", "st...", ".....", "....."}));
    EXPECT_EQ(Copied(Letters, Rows{".......", "......."}, 0, 0, {2, 0, 9, 0, 2, 1}), (Rows{"cdee...", "hijj..."}))
        << "the column behind the last one shows the last one";
    EXPECT_EQ(Copied(Letters, Dots, 1, 0, {0, -1, 0, 2, 1, -1}), Dots) << "both lines start above the source";
}

TEST(CopyImageArea, CopiesThePartInsideTheTarget) {
    EXPECT_EQ(Copied(Letters, Dots, -1, -2, {0, 0, 4, 0, 0, 3}), (Rows{"lmno.", "qrst.", ".....", "....."}));
    EXPECT_EQ(Copied(Letters, {"..", ".."}, -2, -1, {0, 0, 1, 0, 0, 3}), (Rows{"..", ".."}));
}

TEST(CopyImageArea, WritesTheColumnBehindTheTargetOntoItsLastOne) {
    // Column 3 of the source comes behind the target's last column, which is written through the guard entry.
    EXPECT_EQ(Copied(Letters, {"...", "...", "..."}, 0, 0, {0, 0, 4, 0, 0, 0}), (Rows{"abd", "...", "..."}));
    EXPECT_EQ(Copied(Letters, {"...", "...", "..."}, 0, 0, {0, 0, 0, 3, 0, 0}), (Rows{"a..", "f..", "p.."}));
    EXPECT_EQ(Copied(Letters, {"...", "...", "..."}, 0, 0, {0, 0, 4, 0, 0, 3}), (Rows{"abd", "fgi", "pqs"}));
    EXPECT_EQ(Copied(Letters, Dots, 3, 0, {0, 0, 4, 0, 0, 0}), (Rows{"...ac", ".....", ".....", "....."}));
}

TEST(CopyImageArea, CopiesTheLastColumnAndRowOntoThemselvesInImagesOfOneSize) {
    EXPECT_EQ(Copied(Letters, Dots, 0, 0, {0, 0, 5, 0, 0, 4}), Letters);
    EXPECT_EQ(Copied(Letters, Dots, 5, 4, {5, 4, 5, 4, 5, 4}), (Rows{".....", ".....", ".....", "....t"}));
}

TEST(CopyImageArea, GivesZeroWithoutAReportForOnePixelInsideAndOthersOut) {
    EXPECT_EQ(Copied(Letters, Dots, 5, 0, {5, 0, 8, 0, 5, 0}, 0), (Rows{"....e", ".....", ".....", "....."}));
    EXPECT_EQ(Copied(Letters, Dots, 4, 0, {4, 0, 8, 0, 4, 0}, 1), (Rows{"....e", ".....", ".....", "....."}));
}

TEST(CopyImageArea, GivesOneWhenNothingIsInside) {
    for (const TArea &area : {TArea{20, 20, 25, 20, 20, 25}, TArea{-1, 0, 3, 0, -1, 0}, TArea{0, 0, 3, 0, 0, 32768}})
        EXPECT_EQ(Copied(Letters, Dots, 0, 0, area), Dots);
    constexpr auto lowest = std::numeric_limits<std::int64_t>::min(),
                   highest = std::numeric_limits<std::int64_t>::max();
    for (const std::int64_t far :
         {lowest, lowest + 1, highest, highest - 1, std::int64_t{1} << 32, -(std::int64_t{1} << 32), std::int64_t{6},
          std::int64_t{-6}, std::int64_t{1} << 31})
        for (const double x : {0.0, 1.0, 4.0}) {
            EXPECT_EQ(Copied(Letters, Dots, far, 0, {x, 0, x, 0, x, 0}), Dots) << far;
            EXPECT_EQ(Copied(Letters, Dots, 0, far, {0, x - 1, 1, x - 1, 0, x - 1}), Dots) << far;
        }
}

TEST(CopyImageArea, GivesZeroWithoutAReportForAreasWithoutNumbers) {
    constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
    for (const TArea &area : {TArea{NaN, 0, 1, 0, 0, 1}, TArea{0, NaN, 1, 0, 0, 1}, TArea{0, 0, 1e300, 0, 0, 1},
                              TArea{0, 0, 1, 0, -1e19, 1}, TArea{0, 0, 2147483648.0, 0, 0, 1},
                              TArea{std::numeric_limits<double>::infinity(), 0, 1, 0, 0, 1}})
        EXPECT_EQ(Copied(Letters, Dots, 0, 0, area, 0), Dots);
}

TEST(CopyImageArea, CopiesVeryLongAreasSoon) {
    constexpr double end = 2147483647.0;
    EXPECT_EQ(Copied(Letters, Dots, 0, 0, {0, 0, end, 0, 0, 3}), Letters);
    EXPECT_EQ(Copied(Letters, Dots, 0, 0, {0, 0, 0, end, 4, 0}), Letters);
}

TEST(CopyImageArea, CopiesEachTypeBetweenAllLayouts) {
    AreaRandom random(3);
    for (const TDataType type : TenPixelTypes) {
        const auto sources = MakeLayouts(12, 9, 2, type, 5);
        const TwinImages targets(10, 11, 3, type, 6);
        for (std::size_t from = 0; from < sources.size(); ++from)
            for (std::size_t round = 0; round < 60; ++round) {
                const std::size_t to = (from + round) % targets.Count();
                AreaCopy copy{sources[from].Get(), targets.Image(to),   random.Draw(0, 1), random.Draw(0, 2),
                              random.Draw(-4, 11), random.Draw(-4, 11), random.Area(12, 9)};
                if (random.OneIn(2)) {
                    copy.TargetX = static_cast<std::int64_t>(std::floor(copy.Area.X0 + 0.5));
                    copy.TargetY = static_cast<std::int64_t>(std::floor(copy.Area.Y0 + 0.5));
                }
                SCOPED_TRACE(sources[from].Name + " to " + targets.Images[to].Name + " of type " +
                             std::to_string(type) + ", area " + Told(copy.Area));
                const std::int32_t result = Copy(copy);
                copy.Target = targets.Twin(to);
                ASSERT_EQ(result, CopyByModel(copy));
                ASSERT_TRUE(targets.AreEqual(to));
            }
    }
}

TEST(CopyImageArea, CopiesLargeAreasOfEachTypeBetweenAllLayouts) {
    constexpr TArea areas[] = {{0, 0, 259, 0, 0, 30},    {3, 2, 250, 2, 3, 28},   {150, 2, 240, 20, 10, 29},
                               {250, 28, 5, 28, 250, 1}, {20, 0, 20, 30, 200, 0}, {-20, 5, 400, 30, 0, 60}};
    for (const TDataType type : TenPixelTypes) {
        const auto sources = MakeLayouts(260, 31, 2, type, 7);
        const TwinImages targets(260, 30, 2, type, 8);
        for (std::size_t i = 0; i < sources.size(); ++i) {
            for (const TArea &area : areas) {
                AreaCopy copy{sources[i].Get(),
                              targets.Image(i),
                              1,
                              0,
                              static_cast<std::int64_t>(area.X0) + 1,
                              static_cast<std::int64_t>(area.Y0),
                              area};
                const std::int32_t result = Copy(copy);
                copy.Target = targets.Twin(i);
                ASSERT_EQ(result, CopyByModel(copy));
            }
            ASSERT_TRUE(targets.AreEqual(i)) << sources[i].Name << " of type " << type;
        }
    }
}

TEST(CopyImageArea, CopiesEachSampleOfALineThatLiesFarBehindTheArea) {
    // Edges of nearly one direction: the second of two lines starts up to an edge's length behind P2.
    const auto expectModelCopy = [](std::intptr_t width, const TArea &area, std::int64_t dx) {
        SCOPED_TRACE(testing::Message() << "width " << width << ", by " << dx << ", area " << Told(area));
        constexpr std::intptr_t height = 20;
        const auto source = FakeImage::Planar(width, height, 1, 8), target = FakeImage::Planar(width, height, 1, 8),
                   twin = FakeImage::Planar(width, height, 1, 8);
        for (std::size_t i = 0; i < source->Pixels.size(); ++i)
            source->Pixels[i] = static_cast<std::uint8_t>(1 + i % 251);
        AreaCopy copy{source->Handle(),
                      target->Handle(),
                      0,
                      0,
                      static_cast<std::int64_t>(area.X0) + dx,
                      static_cast<std::int64_t>(area.Y0),
                      area};
        const std::int32_t result = Copy(copy);
        copy.Target = twin->Handle();
        ASSERT_EQ(result, CopyByModel(copy));
        ASSERT_EQ(target->Pixels, twin->Pixels);
    };
    expectModelCopy(1600, {0, 5, 1000, 6, 505, 5}, 0);
    AreaRandom random(6);
    for (int round = 0; round < 300; ++round) {
        const std::int64_t length = random.Draw(100, 1000), second = random.Draw(length / 3, length);
        TArea area{static_cast<double>(random.Draw(0, 9)), static_cast<double>(random.Draw(3, 15)), 0, 0, 0, 0};
        area.X1 = area.X0 + static_cast<double>(length);
        area.Y1 = area.Y0 + static_cast<double>(random.Draw(-2, 2));
        area.X2 = area.X0 + static_cast<double>(second);
        area.Y2 = area.Y0 + static_cast<double>(random.Draw(-1, 1));
        ASSERT_NO_FATAL_FAILURE(expectModelCopy(random.Draw(length, 3 * length), area, random.Draw(-2, 2)))
            << "round " << round;
    }
}

TEST(CopyImageArea, WritesWhileItReadsWithinOneImage) {
    EXPECT_EQ(Show(Drawn(Letters)->Handle()), Letters);
    const auto image = Drawn(Letters);
    EXPECT_EQ(CopyImageArea(image->Handle(), image->Handle(), 0, 0, 1, 0, {0, 0, 3, 0, 0, 3}), 1);
    EXPECT_EQ(Show(image->Handle()), (Rows{"aaaaa", "fffff", "kkkkk", "ppppp"})) << "each pixel runs through its row";
    EXPECT_EQ(image->Count(), 1);

    AreaRandom random(4);
    for (const TDataType type : TenPixelTypes) {
        const TwinImages images(11, 10, 2, type, 9);
        for (std::size_t i = 0; i < images.Count(); ++i)
            for (int round = 0; round < 60; ++round) {
                const TArea area = random.Area(11, 10);
                AreaCopy copy{images.Image(i),
                              images.Image(i),
                              random.Draw(0, 1),
                              random.Draw(0, 1),
                              static_cast<std::int64_t>(std::floor(area.X0 + 0.5)) + random.Draw(-2, 2),
                              static_cast<std::int64_t>(std::floor(area.Y0 + 0.5)) + random.Draw(-2, 2),
                              area};
                const std::int32_t result = Copy(copy);
                copy.Source = copy.Target = images.Twin(i);
                ASSERT_EQ(result, CopyByModel(copy));
                ASSERT_TRUE(images.AreEqual(i)) << images.Images[i].Name << " of type " << type << " " << Told(area);
            }
    }
}

TEST(CopyImageArea, WritesWhileItReadsBetweenImagesThatShareMemory) {
    AreaRandom random(5);
    const auto over = [](PlaneBytes &block, std::intptr_t start, TDataType type, std::intptr_t pitch) {
        const auto size = static_cast<std::intptr_t>(PixelSize(type));
        auto image = std::make_unique<FakeImage>(40, 6);
        image->AddPlane(
            block.data() + 1000 + start, type, [=](auto x) { return x * size; }, [=](auto y) { return y * pitch; });
        return image;
    };
    for (const TDataType type : TenPixelTypes)
        for (int round = 0; round < 200; ++round) {
            PlaneBytes block(6000), twin(6000);
            for (std::size_t byte = 0; byte < block.size(); ++byte)
                block[byte] = twin[byte] = static_cast<std::uint8_t>(random.Draw(0, 255));
            const std::intptr_t start = random.Draw(-70, 70), pitch = random.Draw(0, 1) == 0 ? 320 : 331;
            const auto source = over(block, 0, type, pitch), target = over(block, start, type, pitch);
            const auto source2 = over(twin, 0, type, pitch), target2 = over(twin, start, type, pitch);
            const TArea area = random.OneIn(2) ? TArea{2, 1, 38, 1, 2, 4} : random.Area(40, 6);
            AreaCopy copy{source->Handle(), target->Handle(), 0, 0, random.Draw(0, 4), random.Draw(0, 2), area};
            const std::int32_t result = Copy(copy);
            copy.Source = source2->Handle();
            copy.Target = target2->Handle();
            ASSERT_EQ(result, CopyByModel(copy));
            ASSERT_EQ(block, twin) << "type " << type << ", start " << start << ", " << Told(area);
        }
}
