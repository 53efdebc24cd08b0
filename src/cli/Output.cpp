#include "cli/Output.h"

#include <cstdio>

#include "engine/Diagnostics.h"

namespace twinsweep::cli {

namespace {

const char* const kCategoryNames[] = {"pictures", "music",     "movies",
                                      "archives", "documents", "other"};

void appendHex(std::string& out, const char* prefix, unsigned value, int digits) {
    char buf[16];
    std::snprintf(buf, sizeof buf, "%s%0*x", prefix, digits, value);
    out += buf;
}

// Length of the valid UTF-8 sequence at s[k], or 0 when it is not one.
std::size_t utf8Length(std::string_view s, std::size_t k) {
    const auto b = [&](std::size_t i) { return static_cast<unsigned char>(s[i]); };
    const unsigned char c = b(k);
    std::size_t len = 0;
    unsigned min = 0;
    unsigned cp = 0;
    if (c >= 0xC2 && c <= 0xDF) {
        len = 2;
        cp = c & 0x1F;
        min = 0x80;
    } else if (c >= 0xE0 && c <= 0xEF) {
        len = 3;
        cp = c & 0x0F;
        min = 0x800;
    } else if (c >= 0xF0 && c <= 0xF4) {
        len = 4;
        cp = c & 0x07;
        min = 0x10000;
    } else {
        return 0;
    }
    if (k + len > s.size()) {
        return 0;
    }
    for (std::size_t i = 1; i < len; ++i) {
        if ((b(k + i) & 0xC0) != 0x80) {
            return 0;
        }
        cp = (cp << 6) | (b(k + i) & 0x3F);
    }
    if (cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
        return 0;
    }
    return len;
}

} // namespace

std::string textEscaped(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size());
    appendEscaped(out, bytes);
    return out;
}

std::string jsonString(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size() + 2);
    out.push_back('"');
    for (std::size_t k = 0; k < bytes.size();) {
        const auto c = static_cast<unsigned char>(bytes[k]);
        if (c < 0x80) {
            switch (c) {
            case '"':
                out += "\\\"";
                break;
            case '\\':
                out += "\\\\";
                break;
            case '\n':
                out += "\\n";
                break;
            case '\t':
                out += "\\t";
                break;
            case '\r':
                out += "\\r";
                break;
            case '\b':
                out += "\\b";
                break;
            case '\f':
                out += "\\f";
                break;
            default:
                if (c < 0x20) {
                    appendHex(out, "\\u", c, 4);
                } else {
                    out.push_back(static_cast<char>(c));
                }
            }
            ++k;
            continue;
        }
        if (const std::size_t len = utf8Length(bytes, k); len > 0) {
            out.append(bytes.substr(k, len));
            k += len;
            continue;
        }
        appendHex(out, "\\udc", c, 2);
        ++k;
    }
    out.push_back('"');
    return out;
}

namespace {

// Collects output and hands it on in pieces of bounded size, so that a large
// report never sits whole in memory.
class Chunked {
  public:
    explicit Chunked(const ReportSink& sink) : sink_(sink) {}
    std::string& text() { return text_; }
    bool maybeFlush() { return text_.size() < kChunk || flush(); }
    bool flush() {
        const bool ok = sink_(text_);
        text_.clear();
        return ok;
    }

  private:
    static constexpr std::size_t kChunk = 64 * 1024;
    const ReportSink& sink_;
    std::string text_;
};

} // namespace

bool writeTextReport(const FileList& groups, const ReportSink& sink) {
    Chunked out(sink);
    bool first = true;
    for (const FilePtr& group : groups) {
        if (!first) {
            out.text().push_back('\n');
        }
        first = false;
        for (const DuplicateFilePtr& member : group->duplicates) {
            out.text() += textEscaped(member->path);
            out.text().push_back('\n');
        }
        if (!out.maybeFlush()) {
            return false;
        }
    }
    return out.flush();
}

bool writeJsonReport(const FileList& groups, const FileTools& tools, const ReportSink& sink) {
    Chunked chunked(sink);
    std::string& out = chunked.text();
    out = "{\"groups\":[";
    for (std::size_t g = 0; g < groups.size(); ++g) {
        File& head = *groups[g];
        if (g > 0) {
            out.push_back(',');
        }
        out += "\n{\"path\":" + jsonString(head.path);
        out += ",\"size\":" + std::to_string(head.size);
        out += ",\"ext\":" + jsonString(head.ext);
        out += ",\"category\":\"";
        out += kCategoryNames[tools.categoryOf(head) - 1];
        // Files compared by size alone were never read and have no digest.
        const std::string digest = tools.digestText(head);
        out += "\",\"md5\":" + (digest.empty() ? std::string("null") : jsonString(digest));
        out += ",\"members\":[";
        for (std::size_t m = 0; m < head.duplicates.size(); ++m) {
            const DuplicateFile& member = *head.duplicates[m];
            if (m > 0) {
                out.push_back(',');
            }
            out += "{\"path\":" + jsonString(member.path) + ",\"date\":" + jsonString(member.date) +
                   "}";
        }
        out += "]}";
        if (!chunked.maybeFlush()) {
            return false;
        }
    }
    out += groups.empty() ? "]}\n" : "\n]}\n";
    return chunked.flush();
}

std::string textReport(const FileList& groups) {
    std::string all;
    writeTextReport(groups, [&](std::string_view piece) {
        all.append(piece);
        return true;
    });
    return all;
}

std::string jsonReport(const FileList& groups, const FileTools& tools) {
    std::string all;
    writeJsonReport(groups, tools, [&](std::string_view piece) {
        all.append(piece);
        return true;
    });
    return all;
}

} // namespace twinsweep::cli
