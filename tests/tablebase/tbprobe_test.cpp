// The engine's view of the tables: every shared probe answer, the refusals
// that keep search probes cheap, and the move chosen at the root.
#include "board/attack_queries.h"
#include "board/fen.h"
#include "board/makemove.h"
#include "board/movegen.h"
#include "tablebase/tb_fixtures.h"
#include "tablebase/tbprobe.h"

#include <gtest/gtest.h>
#include <random>

namespace
{

// The probes of the search at default depths.
void default_depths()
{
    tb_set_probe_depths(0, 1);
}

bool zeroes(const Position* pos, const MoveEntry& e)
{
    return piece_type(e.piece) == PAWN || pos->board[move_to(e.move)];
}

} // namespace

TEST(TbProbe, EveryProbeAnswerMatches)
{
    tb_init(shared_tables().c_str());
    default_depths();
    ASSERT_EQ(tb_largest, 4u);
    std::vector<ProbeAnswer> answers = load_probe_answers();
    ASSERT_EQ(answers.size(), 500u);
    TestBoard board;
    int wrong_wdl = 0, wrong_dtz = 0;
    for (const ProbeAnswer& a : answers) {
        Position* pos = board.set(a.fen);
        int wdl = 99, dtz = 9999;
        ASSERT_TRUE(tb_probe_full(pos, &wdl, &dtz)) << a.id << " " << a.fen;
        EXPECT_EQ(wdl, a.wdl) << a.id << " " << a.fen;
        EXPECT_EQ(dtz, a.dtz) << a.id << " " << a.fen;
        EXPECT_EQ(tb_probe_wdl(pos, 0), a.wdl + 2) << a.id << " " << a.fen;
        wrong_wdl += wdl != a.wdl;
        wrong_dtz += dtz != a.dtz;
    }
    EXPECT_EQ(wrong_wdl, 0);
    EXPECT_EQ(wrong_dtz, 0);
}

