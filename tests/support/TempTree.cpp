// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TempTree.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sched.h>
#include <sstream>
#include <stdexcept>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace twinsweep::testing {

TempTree::TempTree(const std::string& base) {
    std::string tmpl =
        ((base.empty() ? fs::temp_directory_path() : fs::path(base)) / "twinsweep-test-XXXXXX")
            .string();
    if (::mkdtemp(tmpl.data()) == nullptr) {
        throw std::runtime_error("mkdtemp failed");
    }
    root_ = fs::canonical(tmpl).string();
}

TempTree::~TempTree() {
    std::error_code ec;
    // Folders made unreadable by a test must be opened up before removal.
    for (auto it = fs::recursive_directory_iterator(
             root_, fs::directory_options::skip_permission_denied, ec);
         !ec && it != fs::recursive_directory_iterator(); it.increment(ec)) {
        if (it->is_directory(ec) && !it->is_symlink(ec)) {
            ::chmod(it->path().c_str(), 0755);
        }
    }
    ::chmod(root_.c_str(), 0755);
    fs::remove_all(root_, ec);
}

std::string TempTree::mkdir(const std::string& rel) const {
    fs::create_directories(path(rel));
    return path(rel);
}

std::string TempTree::withParent(const std::string& rel) const {
    const std::string p = path(rel);
    fs::create_directories(fs::path(p).parent_path());
    return p;
}

std::string TempTree::write(const std::string& rel, const std::string& contents) const {
    const std::string p = withParent(rel);
    std::ofstream out(p, std::ios::binary | std::ios::trunc);
    out << contents;
    return p;
}

std::string TempTree::sparse(const std::string& rel, std::uint64_t size) const {
    const std::string p = withParent(rel);
    const int fd = ::open(p.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (fd < 0 || ::ftruncate(fd, static_cast<off_t>(size)) != 0) {
        throw std::runtime_error("sparse file failed");
    }
    ::close(fd);
    return p;
}

std::string TempTree::symlink(const std::string& target, const std::string& rel) const {
    const std::string p = withParent(rel);
    fs::create_symlink(target, p);
    return p;
}

void TempTree::openToEveryone() const {
    ::chmod(root_.c_str(), 0777);
    for (const auto& e : fs::recursive_directory_iterator(root_)) {
        if (!e.is_symlink()) {
            ::chmod(e.path().c_str(), e.is_directory() ? 0777 : 0666);
        }
    }
}

std::map<std::string, std::string> TempTree::snapshot() const {
    std::map<std::string, std::string> out;
    for (const auto& e : fs::recursive_directory_iterator(root_)) {
        out[e.path().string().substr(root_.size() + 1)] =
            e.is_symlink()     ? "-> " + fs::read_symlink(e.path()).string()
            : e.is_directory() ? "/"
                               : slurp(e.path().string());
    }
    return out;
}

int runUnprivileged(const std::function<int()>& body) {
    if (::geteuid() != 0) {
        return body();
    }
    std::fflush(stdout);
    const pid_t pid = ::fork();
    if (pid == 0) {
        if (::setgid(65534) != 0 || ::setuid(65534) != 0) {
            ::_exit(255);
        }
        const int result = body();
        std::fflush(stdout);
        ::_exit(result & 0xff);
    }
    int status = 0;
    if (pid < 0 || ::waitpid(pid, &status, 0) != pid || !WIFEXITED(status) ||
        WEXITSTATUS(status) == 255) {
        return -1;
    }
    return WEXITSTATUS(status);
}

DiagnosticsCapture::DiagnosticsCapture() : before_(setProcessDiagnostics(&sink_)) {}

DiagnosticsCapture::~DiagnosticsCapture() {
    finish();
}

std::string DiagnosticsCapture::finish() {
    if (done_) {
        return {};
    }
    done_ = true;
    setProcessDiagnostics(before_);
    return joined(sink_.lines());
}

std::string joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) {
        text += line + "\n";
    }
    return text;
}

std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> out;
    std::string line;
    std::istringstream in(text);
    while (std::getline(in, line)) {
        out.push_back(line);
    }
    return out;
}

std::string slurp(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream ss;
    ss << in.rdbuf();
    return ss.str();
}

bool privateMounts() {
    static const bool ok = ::geteuid() == 0 && ::unshare(CLONE_NEWNS) == 0 &&
                           ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
    return ok;
}

std::shared_ptr<void> mountTmpfs(const std::string& folder) {
    if (::mount("tmpfs", folder.c_str(), "tmpfs", 0, nullptr) != 0) {
        return nullptr;
    }
    return std::shared_ptr<void>(new std::string(folder), [](void* p) {
        const auto* at = static_cast<std::string*>(p);
        ::umount2(at->c_str(), MNT_DETACH);
        delete at;
    });
}

} // namespace twinsweep::testing
