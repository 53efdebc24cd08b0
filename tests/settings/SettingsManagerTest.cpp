#include <gtest/gtest.h>

#include <ctime>
#include <vector>

#include "settings/SettingsManager.h"

using namespace twinsweep;

TEST(SettingsManager, DayTextsParseStrictlyToLocalMidnight) {
    DateTime d = 42;
    ASSERT_TRUE(parseDayText("29/02/2020", d));
    const std::time_t t = static_cast<std::time_t>(d);
    std::tm tm{};
    localtime_r(&t, &tm);
    EXPECT_EQ(std::vector<int>({tm.tm_year, tm.tm_mon, tm.tm_mday, tm.tm_hour, tm.tm_min}),
              std::vector<int>({120, 1, 29, 0, 0}));
    d = 42;
    for (const char* bad : {"29/02/2019", "32/01/2017", "1/1/2017", "01-01-2017", "", "ab/cd/efgh",
                            "01/13/2017", "00/01/2017"}) {
        EXPECT_FALSE(parseDayText(bad, d)) << bad;
        EXPECT_EQ(d, 42) << bad;
    }
}
