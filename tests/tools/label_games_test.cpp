#include "support/engine_process.h"
#include "support/test_positions.h"
#include "support/tool_run.h"
#include "tools/label_games.h"

#include <fstream>
#include <gtest/gtest.h>
#include <unistd.h>

// Only games of a known result count; positions from ply 16 on, less the
// last six, and none past twenty reversible plies. Comment scores beyond an
// int ("1e99", "-inf") stay within a stored evaluation, and "+nan" counts as
// no score.
TEST(LabelGames, ResultsAndEvaluationsOfEveryUsablePosition)
{
    // Fifteen moves a side, all knight moves but one pawn each at ply 22.
    const std::string walk = "1. Nf3 Nf6 2. Ng1 Ng8 3. Nf3 Nf6 4. Ng1 Ng8 5. Nc3 Nc6 6. Nb1 Nb8 7. Nc3 Nc6 "
                             "8. Nb1 Nb8 9. Nf3 Nf6 10. Ng1 Ng8 11. Nf3 Nf6 12. e3 e6 13. Ng1 Ng8 14. Nc3 Nc6 "
                             "15. Nb1 Nb8";
    std::string scored = walk;
    scored.replace(scored.find("9. Nf3 Nf6 10. Ng1"), 18, "9. Nf3 {1e99/5 0.1s} Nf6 {-inf/5} 10. Ng1 {+nan/5}");
    char old[4096];
    ASSERT_NE(getcwd(old, sizeof old), nullptr);
    ASSERT_EQ(chdir(make_temp_dir().c_str()), 0); // the tool writes labelled.epd where it stands
    std::ofstream("games.pgn") << "[Event \"a\"]\n[Result \"1-0\"]\n\n" + scored + " 1-0\n\n"
                                      + "[Event \"unknown result\"]\n[Result \"*\"]\n\n" + walk + " *\n\n"
                                      + "[Event \"no result tag\"]\n\n" + walk + "\n\n";
    free_test_game(new_test_game()); // makes the hashing keys
    testing::internal::CaptureStdout();
    long count = label_games("games.pgn");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "games= 2, positions= 6\n"); // progress only per 10,000
    std::vector<std::string> lines = read_lines("labelled.epd");
    ASSERT_EQ(chdir(old), 0);
    // 30 plies: positions 16 .. 20, then 23 once the pawns have moved.
    ASSERT_EQ(count, 6);
    ASSERT_EQ(lines.size(), 6u);
    // Ply 16 is the start position again, after the knights' walk.
    EXPECT_EQ(lines[0], "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - bm Nf3; ce 29999; gr 1.0;");
    EXPECT_EQ(lines[1], "rnbqkbnr/pppppppp/8/8/8/5N2/PPPPPPPP/RNBQKB1R b KQkq - bm Nf6; ce -29999; gr 0.0;");
    EXPECT_NE(lines[2].find(" w KQkq - bm Ng1; ce 0; gr 1.0;"), std::string::npos) << lines[2];
    EXPECT_NE(lines[5].find("/4PN2/PPPP1PPP/RNBQKB1R b KQkq - bm e6; ce 0; gr 0.0;"), std::string::npos) << lines[5];
}
