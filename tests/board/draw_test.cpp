#include "board/draw.h"
#include "board/makemove.h"
#include "support/test_positions.h"

#include <gtest/gtest.h>

namespace
{

const Move G1F3 = make_move_code(6, 21), F3G1 = make_move_code(21, 6);
const Move G8F6 = make_move_code(62, 45), F6G8 = make_move_code(45, 62);

void shuffle(SearchThread* t)
{
    make_move(&t->pos, G1F3);
    make_move(&t->pos, G8F6);
    make_move(&t->pos, F3G1);
    make_move(&t->pos, F6G8);
}

} // namespace

TEST(Draw, FiftyMoveRuleNeedsMoreThanAHundredHalfMoves)
{
    SearchThread* t = new_test_thread();
    set_test_position(t, "4k3/8/8/8/8/8/4P3/R3K3 w - -");
    t->pos.fifty = 100;
    EXPECT_FALSE(is_draw(&t->pos, 1));
    t->pos.fifty = 101;
    EXPECT_TRUE(is_draw(&t->pos, 1));
    EXPECT_FALSE(is_draw(&t->pos, 0));                  // at the root only without a legal move
    set_test_position(t, "k7/2Q5/1K6/8/8/8/8/8 b - -"); // stalemate
    t->pos.fifty = 101;
    EXPECT_TRUE(is_draw(&t->pos, 0));
    free_test_thread(t);
}

TEST(Draw, RepetitionBeforeTheRootNeedsTwoEarlierOccurrences)
{
    SearchThread* t = new_test_thread();
    set_test_position(t, "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -");
    shuffle(t);
    EXPECT_FALSE(is_draw(&t->pos, 0)); // second occurrence, both before the root
    EXPECT_TRUE(is_draw(&t->pos, 4));  // the first one lies inside the search line
    shuffle(t);
    EXPECT_TRUE(is_draw(&t->pos, 0)); // third occurrence
    free_test_thread(t);
}

TEST(Draw, NullMoveHidesEarlierPositions)
{
    SearchThread* t = new_test_thread();
    set_test_position(t, "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -");
    make_move(&t->pos, G1F3);
    make_null(&t->pos);
    make_move(&t->pos, F3G1);
    make_null(&t->pos);
    // Same placement and side as the start, but the null moves reset the counter.
    EXPECT_FALSE(is_draw(&t->pos, 4));
    free_test_thread(t);
}
