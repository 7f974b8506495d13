#include "CtkObject.h"

#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <new>

#include "VirtualSlot.h"

namespace {

using TestSupport::SlotOf;

/// An object in memory of our own, which stays readable when the object is gone.
template <class T>
class Resident {
public:
    Resident() : object_(new (memory_) T) {}
    T *Destroy() {
        object_->~T();
        return object_;
    }
    T *operator->() { return object_; }
    const void *Memory() const { return memory_; }
    template <class Word>
    Word WordAt(std::size_t offset) const {
        asm volatile(""
                     :
                     : "r"(memory_)
                     : "memory"); // the compiler takes the memory of an ended object for undefined
        Word word{};
        std::memcpy(&word, memory_ + offset, sizeof word);
        return word;
    }

private:
    alignas(T) unsigned char memory_[sizeof(T)] = {};
    T *object_;
};

class Derived : public CtkSystemObject {
public:
    Derived() { AddClass(63); }
    using CtkObject::AddClass;
};

TEST(CtkObject, HoldsTheLivingTagAndItsClassBit) {
    Resident<CtkObject> object;
    EXPECT_EQ(object.WordAt<std::uint32_t>(8), 0x10D2E553u);
    EXPECT_EQ(object.WordAt<std::uint64_t>(16), std::uint64_t{1} << 1);
    EXPECT_TRUE(object->IsValid());
    object.Destroy();
}

TEST(CtkObject, LeavesTheDeadTagAndNoClassBits) {
    Resident<Derived> object;
    object.Destroy();
    EXPECT_EQ(object.WordAt<std::uint32_t>(8), 0x28F2CE40u);
    EXPECT_EQ(object.WordAt<std::uint64_t>(16), 0u);
}

/// What an object answers when it is asked after its end. The sanitizer of member calls would stop that; the
/// operations are called without their slots, because it also clears the pointer to them.
struct Answers {
    __attribute__((no_sanitize("vptr"))) explicit Answers(const CtkObject *object)
        : ClassId(object->CtkObject::GetClassId()), IsValid(object->IsValid()), IsRoot(object->IsClass(1)),
          IsNothing(object->IsClass(0xFFFFFFFFu)), IsMember(object->IsMemberOf(1)) {}
    std::uint32_t ClassId;
    bool IsValid;
    bool IsRoot;
    bool IsNothing;
    bool IsMember;
};

TEST(CtkObject, GetClassIdOfADestroyedObjectGivesAllBits) {
    Resident<CtkObject> object;
    EXPECT_EQ(object->GetClassId(), 1u);
    const Answers gone(object.Destroy());
    EXPECT_EQ(gone.ClassId, 0xFFFFFFFFu);
    EXPECT_FALSE(gone.IsValid);
    EXPECT_FALSE(gone.IsRoot);
    EXPECT_FALSE(gone.IsNothing);
    EXPECT_FALSE(gone.IsMember);
}

TEST(CtkObject, HasNoFamilyAndTwoOperationsThatGiveZero) {
    const CtkObject object;
    EXPECT_EQ(object.GetFamily(), 0xFFFFFFFFu);
    EXPECT_EQ(object.GetVersion(), 0u);
    EXPECT_EQ(object.GetFlags(), 0u);
}

TEST(CtkObject, IsMemberOfEachClassThatItDerivesFrom) {
    const Derived object;
    EXPECT_TRUE(object.IsMemberOf(1));
    EXPECT_TRUE(object.IsMemberOf(19));
    EXPECT_TRUE(object.IsMemberOf(63));
    EXPECT_FALSE(object.IsMemberOf(0));
    EXPECT_FALSE(object.IsMemberOf(62));
}

TEST(CtkObject, IsMemberOf64GivesFalse) {
    Derived object;
    object.AddClass(64);
    EXPECT_FALSE(object.IsMemberOf(64));
    EXPECT_FALSE(object.IsMemberOf(65)); // not bit 1 either
    EXPECT_FALSE(object.IsMemberOf(0xFFFFFFFFu));
    EXPECT_FALSE(object.IsMemberOf(0));
}

TEST(CtkObject, IsClassAsksForTheMostDerivedNumber) {
    const CtkObject root;
    EXPECT_TRUE(root.IsClass(1));
    EXPECT_FALSE(root.IsClass(19));
    const CtkSystemObject system;
    EXPECT_TRUE(system.IsClass(19));
    EXPECT_FALSE(system.IsClass(1));
}

TEST(CtkObject, TheClassesDirectlyOnItKeepItsAnswers) {
    const CtkContainerObject container;
    const CtkMathObject math;
    for (const CtkObject *object :
         {static_cast<const CtkObject *>(&container), static_cast<const CtkObject *>(&math)}) {
        EXPECT_EQ(object->GetClassId(), 1u);
        EXPECT_EQ(object->GetFamily(), 0xFFFFFFFFu);
        EXPECT_TRUE(object->IsMemberOf(1));
    }
}

TEST(CtkObject, ACopyLivesWithTheClassesOfItsOwnConstructors) {
    const Derived original;
    const CtkSystemObject copy(original);
    EXPECT_TRUE(copy.IsValid());
    EXPECT_TRUE(copy.IsMemberOf(19));
    EXPECT_FALSE(copy.IsMemberOf(63));
}

TEST(CtkObject, AssigningKeepsTheClasses) {
    const Derived derived;
    CtkSystemObject target;
    target = derived;
    EXPECT_TRUE(target.IsValid());
    EXPECT_FALSE(target.IsMemberOf(63));
}

TEST(CtkObject, HasSixSlotsInOrder) {
    EXPECT_EQ(SlotOf(&CtkObject::GetFamily), 2u); // behind the two forms of the destructor
    EXPECT_EQ(SlotOf(&CtkObject::GetClassId), 3u);
    EXPECT_EQ(SlotOf(&CtkObject::GetVersion), 4u);
    EXPECT_EQ(SlotOf(&CtkObject::GetFlags), 5u);
}

TEST(CtkObject, TagOfTellsLivingAndDeadObjects) {
    Resident<Derived> object;
    EXPECT_EQ(CtkObject::TagOf(object.Memory()), CtkObject::LivingTag);
    object.Destroy();
    EXPECT_EQ(CtkObject::TagOf(object.Memory()), CtkObject::DeadTag);
}

TEST(CtkObject, TagOfGivesZeroWhereNoObjectCanStand) {
    EXPECT_EQ(CtkObject::TagOf(nullptr), 0u);
    alignas(8) const unsigned char bytes[24] = {};
    EXPECT_EQ(CtkObject::TagOf(bytes + 1), 0u);
    EXPECT_EQ(CtkObject::TagOf(bytes + 4), 0u);
}

TEST(CtkObject, TagOfReadsTheWordBehindTheFirstPointer) {
    const std::uint32_t words[4] = {1, 2, CtkObject::LivingTag, 4};
    alignas(8) unsigned char memory[sizeof words];
    std::memcpy(memory, words, sizeof words);
    EXPECT_EQ(CtkObject::TagOf(memory), CtkObject::LivingTag);
}

TEST(CtkObject, TagOfMayLookBehindAForeignObjectOfOnePointer) {
    const auto small = std::make_unique<void *>(nullptr);
    const std::uint32_t tag = CtkObject::TagOf(small.get());
    EXPECT_NE(tag, CtkObject::LivingTag);
    EXPECT_NE(tag, CtkObject::DeadTag);
}

} // namespace
