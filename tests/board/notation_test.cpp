#include "board/notation.h"
#include "support/test_positions.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace
{

Move parse(const Position* pos, const char* text)
{
    Move m = 0;
    return parse_move(pos, text, &m) ? m : Move(0);
}

} // namespace

TEST(Notation, FormsOfOneMove)
{
    Game* g = new_test_game();
    set_test_position(g, "4k3/4P3/8/8/8/8/8/4K3 w - -");
    Move promo = Move(make_move_code(make_square(4, 6), make_square(4, 7)) | PROMO_QUEEN);
    for (const char* text : {"e7e8q", "e7e8=Q", "e8Q", "e8=Q"})
        EXPECT_EQ(parse(&g->pos, text), 0) << text; // e8 is occupied by the king: no such move
    set_test_position(g, "7k/4P3/8/8/8/8/8/4K3 w - -");
    for (const char* text : {"e7e8q", "e7e8=Q", "e7e8=q", "e8Q", "e8=Q", "e8=q", "e8=Q+"})
        EXPECT_EQ(parse(&g->pos, text), promo) << text;

    // Two knights reach d2: the short form is ambiguous, both long forms work.
    set_test_position(g, "4k3/8/8/8/8/5N2/8/1N2K3 w - -");
    EXPECT_EQ(parse(&g->pos, "Nd2"), 0);
    EXPECT_EQ(parse(&g->pos, "Nbd2"), make_move_code(1, 11));
    EXPECT_EQ(parse(&g->pos, "N1d2"), make_move_code(1, 11));
    char coord[MOVE_TEXT_SIZE], san[MOVE_TEXT_SIZE], sf[MOVE_TEXT_SIZE], sr[MOVE_TEXT_SIZE];
    move_texts(&g->pos, make_move_code(1, 11), coord, san, sf, sr);
    EXPECT_STREQ(san, "Nd2");

    set_test_position(g, "4k3/8/8/8/8/8/8/4K2R w K -");
    for (const char* text : {"0-0", "O-O", "o-o"})
        EXPECT_EQ(parse(&g->pos, text), make_move_code(4, 6)) << text;

    // Captures, en passant and the check mark.
    set_test_position(g, "4k3/8/8/3pP3/8/8/8/4K3 w - d6");
    Move ep = make_move_code(make_square(4, 4), make_square(3, 5));
    move_texts(&g->pos, ep, coord, san, sf, sr);
    EXPECT_STREQ(san, "exd6");
    EXPECT_STREQ(sf, "ed");
    EXPECT_STREQ(sr, "");
    set_test_position(g, "4k3/8/8/8/8/8/1p6/R3K3 b - -"); // the short form names no square, not even a1
    EXPECT_EQ(parse(&g->pos, "ba=Q"), Move(make_move_code(make_square(1, 1), 0) | PROMO_QUEEN));
    set_test_position(g, "4k3/8/8/8/8/8/8/R3K3 w - -");
    move_texts(&g->pos, make_move_code(0, 56), coord, san, sf, sr);
    EXPECT_STREQ(san, "Ra8+");
    EXPECT_STREQ(coord, "a1a8+");
    free_test_game(g);
}
