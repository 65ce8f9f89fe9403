#include "board/attack_queries.h"
#include "board/attacks.h"
#include "board/legality.h"
#include "support/test_positions.h"

#include <gtest/gtest.h>

TEST(Legality, EnPassantAndCastlingEdgeCases)
{
    Game* g = new_test_game();
    // Both pawns leave the fifth rank: the rook on a5 would see the king on h5.
    set_test_position(g, "8/8/8/r2Pp2K/8/8/8/4k3 w - e6");
    Move ep = make_move_code(make_square(3, 4), make_square(4, 5));
    EXPECT_FALSE(is_legal(&g->pos, WHITE, ep));

    // Queen-side castling ignores an attack on b1 but not on d1.
    set_test_position(g, "1r2k3/8/8/8/8/8/8/R3K3 w Q -");
    Move ooo = make_move_code(4, 2);
    EXPECT_TRUE(is_legal(&g->pos, WHITE, ooo));
    set_test_position(g, "3rk3/8/8/8/8/8/8/R3K3 w Q -");
    EXPECT_FALSE(is_legal(&g->pos, WHITE, ooo));
    free_test_game(g);
}
