// Book moves through the real binary, driven as an interface drives it.
#include "book/book_entry.h"
#include "book/book_key.h"
#include "support/engine_process.h"
#include "support/test_positions.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace
{

const std::string LASKER = data_path("books/lasker-trap.bin");

std::vector<std::string> go_lines(EngineProcess& e, const std::string& position, const std::string& go)
{
    e.send_line("position " + position);
    e.send_line("go " + go);
    std::vector<std::string> seen;
    e.wait_for("bestmove", 60000, &seen);
    return seen;
}

bool has_line_starting(const std::vector<std::string>& lines, const std::string& prefix)
{
    for (const std::string& l : lines)
        if (l.rfind(prefix, 0) == 0)
            return true;
    return false;
}

void start_uci(EngineProcess& e)
{
    e.send_line("uci");
    e.wait_for("uciok");
    e.send_line("setoption name OwnBook value true");
    e.send_line("setoption name OwnBook_File value " + LASKER);
}

} // namespace

// A search request in a book position is answered from the book at once:
// the listing, the book line and the move, with no search in between.
TEST(BookSession, GoPlaysTheBookMove)
{
    EngineProcess e;
    start_uci(e);
    std::vector<std::string> seen = go_lines(e, "startpos moves d2d4", "wtime 60000 btime 60000");
    std::vector<std::string> tail(seen.end() - 3, seen.end());
    EXPECT_EQ(tail, (std::vector<std::string>{"info string ( book moves are: d7d5  )", "info string book move is d7d5",
                                              "bestmove d7d5"}));
    EXPECT_FALSE(has_line_starting(seen, "info depth"));

    // Out of the book the engine searches.
    seen = go_lines(e, "startpos moves e2e4", "depth 3");
    EXPECT_FALSE(has_line_starting(seen, "info string book move"));
    EXPECT_TRUE(has_line_starting(seen, "info depth"));

    // The under-promotion at the end of the line is played as such.
    seen =
        go_lines(e, "startpos moves d2d4 d7d5 c2c4 e7e5 d4e5 d5d4 e2e3 f8b4 c1d2 d4e3 d2b4 e3f2 e1e2", "movetime 5000");
    EXPECT_EQ(seen.back(), "bestmove f2g1n");
    EXPECT_EQ(e.quit(), 0);
}

// Options decide when each book is asked: OwnBook itself, the depth of the
// first book, the second book with its own depth (0 by default).
TEST(BookSession, BookOptionsAndTheSecondBook)
{
    EngineProcess e;
    start_uci(e);
    e.send_line("setoption name OwnBook value false");
    EXPECT_FALSE(has_line_starting(go_lines(e, "startpos moves d2d4", "depth 2"), "info string book move"));
    e.send_line("setoption name OwnBook value true");
    e.send_line("setoption name OwnBook_Depth value 1");
    EXPECT_FALSE(has_line_starting(go_lines(e, "startpos moves d2d4", "depth 2"), "info string book move"));

    e.send_line("setoption name OwnBook_File value missing.bin");
    e.send_line("setoption name OwnBook_Depth value 24");
    e.send_line("setoption name OwnBook2_File value " + LASKER);
    EXPECT_FALSE(has_line_starting(go_lines(e, "startpos moves d2d4", "depth 2"), "info string book move"));
    e.send_line("setoption name OwnBook2_Depth value 4");
    std::vector<std::string> seen = go_lines(e, "startpos moves d2d4 d7d5 c2c4", "depth 2");
    EXPECT_EQ(seen.back(), "bestmove e7e5");
    EXPECT_TRUE(has_line_starting(seen, "info string book move is e7e5"));
    EXPECT_FALSE(
        has_line_starting(go_lines(e, "startpos moves d2d4 d7d5 c2c4 e7e5 d4e5", "depth 2"), "info string book move"));
    EXPECT_EQ(e.quit(), 0);
}

// A book key can collide and a book can be built from faulty games: a book
// move that is not legal here is listed by the probe but never played, and
// the search decides instead. Castling is the subtle case: without the
// right, over a man, or through an attacked square.
TEST(BookSession, IllegalBookMoveIsSearchedInstead)
{
    struct {
        const char* fen;
        uint16_t book_move; // from << 6 | to, castling as king takes rook
        const char* never;
    } cases[] = {
        {"4k3/4r3/8/8/8/8/4B3/4K3 w - -", 12 << 6 | 19, "bestmove e2d3"}, // the pinned bishop
        {"3rk3/8/8/8/8/8/8/R3K3 w Q -", 4 << 6 | 0, "bestmove e1c1"},     // through d1
        {"4k3/8/8/8/8/8/8/RN2K3 w Q -", 4 << 6 | 0, "bestmove e1c1"},     // over the knight
        {"4k3/8/8/8/8/8/8/R3K2R w - -", 4 << 6 | 7, "bestmove e1g1"},     // no right
    };
    std::string dir = make_temp_dir();
    EngineProcess e;
    start_uci(e);
    int n = 0;
    for (const auto& c : cases) {
        Game* g = new_test_game();
        set_test_position(g, c.fen);
        BookEntry entry = {book_key(&g->pos), c.book_move, 5, 0};
        free_test_game(g);
        unsigned char bytes[BOOK_ENTRY_SIZE];
        encode_book_entry(&entry, bytes);
        std::string file = dir + "/case" + std::to_string(n++) + ".bin";
        std::ofstream(file, std::ios::binary).write(reinterpret_cast<const char*>(bytes), sizeof bytes);

        e.send_line("setoption name OwnBook_File value " + file);
        std::vector<std::string> seen = go_lines(e, std::string("fen ") + c.fen, "depth 3");
        EXPECT_TRUE(has_line_starting(seen, "info string ( book moves are:")) << c.fen;
        EXPECT_FALSE(has_line_starting(seen, "info string book move")) << c.fen;
        EXPECT_TRUE(has_line_starting(seen, "info depth")) << c.fen;
        EXPECT_NE(seen.back(), c.never) << c.fen;
    }
    EXPECT_EQ(e.quit(), 0);
    std::filesystem::remove_all(dir);
}

