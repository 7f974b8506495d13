#include "CtkCString.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <utility>

#include "CheckedSize.h"

namespace {

std::string_view ViewOf(const char *text) {
    return text == nullptr ? std::string_view() : std::string_view(text);
}

std::string_view ViewOf(const char *text, std::size_t length) {
    return text == nullptr ? std::string_view() : std::string_view(text, length);
}

} // namespace

CtkCString::CtkCString(const char *text) {
    Replace(ViewOf(text), {});
}

CtkCString::CtkCString(const CtkCString &other) {
    Replace(other.View(), {});
}

CtkCString::CtkCString(CtkCString &&other) noexcept
    : length_(std::exchange(other.length_, 0)), text_(std::exchange(other.text_, nullptr)) {}

CtkCString &CtkCString::operator=(const CtkCString &other) {
    if (this != &other)
        Replace(other.View(), {});
    return *this;
}

CtkCString &CtkCString::operator=(CtkCString &&other) noexcept {
    std::swap(length_, other.length_);
    std::swap(text_, other.text_);
    return *this;
}

CtkCString::~CtkCString() {
    std::free(text_);
}

std::size_t CtkCString::GetLength() const {
    return length_;
}

const char *CtkCString::GetText() const {
    return View().data();
}

bool CtkCString::IsEmpty() const {
    return length_ == 0;
}

void CtkCString::Set(const char *text) {
    Replace(ViewOf(text), {});
}

void CtkCString::Set(const char *text, std::size_t length) {
    Replace(ViewOf(text, length), {});
}

void CtkCString::Append(const char *text) {
    Replace(View(), ViewOf(text));
}

void CtkCString::Append(const char *text, std::size_t length) {
    Replace(View(), ViewOf(text, length));
}

void CtkCString::Clear() {
    Replace({}, {});
}

int CtkCString::Compare(const CtkCString &other) const {
    return View().compare(other.View());
}

std::ptrdiff_t CtkCString::Find(char character, std::size_t start) const {
    const std::size_t found = View().find(character, start);
    return found == std::string_view::npos ? -1 : static_cast<std::ptrdiff_t>(found);
}

bool CtkCString::ReadLine(std::size_t &position, CtkCString &line) const {
    const std::string_view all = View();
    const std::size_t first = all.find_first_not_of(LineEnds, position);
    if (first == std::string_view::npos)
        return false;
    const std::size_t end = std::min(all.find_first_of(LineEnds, first), all.size());
    line.Replace(all.substr(first, end - first), {});
    position = end;
    return true;
}

// Both parts may lie in the present text: it is given back last.
void CtkCString::Replace(std::string_view first, std::string_view second) {
    std::size_t bytes = 0;
    if (!orvBase::CheckedSum(bytes, first.size(), second.size(), std::size_t{1}))
        throw std::bad_alloc();
    char *fresh = nullptr; // stays null for a string without a text
    if (bytes > 1) {
        fresh = static_cast<char *>(std::malloc(bytes));
        if (fresh == nullptr)
            throw std::bad_alloc();
        first.copy(fresh, first.size());
        second.copy(fresh + first.size(), second.size());
        fresh[bytes - 1] = '\0';
    }
    std::free(std::exchange(text_, fresh));
    length_ = bytes - 1;
}
