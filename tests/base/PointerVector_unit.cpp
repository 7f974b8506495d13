#include "PointerVector.h"

#include <gtest/gtest.h>

namespace {

struct Counted {
    explicit Counted(int &living) : Living(living) { ++Living; }
    Counted(const Counted &) = delete;
    Counted &operator=(const Counted &) = delete;
    ~Counted() { --Living; }
    int &Living;
};

using Owned = tkBase::ptrvector<Counted *>;

TEST(PointerVector, DeletesEachObjectWhenItEnds) {
    int living = 0;
    {
        Owned objects;
        objects.push_back(new Counted(living));
        objects.push_back(nullptr);
        objects.push_back(new Counted(living));
        EXPECT_EQ(living, 2);
    }
    EXPECT_EQ(living, 0);
}

TEST(PointerVector, LeavesAnErasedObjectToTheCaller) {
    int living = 0;
    Counted *object = new Counted(living);
    {
        Owned objects;
        objects.push_back(object);
        objects.pop_back();
    }
    EXPECT_EQ(living, 1);
    delete object;
}

TEST(PointerVector, MovesItsObjects) {
    int living = 0;
    {
        Owned first;
        first.push_back(new Counted(living));
        Owned second(std::move(first));
        EXPECT_EQ(second.size(), 1u);
        Owned third;
        third.push_back(new Counted(living));
        third = std::move(second);
        EXPECT_EQ(third.size(), 1u);
        EXPECT_EQ(living, 2);
    }
    EXPECT_EQ(living, 0);
}

TEST(PointerVector, IsAVector) {
    static_assert(std::is_base_of_v<std::vector<Counted *>, Owned>);
    static_assert(!std::is_copy_constructible_v<Owned>);
    const Owned objects(3);
    EXPECT_EQ(objects.size(), 3u);
    EXPECT_EQ(objects[2], nullptr);
}

} // namespace
