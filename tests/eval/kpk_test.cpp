// The king-and-pawn table against the shared distance tables: every
// position of king and pawn against king is a win exactly when the tables
// say the pawn's side wins.
#include "board/attack_queries.h"
#include "board/fen.h"
#include "eval/kpk.h"
#include "support/engine_process.h"
#include "support/test_positions.h"
#include "tablebase/tbprobe.h"

#include <gtest/gtest.h>

TEST(Kpk, AgreesWithTheTablebase)
{
    kpk_init();
    tb_init(data_path("syzygy").c_str());
    tb_set_probe_depths(0, 0);
    Game* g = new_test_game();
    int positions = 0, wins = 0;
    // Pawns on the left half only: the table mirrors the right half.
    for (int pawn = 8; pawn < 56; pawn++) {
        if (file_of(pawn) > 3)
            continue;
        for (int wk = 0; wk < 64; wk++)
            for (int bk = 0; bk < 64; bk++) {
                if (wk == bk || wk == pawn || bk == pawn)
                    continue;
                for (int white_to_move = 0; white_to_move < 2; white_to_move++) {
                    std::string fen(64, '1');
                    fen[size_t(wk ^ 56)] = 'K', fen[size_t(bk ^ 56)] = 'k', fen[size_t(pawn ^ 56)] = 'P';
                    for (int rank = 7; rank > 0; rank--)
                        fen.insert(size_t(rank * 8), "/");
                    fen += white_to_move ? " w - -" : " b - -";
                    set_position(&g->pos, fen.c_str());
                    if (position_problem(&g->pos) || in_check(&g->pos, g->pos.side ^ 1))
                        continue;
                    int wdl = 0, dtz = 0;
                    ASSERT_TRUE(tb_probe_full(&g->pos, &wdl, &dtz)) << fen;
                    bool win = white_to_move ? wdl > 0 : wdl < 0;
                    ASSERT_EQ(kpk_win(white_to_move, wk, pawn, bk), win) << fen;
                    positions++;
                    wins += win;
                }
            }
    }
    EXPECT_GT(positions, 80000);
    EXPECT_GT(wins, positions / 2);
    free_test_game(g);
    tb_init("");
}
