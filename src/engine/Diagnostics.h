// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace twinsweep {

// Appends text with control bytes and the backslash written as C escapes
// (\n, \t, \r, \\, \xNN). A name may hold a line feed or other control
// bytes; written raw they would split a line or drive the terminal, escaped
// every line stays one line and reads back unambiguously.
void appendEscaped(std::string& out, std::string_view text);

// Where diagnostic lines go: the prefix ("Ooops! Something went wrong: " or
// "Error: ") followed by the error's description, which names the path
// ("PATH: No such file or directory"). Control bytes and backslashes in the
// description are written as C escapes (\n, \\, \x1b), so a line is always
// one line. Reports may come from several threads at once; lines never
// interleave.
class Diagnostics {
  public:
    virtual ~Diagnostics() = default;
    void report(std::string_view prefix, std::string_view description);
    void report(std::string_view prefix, std::string_view path, int err);
    // One whole line, without its line feed, already escaped.
    virtual void write(const std::string& line) = 0;
};

// Writes each line to a file descriptor (standard output by default).
class DescriptorDiagnostics : public Diagnostics {
  public:
    explicit DescriptorDiagnostics(int fd = 1) : fd_(fd) {}
    void write(const std::string& line) override;

  private:
    int fd_;
    std::mutex lock_;
};

// Keeps the lines, for a window that shows how many items were refused and
// for tests; with forward, passes each on as well.
class CollectedDiagnostics : public Diagnostics {
  public:
    explicit CollectedDiagnostics(Diagnostics* forward = nullptr) : forward_(forward) {}
    std::vector<std::string> lines() const;
    std::size_t count() const;
    void write(const std::string& line) override;

  private:
    Diagnostics* forward_;
    mutable std::mutex lock_;
    std::vector<std::string> lines_;
};

// The sink for work that has none of its own (cleaning, the fingerprint
// store, a search whose starter named none): each line goes to the process's
// sink as it stands when the line is written, standard output unless a front
// end or a test puts another in place.
Diagnostics& processDiagnostics();
// Puts sink in place of the process's sink; nullptr restores standard output.
// Returns the sink that was in place. Not for use while work is reporting.
Diagnostics* setProcessDiagnostics(Diagnostics* sink);

// Reports through the process's sink.
void printErrorLine(std::string_view prefix, std::string_view path, int err);
void printErrorLine(std::string_view prefix, std::string_view description);

} // namespace twinsweep
