/* Flood fill once more: point by point over a stack, on a copy of the image's memory; and processes of a test's own,
 * since the library keeps the first word that a fill of a pixel type writes for as long as the process lives. */
#ifndef ORV_TESTS_FLOOD_MODEL_H
#define ORV_TESTS_FLOOD_MODEL_H

#include "Drawing/DrawingSupport.h"

#include <iostream>
#include <map>
#include <stack>
#include <sys/wait.h>

namespace TestSupport {

/// Runs a part of a test in a child process, which has the words of no fills but its own. Its failures fail the test.
template <class Body>
void InAProcessOfItsOwn(const Body &body) {
    std::cout.flush();
    std::fflush(nullptr);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        try {
            body();
        } catch (const std::exception &exception) {
            ADD_FAILURE() << exception.what();
        }
        std::cout.flush();
        std::fflush(nullptr);
        _exit(testing::Test::HasFailure() ? 1 : 0);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "the process of this test fails, see above";
}

/// A pixel as a number.
inline double NumberOf(std::uint64_t word, TDataType type) {
    const std::size_t bytes = StorageOf(type);
    if ((type & DataTypeFloat) != 0)
        return bytes == 4 ? static_cast<double>(std::bit_cast<float>(static_cast<std::uint32_t>(word)))
                          : std::bit_cast<double>(word);
    if ((type & DataTypeSigned) == 0)
        return static_cast<double>(word);
    const auto unused = static_cast<int>(64 - 8 * bytes);
    return static_cast<double>(static_cast<std::int64_t>(word << unused) >> unused);
}

/// The written words of one process, one for each of the ten pixel types.
using FloodWords = std::map<std::pair<std::size_t, TDataType>, std::uint64_t>;

struct FloodCall {
    std::int64_t X, Y;
    double Value;
    double Tolerance = 0.0;

    std::int32_t Draw(void *image, std::intptr_t plane) const {
        return FloodFillMono(image, plane, X, Y, Value, Tolerance);
    }
    bool Bounds(double pixel) const {
        if (Tolerance == 0.0)
            return pixel == Value;
        return pixel > Value ? Tolerance >= Value - pixel : Tolerance >= pixel - Value;
    }
    bool BoundsAt(const ModelPlane &plane, std::int64_t x, std::int64_t y) const {
        return !plane.Inside(x, y) || Bounds(NumberOf(plane.Read(x, y), plane.Type()));
    }
    void Follow(ModelPlane &plane, FloodWords &words) const {
        if (BoundsAt(plane, X, Y))
            return;
        const auto type = std::pair{StorageOf(plane.Type()), plane.Type() & (DataTypeSigned | DataTypeFloat)};
        const std::uint64_t word = words.try_emplace(type, WordFor(Value, plane.Type())).first->second;
        // Where the word itself does not bound, each position is taken once: more changes nothing.
        const bool endless = !Bounds(NumberOf(word, plane.Type()));
        std::vector<bool> taken(static_cast<std::size_t>(plane.Width() * plane.Height()));
        std::stack<ModelPoint> points;
        points.push({X, Y});
        while (!points.empty()) {
            const ModelPoint at = points.top();
            points.pop();
            const auto number = static_cast<std::size_t>(at.Y * plane.Width() + at.X);
            if (BoundsAt(plane, at.X, at.Y) || (endless && taken[number]))
                continue;
            taken[number] = true;
            plane.WriteWord(plane.Place(at.X, at.Y), word);
            for (const ModelPoint &next :
                 {ModelPoint{at.X - 1, at.Y}, {at.X, at.Y - 1}, {at.X + 1, at.Y}, {at.X, at.Y + 1}})
                if (!BoundsAt(plane, next.X, next.Y) &&
                    !(endless && taken[static_cast<std::size_t>(next.Y * plane.Width() + next.X)]))
                    points.push(next);
        }
    }
};
inline void PrintTo(const FloodCall &call, std::ostream *out) {
    const auto digits = out->precision(17);
    *out << "fill from " << call.X << ", " << call.Y << " value " << call.Value << " tolerance " << call.Tolerance;
    out->precision(digits);
}

inline bool FillsAsTold(const Subject &subject, std::intptr_t plane, const FloodCall &call, FloodWords &words) {
    return DrawsLike(subject, plane, call, [&](ModelPlane &model) { call.Follow(model, words); });
}

/// Some bytes of 0 to few - 1 in each pixel of a plane, as numbers of the plane's type.
inline void ScatterNumbers(const Subject &subject, std::intptr_t plane, std::mt19937 &random, std::int64_t few,
                           double first = 0.0) {
    const ImageSize size = SizeOf(subject.Get());
    const PlaneAccess access = AccessOf(subject.Get(), plane);
    const TDataType type = TypeOf(subject.Get(), plane);
    for (std::intptr_t y = 0; y < size.Height; ++y)
        for (std::intptr_t x = 0; x < size.Width; ++x) {
            const std::uint64_t word = WordFor(first + static_cast<double>(Between(random, 0, few - 1)), type);
            std::memcpy(access.At(x, y), &word, StorageOf(type));
        }
}

/// An 8-bit plane of its own class from rows: a point is 0, a star the boundary, a digit itself.
inline Subject FloodPicture(const Picture &rows, std::uint8_t boundary = 200) {
    const Subject subject = ScatteredSubject(std::ssize(rows[0]), std::ssize(rows));
    const PlaneAccess access = AccessOf(subject.Get(), 0);
    for (std::size_t y = 0; y < rows.size(); ++y)
        for (std::size_t x = 0; x < rows[y].size(); ++x) {
            const char sign = rows[y][x];
            *access.At(static_cast<std::intptr_t>(x), static_cast<std::intptr_t>(y)) =
                sign == '*' ? boundary : static_cast<std::uint8_t>(sign == '.' ? 0 : sign - '0');
        }
    return subject;
}

} // namespace TestSupport

#endif
