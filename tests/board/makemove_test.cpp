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
