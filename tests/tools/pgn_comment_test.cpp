#include "tools/pgn_comment.h"

#include <gtest/gtest.h>

// The evaluation a comment leaves on a move that had 1234: the score before
// the slash, in the mover's own view for either colour, read as decimal
// digits (a third decimal cut off) and kept clear of "none"; "book" means no
// evaluation; "eval " is centipawns from White's side, cut at the first
// comma; other comments leave the move as it was.
TEST(PgnComment, EvaluationOfAComment)
{
    const struct {
        const char* comment;
        bool white_moved;
        int eval;
    } cases[] = {{"+M5/30", true, 9000},
                 {"-M3/9 0.017s", true, -9000},
                 {"-1.25/18", true, -125},

                 {"+0.43/9 0.078s", false, 43},
                 {"0.29/7", true, 29},
                 {"-0.576/7", true, -57},

                 {"3/2", true, 300},
                 {"depth info -0.50/12 1.2s", true, -50},
                 {"+999999999999.99/3", true, 29999},
                 {"-999999999999.99/3", true, -29999},
                 {"book", true, NO_EVAL},
                 {"book +0.50/3", true, NO_EVAL},
                 {"[%eval 35,20]", true, 35},
                 {"[%eval 35,20]", false, -35},
                 {"[%eval -120,18] -0.20/5", true, -120},
                 {"a fine move", true, 1234},

                 {"/", true, 0}};
    for (const auto& c : cases) {
        int16_t e = 1234;
        EXPECT_EQ(comment_eval(c.comment, c.white_moved, &e), c.eval != 1234) << c.comment;
        EXPECT_EQ(e, c.eval) << c.comment;
    }
}
