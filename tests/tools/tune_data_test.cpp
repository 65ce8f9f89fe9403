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

TEST(TuneData, LabelsFollowTheSideToMove)
{
    Game* g = new_test_game();
    auto line_after = [&](const char* moves, int ce, double gr, int* played) {
        set_test_position(g, START_FEN);
        Move pv[8] = {};
        int n = 0;
        std::string text = moves;
        // Parse each move in the position it is played in.
        Game* scratch = new_test_game();
        set_test_position(scratch, START_FEN);
        for (size_t pos = 0; pos < text.size();) {
            size_t end = text.find(' ', pos);
            std::string word = text.substr(pos, end == std::string::npos ? std::string::npos : end - pos);
            pos = end == std::string::npos ? text.size() : end + 1;
            Move m = 0;
            if (!parse_move(&scratch->pos, word.c_str(), &m))
                m = Move(make_move_code(12, 36)); // e2e5: never legal here
            pv[n++] = m;
            if (m != make_move_code(12, 36))
                make_move(&scratch->pos, m);
        }
        free_test_game(scratch);
        char line[256];
        *played = tune_record(&g->pos, pv, ce, gr, line, sizeof line);
        return std::string(line);
    };
    int played = 0;
    // Three moves: Black to move, so the labels turn round.
    EXPECT_EQ(line_after("e4 e5 Nf3", 40, 1.0, &played),
              "rnbqkbnr/pppp1ppp/8/4p3/4P3/5N2/PPPP1PPP/RNBQKB1R b KQkq - ce -40; gr 0.0;\n");
    EXPECT_EQ(played, 3);
    // Two moves: the same side to move, the labels as read.
    EXPECT_EQ(line_after("d4 d5", -30, 0.5, &played),
              "rnbqkbnr/ppp1pppp/8/3p4/3P4/8/PPP1PPPP/RNBQKBNR w KQkq d6 ce -30; gr 0.5;\n");
    EXPECT_EQ(played, 2);
    // A move that is not legal where it stands ends the walk there.
    EXPECT_EQ(line_after("e4 e2e5 Nf3", 40, 1.0, &played),
              "rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq e3 ce -40; gr 0.0;\n");
    EXPECT_EQ(played, 1);
    // An empty line writes the root itself.
    EXPECT_EQ(line_after("", 12, 0.0, &played), std::string(START_FEN) + " ce 12; gr 0.0;\n");
    EXPECT_EQ(played, 0);
    free_test_game(g);
}
