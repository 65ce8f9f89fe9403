#include "tools/pgn_comment.h"

#include <gtest/gtest.h>

namespace
{

// The evaluation a comment leaves on a move that had `before`.
int eval_after(const char* comment, bool white_moved = true, int before = 1234)
{
    int16_t e = int16_t(before);
    comment_eval(comment, white_moved, &e);
    return e;
}

} // namespace

TEST(PgnComment, ScoreBeforeTheSlash)
{
    EXPECT_EQ(eval_after("+M5/30"), 9000);
    EXPECT_EQ(eval_after("-M3/9 0.017s"), -9000);
    EXPECT_EQ(eval_after("-1.25/18"), -125);
    EXPECT_EQ(eval_after("+0.23/9 0.150s"), 23);
    // The mover's own view for either colour: no sign change for Black.
    EXPECT_EQ(eval_after("+0.43/9 0.078s", false), 43);
    // Decimal digits, not a binary fraction: 0.29 is 29, and a third
    // decimal is cut off, not rounded.
    EXPECT_EQ(eval_after("0.29/7"), 29);
    EXPECT_EQ(eval_after("-0.576/7"), -57);
    EXPECT_EQ(eval_after("0.00/9 0.049s"), 0);
    EXPECT_EQ(eval_after("3/2"), 300);
    // The token is the word that ends at the slash.
    EXPECT_EQ(eval_after("depth info -0.50/12 1.2s"), -50);
    // A huge number stays inside a stored evaluation and clear of "none".
    EXPECT_EQ(eval_after("+999999999999.99/3"), 29999);
    EXPECT_EQ(eval_after("-999999999999.99/3"), -29999);
}

TEST(PgnComment, BookEvalAndNothing)
{
    EXPECT_EQ(eval_after("book"), NO_EVAL);
    EXPECT_EQ(eval_after("book +0.50/3"), NO_EVAL);
    // "eval " is centipawns from White's side, cut at the first comma.
    EXPECT_EQ(eval_after("[%eval 35,20]"), 35);
    EXPECT_EQ(eval_after("[%eval 35,20]", false), -35);
    EXPECT_EQ(eval_after("[%eval -120,18] -0.20/5"), -120);
    // Other comments leave the move as it was.
    EXPECT_EQ(eval_after("a fine move"), 1234);
    EXPECT_EQ(eval_after(""), 1234);
    int16_t e = 7;
    EXPECT_FALSE(comment_eval("only words", true, &e));
    EXPECT_TRUE(comment_eval("/", true, &e));
    EXPECT_EQ(e, 0);
}
