// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/JsonValue.h"

namespace twinsweep {

namespace {

constexpr int kMaxDepth = 64;

class Parser {
  public:
    explicit Parser(std::string_view text) : text_(text) {}

    std::string run(JsonValue& value) {
        if (!parseValue(value, 0)) {
            return error_ + " at byte " + std::to_string(at_);
        }
        skipSpace();
        if (at_ != text_.size()) {
            return "unexpected text after the end at byte " + std::to_string(at_);
        }
        return {};
    }

  private:
    bool fail(const char* why) {
        error_ = why;
        return false;
    }

    void skipSpace() {
        while (at_ < text_.size() && (text_[at_] == ' ' || text_[at_] == '\n' ||
                                      text_[at_] == '\r' || text_[at_] == '\t')) {
            ++at_;
        }
    }

    bool literal(std::string_view word) {
        if (text_.substr(at_, word.size()) != word) {
            return fail("unexpected text");
        }
        at_ += word.size();
        return true;
    }

    bool parseValue(JsonValue& v, int depth) {
        if (depth > kMaxDepth) {
            return fail("nested too deep");
        }
        skipSpace();
        if (at_ >= text_.size()) {
            return fail("unexpected end");
        }
        switch (text_[at_]) {
        case '{':
            return parseObject(v, depth);
        case '[':
            return parseArray(v, depth);
        case '"':
            v.kind = JsonValue::Kind::String;
            return parseString(v.text);
        case 't':
            v.kind = JsonValue::Kind::Bool;
            v.boolean = true;
            return literal("true");
        case 'f':
            v.kind = JsonValue::Kind::Bool;
            return literal("false");
        case 'n':
            return literal("null");
        default:
            return parseNumber(v);
        }
    }

    bool parseNumber(JsonValue& v) {
        v.kind = JsonValue::Kind::Number;
        if (text_[at_] == '-') {
            v.negative = true;
            ++at_;
        }
        const std::size_t start = at_;
        while (at_ < text_.size() && text_[at_] >= '0' && text_[at_] <= '9') {
            const auto digit = static_cast<std::uint64_t>(text_[at_] - '0');
            if (v.magnitude > (UINT64_MAX - digit) / 10) {
                return fail("number out of range");
            }
            v.magnitude = v.magnitude * 10 + digit;
            ++at_;
        }
        if (at_ == start || (text_[start] == '0' && at_ - start > 1)) {
            return fail("not a number");
        }
        if (at_ < text_.size() && (text_[at_] == '.' || text_[at_] == 'e' || text_[at_] == 'E')) {
            return fail("not a whole number");
        }
        return true;
    }

    bool hex4(unsigned& out) {
        if (at_ + 4 > text_.size()) {
            return fail("short \\u escape");
        }
        out = 0;
        for (int k = 0; k < 4; ++k) {
            const char c = text_[at_++];
            out <<= 4;
            if (c >= '0' && c <= '9') {
                out |= static_cast<unsigned>(c - '0');
            } else if (c >= 'a' && c <= 'f') {
                out |= static_cast<unsigned>(c - 'a' + 10);
            } else if (c >= 'A' && c <= 'F') {
                out |= static_cast<unsigned>(c - 'A' + 10);
            } else {
                return fail("bad \\u escape");
            }
        }
        return true;
    }

    static void appendUtf8(std::string& out, unsigned cp) {
        if (cp < 0x80) {
            out.push_back(static_cast<char>(cp));
        } else if (cp < 0x800) {
            out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
            out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
        } else if (cp < 0x10000) {
            out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
            out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
        } else {
            out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
            out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
        }
    }

