// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <string>

namespace twinsweep {

// A text value that shares one buffer until it is written. Every record starts
// with the same 23-line rule text; sharing it keeps a million records small,
// and one pointer (the count lives with the text) keeps each record smaller.
class RuleText {
  public:
    RuleText() : block_(emptyBlock()) { retain(); }
    RuleText(std::string text) : block_(new Block{{1}, std::move(text)}) {}
    RuleText(const char* text) : RuleText(std::string(text)) {}
    RuleText(const RuleText& other) : block_(other.block_) { retain(); }
    RuleText& operator=(const RuleText& other) {
        Block* old = block_;
        block_ = other.block_;
        retain();
        release(old);
        return *this;
    }
    RuleText& operator=(std::string text) {
        Block* old = block_;
        block_ = new Block{{1}, std::move(text)};
        release(old);
        return *this;
    }
    ~RuleText() { release(block_); }

    const std::string& str() const { return block_->text; }
    operator const std::string&() const { return block_->text; }
    bool empty() const { return block_->text.empty(); }

    friend bool operator==(const RuleText& a, const RuleText& b) { return a.str() == b.str(); }
    friend bool operator==(const RuleText& a, const std::string& b) { return a.str() == b; }

  private:
    struct Block {
        std::atomic<long> refs;
        const std::string text;
    };
    void retain() { block_->refs.fetch_add(1, std::memory_order_relaxed); }
    static void release(Block* block) {
        if (block->refs.fetch_sub(1, std::memory_order_acq_rel) == 1) {
            delete block;
        }
    }
    // Holds a count of its own, so it is never freed.
    static Block* emptyBlock() {
        static Block empty{{1}, std::string()};
        return &empty;
    }
    Block* block_;
};

} // namespace twinsweep
