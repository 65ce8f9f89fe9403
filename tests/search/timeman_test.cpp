#include "board/fen.h"
#include "search/limits.h"
#include "search/search_config.h"
#include "search/timeman.h"
#include "support/test_positions.h"
#include "uci/uci_commands.h"

#include <gtest/gtest.h>

namespace
{

class TimeManagement : public ::testing::Test
{
  protected:
    void SetUp() override
    {
        search_config.ponder = 0;
        search_config.move_overhead = 50;
        reset_game_to_start();
        limits.full_nps = 1e6;
        limits.full_elo = 3000;
        reset_game_limits();
        limits.search_state = SEARCH_REQUESTED;
        search_config.changed = 0;
    }
    void TearDown() override { limits.search_state = SEARCH_IDLE; }
};

} // namespace

TEST_F(TimeManagement, TargetTimes)
{
    limits.white_time = 60.0;
    limits.increment = 0;
    prepare_search();
    EXPECT_NEAR(limits.target_time, 60.0 / 33, 1e-9); // ply 0: 32 moves to go, divisor 33

    limits.increment = 1.0;
    prepare_search();
    EXPECT_NEAR(limits.target_time, 60.0 / 33 + 1.0 * 60 / 62, 1e-9);

    search_config.ponder = 1; // pondering buys 30 per cent more
    prepare_search();
    EXPECT_NEAR(limits.target_time, 60.0 / 33 * 1.3 + 1.0 * 60 / 62, 1e-9);
    search_config.ponder = 0;

    limits.white_time = 0.1; // the floor: 2 ms
    limits.increment = 0;
    prepare_search();
    EXPECT_EQ(limits.target_time, 0.002);

    limits.fixed_limit = 1;
    limits.move_time = 1.5;
    prepare_search();
    EXPECT_EQ(limits.target_time, 1.5);
    EXPECT_EQ(limits.white_time, 1.5);

    limits.fixed_limit = 40;
    limits.moves_to_go = 9;
    limits.white_time = 20;
    prepare_search();
    EXPECT_NEAR(limits.target_time, 2.0, 1e-9);
}

TEST_F(TimeManagement, StopTests)
{
    limits.white_time = 10.0;
    prepare_search();
    limits.root_score = 0;
    limits.best_change_depth = 4;
    double t = limits.target_time, o = 0.025;
    EXPECT_FALSE(time_is_up(t - o - 0.01, 5));
    EXPECT_TRUE(time_is_up(t - o, 5));
    EXPECT_FALSE(time_is_up(t, 1)); // the first iteration always finishes

    // A failed-low root line gets a quarter of the remaining time more.
    limits.root_line_state = 1;
    EXPECT_FALSE(time_is_up(t + 0.1, 5));
    EXPECT_TRUE(time_is_up(t + 0.25 * 10.0, 5));
    limits.root_line_state = 0;

    // A falling score over the last two iterations buys 3 per cent twice;
    // a best move unchanged for more than four iterations costs a quarter.
    limits.root_score_by_depth[3] = 100;
    limits.root_score_by_depth[4] = 100;
    EXPECT_FALSE(time_is_up(t, 5));
    limits.root_score_by_depth[3] = limits.root_score_by_depth[4] = 0;
    limits.best_change_depth = 0;
    EXPECT_TRUE(time_is_up(0.8 * t, 5));
    limits.best_change_depth = 4;

    // One legal move: done at depth 6.
    limits.single_reply = 1;
    EXPECT_FALSE(time_is_up(0.02, 5));
    EXPECT_TRUE(time_is_up(0.02, 6));
    limits.single_reply = 0;

    // Five overheads no longer fit in the clock: stop at once.
    limits.white_time = 0.1;
    EXPECT_TRUE(time_is_up(0.02, 3));

    // Untimed searches never stop on the clock.
    limits.search_mode = MODE_PONDER;
    EXPECT_FALSE(time_is_up(1000.0, 20));
}

TEST(Strength, EloAndNodeRates)
{
    EXPECT_EQ(int(elo_of_rate(2000000)), 3103);
    EXPECT_EQ(int(elo_of_rate(1000000)), 3003);
    double rate = rate_for_elo(2000);
    EXPECT_NEAR(elo_of_rate(rate), 2000, 0.5);
}
