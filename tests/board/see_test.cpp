#include "board/see.h"
#include "support/test_positions.h"

#include <gtest/gtest.h>

namespace
{

int sq(const char* name)
{
    return make_square(name[0] - 'a', name[1] - '1');
}

} // namespace

TEST(Swap, ExchangeSequences)
{
    Game* g = new_test_game();
    // Pawn d5 defended by pawn e6, attacked only by the rook d1.
    set_test_position(g, "4k3/8/4p3/3p4/8/8/8/3RK3 w - -");
    EXPECT_EQ(swap(&g->pos, WHITE, NO_SQUARE, sq("d5")), 0);
    EXPECT_EQ(swap(&g->pos, WHITE, sq("d1"), sq("d5")), 100 - 535);

    // Undefended knight attacked by a queen.
    set_test_position(g, "4k3/8/8/3n4/8/8/8/3QK3 w - -");
    EXPECT_EQ(swap(&g->pos, WHITE, NO_SQUARE, sq("d5")), 335);

    // A king taking a defended piece.
    set_test_position(g, "4k3/8/8/8/8/2b5/3n4/4K3 w - -");
    EXPECT_EQ(swap(&g->pos, WHITE, sq("e1"), sq("d2")), 335 - 9999);

    // Doubled rooks: the back rook joins once the front one has captured.
    set_test_position(g, "3rk3/8/8/3p4/8/8/3R4/3RK3 w - -");
    EXPECT_EQ(swap(&g->pos, WHITE, NO_SQUARE, sq("d5")), 100);
    set_test_position(g, "3rk3/8/8/3p4/8/8/8/3RK3 w - -");
    EXPECT_EQ(swap(&g->pos, WHITE, NO_SQUARE, sq("d5")), 0);

    // Attacked only by the opposing king and defended: nothing to win.
    set_test_position(g, "8/8/8/8/8/2k5/3p4/4K3 w - -");
    EXPECT_EQ(swap(&g->pos, WHITE, NO_SQUARE, sq("d2")), 0);
    free_test_game(g);
}
