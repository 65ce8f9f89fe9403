#include "support/engine_process.h"
#include "support/test_positions.h"
#include "support/tool_run.h"
#include "tools/label_games.h"

#include <fstream>
#include <gtest/gtest.h>
#include <unistd.h>

// Only games of a known result count; positions from ply 16 on, less the
// last six. Comment scores beyond an int ("1e99", "-inf") stay within a
// stored evaluation, and "+nan" counts as no score.
TEST(LabelGames, ResultsAndEvaluationsOfEveryUsablePosition)
{
    // Twenty moves a side of a quiet opening, so that positions past ply 16 exist.
    const std::string walk = "1. Nf3 Nf6 2. Ng1 Ng8 3. Nf3 Nf6 4. Ng1 Ng8 5. Nc3 Nc6 6. Nb1 Nb8 7. Nc3 Nc6 "
                             "8. Nb1 Nb8 9. e3 e6 10. Nf3 Nf6 11. Ng1 Ng8 12. Nf3 Nf6 13. Ng1 Ng8 14. Nc3 Nc6 "
                             "15. Nb1 Nb8";
    std::string scored = walk;
    size_t at = scored.find("9. e3 e6") + 5; // after ply 16, the first labelled
    scored.insert(at, "{1e99/5 0.1s} ");
    at = scored.find("e6", at) + 2;
    scored.insert(at, " {-inf/5}");
    at = scored.find("Nf3", at) + 3;
    scored.insert(at, " {+nan/5}");
    char old[4096];
    ASSERT_NE(getcwd(old, sizeof old), nullptr);
    ASSERT_EQ(chdir(make_temp_dir().c_str()), 0); // the tool writes labelled.epd where it stands
    std::ofstream("games.pgn") << "[Event \"a\"]\n[Result \"1-0\"]\n\n" + scored + " 1-0\n\n"
                                      + "[Event \"unknown result\"]\n[Result \"*\"]\n\n" + walk + " *\n\n"
                                      + "[Event \"no result tag\"]\n\n" + walk + "\n\n";
    free_test_game(new_test_game()); // makes the hashing keys
    testing::internal::CaptureStdout();
    long count = label_games("games.pgn");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "games= 2, positions= 8\n"); // progress only per 10,000
    std::vector<std::string> lines = read_lines("labelled.epd");
    ASSERT_EQ(chdir(old), 0);
    // 30 plies: positions 16 .. 23 of the first game.
    ASSERT_EQ(count, 8);
    ASSERT_EQ(lines.size(), 8u);
    // Ply 16 is the start position again, after the knights' walk.
    EXPECT_EQ(lines[0], "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - bm e3; ce 29999; gr 1.0;");
    EXPECT_EQ(lines[1], "rnbqkbnr/pppppppp/8/8/8/4P3/PPPP1PPP/RNBQKBNR b KQkq - bm e6; ce -29999; gr 0.0;");
    EXPECT_NE(lines[2].find(" w KQkq - bm Nf3; ce 0; gr 1.0;"), std::string::npos) << lines[2];
}
