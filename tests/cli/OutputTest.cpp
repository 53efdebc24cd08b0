#include <gtest/gtest.h>

#include "cli/Options.h"
#include "cli/Output.h"

using namespace twinsweep;
using namespace twinsweep::cli;

TEST(CliOutput, JsonEscapesEveryByteThatIsNotPlainUtf8AndTextEveryLineBreak) {
    EXPECT_EQ(jsonString("plain"), "\"plain\"");
    EXPECT_EQ(jsonString("q\"b\\s/"), "\"q\\\"b\\\\s/\"");
    EXPECT_EQ(jsonString("a\nb\tc\x01"), "\"a\\nb\\tc\\u0001\"");
    EXPECT_EQ(jsonString("caf\xc3\xa9 \xe2\x82\xac \xf0\x9f\x98\x80"),
              "\"caf\xc3\xa9 \xe2\x82\xac \xf0\x9f\x98\x80\"");
    // Lone, truncated, overlong and surrogate sequences are not UTF-8.
    EXPECT_EQ(jsonString("\xff"), "\"\\udcff\"");
    EXPECT_EQ(jsonString("x\xc3"), "\"x\\udcc3\"");
    EXPECT_EQ(jsonString("\xc0\xaf"), "\"\\udcc0\\udcaf\"");
    EXPECT_EQ(jsonString("\xed\xa0\x80"), "\"\\udced\\udca0\\udc80\"");
    // Text keeps each path on one line and other bytes as they are.
    EXPECT_EQ(textEscaped("/a/b c"), "/a/b c");
    EXPECT_EQ(textEscaped("/a\nb\\c\x1b"), "/a\\nb\\\\c\\x1b");
    EXPECT_EQ(textEscaped("/caf\xc3\xa9\xff"), "/caf\xc3\xa9\xff");
}

TEST(CliOptions, SizesTakePowerOf1024Suffixes) {
    EXPECT_EQ(parseSize("0"), 0U);
    EXPECT_EQ(parseSize("64K"), 65536U);
    EXPECT_EQ(parseSize("3m"), 3U << 20);
    EXPECT_EQ(parseSize("2T"), 2ULL << 40);
    EXPECT_EQ(parseSize("18446744073709551615"), UINT64_MAX);
    for (const char* bad :
         {"", "K", "-1", "1.5M", "10KB", "1X", "18446744073709551616", "16777216T"}) {
        EXPECT_FALSE(parseSize(bad).has_value()) << bad;
    }
}

TEST(CliOptions, FoldersBecomeAbsoluteAndOptionsTakeBothForms) {
    const auto r = parseOptions({"--min-size=2K", "--ext", ".JPG,png", "--format", "json",
                                 "--any-location", "--include-packages", "..//tmp/./"},
                                "/tmp");
    ASSERT_FALSE(r.error) << *r.error;
    EXPECT_EQ(r.options.minimumSize, 2048U);
    EXPECT_EQ(r.options.extensions, (std::vector<std::string>{"jpg", "png"}));
    EXPECT_EQ(r.options.format, OutputFormat::Json);
    EXPECT_EQ(r.options.locations, Locations::Anywhere);
    EXPECT_FALSE(r.options.ignorePackages);
    EXPECT_EQ(r.options.folders, std::vector<std::string>{"/tmp"});
    EXPECT_EQ(parseOptions({"--", "--help"}, "/").error.value_or("").find("--help"), 19U);
}
