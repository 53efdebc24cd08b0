#pragma once

#include <cstdint>
#include <cstring>
#include <ostream>
#include <string>
#include <string_view>

namespace twinsweep {

// A text that is nearly always short (a file's extension), in 16 bytes: up to
// 15 bytes are kept in place, a longer text on the heap. Every record carries
// one, so it is half the size of a std::string.
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
            return {heapPointer(), heapLength()};
        }
        return {bytes_, static_cast<std::size_t>(bytes_[kLast])};
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
    static constexpr std::size_t kLast = 15;
    static constexpr unsigned char kHeapMark = 0x80;

    bool onHeap() const { return static_cast<unsigned char>(bytes_[kLast]) == kHeapMark; }
    const char* heapPointer() const {
        const char* p = nullptr;
        std::memcpy(&p, bytes_, sizeof p);
        return p;
    }
    std::size_t heapLength() const {
        std::uint32_t n = 0;
        std::memcpy(&n, bytes_ + sizeof(char*), sizeof n);
        return n;
    }
    void setInline(std::string_view text) {
        std::memset(bytes_, 0, sizeof bytes_);
        if (!text.empty()) { // an empty view may have no data at all
            std::memcpy(bytes_, text.data(), text.size());
        }
        bytes_[kLast] = static_cast<char>(text.size());
    }
    void set(std::string_view text) {
        if (text.size() <= kLast) {
            setInline(text);
            return;
        }
        char* p = new char[text.size()];
        std::memcpy(p, text.data(), text.size());
        const auto n = static_cast<std::uint32_t>(text.size());
        std::memset(bytes_, 0, sizeof bytes_);
        std::memcpy(bytes_, &p, sizeof p);
        std::memcpy(bytes_ + sizeof(char*), &n, sizeof n);
        bytes_[kLast] = static_cast<char>(kHeapMark);
    }
    void release() {
        if (onHeap()) {
            delete[] heapPointer();
            setInline({});
        }
    }

    char bytes_[16];
};

} // namespace twinsweep
