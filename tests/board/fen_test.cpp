#include "board/epd.h"
#include "board/fen.h"
#include "support/test_positions.h"

#include <cstring>
#include <gtest/gtest.h>
#include <sstream>

TEST(Fen, ReaderDetails)
{
    Game* g = new_test_game();
    g->pos.game_ply = 9;
    EXPECT_EQ(set_position(&g->pos, "rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq e3 0 1"), 0);
    EXPECT_EQ(g->pos.ep_square, 20);
    EXPECT_EQ(g->pos.fifty, 0);
    EXPECT_EQ(g->pos.game_ply, 0);
    EXPECT_EQ(g->pos.search_ply, 1);
    char out[128];
    write_fen(&g->pos, out);
    EXPECT_STREQ(out, "rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq e3");

    // A right without its rook is removed (and reported).
    EXPECT_EQ(set_position(&g->pos, "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBN1 w KQkq - 0 1"), -1);
    EXPECT_EQ(g->pos.castling, 2 | 4 | 8);
    EXPECT_EQ(set_position(&g->pos, "r3k2r/8/8/8/8/8/4K3/R6R w KQkq - 0 1"), -1); // nor without its king
    EXPECT_EQ(g->pos.castling, 4 | 8);
    free_test_game(g);
}

TEST(Fen, UnplayablePositionsAreNamed)
{
    Game* g = new_test_game();
    struct Case {
        const char* fen;
        bool ok;
    } cases[] = {
        {"4k3/8/8/8/8/8/8/4K3 w - -", true},
        {"8/8/8/8/8/8/8/4K3 w - -", false},     // no black king
        {"4k3/8/8/8/8/8/8/3KK3 w - -", false},  // two white kings
        {"4k3/8/8/8/8/8/4Q3/4K3 w - -", false}, // black, not to move, is in check
        {"4k3/8/8/8/8/8/4Q3/4K3 b - -", true},
        {"P3k3/8/8/8/8/8/8/4K3 w - -", false},            // pawn on the last rank
        {"4k3/8/8/8/8/8/8/4K3 w - e6", false},            // no pawn behind the en-passant square
        {"QQQQkQQQ/QQQQQQQQ/8/8/8/8/8/4K3 b - -", false}, // impossible material
        {"4k3/8/8/8/8/P7/PPPPPPPP/4K3 w - -", false},     // nine pawns
        {"4k3/8/8/8/8/8/PPPPPPP1/2QQK3 w - -", true},     // one pawn promoted to a queen
        {"4k3/8/8/8/8/8/PPPPPPP1/1QQQK3 w - -", false}    // two extra queens for one missing pawn
    };
    for (const Case& c : cases) {
        read_fen(&g->pos, c.fen);
        EXPECT_EQ(position_problem(&g->pos) == nullptr, c.ok) << c.fen;
    }
    free_test_game(g);
}

