#include "FaultSupport.h"

#include <atomic>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <poll.h>
#include <sched.h>
#include <sys/fanotify.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include "engine/Digest.h"

namespace twinsweep::testing {

Snapshot snapshot(const std::string& root) {
    Snapshot out;
    namespace fs = std::filesystem;
    for (const fs::directory_entry& e :
         fs::recursive_directory_iterator(root, fs::directory_options::skip_permission_denied)) {
        const std::string p = e.path().string();
        struct stat st {};
        ::lstat(p.c_str(), &st);
        out[rel(root, p)] = S_ISDIR(st.st_mode)   ? "folder"
                            : S_ISLNK(st.st_mode) ? "link:" + fs::read_symlink(p).string()
                            : S_ISREG(st.st_mode) ? "file:" + std::to_string(st.st_size) + ":" +
                                                        base64Text(streamDigest(p))
                                                  : "special";
    }
    return out;
}

::testing::AssertionResult nothingLost(const Snapshot& before, const Snapshot& after,
                                       const std::set<std::string>& gone) {
    std::string problems;
    for (const auto& [rel, what] : before) {
        const auto it = after.find(rel);
        if (gone.count(rel) != 0 && it != after.end()) {
            problems += "\n  still there: " + rel;
        } else if (gone.count(rel) == 0 && it == after.end()) {
            problems += "\n  lost: " + rel;
        } else if (gone.count(rel) == 0 && it->second != what) {
            problems += "\n  changed: " + rel;
        }
    }
    if (problems.empty()) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << problems;
}

bool privateMounts() {
    static const bool ok = ::geteuid() == 0 && ::unshare(CLONE_NEWNS) == 0 &&
                           ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
    return ok;
}

bool AccessWatch::available() {
    static const bool ok = AccessWatch(TempTree().root()).fan_ >= 0;
    return ok;
}

AccessWatch::AccessWatch(const std::string& folder) {
    fan_ = ::fanotify_init(FAN_CLASS_CONTENT | FAN_CLOEXEC, O_RDONLY | O_LARGEFILE);
    if (fan_ >= 0 && ::fanotify_mark(fan_, FAN_MARK_ADD, FAN_ACCESS_PERM | FAN_EVENT_ON_CHILD,
                                     AT_FDCWD, folder.c_str()) != 0) {
        ::close(fan_);
        fan_ = -1;
    }
}

AccessWatch::~AccessWatch() {
    if (fan_ >= 0) {
        ::close(fan_); // every read still waiting is allowed
    }
}

void AccessWatch::allow(int eventFd) {
    const fanotify_response r{eventFd, FAN_ALLOW};
    EXPECT_EQ(::write(fan_, &r, sizeof r), static_cast<ssize_t>(sizeof r)) << std::strerror(errno);
    ::close(eventFd);
}

bool AccessWatch::holdFirstAccess(const std::function<void()>& whileHeld) {
    if (fan_ < 0) {
        return false;
    }
    // whileHeld runs on its own thread: reads it causes in folder are allowed here.
    int held = -1;
    std::atomic<bool> done{false};
    std::thread worker;
    alignas(fanotify_event_metadata) char buf[8192];
    while (held < 0 || !done) {
        pollfd p{fan_, POLLIN, 0};
        const int ready = ::poll(&p, 1, held >= 0 ? 10 : 60000);
        if (ready == 0 && held < 0) {
            return false;
        }
        if (ready <= 0) {
            continue;
        }
        ssize_t n = ::read(fan_, buf, sizeof buf);
        for (auto* m = reinterpret_cast<fanotify_event_metadata*>(buf); FAN_EVENT_OK(m, n);
             m = FAN_EVENT_NEXT(m, n)) {
            if (m->fd < 0) {
                continue;
            }
            if (held < 0 && m->pid != ::getpid()) {
                held = m->fd;
                worker = std::thread([&] {
                    whileHeld();
                    done = true;
                });
                continue;
            }
            allow(m->fd);
        }
    }
    worker.join();
    allow(held);
    ::close(fan_);
    fan_ = -1;
    return true;
}

std::string fileEntry(const std::string& bytes) {
    return "file:" + std::to_string(bytes.size()) + ":" +
           base64Text(md5Of(bytes.data(), bytes.size()));
}

std::string rel(const std::string& root, const std::string& path) {
    return path.substr(std::min(path.size(), root.size() + 1));
}

std::set<std::string> relSet(const std::string& root, const std::vector<std::string>& paths) {
    std::set<std::string> out;
    for (const std::string& p : paths) {
        out.insert(rel(root, p));
    }
    return out;
}

void rewriteInPlace(const std::string& path, const std::string& contents) {
    const int fd = ::open(path.c_str(), O_WRONLY);
    ASSERT_GE(fd, 0) << path;
    ASSERT_EQ(::pwrite(fd, contents.data(), contents.size(), 0),
              static_cast<ssize_t>(contents.size()));
    ::close(fd);
}

} // namespace twinsweep::testing
