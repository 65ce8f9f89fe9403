#include "board/fen.h"
#include "board/makemove.h"
#include "board/notation.h"
#include "book/book_key.h"
#include "support/engine_process.h"
#include "support/test_positions.h"

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <initializer_list>

// The nine positions that the format's own description publishes with their
// keys: castling rights lost one by one, en-passant squares that a pawn can
// use (in the key) and ones it cannot (left out).
TEST(BookKey, PublishedKeys)
{
    Game* g = new_test_game();
    std::ifstream in(data_path("books/test_keys.txt"));
    std::string line;
    int checked = 0;
    while (std::getline(in, line)) {
        size_t bar = line.find('|');
        if (line.empty() || line[0] == '#' || bar == std::string::npos)
            continue;
        set_test_position(g, line.substr(0, bar));
        uint64_t expected = std::stoull(line.substr(bar + 1), nullptr, 16);
        EXPECT_EQ(book_key(&g->pos), expected) << line;
        checked++;
    }
    EXPECT_EQ(checked, 9);
    free_test_game(g);
}

// The key follows the position, not the road to it: a double step that no
// pawn can answer en passant hashes like the same position reached by two
// single steps; an en-passant square that a pawn can use changes the key.
TEST(BookKey, EnPassantOnlyWhenUsable)
{
    Game* a = new_test_game();
    Game* b = new_test_game();
    auto play = [](Game* g, std::initializer_list<const char*> moves) {
        set_test_position(g, START_FEN);
        for (const char* text : moves) {
            Move m;
            ASSERT_TRUE(parse_move(&g->pos, text, &m)) << text;
            make_move(&g->pos, m);
        }
    };
    play(a, {"e3", "d6", "e4", "d5"});
    play(b, {"e4", "d5"});
    EXPECT_EQ(book_key(&a->pos), book_key(&b->pos));

    set_test_position(a, "4k3/8/8/8/3pP3/8/8/4K3 b - e3");
    set_test_position(b, "4k3/8/8/8/3pP3/8/8/4K3 b - -");
    EXPECT_NE(book_key(&a->pos), book_key(&b->pos));
    set_test_position(a, "4k3/8/8/8/p3P3/8/8/4K3 b - e3");
    set_test_position(b, "4k3/8/8/8/p3P3/8/8/4K3 b - -");
    EXPECT_EQ(book_key(&a->pos), book_key(&b->pos));
    free_test_game(a);
    free_test_game(b);
}

