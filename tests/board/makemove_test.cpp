#include "board/legality.h"
#include "board/makemove.h"
#include "board/position_check.h"
#include "support/test_positions.h"

#include <cstring>
#include <gtest/gtest.h>

namespace
{

struct Snapshot {
    Position pos;
    int16_t game_ply, search_ply;
    uint16_t last_move;
};

Snapshot snap(const Game* g)
{
    return {g->pos, g->pos.game_ply, g->pos.search_ply, g->pos.last_move};
}

void expect_same(const Snapshot& a, const Snapshot& b, const std::string& where)
{
    ASSERT_EQ(std::memcmp(&a.pos, &b.pos, sizeof(Position)), 0) << where;
    ASSERT_EQ(a.game_ply, b.game_ply) << where;
    ASSERT_EQ(a.search_ply, b.search_ply) << where;
    ASSERT_EQ(a.last_move, b.last_move) << where;
}

// Makes every pseudo-legal move to `depth`, checking the incremental state
// against a recomputation after each make and the exact restoration after
// each unmake; at every node the pin-based legality shortcut must agree
// with the full test (pins only show up a few plies into the data).
void walk(Game* g, int depth, const std::string& fen)
{
    MoveEntry list[MAX_MOVES];
    gen_all(&g->pos, list);
    PinInfo pins = pin_info(&g->pos, g->pos.side);
    for (MoveEntry* e = list; e->move != MOVE_END; e++) {
        bool legal = is_legal(&g->pos, g->pos.side, e->move);
        ASSERT_EQ(legal, is_legal_fast(&g->pos, g->pos.side, e->move, pins)) << fen << " move " << e->move;
        if (!legal)
            continue;
        Snapshot before = snap(g);
        make_move(&g->pos, e->move);
        ASSERT_STREQ(position_fault(&g->pos), "") << fen << " after " << e->move;
        if (depth > 1)
            walk(g, depth - 1, fen);
        unmake_move(&g->pos);
        expect_same(before, snap(g), fen + " move " + std::to_string(e->move));
    }
    Snapshot before = snap(g);
    make_null(&g->pos);
    ASSERT_STREQ(position_fault(&g->pos), "") << fen << " after null";
    unmake_null(&g->pos);
    expect_same(before, snap(g), fen + " null move");
}

} // namespace

TEST(MakeMove, RoundTripRestoresEveryFieldAndKeysStayExact)
{
    Game* g = new_test_game();
    for (const PerftCase& c : load_perft_cases()) {
        set_test_position(g, c.fen);
        walk(g, 2, c.fen);
    }
    free_test_game(g);
}

TEST(MakeMove, KeysAndSummariesFollowSpecialMoves)
{
    Game* g = new_test_game();
    set_test_position(g, "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -");
    EXPECT_EQ(g->pos.key & 1, 0u);
    uint64_t before = g->pos.key;
    make_move(&g->pos, make_move_code(make_square(0, 1), make_square(0, 3))); // a2a4: nobody can take en passant
    EXPECT_EQ(g->pos.key & 1, 1u);
    EXPECT_EQ(g->pos.ep_square, make_square(0, 2));
    EXPECT_NE(g->pos.key, before);

    // Rights differ only in value: keys differ, and rights 0 still has its key.
    Position a = g->pos;
    set_test_position(g, "r3k2r/8/8/8/8/8/8/R3K2R w KQkq -");
    uint64_t all = g->pos.key;
    set_test_position(g, "r3k2r/8/8/8/8/8/8/R3K2R w - -");
    EXPECT_NE(all, g->pos.key);
    (void)a;

    // Castling resets the fifty counter; a rook capture on h8 clears Black's king-side right.
    set_test_position(g, "r3k2r/8/8/8/8/8/8/R3K2R w KQkq -");
    g->pos.fifty = 7;
    make_move(&g->pos, make_move_code(4, 6));
    EXPECT_EQ(g->pos.fifty, 0);
    EXPECT_EQ(g->pos.board[5], piece_code(ROOK, WHITE));
    set_test_position(g, "r3k2r/8/8/8/8/8/8/R3K2R w KQkq -");
    g->pos.fifty = 7;
    make_move(&g->pos, make_move_code(7, 63));
    EXPECT_EQ(g->pos.castling, 2 | 8);
    set_test_position(g, "r3k2r/8/8/8/8/8/8/R3K2R w KQkq -");
    g->pos.fifty = 7;
    make_move(&g->pos, make_move_code(4, 5));
    EXPECT_EQ(g->pos.fifty, 8);

    // Promotions: phase and signature deltas per piece.
    const Move flags[4] = {PROMO_KNIGHT, PROMO_BISHOP, PROMO_ROOK, PROMO_QUEEN};
    const int phase[4] = {3, 3, 5, 10};
    const uint32_t sig[4] = {16, 256, 4096, 65536};
    for (int i = 0; i < 4; i++) {
        set_test_position(g, "8/4P3/8/8/8/8/k7/4K3 w - -");
        uint16_t ph = g->pos.phase_material[WHITE];
        uint32_t sg = g->pos.material_signature[WHITE];
        Move m = Move(make_move_code(make_square(4, 6), make_square(4, 7)) | flags[i]);
        EXPECT_EQ(move_to(m), make_square(4, 7));
        EXPECT_EQ(move_from(m), make_square(4, 6));
        make_move(&g->pos, m);
        EXPECT_EQ(g->pos.phase_material[WHITE], ph + phase[i]);
        EXPECT_EQ(g->pos.material_signature[WHITE], sg - 1 + sig[i]);
    }
    free_test_game(g);
}
