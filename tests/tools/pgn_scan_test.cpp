// The PGN scanner over small games written by the tests: which games and
// plies become EPD lines, with which labels, in each variant.
#include "board/fen.h"
#include "board/makemove.h"
#include "board/notation.h"
#include "support/game_and_dir_fixture.h"
#include "support/tool_run.h"
#include "tools/pgn_comment.h"
#include "tools/pgn_epd.h"
#include "tools/pgn_scan.h"

#include <cstdio>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <iterator>
#include <sstream>

namespace
{

// 42 plies of a real game: no check, a pawn move or capture every few plies.
const char* const MOVES_42 = "e4 d6 d4 Nf6 Nc3 e5 Nf3 Nbd7 Bc4 Be7 O-O O-O a4 c6 Ba2 Qc7 Re1 a6 Be3 exd4 Qxd4 Ng4 "
                             "Bg5 Nde5 Bxe7 Qxe7 Nxe5 dxe5 Qd3 Rd8 Qe2 Nf6 Qe3 a5 Rad1 Re8 Rd3 Nd7 Red1 h6 h3 Nf8";

std::string pawns(int centipawns)
{
    char text[32];
    std::snprintf(text, sizeof text, "%+.2f/9 0.100s", centipawns * 0.01);
    return text;
}

class PgnScan : public GameAndDir
{
  protected:
    // Tags (each "Name \"value\""), then the moves with a comment for each
    // ply; scans them with `variant` and replays the moves.
    void scan(const std::vector<std::string>& tags, const char* move_text, int variant,
              const std::function<std::string(int)>& comment)
    {
        std::istringstream words(move_text);
        moves.assign(std::istream_iterator<std::string>(words), std::istream_iterator<std::string>());
        std::string text;
        for (const std::string& t : tags)
            text += "[" + t + "]\n";
        text += "\n";
        for (size_t i = 0; i < moves.size(); i++)
            text += (i % 2 ? "" : std::to_string(i / 2 + 1) + ". ") + moves[i] + " {" + comment(int(i)) + "}"
                    + (i % 6 == 5 ? "\n" : " ");
        std::ofstream(dir + "/in.pgn") << text << "\n\n";
        testing::internal::CaptureStdout();
        positions = scan_pgn_files((dir + "/in.pgn").c_str(), variant, (dir + "/out").c_str(), (dir + "/side").c_str());
        EXPECT_EQ(testing::internal::GetCapturedStdout().find("game 1\n"), std::string::npos); // notes per 10,000
        out = read_lines(dir + "/out");
        side = read_lines(dir + "/side");
        fens.clear();
        set_test_position(game, START_FEN);
        for (const std::string& m : moves) {
            char fen[128];
            write_fen(&game->pos, fen);
            fens.push_back(fen);
            Move move = 0;
            ASSERT_EQ(parse_move(&game->pos, m.c_str(), &move), 1) << m;
            make_move(&game->pos, move);
        }
    }
    int positions = 0;
    std::vector<std::string> moves, out, side, fens; // fens[i]: before ply i
};

} // namespace

TEST_F(PgnScan, TrainingLabelsAreTheMoversOwn)
{
    scan({"Event \"x\"", "White \"W\"", "Black \"B\"", "Result \"0-1\""}, MOVES_42, 2, [](int i) -> std::string {
        return i == 20   ? "book"
               : i == 22 ? "+M5/30 0.010s"
               : i == 24 ? "-1.25/18 0.2s"
               : i == 26 ? "+50.00/20 1s"
               : i == 28 ? "-49.99/20 1s"
                         : pawns(i * 7 % 90 - 40);
    });
    std::vector<std::string> expected;
    for (size_t i = 16; i <= 35; i++) {
        if (i == 20 || i == 22 || i == 26)
            continue; // no evaluation, a mate score, a score of 50 pawns or more
        int ce = i == 24 ? -125 : i == 28 ? -4999 : int(i) * 7 % 90 - 40;
        // Black won: 0 for White to move, 1 for Black to move.
        expected.push_back(fens[i] + " bm " + moves[i] + "; ce " + std::to_string(ce) + "; gr "
                           + (i % 2 ? "1.0" : "0.0") + ";");
    }
    expected.push_back("");
    EXPECT_EQ(out, expected);
    EXPECT_EQ(positions, int(expected.size()) - 1);
}

