#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <thread>
#include <vector>

#include "settings/SettingsManager.h"

using namespace twinsweep;

TEST(SettingsManager, RuleDatesStartAtLocalMidnightOfTheFirstOf2017) {
    const SettingsManager s;
    for (DateTime d : {s.firstDate, s.secondDate}) {
        const std::time_t t = static_cast<std::time_t>(d);
        std::tm tm{};
        localtime_r(&t, &tm);
        EXPECT_EQ(tm.tm_year, 117);
        EXPECT_EQ(tm.tm_mon, 0);
        EXPECT_EQ(tm.tm_mday, 1);
        EXPECT_EQ(tm.tm_hour, 0);
        EXPECT_EQ(tm.tm_min, 0);
    }
}

TEST(SettingsManager, AccessorMakesOneInstanceWhicheverThreadAsksFirst) {
    std::vector<std::shared_ptr<SettingsManager>> seen(8);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < seen.size(); ++i) {
        threads.emplace_back([&seen, i] { seen[i] = SettingsManager::shared(); });
    }
    for (auto& t : threads) {
        t.join();
    }
    for (const auto& s : seen) {
        EXPECT_EQ(s.get(), seen[0].get());
    }
}

TEST(SettingsManager, CancelFlagIsSeenAcrossThreadsAndSurvivesACopy) {
    SettingsManager s;
    std::thread setter([&s] { s.searchCanceledByUser = true; });
    setter.join();
    EXPECT_TRUE(s.searchCanceledByUser);
    SettingsManager copy = s;
    EXPECT_TRUE(copy.searchCanceledByUser);
    copy = SettingsManager();
    EXPECT_FALSE(copy.searchCanceledByUser);
}

TEST(SettingsManager, DayTextsParseStrictly) {
    DateTime d = 42;
    EXPECT_TRUE(parseDayText("29/02/2020", d));
    EXPECT_NE(d, 42);
    d = 42;
    for (const char* bad : {"29/02/2019", "32/01/2017", "1/1/2017", "01-01-2017", "", "ab/cd/efgh",
                            "01/13/2017", "00/01/2017"}) {
        EXPECT_FALSE(parseDayText(bad, d)) << bad;
        EXPECT_EQ(d, 42) << bad;
    }
}
