#include "search/perft.h"
#include "support/test_positions.h"

#include <gtest/gtest.h>

// Every data position to the deepest depth whose count stays within 5 million;
// deeper counts run in the benchmarks.
TEST(Perft, MatchesReferenceCounts)
{
    SearchThread* t = new_test_thread();
    int checked = 0;
    for (const PerftCase& c : load_perft_cases()) {
        int depth = 0;
        while (depth < int(c.counts.size()) && c.counts[depth] <= 5000000)
            depth++;
        ASSERT_GT(depth, 0) << c.fen;
        set_test_position(t, c.fen);
        t->nodes = 0;
        perft(t, t->pos.side, 1, depth);
        EXPECT_EQ(t->nodes, c.counts[depth - 1]) << c.fen << " depth " << depth;
        checked++;
    }
    EXPECT_EQ(checked, 51);
    free_test_thread(t);
}

// Chess960 positions with their castling rights standing, in Shredder-FEN:
// castling with the king and rooks on any files, written king takes rook.
// Read as standard chess the same positions castle not at all.
TEST(Perft, Chess960CountsOfTheData)
{
    SearchThread* t = new_test_thread();
    int checked = 0;
    for (const PerftCase& c : load_perft_cases("perft960.epd")) {
        t->pos.chess960 = 1;
        set_test_position(t, c.fen);
        ASSERT_NE(t->pos.castling, 0) << c.fen;
        for (int depth = 1; depth <= int(c.counts.size()); depth++) {
            t->nodes = 0;
            perft(t, t->pos.side, 1, depth);
            EXPECT_EQ(t->nodes, c.counts[depth - 1]) << c.fen << " depth " << depth;
        }
        checked++;
    }
    EXPECT_EQ(checked, 20);
    t->pos.chess960 = 0;
    free_test_thread(t);
}