// Refusals that keep the search's probes cheap and right: castling rights,
// nodes shallower than the probe depth of their size (six men, named here
// only, report a corrupt table once reached), and empty paths.
TEST(TbProbe, Refusals)
{
    tb_init(shared_tables().c_str());
    default_depths();
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
    EXPECT_EQ(tb_probe_wdl(pos, 2), -1);
    EXPECT_EQ(tb_probe_wdl(pos, 3), 0);
    tb_set_probe_depths(-5, 1);
    EXPECT_EQ(tb_probe_wdl(pos, -5), 0);
    EXPECT_EQ(tb_probe_wdl(pos, -6), -1);

    std::string dir = directory_with({"KQvK.rtbw", "KQvK.rtbz"});
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
    default_depths();
    remove_directory(dir);

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

// Over every shared position: a win is kept and zeroes soonest, a draw is
// kept, a loss resists longest, judged by the distances after each move.
TEST(TbProbe, RootMoveKeepsTheResultAndMakesProgress)
{
    tb_init(shared_tables().c_str());
    TestBoard board;
    for (const ProbeAnswer& a : load_probe_answers()) {
        Position* pos = board.set(a.fen);
        Move chosen;
        ASSERT_EQ(tb_probe_root(pos, &chosen), a.wdl + 2) << a.id;
        MoveEntry list[MAX_MOVES];
        int n = gen_legal(pos, list);
        if (n == 0) {
            EXPECT_EQ(chosen, 0) << a.id;
            continue;
        }
        // The opponent's distance after each move, and the move's kind.
        int chosen_after = 0, chosen_wdl = 0;
        bool chosen_zeroes = false, chosen_mates = false;
        int best_plain_win = 1000, longest_loss = 0;
        bool winning_zero = false;
        for (int i = 0; i < n; i++) {
            bool zero = zeroes(pos, list[i]);
            make_move(pos, list[i].move);
            int wdl, dtz;
            ASSERT_TRUE(tb_probe_full(pos, &wdl, &dtz)) << a.id;
            MoveEntry replies[MAX_MOVES];
            bool mates = in_check(pos, pos->side) && gen_legal(pos, replies) == 0;
            unmake_move(pos);
            if (wdl == -2 && (zero || mates))
                winning_zero = true;
            else if (wdl == -2)
                best_plain_win = std::min(best_plain_win, -dtz);
            if (wdl == 2 && !zero)
                longest_loss = std::max(longest_loss, dtz);
            if (list[i].move == chosen) {
                chosen_after = dtz;
                chosen_wdl = wdl;
                chosen_zeroes = zero;
                chosen_mates = mates;
            }
        }
        if (a.wdl == 2) {
            EXPECT_EQ(chosen_wdl, -2) << a.id;
            if (winning_zero) {
                EXPECT_TRUE(chosen_zeroes || chosen_mates) << a.id;
            } else {
                EXPECT_EQ(-chosen_after, best_plain_win) << a.id;
            }
        } else if (a.wdl == 0) {
            EXPECT_EQ(chosen_wdl, 0) << a.id;
        } else {
            EXPECT_EQ(chosen_wdl, 2) << a.id;
            if (!chosen_zeroes) {
                EXPECT_EQ(chosen_after, longest_loss) << a.id;
            } else {
                EXPECT_EQ(longest_loss, 0) << a.id;
            }
        }
    }
}

// Random positions of materials with pawns, on both sides among them: each
// value agrees with a one-ply search over its children (a win has a child
// lost for the opponent, a draw none but a drawn one), and the distance
// has the value's sign, zero only for draws.
TEST(TbProbe, ValuesAgreeWithTheirChildren)
{
    tb_init(shared_tables().c_str());
    TestBoard board, child_board;
    std::mt19937_64 rng(11);
    auto sign = [](int v) { return (v > 0) - (v < 0); };
    for (const char* material : {"KPvKP", "KBvKP", "KNvKP", "KRvKP", "KQvKP", "KPPvK", "KRPvK", "KRvKB"}) {
        int checked = 0;
        for (int tries = 0; checked < 120 && tries < 20000; tries++) {
            char men[64] = {};
            bool white = true;
            for (const char* p = material; *p; p++) {
                if (*p == 'v') {
                    white = false;
                    continue;
                }
                int sq;
                do
                    sq = int(rng() % 64);
                while (men[sq] || (*p == 'P' && (sq < 8 || sq >= 56)));
                men[sq] = white ? *p : char(*p + 32);
            }
            std::string fen;
            for (int rank = 7; rank >= 0; rank--) {
                for (int file = 0; file < 8; file++)
                    fen += men[rank * 8 + file] ? men[rank * 8 + file] : '1';
                fen += rank ? "/" : rng() % 2 ? " w - -" : " b - -";
            }
            Position* pos = board.try_set(fen);
            if (!pos)
                continue;
            int wdl = 9, dtz = 0;
            ASSERT_TRUE(tb_probe_full(pos, &wdl, &dtz)) << fen;
            EXPECT_EQ(sign(dtz), sign(wdl)) << fen;
            MoveEntry list[MAX_MOVES];
            int n = gen_legal(pos, list), best = n ? -1 : in_check(pos, pos->side) ? -1 : 0;
            for (int i = 0; i < n; i++) {
                make_move(pos, list[i].move);
                char text[128];
                write_fen(pos, text);
                Position* child = child_board.set(text);
                MoveEntry replies[MAX_MOVES];
                int child_wdl = 0, child_dtz = 0;
                if (gen_legal(child, replies) == 0)
                    child_wdl = in_check(child, child->side) ? -2 : 0;
                else if (popcount(occupancy(child)) > 2)
                    ASSERT_TRUE(tb_probe_full(child, &child_wdl, &child_dtz)) << text;
                best = std::max(best, -sign(child_wdl));
                unmake_move(pos);
            }
            ASSERT_EQ(sign(wdl), best) << fen;
            checked++;
        }
        EXPECT_EQ(checked, 120) << material;
    }
}
