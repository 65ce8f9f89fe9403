#include "board/fen.h"
#include "board/makemove.h"
#include "board/notation.h"
#include "book/book_builder.h"
#include "book/book_entry.h"
#include "book/book_key.h"
#include "support/game_and_dir_fixture.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

namespace
{

std::string read_bytes(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

std::string entry_bytes(uint64_t key, Move move, int weight)
{
    BookEntry e = {key, move_to_book_move(move), uint16_t(weight), 0};
    unsigned char bytes[BOOK_ENTRY_SIZE];
    encode_book_entry(&e, bytes);
    return std::string(reinterpret_cast<char*>(bytes), sizeof bytes);
}

// Three games, or however many, of the same move text with one result.
std::string games(const std::string& moves, const std::string& result, int count = 3)
{
    std::string text;
    for (int i = 0; i < count; i++)
        text += "[Event \"t\"]\n[Result \"" + result + "\"]\n\n" + moves + " " + result + "\n\n";
    return text;
}

class BookBuilder : public GameAndDir
{
  protected:
    // Builds a book from `pgn`; returns its bytes and keeps what was printed.
    std::string build(const std::string& pgn)
    {
        std::string in = dir + "/games.pgn", out = dir + "/book.bin";
        std::ofstream(in, std::ios::binary) << pgn;
        testing::internal::CaptureStdout();
        EXPECT_EQ(build_book(in.c_str(), out.c_str()), 1);
        printed = testing::internal::GetCapturedStdout();
        return read_bytes(out);
    }

    // The entry for the last of `moves` (SAN, from the start position).
    std::string entry(const std::vector<const char*>& moves, int weight)
    {
        set_test_position(game, START_FEN);
        Move m = 0;
        uint64_t key = 0;
        for (const char* text : moves) {
            EXPECT_TRUE(parse_move(&game->pos, text, &m)) << text;
            key = book_key(&game->pos);
            make_move(&game->pos, m);
        }
        return entry_bytes(key, m, weight);
    }

    // Entries sorted into file order by key.
    static std::string in_file_order(std::vector<std::string> entries)
    {
        std::stable_sort(entries.begin(), entries.end(),
                         [](const std::string& a, const std::string& b) { return a.substr(0, 8) < b.substr(0, 8); });
        std::string all;
        for (const std::string& e : entries)
            all += e;
        return all;
    }

    std::string printed;
};

} // namespace

// Score 4 per win, -2 per loss, 1 per draw; a move needs 10 and three wins.
TEST_F(BookBuilder, ScoreAndKeepRules)
{
    std::string pgn = games("1. e4 e5 2. Nf3", "1-0") + games("1. d4 d5 2. c4", "1-0", 2)
                      + games("1. e4 e5 2. Nf3", "0-1", 1) + games("1. c4 e5", "1-0", 3) + games("1. c4 e5", "0-1", 2)
                      + games("1. Nf3 d5", "1/2-1/2", 2) + games("1. Nf3 d5", "1-0", 2);
    // e4, and Nf3 after e4 e5: 3 wins 1 loss = 10, just enough. d4, and c4
    // after d4 d5: two wins = 8. c4: 3 wins 2 losses = 8. Nf3: 2 wins
    // 2 draws = 10 but only two wins. Black's e5 after e4: 1 win 3 losses.
    std::string expected = in_file_order({entry({"e4"}, 10), entry({"e4", "e5", "Nf3"}, 10)});
    EXPECT_EQ(build(pgn), expected);
    EXPECT_EQ(printed, "Creating file " + dir + "/book.bin from games in " + dir
                           + "/games.pgn\n\nwriting book file ...\nngames= 15, nmoves= 10\ndone\n");
}

// Without a Result tag, or with the result "*", a game adds nothing; the
// games around it count as usual.
TEST_F(BookBuilder, GamesWithoutAKnownResult)
{
    std::string untagged = "[Event \"no result\"]\n\n1. d4 d5 2. c4 1-0\n\n";
    std::string long_game = "1. e4 e5 2. Nf3 Nc6 3. Bb5 a6 4. Ba4 Nf6 5. O-O Be7 6. Re1 b5 7. Bb3 d6 8. c3 O-O "
                            "9. h3 Na5 10. Bc2 c5 11. d4 Qc7 12. Nbd2 cxd4 13. cxd4 Nc6 14. Nb3 a5 15. Be3 a4 "
                            "16. Nbd2 Bd7 17. Rc1 Qb7 18. Qe2 Rfe8 19. a3 Bf8";
    std::string pgn = untagged + untagged + untagged + games(long_game, "1-0", 3) + untagged + untagged + untagged
                      + games("1. d4 d5 2. c4", "*", 5);
    std::string bytes = build(pgn);
    EXPECT_EQ(bytes.size(), 16u * 19) << "White's nineteen moves of the long game, nothing of d4";
    EXPECT_EQ(bytes.find(entry({"d4"}, 12)), std::string::npos);
    EXPECT_NE(bytes.find(entry({"e4"}, 12)), std::string::npos);
    EXPECT_NE(printed.find("ngames= 8, nmoves= 38\n"), std::string::npos) << printed;
}

// Moves inside comments (even over several lines, one starting with "[")
// and variations (nested) are not counted; neither are "$" glyphs or tokens
// starting with ";", while a line starting with ";" is skipped whole.
TEST_F(BookBuilder, CommentsAndVariations)
{
    std::string moves = "1. e4 {the king's pawn; Nf3 or d4 next} e5 (1... c5 2. Nf3 (2. c3 d5) d6) 2. Nf3 $1 {\n"
                        "[a bracket inside the comment] Bc4 Nc6 }\n"
                        "; Nc6 2. Bb5 on a comment line\n"
                        "Nc6 ;Bb5 3. Bc4";
    std::string bytes = build(games(moves, "1-0"));
    EXPECT_EQ(bytes, in_file_order({entry({"e4"}, 12), entry({"e4", "e5", "Nf3"}, 12),
                                    entry({"e4", "e5", "Nf3", "Nc6", "Bc4"}, 12)}));
}

// A closing brace or parenthesis with nothing open is ignored: the comment
// and the variation after it still hide their moves.
TEST_F(BookBuilder, StrayClosingMarks)
{
    std::string moves = "1. e4 } e5 ) 2. Nf3 {Bc4 is also good} Nc6 (2... d6 3. d4) 3. Bb5";
    std::string bytes = build(games(moves, "1-0"));
    EXPECT_EQ(bytes, in_file_order({entry({"e4"}, 12), entry({"e4", "e5", "Nf3"}, 12),
                                    entry({"e4", "e5", "Nf3", "Nc6", "Bb5"}, 12)}));
}

// A game counts until 36 plies are in, but the test is made once per line:
// with one move pair per line exactly 36 plies count, while the line that
// reaches 36 is read to its end.
TEST_F(BookBuilder, ThirtySixPlyRule)
{
    // A game of 44 plies (22 White moves) with no position repeated.
    const char* line[] = {"e4",   "e5",   "Nf3",  "Nc6", "Bb5", "a6",  "Ba4", "Nf6", "O-O",  "Be7", "Re1",
                          "b5",   "Bb3",  "d6",   "c3",  "O-O", "h3",  "Na5", "Bc2", "c5",   "d4",  "Qc7",
                          "Nbd2", "cxd4", "cxd4", "Nc6", "Nb3", "a5",  "Be3", "a4",  "Nbd2", "Bd7", "Rc1",
                          "Qb7",  "Qe2",  "Rfe8", "a3",  "Bf8", "Bd3", "h6",  "Qf1", "Nh7",  "Nb1", "Ng5"};
    auto text = [&](int plies_per_line) {
        std::string t;
        for (int i = 0; i < 44; i++) {
            if (i % 2 == 0)
                t += std::to_string(i / 2 + 1) + ". ";
            t += line[i];
            t += (i + 1) % plies_per_line == 0 ? "\n" : " ";
        }
        return t;
    };
    auto white_entries = [&](int plies) {
        std::vector<std::string> all;
        for (int i = 0; i < plies; i += 2)
            all.push_back(entry(std::vector<const char*>(line, line + i + 1), 12));
        return in_file_order(all);
    };
    EXPECT_EQ(build(games(text(2), "1-0")), white_entries(36));
    EXPECT_EQ(build(games(text(10), "1-0")), white_entries(40));
    EXPECT_EQ(build(games(text(44), "1-0")), white_entries(44));
    EXPECT_EQ(build(games(text(12), "1-0")), white_entries(36));
}

// Castling counts alike in letters and in zeros (and is stored king takes rook).
TEST_F(BookBuilder, CastlingWithLettersAndZeros)
{
    std::string start = "1. e4 e5 2. Nf3 Nc6 3. Bc4 Bc5 4. ";
    std::string bytes = build(games(start + "O-O Nf6", "1-0", 2) + games(start + "0-0 Nf6", "1-0", 1));
    std::string castle = entry({"e4", "e5", "Nf3", "Nc6", "Bc4", "Bc5", "O-O"}, 12);
    EXPECT_NE(bytes.find(castle), std::string::npos);
    EXPECT_EQ(castle.substr(8, 2), std::string("\x01\x07", 2)) << "e1h1";
    EXPECT_EQ(bytes.size(), 16u * 4);
}

// Weights above 60000 are scaled down with their ratios; a position's moves
// are written heaviest first, equal weights in the order first seen; a dot
// marks every 1024 games.
TEST_F(BookBuilder, WeightsOrderAndProgress)
{
    std::string pgn = games("1. d4", "1-0", 10) + games("1. c4", "1-0", 3) + games("1. e4", "1-0", 20000)
                      + games("1. Nf3", "1-0", 3) + games("1. e4 e5", "0-1", 3);
    std::string bytes = build(pgn);
    // e4: 20000 wins, 3 losses = 79994; scale 60000 / 79994.
    int e4 = int(79994 * (60000.0 / 79994));
    EXPECT_EQ(bytes.substr(0, 64), entry({"e4"}, e4) + entry({"d4"}, int(40 * (60000.0 / 79994)))
                                       + entry({"c4"}, int(12 * (60000.0 / 79994)))
                                       + entry({"Nf3"}, int(12 * (60000.0 / 79994))));
    EXPECT_EQ(bytes.size(), 16u * 5) << "and Black's e5, in its own position";
    size_t line_end = printed.find('\n');
    EXPECT_EQ(printed.substr(line_end + 1, printed.find("\nwriting") - line_end - 1), std::string(20019 / 1024, '.'));
}

