// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <compare>
#include <cstdint>
#include <cstring>
#include <functional>
#include <new>
#include <ostream>
#include <string>
#include <string_view>

namespace twinsweep {

// A path that never changes once made, shared by every copy of it: a record
// and the member entries made from it hold one text between them. One
// allocation holds the count, the length and the characters (ended by a NUL,
// so that c_str() costs nothing); the value itself is one pointer.
class PathText {
  public:
    PathText() = default;
    PathText(std::string_view text) : block_(make(text)) {}
    PathText(const std::string& text) : PathText(std::string_view(text)) {}
    PathText(const char* text) : PathText(std::string_view(text)) {}
    PathText(const PathText& other) : block_(other.block_) { retain(); }
    PathText(PathText&& other) noexcept : block_(other.block_) { other.block_ = nullptr; }
    PathText& operator=(const PathText& other) {
        PathText copy(other);
        swap(copy);
        return *this;
    }
    PathText& operator=(PathText&& other) noexcept {
        swap(other);
        return *this;
    }
    PathText& operator=(std::string_view text) {
        PathText made(text);
        swap(made);
        return *this;
    }
    PathText& operator=(const std::string& text) { return *this = std::string_view(text); }
    PathText& operator=(const char* text) { return *this = std::string_view(text); }
    ~PathText() { release(); }

    void swap(PathText& other) noexcept { std::swap(block_, other.block_); }

    std::string_view view() const {
        return block_ == nullptr ? std::string_view()
                                 : std::string_view(block_->text, block_->size);
    }
    std::string str() const { return std::string(view()); }
    operator std::string() const { return str(); }
    operator std::string_view() const { return view(); }

    const char* c_str() const { return block_ == nullptr ? "" : block_->text; }
    const char* data() const { return c_str(); }
    std::size_t size() const { return block_ == nullptr ? 0 : block_->size; }
    std::size_t length() const { return size(); }
    bool empty() const { return size() == 0; }
    char front() const { return view().front(); }
    char back() const { return view().back(); }
    void clear() { *this = PathText(); }

    std::string substr(std::size_t pos, std::size_t n = std::string::npos) const {
        return std::string(view().substr(pos, n));
    }
    std::size_t find(std::string_view s, std::size_t pos = 0) const { return view().find(s, pos); }
    std::size_t find(char c, std::size_t pos = 0) const { return view().find(c, pos); }
    std::size_t rfind(std::string_view s, std::size_t pos = std::string::npos) const {
        return view().rfind(s, pos);
    }
    std::size_t rfind(char c, std::size_t pos = std::string::npos) const {
        return view().rfind(c, pos);
    }
    std::size_t find_last_of(char c, std::size_t pos = std::string::npos) const {
        return view().find_last_of(c, pos);
    }
    bool starts_with(std::string_view s) const { return view().starts_with(s); }
    bool ends_with(std::string_view s) const { return view().ends_with(s); }
    int compare(std::string_view s) const { return view().compare(s); }

    friend bool operator==(const PathText& a, const PathText& b) {
        return a.block_ == b.block_ || a.view() == b.view();
    }
    friend bool operator==(const PathText& a, std::string_view b) { return a.view() == b; }
    friend bool operator==(const PathText& a, const std::string& b) { return a.view() == b; }
    friend bool operator==(const PathText& a, const char* b) { return a.view() == b; }
    friend std::strong_ordering operator<=>(const PathText& a, const PathText& b) {
        return a.view() <=> b.view();
    }
    friend std::strong_ordering operator<=>(const PathText& a, std::string_view b) {
        return a.view() <=> b;
    }
    friend std::strong_ordering operator<=>(const PathText& a, const std::string& b) {
        return a.view() <=> std::string_view(b);
    }
    friend std::string operator+(const PathText& a, std::string_view b) {
        std::string out(a.view());
        out.append(b);
        return out;
    }
    friend std::string operator+(const PathText& a, const std::string& b) {
        return a + std::string_view(b);
    }
    friend std::string operator+(const PathText& a, const char* b) {
        return a + std::string_view(b);
    }
    friend std::string operator+(const PathText& a, char b) {
        std::string out(a.view());
        out.push_back(b);
        return out;
    }
    friend std::string operator+(std::string_view a, const PathText& b) {
        std::string out(a);
        out.append(b.view());
        return out;
    }
    friend std::string operator+(const std::string& a, const PathText& b) {
        return std::string_view(a) + b;
    }
    friend std::string operator+(const char* a, const PathText& b) {
        return std::string_view(a) + b;
    }
    friend std::ostream& operator<<(std::ostream& out, const PathText& p) {
        return out << p.view();
    }

  private:
    struct Block {
        std::atomic<std::uint32_t> refs;
        std::uint32_t size;
        char text[1]; // size + 1 bytes in fact
    };
    static Block* make(std::string_view text) {
        if (text.empty()) {
            return nullptr;
        }
        void* raw = ::operator new(offsetof(Block, text) + text.size() + 1);
        auto* block = static_cast<Block*>(raw);
        new (&block->refs) std::atomic<std::uint32_t>(1);
        block->size = static_cast<std::uint32_t>(text.size());
        std::memcpy(block->text, text.data(), text.size());
        block->text[text.size()] = '\0';
        return block;
    }
    void retain() {
        if (block_ != nullptr) {
            block_->refs.fetch_add(1, std::memory_order_relaxed);
        }
    }
    void release() {
        if (block_ != nullptr && block_->refs.fetch_sub(1, std::memory_order_acq_rel) == 1) {
            ::operator delete(block_);
        }
        block_ = nullptr;
    }
    Block* block_ = nullptr;
};

// A path handed to a function that only reads it: a std::string, a PathText
// or a C string, taken without a copy (each ends with a NUL).
class PathArg {
  public:
    PathArg(const std::string& text) : text_(text.c_str()), size_(text.size()) {}
    PathArg(const PathText& text) : text_(text.c_str()), size_(text.size()) {}
    PathArg(const char* text) : text_(text), size_(std::strlen(text)) {}

    const char* c_str() const { return text_; }
    std::size_t size() const { return size_; }
    std::string_view view() const { return {text_, size_}; }
    operator std::string_view() const { return view(); }
    std::string str() const { return std::string(view()); }

  private:
    const char* text_;
    std::size_t size_;
};

} // namespace twinsweep

template <> struct std::hash<twinsweep::PathText> {
    std::size_t operator()(const twinsweep::PathText& p) const noexcept {
        return std::hash<std::string_view>()(p.view());
    }
};
