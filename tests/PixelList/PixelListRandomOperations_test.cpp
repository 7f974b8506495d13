/* Long random series of operations on some lists beside plain vectors that go the same way, compared bit by bit.
 * Set ORV_TEST_CASE to a number to run that random case alone. */
#include "PixelList/PixelLists.h"

namespace {

using namespace TestSupport;

/// Some lists with their plain models.
class ManyLists {
public:
    ManyLists(std::uint32_t seed, std::int64_t highestDimension) : random(seed) {
        for (int i = 0; i < 4; ++i)
            Append(random.Pick(2, highestDimension), {});
    }
    void Run(int steps) {
        for (int step = 0; step < steps; ++step) {
            SCOPED_TRACE(testing::Message() << "step " << step);
            ASSERT_NO_FATAL_FAILURE(Step());
            if (testing::Test::HasFailure())
                return;
        }
        for (auto &list : lists)
            ASSERT_TRUE(Holds(list.Object.Get(), list.Model));
    }

private:
    struct Modelled {
        Handle Object;
        std::int64_t Dimension;
        Points Model;
    };
    RandomComponents random;
    std::vector<Modelled> lists;

    void Append(std::int64_t dimension, const Points &points) {
        lists.push_back({ListOf(dimension, points), dimension, points});
    }
    Modelled &Any() { return lists[static_cast<std::size_t>(random.Pick(0, std::ssize(lists) - 1))]; }
    /// Mostly an index of the list, now and then one outside.
    std::int64_t AnyIndex(const Modelled &list) { return random.Pick(-1, std::ssize(list.Model)); }
    static bool Inside(const Modelled &list, std::int64_t index) {
        return index >= 0 && index < std::ssize(list.Model);
    }

    void Step() {
        Modelled &list = Any();
        ClearReports();
        switch (random.Pick(0, 12)) {
        case 0:
            return Modify(list, AnyIndex(list));
        case 1:
            return Remove(list, AnyIndex(list));
        case 2:
            return Truncate(list);
        case 3:
            return Transform(list);
        case 4:
            return Concatenate(list, Any());
        case 5:
            return Copy(list, Any());
        case 6:
            return Read(list, AnyIndex(list));
        case 7:
            return Sort(list);
        default:
            return Add(list);
        }
    }

