// The console dialect, typed by a person (switch -c).
#include "support/engine_process.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

TEST(Console, SettingsWords)
{
    EngineProcess e({"-c"});
    EXPECT_EQ(e.ask("NMP_depth 4", "NMP_depth"), "NMP_depth set to 4");
    EXPECT_EQ(e.ask("Selectivity 250", "Selectivity"), "Selectivity set to 200");
    EXPECT_EQ(e.ask("ponder 0", "ponder"), "ponder set to 0");
    EXPECT_EQ(e.ask("ponder 5", "ponder"), "ponder set to 5");
    EXPECT_EQ(e.ask("level 40 300 2", "set level"), "set level to 40 moves in 300.00 seconds, inc 2.00");
    EXPECT_EQ(e.ask("target_nps 50000", "target_nps"), "target_nps set to 50000");
    EXPECT_EQ(e.ask("ss", "selectivity"), "selectivity set to OFF");
    EXPECT_EQ(e.ask("debug", "set default"), "set default personality");
    // Each search setting's word holds its value to 0..100.
    for (const char* word : {"SEP_depth", "NMP_depth", "FP_depth", "ProbCut_depth", "LMP_depth", "LMR_depth"}) {
        EXPECT_EQ(e.ask(std::string(word) + " -1", word), std::string(word) + " set to 0");
        EXPECT_EQ(e.ask(std::string(word) + " 101", word), std::string(word) + " set to 100");
    }
    // Noise levels beyond an integer are cut.
    EXPECT_EQ(e.ask("noise 1.8e19", "noise"), "noise set to 1000000000");
    EXPECT_EQ(e.ask("noise -1e300", "noise"), "noise set to -1000000000");
    EXPECT_EQ(e.ask("noise nan", "noise"), "noise set to 0");
    EXPECT_EQ(e.quit(), 0);
}

TEST(Console, GameWordsAndEngineMoves)
{
    std::string dir = make_temp_dir();
    EngineProcess e({"-c"}, dir);
    for (const char* m : {"e4", "e5", "Nf3", "Nc6"})
        e.send_line(m);
    EXPECT_NE(e.ask("jump 2", "rnbqkbnr/pppp1ppp/8/4p3/4P3/8/PPPP1PPP/RNBQKBNR w KQkq e6"), "");
    e.send_line("jump 4"); // forward again over the moves taken back
    EXPECT_NE(e.wait_for("r1bqkbnr/pppp1ppp/2n5/4p3/4P3/5N2/PPPP1PPP/RNBQKB1R w KQkq -"), "");
    EXPECT_NE(e.ask("undo", "rnbqkbnr/pppp1ppp/8/4p3/4P3/5N2/PPPP1PPP/RNBQKB1R b KQkq -"), "");

    // The engine answers with a move of its own, then the statistics block.
    e.send_line("depth 5");
    e.send_line("move");
    std::vector<std::string> seen;
    std::string stats = e.wait_for("move= ", 20000, &seen);
    ASSERT_NE(stats.find(", time= "), std::string::npos);
    EXPECT_LT(std::stod(stats.substr(stats.find(", time= ") + 8)), 60.0) << stats; // the search's own time
    EXPECT_NE(e.wait_for("Hash fill= "), "");
    EXPECT_NE(e.wait_for("2. move "), "");

    // The table holds the line just searched.
    e.send_line("undo");
    e.send_line("hash");
    std::string pv = e.wait_for("PV: ");
    EXPECT_GT(pv.size(), 6u);

    // Training from a file of the user's, however short its name.
    std::ofstream(dir + "/t") << "r1bqkbnr/pppp1ppp/2n5/4p3/4P3/5N2/PPPP1PPP/RNBQKB1R w KQkq - ce 20; gr 1.0;\n";
    EXPECT_EQ(e.ask("tune t 0.5 3", "Training using ").rfind("Training using t, ", 0), 0u);
    EXPECT_NE(e.wait_for("done!"), "");

    EXPECT_EQ(e.quit(), 0);

    // A game from a set-up position, Black to move: a line goes on at 70
    // columns and wraps past them.
    const char* fen = "rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq -";
    std::ofstream(dir + "/p.epd") << fen << " id \"a\";\n";
    EngineProcess f({"-c"}, dir);
    f.send_line("load p.epd");
    for (const char* m :
         {"c5", "c3",  "Qa5", "Nf3",  "Nc6",  "g3",  "Nf6", "Qe2", "d5",  "exd5", "Nxd5", "Bg2", "Bg4", "h3",  "Bh5",
          "d3", "Nd4", "Qe4", "Bxf3", "Bxf3", "Rd8", "Bd1", "Nc6", "Nd2", "Qc7",  "O-O",  "e6",  "a4",  "Bd6", "save"})
        f.send_line(m);
    EXPECT_EQ(f.quit(), 0);
    EXPECT_EQ(
        read_text_file(dir + "/tmp.pgn"),
        "[Event \"Unknown\"]\n[SetUp \"1\"]\n[FEN \"" + std::string(fen)
            + " 0 1\"]\n\n1... c5 2. c3 Qa5 3. Nf3 Nc6 4. g3 Nf6 5. Qe2 d5 6. exd5 Nxd5 7. Bg2 Bg4 \n"
              "8. h3 Bh5 9. d3 Nd4 10. Qe4 Bxf3 11. Bxf3 Rd8 12. Bd1 Nc6 13. Nd2 Qc7 14. O-O \ne6 15. a4 Bd6 *\n\n");
}

