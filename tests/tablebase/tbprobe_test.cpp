// The engine's view of the tables: the refusals that keep search probes
// cheap, the fifty-move rule at the root, and every shared probe answer and
// random position agreeing with the positions one move on.
#include "board/attack_queries.h"
#include "board/makemove.h"
#include "board/movegen.h"
#include "tablebase/tb_fixtures.h"
#include "tablebase/tbprobe.h"

#include <gtest/gtest.h>

namespace
{

int sign(int v)
{
    return (v > 0) - (v < 0);
}

} // namespace

// Refusals that keep the search's probes cheap and right: castling rights,
// nodes shallower than the probe depth of their size (six men, named here
// only, report a corrupt table once reached), and empty paths.
TEST(TbProbe, Refusals)
{
    tb_init(shared_tables().c_str());
    tb_set_probe_depths(0, 1); // the defaults
    TestBoard board;
    EXPECT_EQ(tb_probe_wdl(board.set("4k3/8/8/8/8/8/8/R3K3 w - -"), 50), 4);
    Position* pos = board.set("4k3/8/8/8/8/8/8/R3K3 w Q -");
    Move move = 1;
    int wdl, dtz;
    EXPECT_EQ(tb_probe_wdl(pos, 50), -1);
    EXPECT_TRUE(tb_probe_root(pos, &move) == -1 && move == 0);
    EXPECT_FALSE(tb_probe_full(pos, &wdl, &dtz));

    pos = board.set("8/8/8/8/8/2k5/8/KQ6 b - -");
    tb_set_probe_depths(3, 1);
    EXPECT_TRUE(tb_probe_wdl(pos, 2) == -1 && tb_probe_wdl(pos, 3) == 0);
    tb_set_probe_depths(-5, 1);
    EXPECT_TRUE(tb_probe_wdl(pos, -5) == 0 && tb_probe_wdl(pos, -6) == -1);

    std::string dir = directory_with({"KQvK"});
    write_file(dir + "/KQRvKQR.rtbw", std::vector<uint8_t>(64, 0));
    tb_init(dir.c_str());
    ASSERT_EQ(tb_largest, 6u);
    Position* six = board.set("7k/5q2/3r4/8/8/4R3/2Q5/K7 w - -"); // no captures: straight to the table
    tb_set_probe_depths(0, 100);
    testing::internal::CaptureStderr();
    EXPECT_EQ(tb_probe_wdl(six, 99), -1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    testing::internal::CaptureStderr();
    EXPECT_EQ(tb_probe_wdl(six, 100), -1);
    EXPECT_EQ(tb_probe_root(six, &move), -1); // the root is probed whatever the depths
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Corrupted table.\n");
    EXPECT_EQ(tb_probe_wdl(board.set("8/8/8/8/8/2k5/8/KQ6 w - -"), 0), 4);
    tb_set_probe_depths(0, 1);

    for (const char* path : {"", "<empty>"}) {
        tb_init(shared_tables().c_str());
        testing::internal::CaptureStdout();
        tb_init(path);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "") << path;
        EXPECT_EQ(tb_largest, 0u);
        EXPECT_EQ(tb_probe_wdl(pos, 10), -1);
        EXPECT_TRUE(tb_probe_root(pos, &move) == -1 && move == 0);
    }
}

// The root result follows the real fifty-move count: a win whose zeroing
// move comes too late is only a cursed win, a loss likewise saved.
TEST(TbProbe, RootResultCountsTheFiftyMoveRule)
{
    tb_init(shared_tables().c_str());
    TestBoard board;
    // Winning, distance 19 (tb1 of the shared answers).
    const char* win = "1R6/8/8/6K1/8/8/4k3/8 w - -";
    Move move;
    EXPECT_EQ(tb_probe_root(board.set(win, 0), &move), 4);
    EXPECT_EQ(tb_probe_root(board.set(win, 81), &move), 4);
    EXPECT_EQ(tb_probe_root(board.set(win, 82), &move), 3);
    // Losing, distance -12 (tb3).
    const char* loss = "8/3q4/1n6/k7/6K1/8/8/8 w - -";
    EXPECT_EQ(tb_probe_root(board.set(loss, 88), &move), 0);
    EXPECT_EQ(tb_probe_root(board.set(loss, 89), &move), 1);
    EXPECT_EQ(tb_probe_root(board.set("8/8/8/4Kp2/8/8/8/1k1n4 w - -", 99), &move), 2);
}

