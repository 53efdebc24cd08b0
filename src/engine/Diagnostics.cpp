#include "engine/Diagnostics.h"

#include <cstdio>
#include <cstring>
#include <mutex>
#include <string>

namespace twinsweep {

void printErrorLine(std::string_view prefix, std::string_view description) {
    static std::mutex lock;
    std::string line;
    line.reserve(prefix.size() + description.size() + 1);
    line.append(prefix).append(description).push_back('\n');
    std::lock_guard guard(lock);
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fflush(stdout);
}

void printErrorLine(std::string_view prefix, std::string_view path, int err) {
    std::string description(path);
    description.append(": ").append(std::strerror(err));
    printErrorLine(prefix, description);
}

} // namespace twinsweep
