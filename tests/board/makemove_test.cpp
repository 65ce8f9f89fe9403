#include "board/legality.h"
#include "board/makemove.h"
#include "board/position_check.h"
#include "board/zobrist.h"
#include "support/test_positions.h"

#include <cstring>
#include <gtest/gtest.h>

namespace
{

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
        Position before = g->pos; // ply counters and last move included
        make_move(&g->pos, e->move);
        ASSERT_STREQ(position_fault(&g->pos), "") << fen << " after " << e->move;
        if (depth > 1)
            walk(g, depth - 1, fen);
        unmake_move(&g->pos);
        ASSERT_EQ(std::memcmp(&before, &g->pos, sizeof before), 0) << fen << " move " << e->move;
    }
    Position before = g->pos;
    make_null(&g->pos);
    ASSERT_STREQ(position_fault(&g->pos), "") << fen << " after null";
    unmake_null(&g->pos);
    ASSERT_EQ(std::memcmp(&before, &g->pos, sizeof before), 0) << fen << " null move";
}

} // namespace

TEST(MakeMove, RoundTripRestoresEveryFieldAndKeysStayExact)
{
    Game* g = new_test_game();
    EXPECT_EQ(init_zobrist(), 0); // the same keys again: no two within 6 bits of each other
    for (const PerftCase& c : load_perft_cases()) {
        set_test_position(g, c.fen);
        walk(g, 2, c.fen);
    }
    free_test_game(g);
}
