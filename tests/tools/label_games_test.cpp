#include "support/engine_process.h"
#include "support/test_positions.h"
#include "tools/label_games.h"

#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <unistd.h>
#include <vector>

namespace
{

// Runs label_games in a scratch directory; returns the lines written.
std::vector<std::string> label(const std::string& pgn, long* count)
{
    char old[4096];
    EXPECT_NE(getcwd(old, sizeof old), nullptr);
    EXPECT_EQ(chdir(make_temp_dir().c_str()), 0);
    std::ofstream("games.pgn") << pgn;
    delete new_test_game(); // makes the hashing keys
    testing::internal::CaptureStdout();
    *count = label_games("games.pgn");
    testing::internal::GetCapturedStdout();
    std::vector<std::string> lines;
    std::ifstream in("labelled.epd");
    for (std::string l; std::getline(in, l);)
        lines.push_back(l);
    EXPECT_EQ(chdir(old), 0);
    return lines;
}

// Twenty moves a side of a quiet opening, so that positions past ply 16 exist.
const char* const MOVES = "1. Nf3 Nf6 2. Ng1 Ng8 3. Nf3 Nf6 4. Ng1 Ng8 5. Nc3 Nc6 6. Nb1 Nb8 7. Nc3 Nc6 "
                          "8. Nb1 Nb8 9. e3 e6 10. Nf3 Nf6 11. Ng1 Ng8 12. Nf3 Nf6 13. Ng1 Ng8 14. Nc3 Nc6 "
                          "15. Nb1 Nb8";

} // namespace

TEST(LabelGames, ResultsAndEvaluationsOfEveryUsablePosition)
{
    std::string pgn = std::string("[Event \"a\"]\n[Result \"1-0\"]\n\n") + MOVES + " 1-0\n\n"
                      + "[Event \"unknown result\"]\n[Result \"*\"]\n\n" + MOVES + " *\n\n"
                      + "[Event \"no result tag\"]\n\n" + MOVES + "\n\n";
    long count = 0;
    std::vector<std::string> lines = label(pgn, &count);
    // 30 plies: positions 16 .. 23 (the last six are left out); only the first game counts.
    ASSERT_EQ(count, 8);
    ASSERT_EQ(lines.size(), 8u);
    // Ply 16 is the start position again, after the knights' walk.
    EXPECT_EQ(lines[0], "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - bm e3; ce 0; gr 1.0;");
    EXPECT_EQ(lines[1], "rnbqkbnr/pppppppp/8/8/8/4P3/PPPP1PPP/RNBQKBNR b KQkq - bm e6; ce 0; gr 0.0;");
}

// Scores that strtod reads as numbers beyond an int ("1e99", "+inf") were
// converted as they were, which is undefined; they are now kept within the
// range of a stored evaluation, and "+nan" counts as no score.
TEST(LabelGames, HugeCommentScoresStayInRange)
{
    std::string moves = MOVES;
    size_t at = moves.find("9. e3 e6") + 5; // after ply 16, the first labelled
    moves.insert(at, "{1e99/5 0.1s} ");
    at = moves.find("e6", at) + 2;
    moves.insert(at, " {-inf/5}");
    at = moves.find("Nf3", at) + 3;
    moves.insert(at, " {+nan/5}");
    std::string pgn = std::string("[Event \"e\"]\n[Result \"1-0\"]\n\n") + moves + " 1-0\n";
    long count = 0;
    std::vector<std::string> lines = label(pgn, &count);
    ASSERT_EQ(count, 8);
    EXPECT_EQ(lines[0], "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - bm e3; ce 29999; gr 1.0;");
    EXPECT_EQ(lines[1], "rnbqkbnr/pppppppp/8/8/8/4P3/PPPP1PPP/RNBQKBNR b KQkq - bm e6; ce -29999; gr 0.0;");
    EXPECT_NE(lines[2].find("bm Nf3; ce 0;"), std::string::npos) << lines[2];
}

