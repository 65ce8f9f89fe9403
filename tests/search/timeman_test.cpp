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

    double target(double clock, double increment, int ponder = 0)
    {
        limits.white_time = clock;
        limits.increment = increment;
        search_config.ponder = ponder;
        prepare_search();
        search_config.ponder = 0;
        return limits.target_time;
    }

    // The first elapsed time (to a millisecond) at which the search stops.
    double stop_time(int depth)
    {
        for (int ms = 15; ms < 100000; ms++)
            if (time_is_up(ms / 1000.0, depth))
                return ms / 1000.0;
        return -1;
    }
};

} // namespace

// The share of the clock grows with the clock and the increment, pondering
// buys more, and the target never eats the clock: the floor, the fixed move
// time and moves to go hold whatever the clock says.
TEST_F(TimeManagement, TargetTimes)
{
    EXPECT_LT(target(30, 0), target(60, 0));
    EXPECT_LT(target(60, 0), target(60, 1));
    EXPECT_LT(target(60, 1), target(60, 1, 1));
    for (double clock : {0.5, 2.0, 10.0, 100.0})
        EXPECT_LE(target(clock, 5.0, 1), 0.65 * clock) << clock;
    EXPECT_EQ(target(0.1, 0), 0.002);

    limits.fixed_limit = 1;
    limits.move_time = 1.5;
    EXPECT_EQ(target(20, 0), 1.5);
    EXPECT_EQ(limits.white_time, 1.5);

    limits.fixed_limit = 40;
    limits.moves_to_go = 9;
    EXPECT_NEAR(target(20, 0), 2.0, 1e-9); // the clock shared by the ten moves left
}

// The stopping rules, by value: with 10 s on the clock, the target t and
// the overhead o (the 25 ms cap of Move Overhead), a search stops at
// t - o; a failed-low root line adds a quarter of the time left, a score
// falling over each of the last two iterations 3 per cent of it, and a best
// move unchanged for more than four iterations takes a quarter of t away.
TEST_F(TimeManagement, StopTests)
{
    double t = target(10.0, 0), o = 0.025;
    limits.root_score = 0;
    limits.best_change_depth = 4;
    auto near = [](double stop, double expected) { EXPECT_NEAR(stop, expected, 0.0011); };
    near(stop_time(5), t - o);
    EXPECT_FALSE(time_is_up(100.0, 1)); // the first iteration always finishes

    limits.root_line_state = 1;
    near(stop_time(5), (t - o + 0.25 * 10) / 1.25); // elapsed = t - o + (10 - elapsed) / 4
    limits.root_line_state = 2;
    near(stop_time(5), (t - o + 0.1 * 10) / 1.1);
    limits.root_line_state = 0;

    limits.root_score_by_depth[4] = 20; // one iteration falling by the margin
    near(stop_time(5), (t - o + 0.03 * 10) / 1.03);
    limits.root_score_by_depth[3] = 19; // the other not quite
    near(stop_time(5), (t - o + 0.03 * 10) / 1.03);
    limits.root_score_by_depth[3] = 400;
    near(stop_time(5), (t - o + 0.06 * 10) / 1.06);
    limits.root_score = 400; // a large score needs a fall of a sixteenth
    limits.root_score_by_depth[3] = limits.root_score_by_depth[4] = 425;
    near(stop_time(5), (t - o + 0.06 * 10) / 1.06);
    limits.root_score_by_depth[3] = limits.root_score_by_depth[4] = 424;
    near(stop_time(5), t - o);
    limits.root_score = 0;
    limits.root_score_by_depth[3] = limits.root_score_by_depth[4] = 0;

    limits.best_change_depth = 0;
    near(stop_time(4), t - o);
    near(stop_time(5), 0.75 * t - o);
    limits.best_change_depth = 4;

    // One legal move: done at depth 6.
    limits.single_reply = 1;
    EXPECT_FALSE(time_is_up(0.02, 5));
    EXPECT_TRUE(time_is_up(0.02, 6));
    limits.single_reply = 0;

    // Five overheads no longer fit in the clock: stop at once.
    limits.white_time = 0.15;
    EXPECT_FALSE(time_is_up(0.015, 3));
    limits.white_time = 0.1;
    EXPECT_TRUE(time_is_up(0.02, 3));

    // Untimed searches never stop on the clock.
    limits.search_mode = MODE_PONDER;
    EXPECT_FALSE(time_is_up(1000.0, 20));
}

// Nothing of the search before is left when the next one is prepared.
TEST_F(TimeManagement, EachSearchStartsAfresh)
{
    limits.stop_signal = STOP_LIMIT;
    limits.single_reply = 1;
    limits.root_line_state = 2;
    limits.search_started = true;
    limits.best_change_depth = limits.completed_depth = 9;
    limits.best_move = limits.ponder_move = limits.best_line[0] = 77;
    limits.best_score = 50;
    limits.nodes_at_depth[9] = limits.root_score_by_depth[9] = 5;
    target(10, 0);
    EXPECT_EQ(limits.stop_signal + limits.single_reply + limits.root_line_state + limits.search_started
                  + limits.best_change_depth + limits.completed_depth + limits.best_move + limits.ponder_move
                  + limits.best_line[0] + limits.best_score + limits.nodes_at_depth[9] + limits.root_score_by_depth[9],
              0u);
}

// The strength limit's node rate: more rating needs more nodes a second,
// and the two conversions are each other's inverse.
TEST(Strength, EloAndNodeRates)
{
    double last = 0;
    for (int elo = 1500; elo <= 3200; elo += 100) {
        double rate = rate_for_elo(elo);
        EXPECT_GT(rate, last);
        EXPECT_NEAR(elo_of_rate(rate), elo, 0.5);
        last = rate;
    }
}
