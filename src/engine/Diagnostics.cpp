// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/Diagnostics.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <unistd.h>

namespace twinsweep {

void appendEscaped(std::string& out, std::string_view text) {
    static const char* const kHex = "0123456789abcdef";
    for (const char ch : text) {
        const auto c = static_cast<unsigned char>(ch);
        if (c == '\\') {
            out += "\\\\";
        } else if (c == '\n') {
            out += "\\n";
        } else if (c == '\t') {
            out += "\\t";
        } else if (c == '\r') {
            out += "\\r";
        } else if (c < 0x20 || c == 0x7F) {
            out += "\\x";
            out.push_back(kHex[c >> 4]);
            out.push_back(kHex[c & 15]);
        } else {
            out.push_back(ch);
        }
    }
}

void Diagnostics::report(std::string_view prefix, std::string_view description) {
    std::string line;
    line.reserve(prefix.size() + description.size());
    line.append(prefix);
    appendEscaped(line, description);
    write(line);
}

void Diagnostics::report(std::string_view prefix, std::string_view path, int err) {
    std::string description(path);
    description.append(": ").append(std::strerror(err));
    report(prefix, description);
}

void DescriptorDiagnostics::write(const std::string& line) {
    const std::string whole = line + "\n";
    std::lock_guard guard(lock_);
    if (fd_ == STDOUT_FILENO) {
        // Through the stream: whatever else the program wrote there stays
        // in the order it was written.
        std::fwrite(whole.data(), 1, whole.size(), stdout);
        std::fflush(stdout);
        return;
    }
    for (std::size_t done = 0; done < whole.size();) {
        const ssize_t n = ::write(fd_, whole.data() + done, whole.size() - done);
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0) {
            return; // a diagnostic that can't be written is not worth a second one
        }
        done += static_cast<std::size_t>(n);
    }
}

std::vector<std::string> CollectedDiagnostics::lines() const {
    std::lock_guard guard(lock_);
    return lines_;
}

std::size_t CollectedDiagnostics::count() const {
    std::lock_guard guard(lock_);
    return lines_.size();
}

void CollectedDiagnostics::write(const std::string& line) {
    if (forward_ != nullptr) {
        forward_->write(line);
    }
    std::lock_guard guard(lock_);
    lines_.push_back(line);
}

namespace {

DescriptorDiagnostics& standardOutput() {
    static DescriptorDiagnostics sink(STDOUT_FILENO);
    return sink;
}

std::atomic<Diagnostics*> processSink{nullptr};

class ProcessForwarder final : public Diagnostics {
  public:
    void write(const std::string& line) override {
        Diagnostics* sink = processSink.load(std::memory_order_acquire);
        (sink != nullptr ? *sink : standardOutput()).write(line);
    }
};

} // namespace

Diagnostics& processDiagnostics() {
    static ProcessForwarder forwarder;
    return forwarder;
}

Diagnostics* setProcessDiagnostics(Diagnostics* sink) {
    return processSink.exchange(sink, std::memory_order_acq_rel);
}

void printErrorLine(std::string_view prefix, std::string_view description) {
    processDiagnostics().report(prefix, description);
}

void printErrorLine(std::string_view prefix, std::string_view path, int err) {
    processDiagnostics().report(prefix, path, err);
}

} // namespace twinsweep
