#include "board/fen.h"
#include "board/makemove.h"
#include "board/notation.h"
#include "book/book_builder.h"
#include "book/book_entry.h"
#include "book/book_key.h"
#include "support/game_and_dir_fixture.h"

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>

namespace
{

// `count` games of the same move text with one result.
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
        return read_text_file(out);
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
        BookEntry e = {key, move_to_book_move(m), uint16_t(weight), 0};
        unsigned char bytes[BOOK_ENTRY_SIZE];
        encode_book_entry(&e, bytes);
        return std::string(reinterpret_cast<char*>(bytes), sizeof bytes);
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
// Games without a Result tag add nothing at all; games of result "*" count
// as games but add no moves.
TEST_F(BookBuilder, ScoreAndKeepRules)
{
    std::string untagged = "[Event \"no result\"]\n\n1. a3 1-0\n\n";
    std::string pgn = games("1. e4 e5 2. Nf3", "1-0") + games("1. d4 d5 2. c4", "1-0", 2) + untagged + untagged
                      + untagged + games("1. e4 e5 2. Nf3", "0-1", 1) + games("1. c4 e5", "1-0", 3)
                      + games("1. c4 e5", "0-1", 2) + games("1. Nf3 d5", "1/2-1/2", 2) + games("1. Nf3 d5", "1-0", 2)
                      + games("1. c4 b6", "*", 5);
    // e4, and Nf3 after e4 e5: 3 wins 1 loss = 10, just enough. d4, and c4
    // after d4 d5: two wins = 8. c4: 3 wins 2 losses = 8. Nf3: 2 wins
    // 2 draws = 10 but only two wins. Black's e5 after e4: 1 win 3 losses.
    EXPECT_EQ(build(pgn), in_file_order({entry({"e4"}, 10), entry({"e4", "e5", "Nf3"}, 10)}));
    EXPECT_EQ(printed, "Creating file " + dir + "/book.bin from games in " + dir
                           + "/games.pgn\n\nwriting book file ...\nngames= 20, nmoves= 10\ndone\n");
}

// Moves inside comments (over several lines, one starting with "[") and
// (nested) variations do not count, nor "$" glyphs or tokens starting with
// ";"; a line starting with ";" is skipped whole; a stray closing mark is
// ignored; castling counts alike in letters and zeros.
TEST_F(BookBuilder, MoveTextRules)
{
    const std::vector<const char*> e4 = {"e4"}, nf3 = {"e4", "e5", "Nf3"};
    const std::string italian = "1. e4 e5 2. Nf3 Nc6 3. Bc4 Bc5 4. ";
    const struct {
        std::string pgn;
        std::vector<std::vector<const char*>> kept; // each of weight 12
    } cases[] = {{games("1. e4 {the king's pawn; Nf3 or d4 next} e5 (1... c5 2. Nf3 (2. c3 d5) d6) 2. Nf3 $1 {\n"
                        "[a bracket inside the comment] Bc4 Nc6 }\n; Nc6 2. Bb5 on a comment line\nNc6 ;Bb5 3. Bc4",
                        "1-0"),
                  {e4, nf3, {"e4", "e5", "Nf3", "Nc6", "Bc4"}}},
                 {games("1. e4 } e5 ) 2. Nf3 {Bc4 is also good} Nc6 (2... d6 3. d4) 3. Bb5", "1-0"),
                  {e4, nf3, {"e4", "e5", "Nf3", "Nc6", "Bb5"}}},
                 {games(italian + "O-O Nf6", "1-0", 2) + games(italian + "0-0 Nf6", "1-0", 1),
                  {e4, nf3, {"e4", "e5", "Nf3", "Nc6", "Bc4"}, {"e4", "e5", "Nf3", "Nc6", "Bc4", "Bc5", "O-O"}}}};
    for (const auto& c : cases) {
        std::vector<std::string> expected;
        for (const auto& moves : c.kept)
            expected.push_back(entry(moves, 12));
        EXPECT_EQ(build(c.pgn), in_file_order(expected)) << c.pgn;
    }
}

// A game counts until 36 plies are in, but the test is made once per line:
// with one move pair per line exactly 36 plies count, while the line that
// reaches 36 is read to its end.
TEST_F(BookBuilder, ThirtySixPlyRule)
{
    // 44 plies, no position repeated.
    const char* line[] = {"e4",   "e5",   "Nf3",  "Nc6", "Bb5", "a6",  "Ba4", "Nf6", "O-O",  "Be7", "Re1",
                          "b5",   "Bb3",  "d6",   "c3",  "O-O", "h3",  "Na5", "Bc2", "c5",   "d4",  "Qc7",
                          "Nbd2", "cxd4", "cxd4", "Nc6", "Nb3", "a5",  "Be3", "a4",  "Nbd2", "Bd7", "Rc1",
                          "Qb7",  "Qe2",  "Rfe8", "a3",  "Bf8", "Bd3", "h6",  "Qf1", "Nh7",  "Nb1", "Ng5"};
    for (auto [plies_per_line, counted] : {std::pair{2, 36}, {10, 40}, {44, 44}, {12, 36}}) {
        std::string text;
        std::vector<std::string> white;
        for (int i = 0; i < 44; i++) {
            if (i % 2 == 0)
                text += std::to_string(i / 2 + 1) + ". ";
            text += line[i];
            text += (i + 1) % plies_per_line == 0 ? "\n" : " ";
            if (i % 2 == 0 && i < counted)
                white.push_back(entry(std::vector<const char*>(line, line + i + 1), 12));
        }
        EXPECT_EQ(build(games(text, "1-0")), in_file_order(white)) << plies_per_line;
    }
}

// Weights above 60000 are scaled down with their ratios; a position's moves
// are written heaviest first, equal weights in the order first seen; a dot
// marks every 1024 games.
TEST_F(BookBuilder, WeightsOrderAndProgress)
{
    std::string pgn = games("1. d4", "1-0", 10) + games("1. c4", "1-0", 3) + games("1. e4", "1-0", 20000)
                      + games("1. Nf3", "1-0", 3) + games("1. e4 e5", "0-1", 3);
    std::string bytes = build(pgn);
    // e4: 20000 wins, 3 losses = 79994.
    const double scale = 60000.0 / 79994;
    EXPECT_EQ(bytes.substr(0, 64), entry({"e4"}, int(79994 * scale)) + entry({"d4"}, int(40 * scale))
                                       + entry({"c4"}, int(12 * scale)) + entry({"Nf3"}, int(12 * scale)));
    EXPECT_EQ(bytes.size(), 16u * 5) << "and Black's e5, in its own position";
    size_t line_end = printed.find('\n');
    EXPECT_EQ(printed.substr(line_end + 1, printed.find("\nwriting") - line_end - 1), std::string(20019 / 1024, '.'));
}
