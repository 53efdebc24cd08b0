// SPDX-License-Identifier: GPL-3.0-or-later
// What the windows and reports show of a record: sizes, dates, the estimate line.
#include <gtest/gtest.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>

#include "engine/FileTools.h"
#include "support/TempTree.h"

using namespace twinsweep;
using twinsweep::testing::TempTree;

TEST(Formatting, SizeTextsStepBy1024AndRoundIn32BitFloat) {
    const std::pair<std::uint64_t, const char*> cases[] = {
        {0, "0 B"},
        {1023, "1023 B"},
        {1024, "1.0 KB"},
        {1536, "1.5 KB"},
        {1048575, "1024.0 KB"},
        {1048576, "1.0 MB"},
        {1073741823, "1024.0 MB"},
        {107374182400ULL, "100.0 GB"},
        {1099511627776ULL, "1.0 TB"},
        {UINT64_MAX, "16777216.0 TB"},
    };
    // The same texts whatever locale the environment asks for (a German one
    // writes "1,5" through printf).
    const std::string saved = std::setlocale(LC_ALL, nullptr);
    for (const char* locale : {"C", "de_DE.UTF-8"}) {
        if (std::setlocale(LC_ALL, locale) == nullptr) {
            std::setlocale(LC_ALL, saved.c_str());
            GTEST_SKIP() << "locale " << locale << " is not installed: its texts were not checked";
        }
        for (const auto& [bytes, text] : cases) {
            EXPECT_EQ(FileTools::fileSizeText(bytes), text) << bytes << " in " << locale;
        }
    }
    std::setlocale(LC_ALL, saved.c_str());
}

namespace {

// Pins the process time zone; the environment's comes back after the test.
class ZoneGuard {
  public:
    explicit ZoneGuard(const char* zone) { set(zone); }
    ~ZoneGuard() { set(old_.empty() ? nullptr : old_.c_str()); }
    static void set(const char* zone) {
        zone ? ::setenv("TZ", zone, 1) : ::unsetenv("TZ");
        ::tzset();
    }

  private:
    const std::string old_ = std::getenv("TZ") ? std::getenv("TZ") : "";
};

} // namespace

TEST(Formatting, DateTextsAreLocalOnTheTwelveHourClockAndAbsentForAMissingItem) {
    TempTree tree;
    const std::string afternoon = tree.write("a", "x");
    const std::string night = tree.write("b", "x");
    const std::time_t now = std::time(nullptr);
    // 2017-03-05 15:04:09 and 03:04:09 UTC.
    for (const auto& [path, when] : {std::pair{afternoon, 1488726249}, {night, 1488683049}}) {
        const timespec times[2] = {{when, 0}, {when, 0}};
        ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
    }
    const auto modified = [](const std::string& path) {
        return FileTools::fileDateText(path, DateKind::Modification).value_or("none");
    };
    ZoneGuard zone("EST5");
    EXPECT_EQ(modified(afternoon), "17-03-05 10:04:09");
    ZoneGuard::set("UTC0");
    EXPECT_EQ(modified(afternoon), "17-03-05 03:04:09");
    EXPECT_EQ(modified(night), "17-03-05 03:04:09");
    // The file system either keeps a birth time (now) or not (the modification time).
    const std::string created =
        FileTools::fileDateText(afternoon, DateKind::Creation).value_or("none");
    char today[32];
    std::strftime(today, sizeof today, "%y-%m-%d", std::gmtime(&now));
    EXPECT_TRUE(created.starts_with(today) || created == "17-03-05 03:04:09") << created;
    // A link has a date of its own, even when it leads nowhere; a missing item has none.
    EXPECT_NE(modified(tree.symlink(tree.path("gone"), "link")), "none");
    EXPECT_FALSE(FileTools::fileDateText(tree.path("gone"), DateKind::Creation));
}

TEST(Formatting, ProgressLineTellsBytesAndOnceSettledTheTimeLeft) {
    const std::uint64_t mb = 1024 * 1024;
    EXPECT_EQ(TimeLeft::text(mb, 3 * mb, 0), "1.0 MB of 3.0 MB compared, about 1 s left");
    EXPECT_EQ(TimeLeft::text(mb, 3 * mb, 150), "1.0 MB of 3.0 MB compared, about 3 min left");
    EXPECT_EQ(TimeLeft::text(3 * mb, 3 * mb, 5), "3.0 MB of 3.0 MB compared");

    // No line before the comparison; no estimate in its first second; then
    // the rate so far: 1 MB in 2 s leaves 4 s for the other 2 MB.
    TimeLeft estimate;
    const auto t0 = TimeLeft::Clock::now();
    EXPECT_EQ(estimate.line(0, 0, t0), "");
    EXPECT_FALSE(estimate.secondsLeft(0, 3 * mb, t0));
    EXPECT_FALSE(estimate.secondsLeft(mb / 2, 3 * mb, t0 + std::chrono::milliseconds(500)));
    EXPECT_EQ(estimate.secondsLeft(mb, 3 * mb, t0 + std::chrono::seconds(2)), 4);
    // The files still to check weigh in, 16 KiB's worth each: bytes half done
    // in 2 s would leave 2 s, but 128 of 192 files are still to check.
    TimeLeft withFiles;
    EXPECT_FALSE(withFiles.secondsLeft(0, 4 * mb, t0, 0, 192));
    EXPECT_EQ(withFiles.secondsLeft(2 * mb, 4 * mb, t0 + std::chrono::seconds(2), 64, 192), 3);
}
