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
        {104857600, "100.0 MB"},
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
            std::printf("locale %s is not installed; its case is skipped\n", locale);
            continue;
        }
        for (const auto& [bytes, text] : cases) {
            EXPECT_EQ(FileTools::fileSizeText(bytes), text) << bytes << " in " << locale;
        }
    }
    std::setlocale(LC_ALL, saved.c_str());
}

namespace {

// Pins the process time zone for one test and restores it afterwards.
class ZoneGuard {
  public:
    explicit ZoneGuard(const char* zone) {
        if (const char* old = std::getenv("TZ")) {
            old_ = old;
            had_ = true;
        }
        ::setenv("TZ", zone, 1);
        ::tzset();
    }
    ~ZoneGuard() {
        if (had_) {
            ::setenv("TZ", old_.c_str(), 1);
        } else {
            ::unsetenv("TZ");
        }
        ::tzset();
    }

  private:
    std::string old_;
    bool had_ = false;
};

void setModified(const std::string& path, std::time_t when) {
    const timespec times[2] = {{when, 0}, {when, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW), 0);
}

} // namespace

TEST(Formatting, DateTextUsesLocalTimeAndTheTwelveHourClock) {
    TempTree tree;
    const std::string afternoon = tree.write("a", "x");
    const std::string night = tree.write("b", "x");
    // 2017-03-05 15:04:09 and 03:04:09 UTC.
    setModified(afternoon, 1488726249);
    setModified(night, 1488726249 - 12 * 3600);
    {
        ZoneGuard zone("UTC0");
        EXPECT_EQ(FileTools::fileDateText(afternoon, DateKind::Modification), "17-03-05 03:04:09");
        EXPECT_EQ(FileTools::fileDateText(night, DateKind::Modification), "17-03-05 03:04:09");
    }
    {
        ZoneGuard zone("EST5");
        EXPECT_EQ(FileTools::fileDateText(afternoon, DateKind::Modification), "17-03-05 10:04:09");
    }
}

TEST(Formatting, CreationDateIsBirthTimeOrModificationTime) {
    ZoneGuard zone("UTC0");
    TempTree tree;
    const std::string file = tree.write("a", "x");
    const std::time_t before = std::time(nullptr);
    setModified(file, 1488726249);
    const auto text = FileTools::fileDateText(file, DateKind::Creation);
    ASSERT_TRUE(text.has_value());
    // The file system either keeps a birth time (now) or not (the modification time).
    char now[32];
    std::tm tm{};
    ::gmtime_r(&before, &tm);
    std::strftime(now, sizeof now, "%y-%m-%d", &tm);
    EXPECT_TRUE(text->rfind(now, 0) == 0 || *text == "17-03-05 03:04:09") << *text;
}

TEST(Formatting, DateOfLinkIsTheLinkOwnAndMissingItemHasNone) {
    ZoneGuard zone("UTC0");
    TempTree tree;
    const std::string link = tree.symlink(tree.path("gone"), "link");
    EXPECT_TRUE(FileTools::fileDateText(link, DateKind::Modification).has_value());
    EXPECT_FALSE(FileTools::fileDateText(tree.path("gone"), DateKind::Creation).has_value());
}

TEST(Formatting, ProgressLineTellsBytesAndOnceSettledTheTimeLeft) {
    const std::uint64_t mb = 1024 * 1024;
    EXPECT_EQ(TimeLeft::text(0, 3 * mb, std::nullopt), "0 B of 3.0 MB compared");
    EXPECT_EQ(TimeLeft::text(mb, 3 * mb, 12), "1.0 MB of 3.0 MB compared, about 12 s left");
    EXPECT_EQ(TimeLeft::text(mb, 3 * mb, 0), "1.0 MB of 3.0 MB compared, about 1 s left");
    EXPECT_EQ(TimeLeft::text(mb, 3 * mb, 150), "1.0 MB of 3.0 MB compared, about 3 min left");
    EXPECT_EQ(TimeLeft::text(mb, 3 * mb, 4 * 3600), "1.0 MB of 3.0 MB compared, about 4 h left");
    EXPECT_EQ(TimeLeft::text(3 * mb, 3 * mb, 5), "3.0 MB of 3.0 MB compared");

    // No line before the comparison; no estimate in its first second; then
    // the rate so far: 1 MB in 2 s leaves 4 s for the other 2 MB.
    TimeLeft estimate;
    const auto t0 = TimeLeft::Clock::now();
    EXPECT_EQ(estimate.line(0, 0, t0), "");
    EXPECT_EQ(estimate.line(0, 3 * mb, t0), "0 B of 3.0 MB compared");
    EXPECT_EQ(estimate.line(mb / 2, 3 * mb, t0 + std::chrono::milliseconds(500)),
              "512.0 KB of 3.0 MB compared");
    EXPECT_EQ(estimate.line(mb, 3 * mb, t0 + std::chrono::seconds(2)),
              "1.0 MB of 3.0 MB compared, about 4 s left");
    // The files still to check weigh in, 16 KiB's worth each: bytes half done
    // in 2 s would leave 2 s, but 128 of 192 files are still to check.
    TimeLeft withFiles;
    EXPECT_EQ(withFiles.line(0, 4 * mb, t0, 0, 192), "0 B of 4.0 MB compared");
    EXPECT_EQ(withFiles.line(2 * mb, 4 * mb, t0 + std::chrono::seconds(2), 64, 192),
              "2.0 MB of 4.0 MB compared, about 3 s left");
}
