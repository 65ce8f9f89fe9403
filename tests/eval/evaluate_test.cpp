#include "eval/evaluate.h"
#include "eval/params.h"
#include "support/test_positions.h"

#include <cmath>
#include <gtest/gtest.h>
#include <memory>
#include <sstream>

namespace
{

class Evaluation : public ::testing::Test
{
  protected:
    void SetUp() override
    {
        g = new_test_game();
        c = std::make_unique<EvalCaches>();
        init_evaluation();
        init_eval_params(0);
    }
    void TearDown() override { free_test_game(g); }
    int eval(const std::string& fen, int ply = 0)
    {
        set_test_position(g, fen);
        return evaluate(&g->pos, c.get(), g->pos.side, ply, 0, nullptr);
    }
    std::string trace(const std::string& fen, int level = 1)
    {
        set_test_position(g, fen);
        testing::internal::CaptureStdout();
        evaluate(&g->pos, c.get(), g->pos.side, 0, level, nullptr);
        return testing::internal::GetCapturedStdout();
    }
    Game* g = nullptr;
    std::unique_ptr<EvalCaches> c;
};

} // namespace

TEST_F(Evaluation, SpecialEndings)
{
    EXPECT_EQ(eval("4k3/8/8/8/8/8/8/1NN1K3 w - -"), 0);  // two knights
    EXPECT_EQ(eval("4k3/8/8/3n4/8/8/8/2B1K3 b - -"), 0); // bishop against knight
    // Rook against bare king: weak king in the corner, kings two apart.
    EXPECT_EQ(eval("k7/8/2K5/8/8/8/8/7R w - -"), 788);
    EXPECT_EQ(eval("k7/8/2K5/8/8/8/8/7R b - -"), -788);
    // Knight and dark-squared bishop: the weak king is driven to a dark
    // corner, so a1 is worth more to White than the light corner a8.
    EXPECT_GT(eval("8/8/8/8/8/2K5/8/k1BN4 w - -"), eval("k7/8/8/8/8/2K5/8/2BN4 w - -") + 20);
    // a1 is seven steps off the long light diagonal, the strong king is central, kings two apart.
    EXPECT_EQ(eval("8/8/8/8/8/2K5/8/k1BN4 b - -"), -(740 + 8 * 7 + 10 * 2 - 6 * 2));
    // King and pawn: a won and a drawn case keep their sign and size apart.
    int draw = eval("4k3/8/4P3/4K3/8/8/8/8 w - -"); // White to move only stalemates
    int win = eval("8/8/8/8/8/4K3/4P3/2k5 w - -");  // king in front of its pawn
    EXPECT_GE(draw, 0);
    EXPECT_LT(draw, 50);
    EXPECT_LT(eval("4k3/8/4P3/4K3/8/8/8/8 b - -"), 50); // ...Ke7 holds with Black to move too
    // King in front on the sixth wins whoever moves; the pawn's side is on the minus side when not to move.
    EXPECT_EQ(eval("4k3/8/4K3/4P3/8/8/8/8 b - -"), -(800 + 25 * 4 - 3 * 1 + 3 * 3));
    EXPECT_GT(win, 700);
    EXPECT_EQ(eval("8/8/8/8/8/4K3/4P3/2k5 b - -") < -700, true);
    // Opposition: the side to move decides.
    EXPECT_TRUE(eval("8/8/3k4/8/3K4/3P4/8/8 w - -") < 50 && eval("8/8/3k4/8/3K4/3P4/8/8 b - -") < -700);
    // Bare kings against men that make no special ending get the full
    // evaluation.
    EXPECT_GT(eval("4k3/8/8/8/8/8/PP6/4K3 w - -"), 100);
    EXPECT_GT(eval("4k3/8/8/8/8/8/8/1BB1K1n1 w - -"), 100);
    // They leave the search no threat of an earlier node.
    int16_t threats[2] = {250, 800};
    set_test_position(g, "k7/8/2K5/8/8/8/8/7R b - -");
    EXPECT_EQ(evaluate(&g->pos, c.get(), g->pos.side, 3, 0, threats), -788);
    EXPECT_EQ(threats[0] | threats[1], 0);
}

// Contempt is counted for the side the engine plays, whichever that is: a
// positive value makes the engine's side look better, a negative one worse,
// scaled by the material of the side that would rather play on.
TEST_F(Evaluation, ContemptFromBothSides)
{
    const char* fen = "3qk3/pppppppp/8/8/8/8/PPP5/4K3 w - -"; // Black has more to play with
    auto with = [&](int contempt, int engine) {
        eval_options.contempt = contempt;
        eval_options.engine_side = engine;
        int v = eval(fen, 0);
        eval_options.contempt = 0;
        return v;
    };
    int neutral = with(0, WHITE);
    EXPECT_GT(with(40, WHITE), neutral);
    EXPECT_LT(with(40, BLACK), neutral);
    EXPECT_LT(with(-40, WHITE), neutral);
    EXPECT_GT(with(-40, BLACK), neutral);
    // The material counted is Black's when Black plays on: the engine as
    // White avoiding draws gains less than the engine as Black.
    EXPECT_LT(with(40, WHITE) - neutral, neutral - with(40, BLACK));
    EXPECT_EQ(with(-40, WHITE), with(40, BLACK));
    EXPECT_EQ(with(-40, BLACK), with(40, WHITE));
}

// The breakdown's scale factor (opposite bishops alone with equal pawns:
// 0.65 twice) and the pieces left hanging.
TEST_F(Evaluation, TraceShowsScaleFactorAndHungPieces)
{
    EXPECT_NE(trace("4k3/ppp1b3/8/8/8/8/PPP5/3BK3 w - -").find("sf= 0.42"), std::string::npos);
    EXPECT_NE(trace("4k3/8/8/3n4/8/8/8/3RK3 w - -").find("hung pieces on:  d5\n"), std::string::npos);
    EXPECT_EQ(trace("4k3/8/4p3/3n4/8/8/8/3RK3 w - -").find("hung pieces on: "), std::string::npos);
}

// In the start position every row of the breakdown is the same for both
// sides, but the one holding the move's tempo.
TEST_F(Evaluation, TraceRowsOfASymmetricPosition)
{
    std::istringstream rows(trace("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -"));
    int compared = 0, w, k;
    for (std::string line, label; std::getline(rows, line);)
        if (std::istringstream(line) >> label >> w >> k && label != "other:") {
            EXPECT_EQ(w, k) << line;
            compared++;
        }
    EXPECT_EQ(compared, 7);
}

TEST_F(Evaluation, CachesFromTheSecondPly)
{
    const std::string fen = "r1bqkbnr/pppp1ppp/2n5/4p3/4P3/5N2/PPPP1PPP/RNBQKB1R w KQkq -";
    int fresh = eval(fen, 2);
    uint64_t hits = c->eval_hits;
    EXPECT_EQ(eval(fen, 2), fresh);
    EXPECT_EQ(c->eval_hits, hits + 1);
    EXPECT_EQ(eval(fen, 1), fresh); // evaluated afresh at plies 0 and 1
    EXPECT_EQ(c->eval_hits, hits + 1);
}
