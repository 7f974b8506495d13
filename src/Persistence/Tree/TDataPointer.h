// A tree node that stands for some memory: its own, a borrowed block, or a plane of another image.
#pragma once

#include "Persistence/Tree/TSList.h"

class TDataPointer : public TSList {
public:
    static constexpr unsigned ClassId = 1;
    static constexpr std::uint32_t DataPointerTag = 24;

    ~TDataPointer() override { ClearGuards(); }

    std::uint32_t GetClassId() const override { return WhileValid(ClassId); }

    /// The memory's first byte; null when there is none.
    virtual void *GetData() = 0;

    std::uint32_t GetDataPointerTag() const noexcept { return dataPointerTag_; }
    /// The tag of the derived class.
    std::uint32_t GetClassTag() const noexcept { return classTag_; }

protected:
    explicit TDataPointer(std::uint32_t classTag) : classTag_(classTag) { AddClass(ClassId); }

private:
    std::uint32_t dataPointerTag_ = DataPointerTag;
    std::uint32_t classTag_;
};
