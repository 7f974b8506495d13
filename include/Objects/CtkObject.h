/* The root of the older classes: a tag that tells living objects from dead ones and from foreign memory, and a set of
 * class numbers, so that an object can be asked what it is. No locks, no reference count. */
#ifndef ORV_OBJECTS_CTK_OBJECT_H
#define ORV_OBJECTS_CTK_OBJECT_H
#ifdef __cplusplus

#include "ORVTypes.h"

class ORV_API CtkObject {
public:
    /// The tag of an object that lives, and what its destructor leaves behind.
    static constexpr std::uint32_t LivingTag = 0x10D2E553u;
    static constexpr std::uint32_t DeadTag = 0x28F2CE40u;
    static constexpr unsigned ClassId = 1;
    /// The answer of GetFamily and GetClassId when there is none.
    static constexpr std::uint32_t NoId = 0xFFFFFFFFu;

    CtkObject() noexcept;
    /// A copy lives on its own: tag and class numbers are its own constructors' work, never copied.
    CtkObject(const CtkObject &) noexcept;
    CtkObject &operator=(const CtkObject &) noexcept { return *this; }

    /// Leaves the dead tag and an empty set in the memory of the object.
    virtual ~CtkObject();
    /// The kind of class that lists (7) and streams (21) name; here NoId.
    virtual std::uint32_t GetFamily() const;
    /// The most derived class that has a number, or NoId when the tag is not that of a living object.
    virtual std::uint32_t GetClassId() const;
    /// Version of the class and the object's flags; 0 unless a class says otherwise.
    virtual std::uint32_t GetVersion() const;
    virtual std::uint32_t GetFlags() const;

    bool IsValid() const noexcept;
    bool IsClass(std::uint32_t id) const;
    /// True when the object is of the class with this number or derives from it.
    bool IsMemberOf(unsigned bit) const noexcept;

    /// The word that stands where an object of the root class has its tag. The object may be of any kind and as small
    /// as one pointer; 0 when the address cannot be that of an object. For an object with several bases it is the
    /// word behind its first base's first pointer, so the answer is about objects whose first base is CtkObject.
    static std::uint32_t TagOf(const void *object) noexcept;

protected:
    /// Called by the constructors of every class that has a number, below 64.
    void AddClass(unsigned id) noexcept;
    /// What a GetClassId answers: the class's number while the tag is right.
    std::uint32_t WhileValid(std::uint32_t id) const noexcept;

private:
    std::uint32_t tag_;
    std::uint64_t classes_;
};

class ORV_API CtkContainerObject : public CtkObject {};

class ORV_API CtkMathObject : public CtkObject {};

class ORV_API CtkSystemObject : public CtkObject {
public:
    static constexpr unsigned ClassId = 19;

    CtkSystemObject() noexcept { AddClass(ClassId); }
    CtkSystemObject(const CtkSystemObject &other) noexcept : CtkObject(other) { AddClass(ClassId); }
    CtkSystemObject &operator=(const CtkSystemObject &) noexcept { return *this; }

    std::uint32_t GetClassId() const override { return WhileValid(ClassId); }
};

#endif
#endif
