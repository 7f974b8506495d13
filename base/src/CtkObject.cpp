// The root class. Its checks stand in a source file of their own, so that they read the memory as it is, also that of
// an object which the caller has just destroyed.
#include "CtkObject.h"

// On what may be asked of an object that is gone: the sanitizer of member calls would stop it.
#define MAY_BE_DEAD __attribute__((no_sanitize("vptr")))

CtkObject::CtkObject() noexcept : tag_(LivingTag), classes_(0) {
    AddClass(ClassId);
}

CtkObject::CtkObject(const CtkObject &) noexcept : CtkObject() {}

CtkObject::~CtkObject() {
    // Volatile, because a store into an object that ends is dead to the compiler. The tag betrays stale
    // pointers.
    static_cast<volatile std::uint32_t &>(tag_) = DeadTag;
    static_cast<volatile std::uint64_t &>(classes_) = 0;
}

std::uint32_t CtkObject::GetFamily() const {
    return NoId;
}

MAY_BE_DEAD std::uint32_t CtkObject::GetClassId() const {
    return WhileValid(ClassId);
}

std::uint32_t CtkObject::GetVersion() const {
    return 0;
}

std::uint32_t CtkObject::GetFlags() const {
    return 0;
}

MAY_BE_DEAD bool CtkObject::IsValid() const noexcept {
    return tag_ == LivingTag;
}

MAY_BE_DEAD bool CtkObject::IsClass(std::uint32_t id) const {
    return IsValid() && GetClassId() == id;
}

MAY_BE_DEAD bool CtkObject::IsMemberOf(unsigned bit) const noexcept {
    return bit < 64 && IsValid() && ((classes_ >> bit) & 1u) != 0;
}

MAY_BE_DEAD std::uint32_t CtkObject::WhileValid(std::uint32_t id) const noexcept {
    return IsValid() ? id : NoId;
}

void CtkObject::AddClass(unsigned id) noexcept {
    if (id < 64)
        classes_ |= std::uint64_t{1} << id;
}

// A foreign object may end before this word, and may hold a reference count there that other threads change at the
// same time: the read is atomic, and the sanitizers leave it alone.
__attribute__((noinline, no_sanitize("address"), no_sanitize("thread"))) std::uint32_t
CtkObject::TagOf(const void *object) noexcept {
    using Word [[gnu::may_alias]] = std::uint32_t;
    constexpr std::size_t tagOffset = sizeof(void *); // behind the pointer to the virtual operations
    if (object == nullptr || reinterpret_cast<std::uintptr_t>(object) % alignof(void *) != 0)
        return 0;
    const auto *word = reinterpret_cast<const Word *>(static_cast<const char *>(object) + tagOffset);
    return __atomic_load_n(word, __ATOMIC_RELAXED);
}
