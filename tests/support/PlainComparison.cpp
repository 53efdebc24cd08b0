// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/PlainComparison.h"

#include <cerrno>
#include <cstdint>
#include <unistd.h>

#include "engine/Digest.h"

namespace twinsweep::testing {

namespace {

// The whole contents' digest; an unreadable file counts as empty, after its line.
std::string digestOf(const File& file, Diagnostics& diagnostics) {
    std::vector<unsigned char> bytes;
    const int fd = openForReading(file.path, file.folder);
    bool failed = fd < 0;
    for (std::size_t at = 0; !failed;) {
        bytes.resize(at + 65536);
        const long n = readFully(fd, bytes.data() + at, 65536);
        failed = n < 0;
        at += n > 0 ? static_cast<std::size_t>(n) : 0;
        if (n < 65536) {
            bytes.resize(at);
            break;
        }
    }
    if (failed) {
        diagnostics.report("Ooops! Something went wrong: ", file.path, errno);
        bytes.clear();
    }
    if (fd >= 0) {
        ::close(fd);
    }
    return base64Text(md5Of(bytes.data(), bytes.size()));
}

} // namespace

FileList plainSearch(FileTools& tools, SearchContext& context,
                     const std::vector<std::string>& folders, bool ignorePackages) {
    tools.useContext(context);
    tools.walkPhase(FileTools::removeNestedFolders(folders), ignorePackages, {}, 0, UINT64_MAX);
    FileList& list = tools.fileList;
    if (list.size() < 2) {
        return list;
    }
    tools.sizeOrderPhase();
    const std::size_t n = list.size();
    for (std::size_t i = 0; i + 1 < n; ++i) {
        tools.postComparisonStep(i);
        File& a = *list[i];
        for (std::size_t j = i + 1; !a.wasFound && j < n && list[j]->size == a.size; ++j) {
            File& b = *list[j];
            if (tools.byContent(a.size)) {
                if (a.MD5Hash.empty()) {
                    a.MD5Hash = digestOf(a, context.diagnostics);
                }
                if (b.MD5Hash.empty()) {
                    b.MD5Hash = digestOf(b, context.diagnostics);
                }
            }
            if (!tools.byContent(a.size) || a.MD5Hash == b.MD5Hash) {
                b.wasFound = true;
                a.duplicates.push_back(tools.memberFor(b));
            }
        }
    }
    tools.userInfo[kCheckedFiles] = static_cast<std::int64_t>(n);
    tools.post(kUpdateProgress);
    return tools.collectionPhase().value_or(FileList{});
}

} // namespace twinsweep::testing
