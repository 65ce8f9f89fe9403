// Book moves through the real binary, driven as an interface drives it.
#include "book/book_entry.h"
#include "book/book_key.h"
#include "support/engine_process.h"
#include "support/test_positions.h"
#include "support/tool_run.h"

#include <fstream>
#include <gtest/gtest.h>

// A search request in a book position is answered from the book at once;
// options decide when each book is asked (OwnBook, its depth, the second
// book with its own depth, 0 by default); a book move that is not legal
// here is listed but the search decides instead.
TEST(BookSession, BookMovesAndOptions)
{
    const std::string lasker = data_path("books/lasker-trap.bin"), dir = make_temp_dir();
    EngineProcess e;
    e.ask("uci", "uciok");
    e.send_line("setoption name OwnBook value true");
    e.send_line("setoption name OwnBook_File value " + lasker);
    auto go = [&](const std::string& position, const std::string& limits = "depth 2") {
        e.send_line("position " + position);
        e.send_line("go " + limits);
        std::vector<std::string> seen;
        e.wait_for("bestmove", 60000, &seen);
        return seen;
    };
    auto from_book = [&](const std::vector<std::string>& seen) {
        return !starting_with(seen, "info string book move").empty();
    };
    std::vector<std::string> seen = go("startpos moves d2d4", "wtime 60000 btime 60000");
    EXPECT_EQ(std::vector<std::string>(seen.end() - 3, seen.end()),
              (std::vector<std::string>{"info string ( book moves are: d7d5  )", "info string book move is d7d5",
                                        "bestmove d7d5"}));
    EXPECT_TRUE(starting_with(seen, "info depth").empty());
    seen = go("startpos moves e2e4", "depth 3");
    EXPECT_FALSE(from_book(seen));
    EXPECT_FALSE(starting_with(seen, "info depth").empty());
    seen = go("startpos moves d2d4 d7d5 c2c4 e7e5 d4e5 d5d4 e2e3 f8b4 c1d2 d4e3 d2b4 e3f2 e1e2", "movetime 5000");
    EXPECT_EQ(seen.back(), "bestmove f2g1n");

    e.send_line("setoption name OwnBook value false");
    EXPECT_FALSE(from_book(go("startpos moves d2d4")));
    e.send_line("setoption name OwnBook value true");
    e.send_line("setoption name OwnBook_Depth value 1");
    EXPECT_FALSE(from_book(go("startpos moves d2d4")));
    e.send_line("setoption name OwnBook_File value missing.bin");
    e.send_line("setoption name OwnBook_Depth value 24");
    e.send_line("setoption name OwnBook2_File value " + lasker);
    EXPECT_FALSE(from_book(go("startpos moves d2d4")));
    e.send_line("setoption name OwnBook2_Depth value 4");
    seen = go("startpos moves d2d4 d7d5 c2c4");
    EXPECT_EQ(seen.back(), "bestmove e7e5");
    EXPECT_TRUE(from_book(seen));
    EXPECT_FALSE(from_book(go("startpos moves d2d4 d7d5 c2c4 e7e5 d4e5")));

    // The bishop on e2 is pinned.
    const std::string pinned = "4k3/4r3/8/8/8/8/4B3/4K3 w - -";
    Game* g = new_test_game();
    set_test_position(g, pinned);
    BookEntry entry = {book_key(&g->pos), 12 << 6 | 19, 5, 0};
    free_test_game(g);
    unsigned char bytes[BOOK_ENTRY_SIZE];
    encode_book_entry(&entry, bytes);
    std::ofstream(dir + "/pinned.bin", std::ios::binary).write(reinterpret_cast<const char*>(bytes), sizeof bytes);
    e.send_line("setoption name OwnBook_File value " + dir + "/pinned.bin");
    seen = go("fen " + pinned, "depth 3");
    EXPECT_EQ(starting_with(seen, "info string ( book moves are:"),
              std::vector<std::string>{"info string ( book moves are: e2d3  )"});
    EXPECT_FALSE(from_book(seen));
    EXPECT_FALSE(starting_with(seen, "info depth").empty());
    EXPECT_NE(seen.back(), "bestmove e2d3");
    EXPECT_EQ(e.quit(), 0);
}
