// -anepd through the real binary: a small suite of awkward lines (CRLF
// ends among them), checked from outside.
#include "support/engine_process.h"
#include "support/tool_run.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

namespace
{

double number_after(const std::string& line, const std::string& label)
{
    size_t at = line.find(label);
    return at == std::string::npos ? -1 : std::stod(line.substr(at + label.size()));
}

} // namespace

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
    double nodes = 0; // the summary adds up the move lines
    for (const std::string& m : starting_with(run.lines, "move= "))
        nodes += number_after(m, "nodes= ");
    EXPECT_EQ(number_after(starting_with(run.lines, "total nodes= ").at(0), "total nodes= "), nodes);
    EXPECT_EQ(run.lines.back(), ""); // the summary ends with an empty line

    // A node limit from the command line stops at the first node past it;
    // after -c, -uci brings back the interface's info lines.
    run = run_tool({"-hash", "16", "-n", "3000", "-c", "-uci", "-anepd", "suite.epd"}, dir);
    std::vector<std::string> moves = starting_with(run.lines, "move= ");
    EXPECT_TRUE(std::any_of(moves.begin(), moves.end(), [](auto& m) { return m.find(" nodes= 3001,") != m.npos; }));
    EXPECT_FALSE(starting_with(run.lines, "info depth ").empty());
    EXPECT_TRUE(
        starting_with(run_tool({"-hash", "16", "-c", "-d", "2", "-anepd", "suite.epd"}, dir).lines, "info depth ")
            .empty());

    // A missing suite, or an analysis file that cannot be written, ends the
    // tool before it starts.
    for (const char* suite : {"no-such-file.epd", "suite.epd"}) {
        std::filesystem::remove_all(dir + "/analysis.epd");
        std::filesystem::create_directory(dir + "/analysis.epd");
        run = run_tool({"-hash", "16", "-d", "4", "-anepd", suite}, dir);
        EXPECT_EQ(run.status, 0);
        EXPECT_TRUE(starting_with(run.lines, "Analyzing").empty()) << suite;
    }
}
