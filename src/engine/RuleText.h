#pragma once

#include <memory>
#include <string>

namespace twinsweep {

// A text value that shares one buffer until it is written. Every record starts
// with the same 23-line rule text; sharing it keeps a million records small.
class RuleText {
  public:
    RuleText() : text_(emptyText()) {}
    RuleText(std::string text) : text_(std::make_shared<const std::string>(std::move(text))) {}
    RuleText(const char* text) : RuleText(std::string(text)) {}
    explicit RuleText(std::shared_ptr<const std::string> shared) : text_(std::move(shared)) {}

    RuleText& operator=(std::string text) {
        text_ = std::make_shared<const std::string>(std::move(text));
        return *this;
    }

    const std::string& str() const { return *text_; }
    operator const std::string&() const { return *text_; }
    bool empty() const { return text_->empty(); }

    friend bool operator==(const RuleText& a, const RuleText& b) { return a.str() == b.str(); }
    friend bool operator==(const RuleText& a, const std::string& b) { return a.str() == b; }

  private:
    static const std::shared_ptr<const std::string>& emptyText() {
        static const auto value = std::make_shared<const std::string>();
        return value;
    }
    std::shared_ptr<const std::string> text_;
};

} // namespace twinsweep
