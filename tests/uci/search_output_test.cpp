#include "uci/search_output.h"

#include <gtest/gtest.h>

TEST(SearchOutput, ScoreTexts)
{
    char text[32];
    score_text(9998, text, sizeof text);
    EXPECT_STREQ(text, "mate 1");
    score_text(9996, text, sizeof text);
    EXPECT_STREQ(text, "mate 2");
    score_text(-9999, text, sizeof text);
    EXPECT_STREQ(text, "mate -1");
    score_text(9899, text, sizeof text);
    EXPECT_STREQ(text, "cp 9899");
    score_text(-9900, text, sizeof text);
    EXPECT_STREQ(text, "cp -9900");
}
