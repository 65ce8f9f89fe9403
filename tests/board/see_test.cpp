#include "board/see.h"
#include "support/test_positions.h"

#include <gtest/gtest.h>

// Exchange values on a square, by the first capture or the best one: a
// defended pawn, an undefended knight, a king taking a defended man,
// doubled rooks (the back one joins), and a square only the king attacks.
TEST(Swap, ExchangeSequences)
{
    const struct {
        const char* fen;
        const char *from, *to;
        int value;
    } cases[] = {{"4k3/8/4p3/3p4/8/8/8/3RK3 w - -", "", "d5", 0},
                 {"4k3/8/4p3/3p4/8/8/8/3RK3 w - -", "d1", "d5", 100 - 535},
                 {"4k3/8/8/3n4/8/8/8/3QK3 w - -", "", "d5", 335},
                 {"4k3/8/8/8/8/2b5/3n4/4K3 w - -", "e1", "d2", 335 - 9999},
                 {"3rk3/8/8/3p4/8/8/3R4/3RK3 w - -", "", "d5", 100},
                 {"3rk3/8/8/3p4/8/8/8/3RK3 w - -", "", "d5", 0},
                 {"8/8/8/8/8/2k5/3p4/4K3 w - -", "", "d2", 0}};
    Game* g = new_test_game();
    auto sq = [](const char* name) { return *name ? make_square(name[0] - 'a', name[1] - '1') : NO_SQUARE; };
    for (const auto& c : cases) {
        set_test_position(g, c.fen);
        EXPECT_EQ(swap(&g->pos, WHITE, sq(c.from), sq(c.to)), c.value) << c.fen << " " << c.from;
    }
    free_test_game(g);
}