// Over the shared answers and random positions of materials with pawns (on
// both sides among them), each probe agrees with a one-ply search: a win
// has a child lost for the opponent, a draw none but a drawn one, mate and
// stalemate are a loss and a draw; the distance has the value's sign and a
// win that can zero at once is one ply from zeroing. The root move keeps
// the value, and among those that do, zeroes a win (or mates) when it can,
// else wins soonest or loses slowest.
TEST(TbProbe, ValuesAndRootMovesAgreeWithTheChildren)
{
    tb_init(shared_tables().c_str());
    tb_set_probe_depths(0, 1);
    ASSERT_EQ(tb_largest, 4u);
    std::vector<ProbeAnswer> positions = load_probe_answers();
    ASSERT_EQ(positions.size(), 500u);
    constexpr int UNKNOWN = 9;
    unsigned seed = 1;
    for (const char* material : {"KPvKP", "KBvKP", "KNvKP", "KRvKP", "KQvKP", "KPvK", "KPPvK", "KRPvK", "KBPvK",
                                 "KNPvK", "KQPvK", "KRvKB", "KQvKR"})
        for (const std::string& fen : random_positions(material, 250, seed++))
            positions.push_back({fen, UNKNOWN, 0});
    TestBoard board;
    for (const ProbeAnswer& p : positions) {
        const std::string& fen = p.fen;
        Position* pos = board.set(fen);
        int wdl = 9, dtz = 0;
        Move chosen = 1;
        ASSERT_TRUE(tb_probe_full(pos, &wdl, &dtz)) << fen;
        if (p.wdl != UNKNOWN)
            EXPECT_TRUE(wdl == p.wdl && dtz == p.dtz) << fen << ": " << wdl << " " << dtz;
        EXPECT_EQ(sign(dtz), sign(wdl)) << fen;
        EXPECT_EQ(tb_probe_wdl(pos, 0), wdl + 2) << fen;
        EXPECT_EQ(tb_probe_root(pos, &chosen), wdl + 2) << fen; // fifty-move count 0
        MoveEntry list[MAX_MOVES];
        int n = gen_legal(pos, list);
        int best = n || in_check(pos, pos->side) ? -1 : 0;
        // Among the moves that keep the value: whether one zeroes or mates,
        // the soonest win and the longest loss of the others.
        bool keep_zeroing = false, keep_ending = false, chosen_ends = false;
        int soonest = 1000, longest = 0, chosen_wdl = 9, chosen_dtz = 0;
        for (int i = 0; i < n; i++) {
            bool zero = piece_type(list[i].piece) == PAWN || list[i].captured;
            make_move(pos, list[i].move);
            int w = 9, d = 0;
            ASSERT_TRUE(tb_probe_full(pos, &w, &d)) << fen;
            MoveEntry replies[MAX_MOVES];
            bool ended = gen_legal(pos, replies) == 0, mates = ended && in_check(pos, pos->side);
            if (ended)
                EXPECT_EQ(w, mates ? -2 : 0) << fen;
            unmake_move(pos);
            best = std::max(best, -sign(w));
            if (w == -wdl) {
                keep_zeroing |= zero;
                keep_ending |= zero || mates;
                if (!zero && !mates) {
                    soonest = std::min(soonest, -d);
                    longest = std::max(longest, d);
                }
            }
            if (list[i].move == chosen)
                chosen_wdl = w, chosen_dtz = d, chosen_ends = zero || mates;
        }
        ASSERT_EQ(sign(wdl), best) << fen;
        if (n == 0) {
            EXPECT_EQ(chosen, 0) << fen;
            continue;
        }
        EXPECT_EQ(chosen_wdl, -wdl) << fen;
        if (wdl > 0 && keep_zeroing)
            EXPECT_EQ(dtz, wdl == 2 ? 1 : 101) << fen;
        if (wdl > 0 && keep_ending)
            EXPECT_TRUE(chosen_ends) << fen;
        else if (wdl > 0)
            EXPECT_EQ(-chosen_dtz, soonest) << fen;
        else if (wdl < 0 && longest > 0)
            EXPECT_TRUE(!chosen_ends && chosen_dtz == longest) << fen;
    }
}
