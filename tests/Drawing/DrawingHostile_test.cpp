// Coordinates, radii and thicknesses at the limits of 32 and 64 bits, and numbers that are none: calls end soon and
// write what the told steps write inside the image.
#include "Drawing/ClippedModel.h"
#include "Drawing/FloodModel.h"

namespace {

using namespace TestSupport;

constexpr double SecondsAllowed = 1.0;

/// A 16-bit image of 61 x 47: in rows, with shuffled rows and columns, bottom-up, and turned.
std::vector<Subject> Images() {
    std::vector<Subject> images;
    for (const auto &rule : LayoutRules(61, 47, 1, 16))
        if (rule.Name == "planar" || rule.Name == "scattered" || rule.Name == "bottomUp" ||
            rule.Name == "columnsFirst")
            images.push_back(FakeSubject(rule, 61, 47, 1, 16));
    return images;
}

/// Draws on a cleared image, expects an early end, and compares with a model. Gives the number of bytes written.
template <class Call, class Model>
std::ptrdiff_t Compare(const Subject &subject, const Call &call, const Model &model) {
    subject.Clear();
    EXPECT_LT(SecondsOf([&] { EXPECT_EQ(call.Draw(subject.Get(), 0), 0); }), SecondsAllowed)
        << testing::PrintToString(call);
    const auto &memory = subject.Memory();
    const std::ptrdiff_t written = std::ssize(memory) - std::count(memory.begin(), memory.end(), 0);
    subject.Clear();
    DrawsLike(subject, 0, call, model);
    return written;
}

std::ptrdiff_t CompareLine(const Subject &subject, const LineCall &call) {
    bool walked = true;
    const std::ptrdiff_t written = Compare(subject, call, [&](ModelPlane &plane) {
        if (call.Thickness != 1)
            call.Follow(plane);
        else
            walked = ModelClippedLine(plane, {call.X0, call.Y0}, {call.X1, call.Y1}, {call.Value, call.Mode});
    });
    EXPECT_TRUE(walked) << "too long for the model: " << testing::PrintToString(call);
    return written;
}

TEST(DrawingHostile, TheClippedModelIsThatOfTheWalk) {
    std::mt19937 random(3);
    for (const Subject &subject : {PlainSubject(13, 9), ScatteredSubject(13, 9)})
        for (int number = 0; number < 500; ++number) {
            subject.Clear();
            PlaneBytes walked = subject.Memory(), clipped = walked;
            ModelPlane one(subject.Get(), 0, subject.Memory().data(), walked);
            ModelPlane other(subject.Get(), 0, subject.Memory().data(), clipped);
            const std::int64_t reach = number % 2 == 0 ? 30 : 3000;
            const ModelPoint from{Between(random, -reach, reach), Between(random, -reach, reach)};
            const ModelPoint to{Between(random, -reach, reach), Between(random, -reach, reach)};
            ModelThinLine(one, from, to, {9.0, 0});
            if (ModelClippedLine(other, from, to, {9.0, 0})) {
                ASSERT_EQ(walked, clipped) << number;
            }
            const EllipseCall call{from.X, from.Y,      reach / 2 + number % 10, reach / 2, 1 + number % 3,
                                   0,      number * 0.1};
            ModelEllipseOutline(one, ModelEllipse(from, call.A, call.B, call.Rotation), call.Thickness, {1.0, 0});
            ModelClippedOutline(other, call);
            ASSERT_EQ(walked, clipped) << number;
            FilledEllipseCall{call}.Follow(one);
            ModelClippedFill(other, call);
            ASSERT_EQ(walked, clipped) << number;
        }
}

TEST(DrawingHostile, ThinLinesBetweenTheLimitsOf32Bits) {
    std::ptrdiff_t written = 0;
    for (const Subject &subject : Images())
        for (const LineCall &call :
             {LineCall{Lowest32, 20, Highest32, 20}, LineCall{Highest32, 20, Lowest32, 20},
              LineCall{30, Lowest32, 30, Highest32}, LineCall{30, Highest32, 30, Lowest32},
              LineCall{Lowest32, Lowest32, Highest32, Highest32}, LineCall{Highest32, Highest32, Lowest32, Lowest32},
              LineCall{Lowest32, Highest32, Highest32, Lowest32}, LineCall{0, 0, Highest32, Highest32},
              LineCall{60, 46, Lowest32, Lowest32}, LineCall{Lowest32, 0, Highest32, 46},
              LineCall{0, Lowest32, 60, Highest32}, LineCall{Highest32, 3, Highest32, 3},
              LineCall{Lowest32, Lowest32, Lowest32, Highest32}, LineCall{17, 5, Highest32, 6}}) {
            LineCall marked = call;
            marked.Value = 65535.0;
            written += CompareLine(subject, marked);
        }
    EXPECT_GT(written, 1000);
}

TEST(DrawingHostile, RandomLinesAcrossAllOf32Bits) {
    std::ptrdiff_t written = 0;
    for (const Subject &subject : Images()) {
        std::mt19937 random(11);
        for (int number = 0; number < 200; ++number) {
            // Through a pixel of the image, as far as 32 bits go.
            const std::int64_t x = Between(random, 0, 60), y = Between(random, 0, 46);
            const std::int64_t dx = Between(random, -Highest32 + 100, Highest32 - 100);
            const std::int64_t dy = Between(random, -Highest32 + 100, Highest32 - 100);
            LineCall call{x + dx, y + dy, x - dx, y - dy, number % 3 == 0 ? Between(random, 2, 40) : 1};
            call.Value = 65535.0;
            written += CompareLine(subject, call);
            if (testing::Test::HasFailure())
                FAIL() << "case " << number;
        }
    }
    EXPECT_GT(written, 10000);
}

TEST(DrawingHostile, ALineThatNeverLeavesTheAddressesOfItsPlane) {
    // 15 columns to the right and one row up lead back to the same address, 286331153 times.
    const Subject subject = PlainSubject(15, 9);
    const std::int64_t turns = 286331153;
    std::int32_t result = -1;
    EXPECT_LT(SecondsOf([&] {
                  result = DrawLineInImage(subject.Get(), 0, Lowest32, 143165577 + 4, Highest32,
                                           143165577 + 4 - turns, 1, 0, 0, 9.0);
              }),
              2.0);
    EXPECT_EQ(result, 0);
    // The first address is 4 x 15 + 143165577 x 15 - 2^31 = 67; from there seven pixels back and seven on.
    const auto &memory = subject.Memory();
    EXPECT_EQ(std::count(memory.begin(), memory.end(), 9), 15);
    for (std::intptr_t place = 60; place < 75; ++place)
        EXPECT_EQ(PixelAt<std::uint8_t>(subject, place % 15, place / 15), 9) << place;
}

void CompareThickLines(std::initializer_list<LineCall> calls, std::initializer_list<std::int64_t> thicknesses) {
    std::ptrdiff_t written = 0;
    for (const Subject &subject : Images())
        for (const std::int64_t thickness : thicknesses)
            for (LineCall call : calls) {
                call.Thickness = thickness;
                call.Value = 65535.0;
                written += CompareLine(subject, call);
            }
    EXPECT_GT(written, 1000);
}

TEST(DrawingHostile, ThickLinesWhoseCornersReachTheLimitsOf32Bits) {
    constexpr std::int64_t low = Lowest32 + 100, high = Highest32 - 100;
    CompareThickLines({{low, 20, high, 20},
                       {30, high, 30, low},
                       {low, low, high, high},
                       {0, 0, high, high},
                       {60, 46, low, low},
                       {high, 3, high, 3},
                       {low, low, low, high},
                       {17, 5, high, 6}},
                      {2, 7, 40});
    CompareThickLines({{17, 5, 18, 6}, {0, 0, 0, 0}, {60, 46, 0, 46}}, {100000, Highest32});
}

TEST(DrawingHostile, ThickLinesWhoseCornersLieBeyond32Bits) {
    CompareThickLines({{Lowest32, 20, Highest32, 20},
                       {30, Highest32, 30, Lowest32},
                       {0, 0, Highest32, Highest32},
                       {60, 46, Lowest32, Lowest32},
                       {Highest32, 3, Highest32, 3},
                       {17, 5, Highest32, 6}},
                      {2, 7, 100000, Highest32});
}

TEST(DrawingHostile, ArgumentsOf64BitsAreTheirLow32) {
    for (const Subject &subject : Images()) {
        EXPECT_EQ(
            DrawLineInImage(subject.Get(), 0, Lowest64, Lowest64, Lowest64 + 3, Lowest64, Lowest64 + 1, 0, 0, 9.0),
            0);
        const PlaneBytes drawn = subject.Memory();
        subject.Clear();
        EXPECT_EQ(DrawLineInImage(subject.Get(), 0, 0, 0, 3, 0, 1, 0, 0, 9.0), 0);
        EXPECT_EQ(drawn, subject.Memory());
        EXPECT_EQ(DrawLineInImage(subject.Get(), 0, 0, 0, 3, 0, Highest64, 0, 0, 9.0), Status(ErrParameter));
        EXPECT_EQ(FillCircleInImage(subject.Get(), 0, 0, 0, Highest64, 0, 0, 9.0), Status(ErrParameter));
        EXPECT_EQ(drawn, subject.Memory());
        ClearReports();
        CompareLine(subject, {-1, -1, 40, 33, 1, 0, 5.0});
        const PlaneBytes near = subject.Memory();
        subject.Clear();
        EXPECT_EQ(DrawLineInImage(subject.Get(), 0, Highest64, Highest64, 40, 33, 1, 0, 0, 5.0), 0);
        EXPECT_EQ(near, subject.Memory());
    }
}

/// Circles whose outline passes through the image at some angles.
std::vector<EllipseCall> FarEllipses(std::int64_t a, std::int64_t b) {
    std::vector<EllipseCall> calls;
    for (const double rotation : {0.0, 0.9})
        for (const double angle : {0.0, 0.3, Pi / 2, 2.0, Pi, 4.5, 6.0, 6.283185}) {
            const double x = static_cast<double>(a) * std::cos(angle), y = static_cast<double>(b) * std::sin(angle);
            TMatrix m;
            RotationMatrix(&m, rotation * 180.0 / Pi);
            calls.push_back({30 - std::llround(m.A11 * x + m.A12 * y), 23 - std::llround(m.A21 * x + m.A22 * y), a, b,
                             1, 0, rotation, 65535.0});
        }
    return calls;
}

void CompareFarEllipses(std::int64_t a, std::int64_t b) {
    std::ptrdiff_t written = 0;
    for (const Subject &subject : Images())
        for (const EllipseCall &call : FarEllipses(a, b)) {
            const auto outline = [&](ModelPlane &plane) { ModelClippedOutline(plane, call); };
            written += Compare(subject, call, outline);
            const auto filled = [&](ModelPlane &plane) { ModelClippedFill(plane, call); };
            written += Compare(subject, FilledEllipseCall{call}, filled);
            if (testing::Test::HasFailure())
                FAIL() << "seen first at " << testing::PrintToString(call);
        }
    EXPECT_GT(written, 10000);
}

TEST(DrawingHostile, EllipsesOfManyThousandPixels) {
    CompareFarEllipses(50000, 50000);
    CompareFarEllipses(50000, 40000);
}

TEST(DrawingHostile, EllipsesOfAMillionPixels) {
    CompareFarEllipses(1000003, 900001);
}

TEST(DrawingHostile, EllipsesAtTheLimitsOf32Bits) {
    CompareFarEllipses(Highest32 - 100, Highest32 - 100);
}

TEST(DrawingHostile, ThickRingsAtTheLimitsOf32Bits) {
    for (const Subject &subject : {PlainSubject(61, 47, 16), ScatteredSubject(61, 47, 16)})
        for (EllipseCall call : FarEllipses(Highest32 - 100, Highest32 - 100)) {
            if (call.Rotation != 0.0)
                continue;
            call.Thickness = 5;
            EXPECT_GT(Compare(subject, call, [&](ModelPlane &plane) { ModelClippedOutline(plane, call); }), 0);
        }
}

TEST(DrawingHostile, RingsAsThickAsTheyAreWideCoverTheImage) {
    for (const Subject &subject : {PlainSubject(61, 47, 16), ScatteredSubject(61, 47, 16)}) {
        EXPECT_LT(SecondsOf([&] {
                      EXPECT_EQ(
                          DrawCircleInImage(subject.Get(), 0, 30 - (1 << 30), 23, 1 << 30, Highest32, 0, 0, 65535.0),
                          0);
                  }),
                  SecondsAllowed);
        EXPECT_EQ(PixelBytes(subject.Get(), 0), PlaneBytes(61 * 47 * 2, 255));
    }
}

/// Ellipses with all centres and radii at the limits; two negative radii are refused, all others end with 0.
void DrawAtTheLimits(std::int64_t thickness) {
    const std::int64_t limits[] = {Lowest32, Highest32, 0};
    for (const Subject &subject : {PlainSubject(8, 6), ScatteredSubject(8, 6)})
        for (int number = 0; number < 81; ++number)
            for (const double rotation : {0.0, 1.0}) {
                const std::int64_t x = limits[number % 3], y = limits[number / 3 % 3];
                const std::int64_t a = limits[number / 9 % 3], b = limits[number / 27];
                const std::int32_t expected = a < 0 && b < 0 ? Status(ErrParameter) : 0;
                const double seconds = SecondsOf([&] {
                    EXPECT_EQ(DrawEllipseInImage(subject.Get(), 0, x, y, a, b, thickness, 0, 0, rotation, 1.0),
                              expected);
                    EXPECT_EQ(FillEllipseInImage(subject.Get(), 0, x, y, a, b, 0, 0, rotation, 1.0), expected);
                });
                EXPECT_LT(seconds, 2 * SecondsAllowed) << x << ", " << y << ", " << a << ", " << b;
            }
    ClearReports();
}

TEST(DrawingHostile, ThinEllipsesWithAllArgumentsAtTheLimitsEnd) {
    DrawAtTheLimits(1);
}

TEST(DrawingHostile, ThickEllipsesWithAllArgumentsAtTheLimitsEnd) {
    // In a process that is stopped when it takes no end.
    InAProcessOfItsOwn([] {
        alarm(60);
        DrawAtTheLimits(50);
        DrawAtTheLimits(Highest32);
    });
}

TEST(DrawingHostile, ARotationThatIsNoNumberWritesNothing) {
    for (const Subject &subject : Images())
        for (const double rotation : {NotANumber, Infinity, -Infinity})
            for (const std::int64_t radius : {std::int64_t{0}, std::int64_t{9}, std::int64_t{1000}, Highest32}) {
                const PlaneBytes before = subject.Memory();
                const double seconds = SecondsOf([&] {
                    EXPECT_EQ(DrawEllipseInImage(subject.Get(), 0, 30, 20, radius, 9, 1, 0, 0, rotation, 1.0), 0);
                    EXPECT_EQ(DrawEllipseInImage(subject.Get(), 0, 30, 20, radius, radius, 3, 0, 0, rotation, 1.0),
                              0);
                    EXPECT_EQ(FillEllipseInImage(subject.Get(), 0, 30, 20, radius, radius, 0, 0, rotation, 1.0), 0);
                });
                EXPECT_LT(seconds, 3 * SecondsAllowed);
                EXPECT_EQ(before, subject.Memory());
            }
}

TEST(DrawingHostile, RotationsOfManyTurnsAreDrawnAsTold) {
    for (const Subject &subject : {PlainSubject(61, 47, 16), ScatteredSubject(61, 47, 16)})
        for (const double rotation : {1e-300, 1e5, -12345.678, 1e15, 1e300})
            for (const std::int64_t thickness : {1, 3}) {
                subject.Clear();
                EXPECT_TRUE(DrawsAsTold(subject, 0, EllipseCall{30, 23, 25, 11, thickness, 0, rotation, 65535.0}));
                EXPECT_TRUE(DrawsAsTold(subject, 0, FilledEllipseCall{{30, 23, 21, 7, 1, 0, rotation, 255.0}}));
            }
}

} // namespace
