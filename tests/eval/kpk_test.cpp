#include "board/attack_queries.h"
#include "board/makemove.h"
#include "board/movegen.h"
#include "board/zobrist.h"
#include "eval/kpk.h"
#include "support/test_positions.h"

#include <cstring>
#include <gtest/gtest.h>
#include <vector>

namespace
{

// An independent solver over real positions with the ordinary move
// generator: every promotion piece is tried, and a position without the pawn
// is judged from the material left.
struct Solver {
    Game* g;
    std::vector<int8_t> result; // -1 unknown, 0 draw, 1 win, 2 not a position
    static int index(int stm, int wk, int bk, int pawn) { return ((pawn * 64 + wk) * 64 + bk) * 2 + stm; }

    bool setup(int stm, int wk, int bk, int pawn)
    {
        Position& p = g->pos;
        std::memset(&p.board, 0, sizeof p.board);
        std::memset(&p.pieces, 0, sizeof p.pieces);
        p.material_signature[0] = p.material_signature[1] = 0;
        p.phase_material[0] = p.phase_material[1] = 0;
        if (wk == bk || wk == pawn || bk == pawn)
            return false;
        place_piece(&p, piece_code(KING, WHITE), wk);
        place_piece(&p, piece_code(KING, BLACK), bk);
        place_piece(&p, piece_code(PAWN, WHITE), pawn);
        p.side = uint8_t(stm);
        p.castling = 0;
        p.ep_square = NO_SQUARE;
        p.fifty = 0;
        g->pos.game_ply = 0;
        compute_keys(&p, &p.key, &p.pawn_key);
        return !in_check(&p, stm ^ 1) && distance(wk, bk) > 1;
    }

    // After a move that removed the pawn: won only with a major piece that survives.
    int judge_without_pawn()
    {
        Position& p = g->pos;
        if (!(p.pieces[WHITE][QUEEN] | p.pieces[WHITE][ROOK]))
            return 0;
        MoveEntry list[MAX_MOVES];
        int n = gen_legal(&p, list);
        if (n == 0)
            return in_check(&p, BLACK) ? 1 : 0;
        for (int i = 0; i < n; i++)
            if (list[i].captured)
                return 0;
        return 1;
    }

    void solve()
    {
        result.assign(64 * 64 * 64 * 2, -1);
        for (int pawn = 8; pawn < 56; pawn++)
            for (int wk = 0; wk < 64; wk++)
                for (int bk = 0; bk < 64; bk++)
                    for (int stm = 0; stm < 2; stm++)
                        if (!setup(stm, wk, bk, pawn))
                            result[index(stm, wk, bk, pawn)] = 2;
        for (bool changed = true; changed;) {
            changed = false;
            for (int pawn = 8; pawn < 56; pawn++)
                for (int wk = 0; wk < 64; wk++)
                    for (int bk = 0; bk < 64; bk++)
                        for (int stm = 0; stm < 2; stm++) {
                            int8_t& r = result[index(stm, wk, bk, pawn)];
                            if (r != -1)
                                continue;
                            setup(stm, wk, bk, pawn);
                            MoveEntry list[MAX_MOVES];
                            int n = gen_legal(&g->pos, list);
                            bool any_win = false, any_draw = false, any_unknown = false;
                            for (int i = 0; i < n; i++) {
                                make_move(&g->pos, list[i].move);
                                int child;
                                if (!g->pos.pieces[WHITE][PAWN]) {
                                    child = g->pos.pieces[WHITE][0] == g->pos.pieces[WHITE][KING]
                                                ? 0
                                                : judge_without_pawn();
                                } else {
                                    int p2 = lsb(g->pos.pieces[WHITE][PAWN]);
                                    child = result[index(stm ^ 1, g->pos.king_square[WHITE], g->pos.king_square[BLACK],
                                                         p2)];
                                }
                                unmake_move(&g->pos);
                                any_win |= child == 1;
                                any_draw |= child == 0;
                                any_unknown |= child == -1;
                            }
                            int8_t now = -1;
                            if (n == 0)
                                now = (stm == BLACK && in_check(&g->pos, BLACK)) ? 1 : 0;
                            else if (stm == WHITE)
                                now = any_win ? 1 : (!any_unknown ? 0 : -1);
                            else
                                now = any_draw ? 0 : (!any_unknown ? 1 : -1);
                            if (now != -1) {
                                r = now;
                                changed = true;
                            }
                        }
        }
    }
};

} // namespace

TEST(Kpk, AgreesWithAnExhaustiveSolver)
{
    kpk_init();
    Solver solver{new_test_game(), {}};
    solver.solve();
    int positions = 0, wins = 0;
    for (int pawn = 8; pawn < 56; pawn++)
        for (int wk = 0; wk < 64; wk++)
            for (int bk = 0; bk < 64; bk++)
                for (int stm = 0; stm < 2; stm++) {
                    int r = solver.result[Solver::index(stm, wk, bk, pawn)];
                    if (r == 2)
                        continue;
                    positions++;
                    wins += r == 1;
                    ASSERT_EQ(kpk_win(stm == WHITE, wk, pawn, bk), r == 1)
                        << "stm " << stm << " wk " << wk << " bk " << bk << " pawn " << pawn;
                }
    EXPECT_GT(positions, 300000);
    EXPECT_GT(wins, positions / 3);
    free_test_game(solver.g);
}