    void Add(Modelled &list) {
        for (std::int64_t count = random.Pick(1, 5); count > 0; --count) {
            list.Model.push_back(random.AnyPoint(list.Dimension));
            ASSERT_TRUE(AddPixel(list.Object.Get(), list.Model.back().data()));
            ASSERT_EQ(PixelListCount(list.Object.Get()), std::ssize(list.Model));
        }
    }
    void Modify(Modelled &list, std::int64_t index) {
        const Point point = random.AnyPoint(list.Dimension);
        ASSERT_EQ(ModifyListPixel(list.Object.Get(), index, point.data()), Inside(list, index));
        ASSERT_EQ(ReportCount(), Inside(list, index) ? 0 : 1);
        if (Inside(list, index))
            list.Model[static_cast<std::size_t>(index)] = point;
    }
    void Remove(Modelled &list, std::int64_t index) {
        ASSERT_EQ(RemovePixel(list.Object.Get(), index), Inside(list, index));
        ASSERT_EQ(ReportCount(), Inside(list, index) ? 0 : 1);
        if (Inside(list, index))
            list.Model.erase(list.Model.begin() + index);
    }
    void Truncate(Modelled &list) {
        const auto before = std::ssize(list.Model);
        if (random.Pick(0, 9) == 0) {
            ASSERT_EQ(RemoveAllPixels(list.Object.Get()), before > 0);
            ASSERT_EQ(ReportCount(), 0);
            list.Model.clear();
            return;
        }
        const std::int64_t count = random.Pick(-1, before + 2);
        ASSERT_EQ(TruncatePixelList(list.Object.Get(), count), count >= 0);
        ASSERT_EQ(ReportCount(), count < 0 || count > before ? 1 : 0);
        if (count >= 0 && count < before)
            list.Model.resize(static_cast<std::size_t>(count));
    }
    void Transform(Modelled &list) {
        const TMatrix matrix{random.Whole(), random.Whole() / 8, random.Whole() / 4, random.Whole()};
        const double x = random.Whole(), y = random.Any();
        ASSERT_TRUE(TransformPixelListMatrix(list.Object.Get(), matrix, x, y));
        for (auto &point : list.Model) {
            const double oldX = point[0], oldY = point[1];
            point[0] = matrix.A11 * oldX + matrix.A12 * oldY + x;
            point[1] = matrix.A21 * oldX + matrix.A22 * oldY + y;
        }
    }
    void Concatenate(Modelled &first, Modelled &second) {
        Handle joined(ConcatenatePixelLists(first.Object.Get(), second.Object.Get()));
        ASSERT_EQ(static_cast<bool>(joined), first.Dimension == second.Dimension);
        if (!joined || first.Model.size() + second.Model.size() > 300)
            return;
        Points model = first.Model;
        model.insert(model.end(), second.Model.begin(), second.Model.end());
        ASSERT_TRUE(Holds(joined.Get(), model));
        first.Object = std::move(joined);
        first.Model = std::move(model);
    }
    void Copy(Modelled &source, Modelled &target) {
        if (random.Pick(0, 3) == 0) {
            void *made = nullptr;
            ASSERT_TRUE(CopyPixelList(source.Object.Get(), &made));
            target.Dimension = source.Dimension;
            target.Model = Points(source.Model);
            target.Object = Handle(made);
            return;
        }
        void *pointer = target.Object.Get();
        const bool fits = source.Dimension >= target.Dimension;
        ASSERT_EQ(CopyPixelList(source.Object.Get(), &pointer), fits);
        ASSERT_EQ(pointer, target.Object.Get());
        ASSERT_EQ(ReportCount(), fits ? 0 : 1);
        if (!fits)
            return;
        target.Model = Points(source.Model);
        for (auto &point : target.Model)
            point.resize(static_cast<std::size_t>(target.Dimension));
    }
    void Read(Modelled &list, std::int64_t index) {
        std::int64_t x = 7, y = 8, value = 9;
        Point point(static_cast<std::size_t>(list.Dimension), 1.0);
        ASSERT_EQ(ListPixelEx(list.Object.Get(), index, point.data()), Inside(list, index));
        ASSERT_EQ(ListPixel(list.Object.Get(), index, &x, &y, &value), Inside(list, index) && list.Dimension > 2);
        if (!Inside(list, index))
            return;
        const Point &expected = list.Model[static_cast<std::size_t>(index)];
        ASSERT_EQ(BitsOfPoint(point), BitsOfPoint(expected));
        if (list.Dimension > 2 && std::abs(expected[0]) < 1e15) {
            ASSERT_EQ(x, static_cast<std::int64_t>(std::floor(0.5 + expected[0])));
        }
        ASSERT_TRUE(Holds(list.Object.Get(), list.Model));
    }
    /// The order is the sorts' own matter here; only that nothing is lost.
    void Sort(Modelled &list) {
        const Point vector = random.WholePoint(list.Dimension);
        const std::int64_t kind = random.Pick(0, 2);
        bool sorted = false;
        if (kind == 0)
            sorted = SortPixelsByValue(list.Object.Get());
        else if (kind == 1)
            sorted = SortPixelsByPosition(list.Object.Get(), random.Pick(-3, 3), random.Pick(-3, 3));
        else
            sorted = SortPixelsEx(list.Object.Get(), vector.data());
        ASSERT_EQ(sorted, kind == 2 || list.Dimension > 2);
        const Points now = PointsOf(list.Object.Get());
        ASSERT_TRUE(SortedBits(now) == SortedBits(list.Model));
        list.Model = now;
    }
};

using PixelListRandomOperationsTest = PixelListTest;

TEST_F(PixelListRandomOperationsTest, OnListsOfFewComponentsGoLikePlainVectors) {
    for (const std::uint32_t number : CaseNumbers(60)) {
        SCOPED_TRACE(testing::Message() << "case " << number);
        ASSERT_NO_FATAL_FAILURE(ManyLists(number, 4).Run(250));
    }
}

TEST_F(PixelListRandomOperationsTest, OnListsOfManyComponentsGoLikePlainVectors) {
    for (const std::uint32_t number : CaseNumbers(12)) {
        SCOPED_TRACE(testing::Message() << "case " << number);
        ASSERT_NO_FATAL_FAILURE(ManyLists(number, 256).Run(80));
    }
}

} // namespace
