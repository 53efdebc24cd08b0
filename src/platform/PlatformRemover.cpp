#include "platform/PlatformRemover.h"

#include <QFile>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ftw.h>
#include <sys/stat.h>
#include <unistd.h>

namespace twinsweep {

namespace {

RemovalResult failure(const std::string& path, const std::string& why) {
    return {false, path + ": " + why};
}

RemovalResult failure(const std::string& path, int err) {
    return failure(path, std::strerror(err));
}

thread_local int firstError = 0;

int removeEntry(const char* path, const struct stat*, int, struct FTW*) {
    if (::remove(path) != 0 && firstError == 0) {
        firstError = errno;
    }
    return 0; // go on: remove as much as can be removed
}

} // namespace

RemovalResult PlatformRemover::moveToTrash(const std::string& path) {
    struct stat st {};
    if (::lstat(path.c_str(), &st) != 0) {
        return failure(path, errno);
    }
    // Qt takes names as Unicode text; a name that is not valid UTF-8 would
    // reach the Trash as another name, so it is refused instead.
    const QString name = QFile::decodeName(path.c_str());
    if (QFile::encodeName(name) != QByteArray(path.data(), static_cast<qsizetype>(path.size()))) {
        return failure(path, "the name is not valid UTF-8, so it can't be moved to the Trash; "
                             "nothing was removed");
    }
    QFile file(name);
    if (!file.moveToTrash()) {
        const QString why = file.errorString();
        return failure(path, why.isEmpty() ? std::string("could not be moved to the Trash")
                                           : why.toStdString());
    }
    return {};
}

RemovalResult PlatformRemover::removeForGood(const std::string& path) {
    struct stat st {};
    if (::lstat(path.c_str(), &st) != 0) {
        return failure(path, errno);
    }
    if (!S_ISDIR(st.st_mode)) {
        return ::unlink(path.c_str()) == 0 ? RemovalResult{} : failure(path, errno);
    }
    // Depth first, links removed as links, never followed; one folder at a
    // time on the calling thread.
    firstError = 0;
    if (::nftw(path.c_str(), removeEntry, 32, FTW_DEPTH | FTW_PHYS) != 0) {
        return failure(path, errno);
    }
    if (firstError != 0) {
        return failure(path, firstError);
    }
    return {};
}

} // namespace twinsweep
