// The PGN scanner over small games written by the tests: which games and
// plies become EPD lines, with which labels, in each variant.
#include "board/attack_queries.h"
#include "board/fen.h"
#include "board/makemove.h"
#include "board/notation.h"
#include "support/engine_process.h"
#include "support/test_positions.h"
#include "support/tool_run.h"
#include "tools/pgn_comment.h"
#include "tools/pgn_epd.h"
#include "tools/pgn_scan.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

namespace
{

// 42 plies of a real game: no check, a pawn move or capture every few plies.
const char* const MOVES_42 = "e4 d6 d4 Nf6 Nc3 e5 Nf3 Nbd7 Bc4 Be7 O-O O-O a4 c6 Ba2 Qc7 Re1 a6 Be3 exd4 Qxd4 Ng4 "
                             "Bg5 Nde5 Bxe7 Qxe7 Nxe5 dxe5 Qd3 Rd8 Qe2 Nf6 Qe3 a5 Rad1 Re8 Rd3 Nd7 Red1 h6 h3 Nf8";

std::vector<std::string> words(const std::string& text)
{
    std::istringstream in(text);
    return {std::istream_iterator<std::string>(in), std::istream_iterator<std::string>()};
}

// Tags (each "Name \"value\"") and the moves with a comment for each ply.
std::string pgn_game(const std::vector<std::string>& tags, const std::vector<std::string>& moves,
                     const std::function<std::string(int)>& comment)
{
    std::string text;
    for (const std::string& t : tags)
        text += "[" + t + "]\n";
    text += "\n";
    for (size_t i = 0; i < moves.size(); i++) {
        if (i % 2 == 0)
            text += std::to_string(i / 2 + 1) + ". ";
        text += moves[i] + " {" + comment(int(i)) + "} ";
        if (i % 6 == 5)
            text += "\n";
    }
    return text + "\n\n";
}

// The position before each ply, and whether its side to move is in check.
struct Replayed {
    std::vector<std::string> fens;
    std::vector<bool> in_check;
};

Replayed replay(const std::vector<std::string>& moves)
{
    Replayed r;
    Game* g = new_test_game();
    set_test_position(g, START_FEN);
    for (const std::string& m : moves) {
        char fen[128];
        write_fen(&g->pos, fen);
        r.fens.push_back(fen);
        r.in_check.push_back(in_check(&g->pos, g->pos.side));
        Move move = 0;
        EXPECT_EQ(parse_move(&g->pos, m.c_str(), &move), 1) << m;
        make_move(&g->pos, move);
    }
    free_test_game(g);
    return r;
}

struct Scan {
    std::string dir = make_temp_dir();
    int positions = 0;
    std::vector<std::string> out, side;
    Scan(const std::string& pgn, int variant)
    {
        std::ofstream(dir + "/in.pgn") << pgn;
        positions = scan_pgn_files((dir + "/in.pgn").c_str(), variant, (dir + "/out").c_str(), (dir + "/side").c_str());
        out = read_lines(dir + "/out");
        side = read_lines(dir + "/side");
    }
    ~Scan() { std::filesystem::remove_all(dir); }
};

std::string pawns(int centipawns)
{
    char text[32];
    std::snprintf(text, sizeof text, "%+.2f/9 0.100s", centipawns * 0.01);
    return text;
}

} // namespace

TEST(PgnScan, TrainingLabelsAreTheMoversOwn)
{
    std::vector<std::string> moves = words(MOVES_42);
    auto comment = [](int i) -> std::string {
        if (i == 20)
            return "book";
        if (i == 22)
            return "+M5/30 0.010s";
        if (i == 24)
            return "-1.25/18 0.2s";
        return pawns(i * 7 % 90 - 40);
    };
    Scan s(pgn_game({"Event \"x\"", "White \"W\"", "Black \"B\"", "Result \"0-1\""}, moves, comment), 2);
    Replayed r = replay(moves);
    std::vector<std::string> expected;
    for (int i = 16; i <= 35; i++) {
        if (i == 20 || i == 22 || r.in_check[size_t(i)])
            continue; // no evaluation, a mate score, a check
        int ce = i == 24 ? -125 : i * 7 % 90 - 40;
        // Black won: 0 for White to move, 1 for Black to move.
        expected.push_back(r.fens[size_t(i)] + " bm " + moves[size_t(i)] + "; ce " + std::to_string(ce) + "; gr "
                           + (i % 2 ? "1.0" : "0.0") + ";");
    }
    expected.push_back("");
    EXPECT_EQ(s.out, expected);
    EXPECT_EQ(s.positions, int(expected.size()) - 1);
}

