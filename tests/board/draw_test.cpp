#include "board/draw.h"
#include "board/makemove.h"
#include "support/test_positions.h"

#include <gtest/gtest.h>

namespace
{

const Move G1F3 = make_move_code(6, 21), F3G1 = make_move_code(21, 6);
const Move G8F6 = make_move_code(62, 45), F6G8 = make_move_code(45, 62);

void shuffle(Game* g)
{
    for (Move m : {G1F3, G8F6, F3G1, F6G8})
        make_move(&g->pos, m);
}

} // namespace

TEST(Draw, FiftyMoveRuleNeedsMoreThanAHundredHalfMoves)
{
    Game* g = new_test_game();
    set_test_position(g, "4k3/8/8/8/8/8/4P3/R3K3 w - -");
    g->pos.fifty = 100;
    EXPECT_FALSE(is_draw(&g->pos, 1));
    g->pos.fifty = 101;
    EXPECT_TRUE(is_draw(&g->pos, 1));
    EXPECT_FALSE(is_draw(&g->pos, 0));                  // at the root only without a legal move
    set_test_position(g, "k7/2Q5/1K6/8/8/8/8/8 b - -"); // stalemate
    g->pos.fifty = 101;
    EXPECT_TRUE(is_draw(&g->pos, 0));
    free_test_game(g);
}

TEST(Draw, RepetitionBeforeTheRootNeedsTwoEarlierOccurrences)
{
    Game* g = new_test_game();
    set_test_position(g, "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -");
    shuffle(g);
    EXPECT_FALSE(is_draw(&g->pos, 0)); // second occurrence, both before the root
    EXPECT_TRUE(is_draw(&g->pos, 4));  // the first one lies inside the search line
    shuffle(g);
    EXPECT_TRUE(is_draw(&g->pos, 0)); // third occurrence
    free_test_game(g);
}

