// SPDX-License-Identifier: GPL-3.0-or-later
// Reading file contents: whole-file MD5 through a fixed buffer, and the short
// prefix read that splits same-size files before any full read.
#include "engine/Digest.h"
#include "engine/GentleRead.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <openssl/evp.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "engine/Diagnostics.h"
#include "engine/WalkedFolders.h"

namespace twinsweep {

namespace {

const char* const kOoops = "Ooops! Something went wrong: ";
constexpr std::size_t kBufferSize = 256 * 1024;

struct CtxDeleter {
    void operator()(EVP_MD_CTX* ctx) const { EVP_MD_CTX_free(ctx); }
};

// One digest context per thread, reused for every file.
EVP_MD_CTX* threadContext() {
    thread_local std::unique_ptr<EVP_MD_CTX, CtxDeleter> ctx(EVP_MD_CTX_new());
    return ctx.get();
}

const EVP_MD* md5Algorithm() {
    static const EVP_MD* md = EVP_md5();
    return md;
}

// Reads until length bytes, the end of the file or an error (-1); an
// interrupted read is tried again.
template <typename ReadAt> long fill(unsigned char* data, std::size_t length, ReadAt readAt) {
    std::size_t done = 0;
    while (done < length) {
        const ssize_t n = readAt(data + done, length - done, done);
        if (n < 0) {
            if (errno == EINTR) {
                continue;
            }
            return -1;
        }
        if (n == 0) {
            break;
        }
        done += static_cast<std::size_t>(n);
    }
    return static_cast<long>(done);
}

} // namespace

long readFully(int fd, unsigned char* data, std::size_t length) {
    return fill(data, length,
                [fd](unsigned char* at, std::size_t n, std::size_t) { return ::read(fd, at, n); });
}

std::uint64_t quickHash(const unsigned char* data, std::size_t length) {
    std::uint64_t h = 0x9E3779B97F4A7C15ULL ^ length;
    std::size_t i = 0;
    for (; i + 8 <= length; i += 8) {
        std::uint64_t w = 0;
        std::memcpy(&w, data + i, 8);
        h = (h ^ w) * 0xFF51AFD7ED558CCDULL;
        h ^= h >> 32;
    }
    for (; i < length; ++i) {
        h = (h ^ data[i]) * 0x100000001B3ULL;
    }
    return h ^ (h >> 29);
}

std::string base64Text(const Md5& digest) {
    static const char* const kAlphabet =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string out;
    out.reserve(24);
    std::size_t i = 0;
    for (; i + 3 <= digest.size(); i += 3) {
        const unsigned v = (digest[i] << 16) | (digest[i + 1] << 8) | digest[i + 2];
        out.push_back(kAlphabet[(v >> 18) & 63]);
        out.push_back(kAlphabet[(v >> 12) & 63]);
        out.push_back(kAlphabet[(v >> 6) & 63]);
        out.push_back(kAlphabet[v & 63]);
    }
    // 16 bytes leave one byte: two characters and two pads.
    const unsigned v = digest[i] << 16;
    out.push_back(kAlphabet[(v >> 18) & 63]);
    out.push_back(kAlphabet[(v >> 12) & 63]);
    out.append("==");
    return out;
}

Md5 md5Of(const void* data, std::size_t length) {
    Md5 out{};
    EVP_MD_CTX* ctx = threadContext();
    EVP_DigestInit_ex(ctx, md5Algorithm(), nullptr);
    EVP_DigestUpdate(ctx, data, length);
    unsigned int n = 0;
    EVP_DigestFinal_ex(ctx, out.data(), &n);
    return out;
}

// Only a regular file is read: a device could stream forever, and a FIFO
// never ends.
int openForReading(PathArg path, std::uint32_t folder, bool headFirst) {
    ItemAt at;
    if (!locateItem(folder, path, at)) {
        return -1;
    }
    const int fd = ::openat(at.dirFd, at.name, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (fd < 0) {
        return -1;
    }
    struct stat st {};
    if (::fstat(fd, &st) != 0) {
        const int err = errno;
        ::close(fd);
        errno = err;
        return -1;
    }
    if (!S_ISREG(st.st_mode)) {
        ::close(fd);
        errno = S_ISDIR(st.st_mode) ? EISDIR : EINVAL;
        return -1;
    }
    noteOpenedForReading(fd, st, headFirst);
    return fd;
}

long preadFully(int fd, unsigned char* data, std::size_t length, std::uint64_t offset) {
    return fill(data, length, [fd, offset](unsigned char* at, std::size_t n, std::size_t done) {
        return ::pread(fd, at, n, static_cast<off_t>(offset + done));
    });
}

Md5 streamDigest(PathArg path, std::uint32_t folder) {
    const int fd = openForReading(path, folder);
    if (fd < 0) {
        printErrorLine(kOoops, path, errno);
        return md5Of(nullptr, 0);
    }
    return streamDigestOf(fd, path);
}

Md5 streamDigestOf(int fd, PathArg path) {
    thread_local std::vector<unsigned char> buffer(kBufferSize);
#ifdef POSIX_FADV_SEQUENTIAL
    ::posix_fadvise(fd, 0, 0, POSIX_FADV_SEQUENTIAL);
#endif
    EVP_MD_CTX* ctx = threadContext();
    EVP_DigestInit_ex(ctx, md5Algorithm(), nullptr);
    for (;;) {
        const long n = readFully(fd, buffer.data(), buffer.size());
        if (n < 0) {
            // A failed read means the contents count as empty.
            printErrorLine(kOoops, path, errno);
            closeAfterReading(fd);
            return md5Of(nullptr, 0);
        }
        EVP_DigestUpdate(ctx, buffer.data(), static_cast<std::size_t>(n));
        if (static_cast<std::size_t>(n) < buffer.size()) {
            break;
        }
    }
    closeAfterReading(fd);
    Md5 out{};
    unsigned int len = 0;
    EVP_DigestFinal_ex(ctx, out.data(), &len);
    return out;
}

} // namespace twinsweep