TEST(PgnScan, ListingMarksAMistakeAndItsRefutation)
{
    std::vector<std::string> moves = words(MOVES_42);
    // Ply 20 lets the opponent's view rise from 0 to 1.00 one, three and
    // seven plies later: a mistake, refuted by ply 21.
    auto comment = [](int i) -> std::string {
        if (i < 4)
            return "book";
        return pawns(i == 21 || i == 23 || i == 27 ? 100 : 0);
    };
    Scan s(pgn_game({"Event \"x\"", "Round \"7\"", "Result \"1-0\""}, moves, comment), 1);
    Replayed r = replay(moves);
    std::vector<std::string> expected = {"[Event \"x\"]",    "[Round \"7\"]",    "[Tag \"game_1\"]",
                                         "[Result \"1-0\"]", "  1.  e4      {}", "      d6      {}"};
    ASSERT_GE(s.out.size(), 30u);
    for (size_t i = 0; i < expected.size(); i++)
        EXPECT_EQ(s.out[i], expected[i]);
    // Ply 4 (White's third move) is the first with an evaluation.
    EXPECT_EQ(s.out[8], "  3.  Nc3     {  0.00}");
    EXPECT_EQ(s.out[4 + 20], " 11.  Qxd4    {  0.00 ? " + r.fens[20] + " am Qxd4;}");
    // Black's own +1.00 reads as -1.00 from White's side.
    EXPECT_EQ(s.out[4 + 21], "      Ng4     { -1.00 ! " + r.fens[21] + " bm Ng4;}");
    EXPECT_EQ(s.side, std::vector<std::string>{r.fens[21] + " bm Ng4;"});
    // One line per ply, then the empty line after the game and the final newline.
    EXPECT_EQ(s.out.size(), 4 + 42 + 2u);
    int marks = 0;
    for (const std::string& l : s.out)
        marks += l.find(" ? ") != std::string::npos || l.find(" ! ") != std::string::npos;
    EXPECT_EQ(marks, 2);
    EXPECT_EQ(s.positions, 1);
}

TEST(PgnScan, OpeningPositionsEndAtTheFirstLargeEvaluation)
{
    std::vector<std::string> moves = words("e4 f5 Qh5+ g6 Qe2 Nf6 d3 Nc6 Nf3 e6");
    auto comment = [](int i) { return pawns(i == 6 ? 600 : 10); };
    Scan s(pgn_game({"Event \"x\"", "Result \"1/2-1/2\""}, moves, comment), 3);
    Replayed r = replay(moves);
    std::vector<std::string> expected;
    for (int i : {0, 1, 2, 4, 5, 6}) // ply 3 is in check
        expected.push_back(r.fens[size_t(i)] + " bm " + moves[size_t(i)] + "; ce " + (i == 6 ? "600" : "10") + ";");
    expected.push_back("");
    EXPECT_EQ(s.out, expected);

    // A move without an evaluation counts as one beyond 500: a game that
    // opens with book moves gives its first position only.
    Scan book(pgn_game({"Event \"x\""}, moves, [](int i) { return i < 4 ? std::string("book") : pawns(10); }), 3);
    EXPECT_EQ(book.out, (std::vector<std::string>{r.fens[0] + " bm e4; ce -30000;", ""}));
}

// A mistake: a calm position (view e within -999..249) that the opponent's
// view rises above by t (a tenth of |e|) plus 30 one and three plies later
// and plus 50 seven plies later; only between ply 13 and n - 11.
TEST(PgnScan, MistakeNeedsCalmStartAndLastingRise)
{
    PgnPly plies[41];
    auto mistake = [&](int e, int r1, int r3, int r7, int ply = 20, int n = 40) {
        for (PgnPly& p : plies)
            p.eval = 0;
        plies[ply - 1].eval = int16_t(e);
        plies[ply + 1].eval = int16_t(r1), plies[ply + 3].eval = int16_t(r3), plies[ply + 7].eval = int16_t(r7);
        return is_mistake(plies, n, ply);
    };
    EXPECT_TRUE(mistake(0, 31, 31, 51));
    EXPECT_FALSE(mistake(0, 30, 31, 51));
    EXPECT_FALSE(mistake(0, 31, 30, 51));
    EXPECT_FALSE(mistake(0, 31, 31, 50));
    EXPECT_TRUE(mistake(200, 251, 251, 271)); // t = 20 at e = 200
    EXPECT_FALSE(mistake(200, 250, 251, 271));
    EXPECT_TRUE(mistake(-600, -509, -509, -489)); // t = 60
    EXPECT_FALSE(mistake(-600, -510, -509, -489));
    EXPECT_FALSE(mistake(250, 900, 900, 900)); // not calm
    EXPECT_FALSE(mistake(0, 100, 100, NO_EVAL)); // the later view must exist
    EXPECT_FALSE(mistake(0, 100, 100, 100, 12));
    EXPECT_TRUE(mistake(0, 100, 100, 100, 13));
    EXPECT_FALSE(mistake(0, 100, 100, 100, 30, 40));
    EXPECT_TRUE(mistake(0, 100, 100, 100, 30, 41));
}
