#include "uci/search_output.h"

#include <gtest/gtest.h>

TEST(SearchOutput, ScoreTexts)
{
    const std::pair<int, const char*> cases[] = {
        {9998, "mate 1"}, {9996, "mate 2"}, {-9999, "mate -1"}, {9899, "cp 9899"}, {-9900, "cp -9900"}};
    for (auto [score, expected] : cases) {
        char text[32];
        score_text(score, text, sizeof text);
        EXPECT_STREQ(text, expected) << score;
    }
}
