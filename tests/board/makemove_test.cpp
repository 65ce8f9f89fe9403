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

Snapshot snap(const SearchThread* t)
{
    return {t->pos, t->game_ply, t->search_ply, t->last_move};
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
// each unmake.
void walk(SearchThread* t, int depth, const std::string& fen)
{
    MoveEntry list[MAX_MOVES];
    gen_all(&t->pos, list);
    for (MoveEntry* e = list; e->move != MOVE_END; e++) {
        if (!is_legal(&t->pos, t->pos.side, e->move))
            continue;
        Snapshot before = snap(t);
        make_move(&t->pos, e->move);
        ASSERT_STREQ(position_fault(&t->pos), "") << fen << " after " << e->move;
        if (depth > 1)
            walk(t, depth - 1, fen);
        unmake_move(&t->pos);
        expect_same(before, snap(t), fen + " move " + std::to_string(e->move));
    }
    Snapshot before = snap(t);
    make_null(&t->pos);
    ASSERT_STREQ(position_fault(&t->pos), "") << fen << " after null";
    unmake_null(&t->pos);
    expect_same(before, snap(t), fen + " null move");
}

} // namespace

TEST(MakeMove, RoundTripRestoresEveryFieldAndKeysStayExact)
{
    SearchThread* t = new_test_thread();
    for (const PerftCase& c : load_perft_cases()) {
        set_test_position(t, c.fen);
        walk(t, 2, c.fen);
    }
    free_test_thread(t);
}

TEST(MakeMove, KeysAndSummariesFollowSpecialMoves)
{
    SearchThread* t = new_test_thread();
    set_test_position(t, "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -");
    EXPECT_EQ(t->pos.key & 1, 0u);
    uint64_t before = t->pos.key;
    make_move(&t->pos, make_move_code(make_square(0, 1), make_square(0, 3))); // a2a4: nobody can take en passant
    EXPECT_EQ(t->pos.key & 1, 1u);
    EXPECT_EQ(t->pos.ep_square, make_square(0, 2));
    EXPECT_NE(t->pos.key, before);

    // Rights differ only in value: keys differ, and rights 0 still has its key.
    Position a = t->pos;
    set_test_position(t, "r3k2r/8/8/8/8/8/8/R3K2R w KQkq -");
    uint64_t all = t->pos.key;
    set_test_position(t, "r3k2r/8/8/8/8/8/8/R3K2R w - -");
    EXPECT_NE(all, t->pos.key);
    (void)a;

    // Castling resets the fifty counter; a rook capture on h8 clears Black's king-side right.
    set_test_position(t, "r3k2r/8/8/8/8/8/8/R3K2R w KQkq -");
    t->pos.fifty = 7;
    make_move(&t->pos, make_move_code(4, 6));
    EXPECT_EQ(t->pos.fifty, 0);
    EXPECT_EQ(t->pos.board[5], piece_code(ROOK, WHITE));
    set_test_position(t, "r3k2r/8/8/8/8/8/8/R3K2R w KQkq -");
    t->pos.fifty = 7;
    make_move(&t->pos, make_move_code(7, 63));
    EXPECT_EQ(t->pos.castling, 2 | 8);
    set_test_position(t, "r3k2r/8/8/8/8/8/8/R3K2R w KQkq -");
    t->pos.fifty = 7;
    make_move(&t->pos, make_move_code(4, 5));
    EXPECT_EQ(t->pos.fifty, 8);

    // Promotions: phase and signature deltas per piece.
    const Move flags[4] = {PROMO_KNIGHT, PROMO_BISHOP, PROMO_ROOK, PROMO_QUEEN};
    const int phase[4] = {3, 3, 5, 10};
    const uint32_t sig[4] = {16, 256, 4096, 65536};
    for (int i = 0; i < 4; i++) {
        set_test_position(t, "8/4P3/8/8/8/8/k7/4K3 w - -");
        uint16_t ph = t->pos.phase_material[WHITE];
        uint32_t sg = t->pos.material_signature[WHITE];
        Move m = Move(make_move_code(make_square(4, 6), make_square(4, 7)) | flags[i]);
        EXPECT_EQ(move_to(m), make_square(4, 7));
        EXPECT_EQ(move_from(m), make_square(4, 6));
        make_move(&t->pos, m);
        EXPECT_EQ(t->pos.phase_material[WHITE], ph + phase[i]);
        EXPECT_EQ(t->pos.material_signature[WHITE], sg - 1 + sig[i]);
    }
    free_test_thread(t);
}
