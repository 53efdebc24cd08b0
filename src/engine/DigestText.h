// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <ostream>
#include <string>
#include <string_view>

namespace twinsweep {

// The digest text of a record: empty until the comparison computes it, which
// it does only for files that have a same-size rival. A million records mostly
// hold nothing here, so the text lives behind one pointer that stays null
// while it is empty.
class DigestText {
  public:
    DigestText() = default;
    explicit DigestText(std::string text) { assign(std::move(text)); }
    DigestText(const DigestText& other) { assign(other.str()); }
    DigestText(DigestText&&) noexcept = default;
    DigestText& operator=(const DigestText& other) {
        if (this != &other) {
            assign(other.str());
        }
        return *this;
    }
    DigestText& operator=(DigestText&&) noexcept = default;
    DigestText& operator=(std::string text) {
        assign(std::move(text));
        return *this;
    }
    DigestText& operator=(const char* text) {
        assign(std::string(text));
        return *this;
    }

    const std::string& str() const { return text_ ? *text_ : empty_(); }
    operator const std::string&() const { return str(); }
    operator std::string_view() const { return str(); }
    bool empty() const { return !text_; }
    std::size_t size() const { return str().size(); }
    const char* c_str() const { return str().c_str(); }

    friend bool operator==(const DigestText& a, const DigestText& b) { return a.str() == b.str(); }
    friend bool operator==(const DigestText& a, const std::string& b) { return a.str() == b; }
    friend bool operator==(const DigestText& a, const char* b) { return a.str() == b; }
    friend std::ostream& operator<<(std::ostream& out, const DigestText& d) {
        return out << d.str();
    }

  private:
    void assign(std::string text) {
        if (text.empty()) {
            text_.reset();
        } else {
            text_ = std::make_unique<std::string>(std::move(text));
        }
    }
    static const std::string& empty_() {
        static const std::string none;
        return none;
    }
    std::unique_ptr<std::string> text_;
};

} // namespace twinsweep