TEST_F(PgnScan, ListingMarksAMistakeAndItsRefutation)
{
    // Ply 20 lets the opponent's view rise from 0 to 1.00 one, three and
    // seven plies later: a mistake, refuted by ply 21.
    scan({"Event \"x\"", "Round \"7\"", "Result \"1-0\""}, MOVES_42, 1,
         [](int i) { return i < 4 ? "book" : pawns(i == 21 || i == 23 || i == 27 ? 100 : 0); });
    // One line per ply, then the empty line after the game and the final newline.
    ASSERT_EQ(out.size(), 4 + 42 + 2u);
    std::vector<std::string> head = {"[Event \"x\"]",    "[Round \"7\"]",    "[Tag \"game_1\"]",
                                     "[Result \"1-0\"]", "  1.  e4      {}", "      d6      {}"};
    EXPECT_EQ(std::vector<std::string>(out.begin(), out.begin() + 6), head);
    // Ply 4 (White's third move) is the first with an evaluation.
    EXPECT_EQ(out[8], "  3.  Nc3     {  0.00}");
    EXPECT_EQ(out[4 + 20], " 11.  Qxd4    {  0.00 ? " + fens[20] + " am Qxd4;}");
    // Black's own +1.00 reads as -1.00 from White's side.
    EXPECT_EQ(out[4 + 21], "      Ng4     { -1.00 ! " + fens[21] + " bm Ng4;}");
    EXPECT_EQ(side, std::vector<std::string>{fens[21] + " bm Ng4;"});
    int marks = 0;
    for (const std::string& l : out)
        marks += l.find(" ? ") != std::string::npos || l.find(" ! ") != std::string::npos;
    EXPECT_EQ(marks, 2);
    EXPECT_EQ(positions, 1);
}

TEST_F(PgnScan, OpeningPositionsEndAtTheFirstLargeEvaluation)
{
    const char* opening = "e4 f5 Qh5+ g6 Qe2 Nf6 d3 Nc6 Nf3 e6";
    scan({"Event \"x\"", "Result \"1/2-1/2\""}, opening, 3, [](int i) { return pawns(i == 6 ? 600 : 10); });
    std::vector<std::string> expected;
    for (size_t i : {0, 1, 2, 4, 5, 6}) // ply 3 is in check
        expected.push_back(fens[i] + " bm " + moves[i] + "; ce " + (i == 6 ? "600" : "10") + ";");
    expected.push_back("");
    EXPECT_EQ(out, expected);

    // A move without an evaluation counts as one beyond 500: a game that
    // opens with book moves gives its first position only.
    scan({"Event \"x\""}, opening, 3, [](int i) { return i < 4 ? std::string("book") : pawns(10); });
    EXPECT_EQ(out, (std::vector<std::string>{fens[0] + " bm e4; ce -30000;", ""}));
}

// A mistake: a calm position (view e within -999..249) that the opponent's
// view rises above by t (a tenth of |e|) plus 30 one and three plies later
// and plus 50 seven plies later; only between ply 13 and n - 11.
TEST(PgnScanMistake, NeedsCalmStartAndLastingRise)
{
    const struct {
        int e, r1, r3, r7, ply, n;
        bool mistake;
    } cases[] = {
        {0, 31, 31, 51, 20, 40, true},          {0, 30, 31, 51, 20, 40, false},
        {0, 31, 30, 51, 20, 40, false},         {0, 31, 31, 50, 20, 40, false},
        {200, 251, 251, 271, 20, 40, true},     {200, 250, 251, 271, 20, 40, false}, // t = 20
        {200, 251, 250, 271, 20, 40, false},    {200, 251, 251, 270, 20, 40, false},
        {-600, -509, -509, -489, 20, 40, true}, {-600, -510, -509, -489, 20, 40, false}, // t = 60
        {250, 900, 900, 900, 20, 40, false},    {0, 100, 100, NO_EVAL, 20, 40, false},   // not calm; no later view
        {0, 100, 100, 100, 12, 40, false},      {0, 100, 100, 100, 13, 40, true},
        {0, 100, 100, 100, 30, 40, false},      {0, 100, 100, 100, 30, 41, true}};
    for (const auto& c : cases) {
        PgnPly plies[41];
        for (PgnPly& p : plies)
            p.eval = 0;
        plies[c.ply - 1].eval = int16_t(c.e);
        plies[c.ply + 1].eval = int16_t(c.r1), plies[c.ply + 3].eval = int16_t(c.r3);
        plies[c.ply + 7].eval = int16_t(c.r7);
        EXPECT_EQ(is_mistake(plies, c.n, c.ply), c.mistake) << c.e << " " << c.r1 << " " << c.ply << " " << c.n;
    }
}
