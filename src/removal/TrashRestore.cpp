#include "removal/TrashRestore.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include "removal/Trash.h"
#include "removal/Fd.h"

namespace twinsweep {

namespace {

bool sameAsTrashed(const struct stat& st, const FileIdentity& seen) {
    if (static_cast<std::uint32_t>(st.st_dev) != seen.device ||
        static_cast<std::uint64_t>(st.st_ino) != seen.inode) {
        return false;
    }
    // A folder's own times move when it changes parents; files keep theirs.
    return S_ISDIR(st.st_mode) ||
           (static_cast<std::uint64_t>(st.st_size) == seen.size &&
            st.st_mtim.tv_sec == seen.mtimeSec && st.st_mtim.tv_nsec == seen.mtimeNsec);
}

// Drops the line of a restored folder from the Trash's directorysizes.
void forgetFolderSize(const std::string& filesPath) {
    const std::string trash = parentOf(parentOf(filesPath));
    const std::string sizes = trash + "/directorysizes";
    const Fd in(::open(sizes.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    if (!in.ok()) {
        return;
    }
    std::string text;
    char buf[65536];
    ssize_t n = 0;
    while ((n = ::read(in.get(), buf, sizeof buf)) > 0) {
        text.append(buf, static_cast<std::size_t>(n));
    }
    const std::string suffix =
        std::string(" ").append(Trash::percentEncoded(lastComponent(filesPath)));
    std::string kept;
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = text.find('\n', start);
        end = end == std::string::npos ? text.size() : end + 1;
        std::string line = text.substr(start, end - start);
        const std::string bare = line.back() == '\n' ? line.substr(0, line.size() - 1) : line;
        if (!bare.ends_with(suffix)) {
            kept += line;
        }
        start = end;
    }
    const std::string temp = sizes + "." + std::to_string(::getpid()) + ".tmp";
    const Fd out(::open(temp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (out.ok() && writeFully(out.get(), kept)) {
        ::rename(temp.c_str(), sizes.c_str());
    } else {
        ::unlink(temp.c_str());
    }
}

} // namespace

RestoreOutcome restoreFromTrash(const std::vector<TrashedCopy>& copies) {
    RestoreOutcome outcome;
    for (const TrashedCopy& c : copies) {
        const std::string& original = c.where.originalPath;
        const auto problem = [&](const std::string& why, bool retry) {
            outcome.problems.push_back(original + ": " + why + ", not restored");
            if (retry) {
                outcome.left.push_back(c);
            }
        };
        struct stat st {};
        if (::lstat(c.where.filesPath.c_str(), &st) != 0) {
            problem(errno == ENOENT ? "no longer in the Trash" : std::strerror(errno), false);
            continue;
        }
        if (!sameAsTrashed(st, c.seen)) {
            problem("changed in the Trash since the clean", false);
            continue;
        }
        const Fd folder(::open(parentOf(original).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (!folder.ok()) {
            problem("its folder " + parentOf(original) + ": " + std::strerror(errno), true);
            continue;
        }
        const std::string name = lastComponent(original);
        if (::renameat2(AT_FDCWD, c.where.filesPath.c_str(), folder.get(), name.c_str(),
                        RENAME_NOREPLACE) != 0) {
            problem(errno == EEXIST ? std::string("its path is taken by another file")
                                    : std::string(std::strerror(errno)),
                    true);
            continue;
        }
        ::unlink(c.where.infoPath.c_str());
        if (S_ISDIR(st.st_mode)) {
            forgetFolderSize(c.where.filesPath);
        }
        outcome.restored.push_back(original);
    }
    return outcome;
}

} // namespace twinsweep
