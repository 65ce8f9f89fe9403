// The prober's core given boards no table can hold: it refuses them
// instead of reading outside its tables.
#include "tablebase/tb_fixtures.h"
#include "tablebase/tbcore.h"
#include "tablebase/tbprobe.h"

#include <gtest/gtest.h>

TEST(TbCore, BoardsNoTableHoldsAreRefused)
{
    tb_init(shared_tables().c_str());
    TestBoard board;
    TbBoard b = tb_board_of(board.set("8/8/8/8/8/2k5/P7/K7 w - -"));
    int wdl = 9;
    bool capture_best;
    ASSERT_TRUE(tb_resolve_wdl(&b, &wdl, &capture_best));
    EXPECT_EQ(wdl, 0);

    TbBoard promoted = b; // the pawn left on the last rank
    promoted.type[PAWN] = bit(56);
    promoted.side[WHITE] = bit(56) | bit(0);
    EXPECT_FALSE(tb_resolve_wdl(&promoted, &wdl, &capture_best));
    EXPECT_FALSE(tb_stored_wdl(&promoted, &wdl));

    TbBoard kingless = b; // Black's king gone
    kingless.type[KING] &= ~kingless.side[BLACK];
    kingless.side[BLACK] = 0;
    EXPECT_FALSE(tb_resolve_wdl(&kingless, &wdl, &capture_best));

    TbBoard crowded = tb_board_of(board.set("r3k2r/8/8/8/8/8/8/R3K2R w - -"));
    EXPECT_FALSE(tb_stored_wdl(&crowded, &wdl)); // six men, but no such table here
    int plies;
    bool other;
    EXPECT_FALSE(tb_stored_dtz(&crowded, 2, &plies, &other));
}
