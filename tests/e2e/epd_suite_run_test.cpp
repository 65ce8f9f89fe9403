// -anepd through the real binary: a slice of the Strategic Test Suite and a
// small suite of awkward lines, checked from outside.
#include "support/engine_process.h"
#include "support/tool_run.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

namespace
{

double number_after(const std::string& line, const std::string& label)
{
    size_t at = line.find(label);
    return at == std::string::npos ? -1 : std::stod(line.substr(at + label.size()));
}

} // namespace

// Twenty STS positions (CRLF line ends, as published): one record each
// with the input's four fields, the move and the score of its "move=" line,
// the depth asked for, and a summary whose totals add up the move lines.
TEST(EpdSuiteRun, StsSliceAddsUp)
{
    std::string dir = make_temp_dir();
    copy_head("epd/sts.epd", 20, dir + "/sts20.epd");
    ToolRun run = run_tool({"-hash", "16", "-d", "6", "-anepd", "sts20.epd"}, dir);
    ASSERT_EQ(run.status, 0);
    EXPECT_EQ(starting_with(run.lines, "Analyzing ").at(0), "Analyzing sts20.epd...");
    std::vector<std::string> input = read_lines(dir + "/sts20.epd");
    std::vector<std::string> records = read_lines(dir + "/analysis.epd");
    std::vector<std::string> moves = starting_with(run.lines, "move= ");
    ASSERT_EQ(moves.size(), 20u);
    ASSERT_EQ(records.size(), 20u);
    EXPECT_GE(starting_with(run.lines, "info depth 6 ").size(), 20u);
    double nodes = 0;
    for (size_t i = 0; i < 20; i++) {
        // "move= f4f5, time= 0.203, score= 63, nodes= 100177, 490K nps"
        std::string move = moves[i].substr(6, moves[i].find(',') - 6);
        std::istringstream fields(input[i]);
        std::string f[4];
        fields >> f[0] >> f[1] >> f[2] >> f[3];
        EXPECT_EQ(records[i], f[0] + " " + f[1] + " " + f[2] + " " + f[3] + " bm " + move.substr(0, 4) + "; ce "
                                  + std::to_string(int(number_after(moves[i], "score= "))) + ";");
        nodes += number_after(moves[i], "nodes= ");
    }
    std::vector<std::string> score = starting_with(run.lines, "score= ");
    ASSERT_EQ(score.size(), 1u);
    EXPECT_NE(score[0].find(" / 200"), std::string::npos) << "ten points for each position's best answer";
    EXPECT_EQ(number_after(starting_with(run.lines, "total nodes= ").at(0), "total nodes= "), nodes);
    EXPECT_GT(number_after(starting_with(run.lines, "avg bf= ").at(0), "avg bf= "), 1.0);
    EXPECT_EQ(run.lines.back(), ""); // the summary ends with an empty line
    std::filesystem::remove_all(dir);
}

TEST(EpdSuiteRun, AwkwardLines)
{
    std::string dir = make_temp_dir();
    const std::string mate = "6k1/5ppp/8/8/8/8/5PPP/R5K1 w - -";
    std::ofstream(dir + "/suite.epd") << "# " << mate << " bm Ra8+; a comment, never a position\n"
                                      << "8/8 w - -\n"                                // nine characters: no position
                                      << " " << mate << " bm Ra8+; (leading blank)\n" //
                                      << ";" << mate << " bm Ra8+;\n"                 //
                                      << mate
                                      << " bm Ra8+; c0 \"Ra8+=10, Kf1=3\"; id \"1\";\n" // correct, 10 of 10 points
                                      << mate << " bm Ra8 Kf1; id \"2\";\r\n"           // never correct
                                      << mate << " bm Kf1,Ra8; id \"3\";\n"             // correct
                                      << mate << " am Kf1; id \"4\";\n"                 // correct
                                      << "7k/4P3/8/8/8/8/8/K7 w - - id \"5\";\n"        // a promotion, not scored
                                      << "xxxxxxxx/yy w zz ww bm e4; id \"6\";\n" // no board: counted, not searched
                                      << mate << " bm Ra8+; c1 \"" << std::string(3000, 'x')
                                      << "\";\n"; // overlong: the head is read
    ToolRun run = run_tool({"-hash", "16", "-d", "4", "-anepd", "suite.epd"}, dir);
    ASSERT_EQ(run.status, 0);
    std::vector<std::string> positions = starting_with(run.lines, "pos= ");
    ASSERT_EQ(positions.size(), 7u);
    EXPECT_EQ(positions.back(), "pos= 7");
    EXPECT_EQ(starting_with(run.lines, "move= ").size(), 6u);
    EXPECT_EQ(starting_with(run.lines, "4 / 7 correct best moves").size(), 1u);
    EXPECT_EQ(starting_with(run.lines, "score= ").at(0), "score= 10 / 10");
    std::vector<std::string> records = read_lines(dir + "/analysis.epd");
    ASSERT_EQ(records.size(), 6u);
    EXPECT_EQ(records[0].rfind(mate + " bm a1a8; ce ", 0), 0u) << records[0];
    // The promotion's record has no piece letter; the move line has it.
    EXPECT_EQ(records[4].rfind("7k/4P3/8/8/8/8/8/K7 w - - bm e7e8; ce ", 0), 0u) << records[4];
    EXPECT_EQ(starting_with(run.lines, "move= e7e8q, ").size(), 1u);

    // A missing suite, or an analysis file that cannot be written, ends the
    // tool before it starts.
    for (const char* suite : {"no-such-file.epd", "suite.epd"}) {
        std::filesystem::remove_all(dir + "/analysis.epd");
        std::filesystem::create_directory(dir + "/analysis.epd");
        run = run_tool({"-hash", "16", "-d", "4", "-anepd", suite}, dir);
        EXPECT_EQ(run.status, 0);
        EXPECT_TRUE(starting_with(run.lines, "Analyzing").empty()) << suite;
    }
    std::filesystem::remove_all(dir);
}
