// -mktune through the real binary: which lines are searched and written,
// and that the labels follow the side to move of the written position.
#include "board/fen.h"
#include "support/engine_process.h"
#include "support/tool_run.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

TEST(TuneDataRun, FiltersAndABrokenPosition)
{
    std::string dir = make_temp_dir();
    const std::string start = START_FEN;
    std::ofstream(dir + "/labelled.epd") << "# " << start << " ce 1; gr 1.0;\n"
                                         << "; " << start << " ce 2; gr 1.0;\n"
                                         << " " << start << " ce 3; gr 1.0;\n"
                                         << start << " ce 37; sf11=12;\n"           // no result: nothing
                                         << start << " bm e4; ce -150; gr 1.0;\n"   // a win that looked lost
                                         << start << " bm e4; ce -100; gr 1.0;\r\n" // kept
                                         << start << " ce 251; gr 0.5;\n"           // a draw far from equal
                                         << start << " ce 20; gr 1.5;\n"            // no result in 0..1
                                         << start << " ce 1300; gr 0.5;\n"          // too large
                                         << start << " gr 1.0;\n"                   // no evaluation
                                         << "8/8/8/8/8/8/8/8 w - - ce 5; gr 0.5;\n" // no kings: the run ends
                                         << start << " ce 10; gr 0.5;\n";
    ToolRun run = run_tool({"-hash", "16", "-d", "3", "-mktune", "labelled.epd"}, dir);
    ASSERT_EQ(run.status, 0);
    EXPECT_EQ(starting_with(run.lines, "8/8/8/8/8/8/8/8 w - - ce 5; gr 0.5;").size(), 1u);
    std::vector<std::string> written = read_lines(dir + "/tune_new.epd");
    ASSERT_EQ(written.size(), 1u);
    // The labels follow the side to move of the position written, a few
    // plies into the search's line.
    bool white = written[0].find(" w ") != std::string::npos;
    EXPECT_NE(written[0].find(white ? " ce -100; gr 1.0;" : " ce 100; gr 0.0;"), std::string::npos) << written[0];

    // A file that cannot be read: nothing at all.
    run = run_tool({"-hash", "16", "-d", "3", "-mktune", "missing.epd"}, dir);
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(starting_with(run.lines, "Creating").empty());
}

// -train from the command line, with -freeze and -thaw choosing the rows
// that may move: params.txt holds the trained table at the end.
TEST(TuneDataRun, TrainingHonoursFreezeAndThaw)
{
    std::string dir = make_temp_dir();
    std::string lines;
    for (int i = 0; i < 50; i++)
        lines += i % 2 ? "r1bqkbnr/pppp1ppp/2n5/4p3/4P3/5N2/PPPP1PPP/RNBQKB1R w KQkq - ce 30; gr 1.0;\n"
                       : "rnbqkbnr/ppp2ppp/8/4p3/4P3/8/PPPP1PPP/RNBQKBNR w KQkq - ce -60; gr 0.0;\n"; // a pawn up
    std::ofstream(dir + "/few.epd") << lines;
    auto trained = [&](std::vector<std::string> args) {
        std::filesystem::remove(dir + "/params.txt");
        for (const char* a : {"-train", "few.epd", "5", "200"})
            args.push_back(a);
        EXPECT_EQ(run_tool(args, dir).status, 0);
        return read_lines(dir + "/params.txt");
    };
    std::vector<std::string> moved = trained({}), frozen = trained({"-freeze", "all"});
    std::vector<std::string> one_row = trained({"-freeze", "all", "-thaw", "bishop_mobility"});
    ASSERT_EQ(moved.size(), frozen.size());
    ASSERT_EQ(moved.size(), one_row.size());
    int changed = 0, one_row_changes = 0;
    for (size_t i = 0; i < moved.size(); i++) {
        changed += moved[i] != frozen[i];
        if (one_row[i] != frozen[i]) {
            EXPECT_NE(one_row[i].find("bishop_mobility"), std::string::npos) << one_row[i];
            one_row_changes++;
        }
    }
    EXPECT_GT(changed, 2);
    EXPECT_EQ(one_row_changes, 1);
}