// Words typed while the engine thinks: perft counts on a record of its
// own (the search's position is in use); a depth holds for the searches
// that follow, not the running one; an engine move asked for ends the old
// search and plays on the board as it is now.
TEST(Console, WordsTypedWhileTheEngineThinks)
{
    std::string dir = make_temp_dir();
    std::ofstream(dir + "/one.epd") << "4k3/8/8/8/8/8/8/4K2R w K - id rook;\n";
    EngineProcess e({"-c"}, dir);
    e.send_line("depth 30");
    e.send_line("move");
    EXPECT_NE(e.wait_for("01] 0", 20000), "");
    for (int i = 0; i < 3; i++) {
        e.send_line("perft 3");
        EXPECT_EQ(e.wait_for("visited", 20000).rfind("visited 8902 nodes", 0), 0u);
    }
    e.send_line("depth 3");
    e.send_line("load one.epd rook");
    e.send_line("move");
    std::string played = e.wait_for("1. move ", 30000);
    EXPECT_NE(played, "");
    EXPECT_EQ(played.find("move e4"), std::string::npos) << played; // a startpos answer
    e.send_line("move");
    std::vector<std::string> seen;
    EXPECT_NE(e.wait_for("1. move ", 30000, &seen), "");
    int deepest = 0;
    for (const std::string& line : seen)
        if (line.rfind("01] ", 0) == 0)
            deepest = std::max(deepest, std::atoi(line.c_str() + 4));
    EXPECT_EQ(deepest, 3);
    EXPECT_EQ(e.quit(), 0);
}

// The board, the evaluation breakdown and its tables go through the one
// output channel, so the log holds them as the screen does. A special
// ending (here king and rook against king) shows the whole breakdown too.
TEST(Console, DisplaysReachTheLogAndSpecialEndingsShowTheirTerms)
{
    std::string dir = make_temp_dir();
    {
        std::ofstream epd(dir + "/krk.epd");
        epd << "8/8/8/8/8/2k5/8/KR6 w - - id \"krk\";\n";
    }
    EngineProcess e({"-c", "-log"}, dir);
    EXPECT_EQ(e.ask("load krk.epd kqk", "tag "), "tag kqk not found");
    e.send_line("load krk.epd krk");
    e.send_line("eval 2");
    e.send_line("d");
    EXPECT_EQ(e.ask("noise 0", "noise"), "noise set to 0");
    EXPECT_EQ(e.quit(), 0);
    std::string log = read_text_file(dir + "/korvel.log");
    for (const char* expected :
         {"           white  black    pos    mtl\n", "pawns:   ", "rooks:    ", "other:   ", "\neval= ", "\nmtl_pawn  ",
          "\nQueen2\n", "8/8/8/8/8/2k5/8/KR6 w - -", "\n  K R + - + - + -\nwhite\n"})
        EXPECT_NE(log.find(expected), std::string::npos) << expected << "\n" << log;
}
