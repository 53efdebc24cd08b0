// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <ostream>
#include <string>
#include <string_view>

namespace twinsweep {

// A text that is nearly always short (a file's extension), in 8 bytes: up to
// 7 bytes are kept in place, a longer text on the heap. Every record carries
// one, so it is a quarter of the size of a std::string.
class ShortText {
  public:
    ShortText() { setInline({}); }
    ShortText(std::string_view text) { set(text); }
    ShortText(const std::string& text) : ShortText(std::string_view(text)) {}
    ShortText(const char* text) : ShortText(std::string_view(text)) {}
    ShortText(const ShortText& other) { set(other.view()); }
    ShortText(ShortText&& other) noexcept {
        std::memcpy(bytes_, other.bytes_, sizeof bytes_);
        other.setInline({});
    }
    ShortText& operator=(const ShortText& other) {
        if (this != &other) {
            const std::string copy(other.view());
            release();
            set(copy);
        }
        return *this;
    }
    ShortText& operator=(ShortText&& other) noexcept {
        if (this != &other) {
            release();
            std::memcpy(bytes_, other.bytes_, sizeof bytes_);
            other.setInline({});
        }
        return *this;
    }
    ShortText& operator=(std::string_view text) {
        const std::string copy(text); // text may live in this very object
        release();
        set(copy);
        return *this;
    }
    ShortText& operator=(const std::string& text) { return *this = std::string_view(text); }
    ShortText& operator=(const char* text) { return *this = std::string_view(text); }
    ~ShortText() { release(); }

    std::string_view view() const {
        if (onHeap()) {
            return {heapBlock() + sizeof(std::uint32_t), heapLength()};
        }
        return {bytes_, static_cast<std::size_t>(static_cast<unsigned char>(bytes_[kLast]) & 0x7F)};
    }
    std::string str() const { return std::string(view()); }
    operator std::string_view() const { return view(); }
    operator std::string() const { return str(); }
    bool empty() const { return view().empty(); }
    std::size_t size() const { return view().size(); }

    friend bool operator==(const ShortText& a, const ShortText& b) { return a.view() == b.view(); }
    friend bool operator==(const ShortText& a, std::string_view b) { return a.view() == b; }
    friend bool operator==(const ShortText& a, const std::string& b) { return a.view() == b; }
    friend bool operator==(const ShortText& a, const char* b) {
        return a.view() == std::string_view(b);
    }
    friend std::ostream& operator<<(std::ostream& out, const ShortText& t) {
        return out << t.view();
    }

  private:
    // Up to 7 bytes in place, the eighth holding 0x80 | length. A longer text
    // lives on the heap behind a 32-bit length, its pointer in place: the top
    // byte of a user-space pointer is 0 on the 64-bit little-endian targets.
    static constexpr std::size_t kLast = 7;
    static constexpr unsigned char kInlineMark = 0x80;
    static_assert(sizeof(char*) == 8 && std::endian::native == std::endian::little);

    bool onHeap() const { return (static_cast<unsigned char>(bytes_[kLast]) & kInlineMark) == 0; }
    const char* heapBlock() const {
        const char* p = nullptr;
        std::memcpy(&p, bytes_, sizeof p);
        return p;
    }
    std::size_t heapLength() const {
        std::uint32_t n = 0;
        std::memcpy(&n, heapBlock(), sizeof n);
        return n;
    }
    void setInline(std::string_view text) {
        std::memset(bytes_, 0, sizeof bytes_);
        if (!text.empty()) { // an empty view may have no data at all
            std::memcpy(bytes_, text.data(), text.size());
        }
        bytes_[kLast] = static_cast<char>(kInlineMark | text.size());
    }
    void set(std::string_view text) {
        if (text.size() <= kLast) {
            setInline(text);
            return;
        }
        const auto n = static_cast<std::uint32_t>(text.size());
        char* p = new char[sizeof n + text.size()];
        std::memcpy(p, &n, sizeof n);
        std::memcpy(p + sizeof n, text.data(), text.size());
        std::memcpy(bytes_, &p, sizeof p);
    }
    void release() {
        if (onHeap()) {
            delete[] heapBlock();
            setInline({});
        }
    }

    char bytes_[8];
};

} // namespace twinsweep