    bool escape(std::string& out) {
        if (at_ >= text_.size()) {
            return fail("unexpected end");
        }
        const char c = text_[at_++];
        switch (c) {
        case '"':
        case '\\':
        case '/':
            out.push_back(c);
            return true;
        case 'b':
            out.push_back('\b');
            return true;
        case 'f':
            out.push_back('\f');
            return true;
        case 'n':
            out.push_back('\n');
            return true;
        case 'r':
            out.push_back('\r');
            return true;
        case 't':
            out.push_back('\t');
            return true;
        case 'u':
            break;
        default:
            return fail("bad escape");
        }
        unsigned cp = 0;
        if (!hex4(cp)) {
            return false;
        }
        if (cp >= 0xDC80 && cp <= 0xDCFF) {
            out.push_back(static_cast<char>(cp - 0xDC00)); // a byte that is not UTF-8
            return true;
        }
        if (cp >= 0xD800 && cp <= 0xDBFF) {
            unsigned low = 0;
            if (text_.substr(at_, 2) != "\\u") {
                return fail("lone surrogate");
            }
            at_ += 2;
            if (!hex4(low)) {
                return false;
            }
            if (low < 0xDC00 || low > 0xDFFF) {
                return fail("lone surrogate");
            }
            cp = 0x10000 + ((cp - 0xD800) << 10) + (low - 0xDC00);
        } else if (cp >= 0xDC00 && cp <= 0xDFFF) {
            return fail("lone surrogate");
        }
        if (cp == 0) {
            return fail("NUL in a string");
        }
        appendUtf8(out, cp);
        return true;
    }

    bool parseString(std::string& out) {
        ++at_; // the opening quote
        while (at_ < text_.size()) {
            const auto c = static_cast<unsigned char>(text_[at_]);
            if (c == '"') {
                ++at_;
                return true;
            }
            if (c < 0x20) {
                return fail("control character in a string");
            }
            ++at_;
            if (c == '\\') {
                if (!escape(out)) {
                    return false;
                }
            } else {
                out.push_back(static_cast<char>(c));
            }
        }
        return fail("unterminated string");
    }

    bool parseArray(JsonValue& v, int depth) {
        v.kind = JsonValue::Kind::Array;
        ++at_;
        skipSpace();
        if (at_ < text_.size() && text_[at_] == ']') {
            ++at_;
            return true;
        }
        for (;;) {
            v.items.emplace_back();
            if (!parseValue(v.items.back(), depth + 1)) {
                return false;
            }
            skipSpace();
            if (at_ < text_.size() && text_[at_] == ',') {
                ++at_;
                continue;
            }
            if (at_ < text_.size() && text_[at_] == ']') {
                ++at_;
                return true;
            }
            return fail("expected , or ]");
        }
    }

    bool parseObject(JsonValue& v, int depth) {
        v.kind = JsonValue::Kind::Object;
        ++at_;
        skipSpace();
        if (at_ < text_.size() && text_[at_] == '}') {
            ++at_;
            return true;
        }
        for (;;) {
            skipSpace();
            if (at_ >= text_.size() || text_[at_] != '"') {
                return fail("expected a key");
            }
            std::string key;
            if (!parseString(key)) {
                return false;
            }
            if (v.find(key) != nullptr) {
                return fail("duplicate key");
            }
            skipSpace();
            if (at_ >= text_.size() || text_[at_] != ':') {
                return fail("expected :");
            }
            ++at_;
            v.members.emplace_back(std::move(key), JsonValue{});
            if (!parseValue(v.members.back().second, depth + 1)) {
                return false;
            }
            skipSpace();
            if (at_ < text_.size() && text_[at_] == ',') {
                ++at_;
                continue;
            }
            if (at_ < text_.size() && text_[at_] == '}') {
                ++at_;
                return true;
            }
            return fail("expected , or }");
        }
    }

    std::string_view text_;
    std::size_t at_ = 0;
    std::string error_;
};

} // namespace

const JsonValue* JsonValue::find(std::string_view key) const {
    for (const auto& [name, value] : members) {
        if (name == key) {
            return &value;
        }
    }
    return nullptr;
}

std::string parseJson(std::string_view text, JsonValue& value) {
    value = JsonValue{};
    return Parser(text).run(value);
}

} // namespace twinsweep
