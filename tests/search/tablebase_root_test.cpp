// The search with tables: the root step, its idle helpers, and the probes
// below a root outside the tables.
#include "search/search_thread.h"
#include "search/threads.h"
#include "search/tt.h"
#include "support/engine_process.h"
#include "support/search_harness.h"
#include "tablebase/tbprobe.h"

#include <gtest/gtest.h>
#include <tuple>

TEST(TbSearch, RootDecidesOnceTheFiftyMoveCountPassesNine)
{
    constexpr const char* WON = "8/8/8/4K3/8/8/3k4/1Q6 w - -"; // far from mate
    harness_start(2);
    tb_init(data_path("syzygy").c_str());

    SearchOutcome decided = harness_search(WON, 30, "", 10);
    EXPECT_EQ(decided.depth, 99);
    EXPECT_EQ(decided.nodes, 0u);
    EXPECT_EQ(decided.score, 9799);
    EXPECT_EQ(worker(0)->root_tb_result, 4);
    EXPECT_EQ(worker(0)->seldepth, 99);
    EXPECT_EQ(worker(0)->root_pv[1], 0); // no ponder move
    EXPECT_NE(decided.best, 0);

    // (It may stop short of depth 10 once it sees the mate.)
    tt_clear(); // node for node, from an empty table
    SearchOutcome searched = harness_search(WON, 10, "", 9);
    EXPECT_EQ(searched.nodes, 97606u);
    EXPECT_LE(searched.depth, 10);
    EXPECT_TRUE(searched.nodes > 0 && searched.best != 0);
    EXPECT_EQ(worker(0)->root_tb_result, 4);
    EXPECT_EQ(worker(1)->nodes, 0u); // the helper never searched

    // The losing side answers at once too, with the longest resistance.
    SearchOutcome lost = harness_search("8/8/8/4K3/8/8/3k4/1Q6 b - -", 30, "", 10);
    EXPECT_TRUE(lost.depth == 99 && lost.best != 0 && lost.score == -9800);
    EXPECT_EQ(worker(0)->root_tb_result, 0);
    SearchOutcome drawn = harness_search("8/8/8/R7/6K1/8/5b2/4k3 b - -", 30, "", 10);
    EXPECT_TRUE(drawn.depth == 99 && drawn.score == 0 && worker(0)->root_tb_result == 2);
    tb_init("");
}

// The search's probes: from a root outside the tables, the capture of the
// rook leads into a won four-man table, scored as a tablebase win.
TEST(TbSearch, ProbesInTheTreeScoreTablebaseWins)
{
    harness_start(1);
    constexpr const char* HANGING_ROOK = "1n1r3k/8/8/8/8/8/8/K2Q4 w - -";
    tb_init(data_path("syzygy").c_str());
    // The tree's probes, node for node, from an empty table: rook and pawn
    // against rook, whose exchanges lead into the four-man tables.
    tt_clear();
    SearchOutcome r = harness_search("8/8/4k3/8/2r5/8/3PK3/3R4 w - -", 12);
    EXPECT_EQ(std::make_tuple(r.nodes, uint64_t(worker(0)->tbhits), r.score), std::make_tuple(154941ull, 8096ull, 101))
        << r.best;
    r = harness_search(HANGING_ROOK, 6);
    EXPECT_EQ(worker(0)->root_tb_result, -1);
    EXPECT_GE(r.score, 9800 - 8);
    EXPECT_LT(r.score, 9800);
    EXPECT_GT(uint64_t(worker(0)->tbhits), 0u);
    tb_init("");
    r = harness_search(HANGING_ROOK, 6);
    EXPECT_LT(r.score, 9000);
    EXPECT_EQ(uint64_t(worker(0)->tbhits), 0u);
}
