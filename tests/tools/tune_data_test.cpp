// Tuning data: which labelled lines are searched, and how the labels follow
// the side to move to the end of the principal variation.
#include "board/fen.h"
#include "board/makemove.h"
#include "board/notation.h"
#include "support/test_positions.h"
#include "tools/tune_data.h"

#include <gtest/gtest.h>
#include <string>

TEST(TuneData, FiltersOnResultAndEvaluation)
{
    // A won game: an evaluation below -100 contradicts it.
    EXPECT_FALSE(tune_keeps(-150, 1.0));
    EXPECT_TRUE(tune_keeps(-100, 1.0));
    EXPECT_FALSE(tune_keeps(-101, 1.0));
    // A lost game, mirrored.
    EXPECT_TRUE(tune_keeps(100, 0.0));
    EXPECT_FALSE(tune_keeps(101, 0.0));
    EXPECT_TRUE(tune_keeps(-1200, 0.0));
    // A draw far from equal.
    EXPECT_FALSE(tune_keeps(251, 0.5));
    EXPECT_FALSE(tune_keeps(-251, 0.5));
    EXPECT_TRUE(tune_keeps(250, 0.5));
    // Evaluations beyond 1200 and results outside 0..1 never.
    EXPECT_FALSE(tune_keeps(1201, 1.0));
    EXPECT_TRUE(tune_keeps(1200, 1.0));
    EXPECT_FALSE(tune_keeps(0, 1.5));
    EXPECT_FALSE(tune_keeps(0, -0.5));
    // Other results carry no contradiction test.
    EXPECT_TRUE(tune_keeps(-900, 0.75));
}

