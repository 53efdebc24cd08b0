// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace twinsweep {

// Collects output and hands it on in pieces of bounded size, so that a large
// report or export never sits whole in memory.
class Chunked {
  public:
    explicit Chunked(const std::function<bool(std::string_view)>& sink) : sink_(sink) {}
    std::string& text() { return text_; }
    bool maybeFlush() { return text_.size() < kChunk || flush(); }
    bool flush() {
        const bool ok = sink_(text_);
        text_.clear();
        return ok;
    }

  private:
    static constexpr std::size_t kChunk = 64 * 1024;
    const std::function<bool(std::string_view)>& sink_;
    std::string text_;
};

} // namespace twinsweep
