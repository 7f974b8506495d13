// Tree nodes that tell about themselves, and a stream over a string, for the tests of the persistable tree.
#pragma once

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "Persistence/Tree/NodeHolder.h"
#include "Persistence/Tree/TBuffer.h"

namespace TestSupport {

using Trail = std::vector<std::string>;

/// Writes what is done to it into a trail.
class TracedNode : public TSList {
public:
    TracedNode(std::string name, Trail &trail) : name_(std::move(name)), trail_(trail) {}
    ~TracedNode() override { trail_.push_back("destroy " + name_); }
    std::int32_t Share() override {
        const std::int32_t count = TSList::Share();
        trail_.push_back("share " + name_);
        return count;
    }
    std::int32_t Release() override {
        trail_.push_back("release " + name_);
        return TSList::Release();
    }

private:
    std::string name_;
    Trail &trail_;
};

/// A stream over a string; it reads and writes short at its limit.
class StringStream : public CtkStream {
public:
    explicit StringStream(std::string bytes = {}, std::size_t limit = 4096) : Bytes(std::move(bytes)), Limit(limit) {}
    std::size_t Read(void *buffer, std::size_t count) override {
        const std::size_t moved = Bytes.copy(static_cast<char *>(buffer), count, Position);
        Position += moved;
        return moved;
    }
    std::size_t Write(const void *buffer, std::size_t count) override {
        const std::size_t moved = std::min(count, Limit - Bytes.size());
        Bytes.append(static_cast<const char *>(buffer), moved);
        return moved;
    }
    std::int64_t Seek(std::int64_t offset, std::int32_t) override {
        Position = static_cast<std::size_t>(offset);
        return offset;
    }

    std::string Bytes;
    std::size_t Limit;
    std::size_t Position = 0;
};

/// Runs what must throw a CtkExceptionObject and gives its text.
template <class Body>
std::string ThrownText(Body &&body) {
    try {
        body();
    } catch (const CtkExceptionObject &exception) {
        return exception.GetText();
    }
    return "nothing thrown";
}

} // namespace TestSupport
