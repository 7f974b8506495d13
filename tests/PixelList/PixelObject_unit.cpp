// The classes behind a pixel list: a point that owns its components, and the counted list that owns its points.
#include "PixelList/PixelListObject.h"

#include <gtest/gtest.h>
#include <numeric>

#include "base/VirtualSlot.h"
#include "Interface/ImageKernelException.h"
#include "PixelList/ListGuard.h"
#include "PixelList/Pixel.h"

namespace {

using ErrorHandling::CImageKernelException;
using PixelList::CPixel;
using PixelList::CPixelList;
using PixelList::ListHolder;
using TestSupport::SlotOf;

/// Expects a kernel exception that carries the low 16 bits of a code, and begins with a text.
template <class Action>
void ExpectThrow(std::uint32_t code, const std::string &text, Action action) {
    try {
        action();
        ADD_FAILURE() << "nothing was thrown: " << text;
    } catch (CImageKernelException &error) {
        EXPECT_EQ(error.GetWord(), static_cast<std::int32_t>(code & 0xFFFF));
        EXPECT_EQ(std::string(error.What()).substr(0, text.size()), text);
    }
}

/// A pixel with the components 1, 2, 3 and so on.
CPixel Counting(std::uint64_t count) {
    CPixel pixel(count);
    std::iota(pixel.Components, pixel.Components + count, 1.0);
    return pixel;
}

std::vector<double> ComponentsOf(const CPixel &pixel) {
    return {pixel.Components, pixel.Components + pixel.Dimension};
}

// ---- a pixel

TEST(PixelObject, HasItsSlotsInOrderBehindTheDestructor) {
    EXPECT_EQ(SlotOf(&CPixel::Allocate), 2u);
    EXPECT_EQ(SlotOf(&CPixel::FreeComponents), 3u);
}

TEST(PixelObject, BeginsWithZeros) {
    for (const std::uint64_t count : {2u, 3u, 256u})
        EXPECT_EQ(ComponentsOf(CPixel(count)), std::vector<double>(count, 0.0));
}

TEST(PixelObject, NeedsTwoTo256Components) {
    for (const std::uint64_t count : {0u, 1u})
        ExpectThrow(ErrDimension, "Trying to create Pixel with less than 2 components per pixel",
                    [&] { CPixel pixel(count); });
    for (const std::uint64_t count : {std::uint64_t{257}, ~std::uint64_t{0}})
        ExpectThrow(ErrNotPossible, "Trying to create Pixel with too many components", [&] { CPixel pixel(count); });
}

TEST(PixelObject, ACopyHasComponentsOfItsOwn) {
    CPixel pixel = Counting(5);
    const CPixel copy(pixel);
    pixel.At(4) = -1;
    EXPECT_EQ(ComponentsOf(copy), (std::vector<double>{1, 2, 3, 4, 5}));
    EXPECT_EQ(copy.Dimension, 5u);
}

TEST(PixelObject, AnAssignmentTakesTheOthersDimensionToo) {
    const CPixel pixel = Counting(4);
    for (const std::uint64_t count : {2u, 4u, 9u}) {
        CPixel target(count);
        target = pixel;
        EXPECT_EQ(ComponentsOf(target), ComponentsOf(pixel)) << count;
        EXPECT_NE(target.Components, pixel.Components);
    }
}

TEST(PixelObject, AnAssignmentOntoItselfChangesNothing) {
    CPixel pixel = Counting(3);
    const CPixel &same = pixel;
    pixel = same;
    EXPECT_EQ(ComponentsOf(pixel), (std::vector<double>{1, 2, 3}));
}

TEST(PixelObject, RefusesIndicesFromTheDimensionOn) {
    CPixel pixel = Counting(3);
    const CPixel &constant = pixel;
    EXPECT_EQ(pixel.At(2), 3.0);
    EXPECT_EQ(constant.At(0), 1.0);
    const std::string text = "Trying to access data in an array beyond the upper boundary";
    for (const std::uint64_t index : {std::uint64_t{3}, std::uint64_t{256}, ~std::uint64_t{0}}) {
        ExpectThrow(ErrElementIndex, text, [&] { pixel.At(index) = 0; });
        ExpectThrow(ErrElementIndex, text, [&] { (void)constant.At(index); });
    }
}

TEST(PixelObject, HasNoComponentAfterTheyAreFreed) {
    CPixel pixel = Counting(3);
    pixel.FreeComponents();
    EXPECT_EQ(pixel.Components, nullptr);
    ExpectThrow(ErrElementIndex, "Trying to access data", [&] { (void)pixel.At(0); });
    pixel.Allocate(2);
    EXPECT_EQ(ComponentsOf(pixel), (std::vector<double>{0, 0}));
}

// ---- a list

ListHolder MakeList(std::uint64_t dimension) {
    return ListHolder(new CPixelList(dimension));
}

TEST(PixelListObject, NeedsTwoTo256Components) {
    for (const std::uint64_t dimension : {0u, 1u})
        ExpectThrow(ErrDimension, "Trying to create Pixel list with less than 2 components per pixel",
                    [&] { MakeList(dimension); });
    for (const std::uint64_t dimension : {std::uint64_t{257}, ~std::uint64_t{0}})
        ExpectThrow(ErrNotPossible, "Trying to create Pixel list with too many components",
                    [&] { MakeList(dimension); });
    EXPECT_EQ(MakeList(2).Object()->Dimension, 2u);
    EXPECT_EQ(MakeList(256).Object()->Dimension, 256u);
}

TEST(PixelListObject, BeginsEmptyWithOneReference) {
    auto *const list = new CPixelList(3);
    EXPECT_TRUE(list->empty());
    EXPECT_EQ(list->AddRef(), 2u);
    EXPECT_EQ(list->Release(), 1u);
    EXPECT_EQ(list->Release(), 0u);
}

TEST(PixelListObject, AppendsCopiesAtItsEnd) {
    const ListHolder list = MakeList(2);
    double components[] = {1, 2};
    list.Object()->Append(components);
    components[0] = 3;
    list.Object()->Append(components);
    ASSERT_EQ(list.Object()->size(), 2u);
    EXPECT_EQ(ComponentsOf(*(*list.Object())[0]), (std::vector<double>{1, 2}));
    EXPECT_EQ(ComponentsOf(*(*list.Object())[1]), (std::vector<double>{3, 2}));
}

/// Counts the living ones.
struct CountedPixel : CPixel {
    explicit CountedPixel(int &alive) : CPixel(2), Alive(alive) { ++Alive; }
    ~CountedPixel() override { --Alive; }
    int &Alive;
};

TEST(PixelListObject, DeletesItsPixelsByTheirOwnDestructors) {
    int alive = 0;
    {
        const ListHolder list = MakeList(2);
        list.Object()->push_back(new CountedPixel(alive));
        list.Object()->push_back(new CountedPixel(alive));
        list.Object()->Clear();
        EXPECT_EQ(alive, 0);
        EXPECT_TRUE(list.Object()->empty());
        list.Object()->push_back(new CountedPixel(alive));
        EXPECT_EQ(alive, 1);
    }
    EXPECT_EQ(alive, 0);
}

TEST(PixelListObject, IsAListBehindItsHandle) {
    const ListHolder list = MakeList(2);
    EXPECT_EQ(PixelList::ListBehind(list.Get()), list.Object());
    EXPECT_TRUE(IsPixels(list.Get()));
    EXPECT_EQ(PixelList::ListBehind(nullptr), nullptr);
}

class DerivedList : public CPixelList {
public:
    using CPixelList::CPixelList;
};

TEST(PixelListObject, OfADerivedClassIsNoList) {
    const ListHolder plain = MakeList(2);
    const ListHolder derived(new DerivedList(2));
    EXPECT_FALSE(IsPixels(derived.Get()));
    EXPECT_EQ(PixelList::ListBehind(derived.Get()), nullptr);
    EXPECT_FALSE(PixelList::HoldList(derived.Get()).IsValid());
    EXPECT_TRUE(IsPixels(plain.Get()));
}

TEST(PixelListObject, KeepsBeingKnownWhenOnlyADerivedOneWasMadeSince) {
    const ListHolder list = MakeList(2);
    { const ListHolder derived(new DerivedList(3)); }
    EXPECT_TRUE(IsPixels(list.Get()));
}

TEST(PixelListObject, IsHeldForTheTimeOfACall) {
    const ListHolder list = MakeList(2);
    {
        const ListHolder held = PixelList::GuardList(list.Get(), "SomeFunction");
        ASSERT_TRUE(held.IsValid());
        EXPECT_EQ(list.Object()->AddRef(), 3u);
        list.Object()->Release();
    }
    EXPECT_EQ(list.Object()->AddRef(), 2u);
    list.Object()->Release();
}

// ---- what the exported functions do with a pixel that lacks components

TEST(PixelListObject, APixelWithoutComponentsCannotBeRead) {
    const ListHolder list = MakeList(3);
    const double components[] = {1, 2, 3};
    list.Object()->Append(components);
    (*list.Object())[0]->FreeComponents();
    double out[] = {7, 7, 7};
    ResetORVErrorCount();
    EXPECT_FALSE(ListPixelEx(list.Get(), 0, out));
    EXPECT_EQ(GetORVErrorCount(), 1);
    char text[128];
    std::uint64_t size = sizeof text, nameSize = sizeof text;
    char name[128];
    std::uint32_t code = 0;
    ASSERT_TRUE(GetLastORVError(&code, nullptr, text, &size, name, &nameSize));
    EXPECT_EQ(code, ErrGeneral);
    EXPECT_STREQ(text, "Access violation during access to input pixel data");
    EXPECT_STREQ(name, "ListPixelEx");
    EXPECT_EQ(out[0], 0.0);
    EXPECT_FALSE(SortPixelsByValue(list.Get()));
    EXPECT_EQ(list.Object()->size(), 1u);
}

} // namespace
