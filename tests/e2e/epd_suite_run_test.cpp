// -anepd through the real binary: a slice of the Strategic Test Suite and a
// small suite of awkward lines, checked from outside.
#include "board/fen.h"
#include "board/notation.h"
#include "output/output.h"
#include "support/engine_process.h"
#include "support/test_positions.h"
#include "support/tool_run.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

namespace
{

std::string fen_fields(const std::string& line)
{
    std::istringstream in(line);
    std::string f[4];
    in >> f[0] >> f[1] >> f[2] >> f[3];
    return f[0] + " " + f[1] + " " + f[2] + " " + f[3];
}

// The text between "<name> " and the next ";" ("" when absent).
std::string operand(const std::string& line, const std::string& name)
{
    size_t at = line.find(" " + name + " ");
    if (at == std::string::npos)
        return "";
    size_t start = at + name.size() + 2;
    return line.substr(start, line.find(';', start) - start);
}

double number_after(const std::string& line, const std::string& label)
{
    size_t at = line.find(label);
    return at == std::string::npos ? -1 : std::stod(line.substr(at + label.size()));
}

// A move of `fen` in any form the engine reads, or 0.
Move move_in(Game* g, const std::string& fen, const std::string& text)
{
    set_test_position(g, fen);
    Move m = 0;
    return parse_move(&g->pos, text.c_str(), &m) ? m : Move(0);
}

} // namespace

TEST(EpdSuiteRun, StsSliceAddsUp)
{
    std::string dir = make_temp_dir();
    copy_head("epd/sts.epd", 20, dir + "/sts20.epd"); // CRLF line ends, as downloaded
    ToolRun run = run_tool({"-hash", "16", "-d", "6", "-anepd", "sts20.epd"}, dir);
    ASSERT_EQ(run.status, 0);
    EXPECT_EQ(starting_with(run.lines, "Analyzing ").at(0), "Analyzing sts20.epd...");
    std::vector<std::string> input = read_lines(dir + "/sts20.epd");
    std::vector<std::string> records = read_lines(dir + "/analysis.epd");
    std::vector<std::string> moves = starting_with(run.lines, "move= ");
    ASSERT_EQ(starting_with(run.lines, "pos= ").size(), 20u);
    ASSERT_EQ(moves.size(), 20u);
    ASSERT_EQ(records.size(), 20u);

    // The result line (the last info line) comes right before each "move=" line.
    std::vector<int> depths;
    for (size_t i = 1; i < run.lines.size(); i++)
        if (run.lines[i].rfind("move= ", 0) == 0) {
            ASSERT_EQ(run.lines[i - 1].rfind("info depth ", 0), 0u) << run.lines[i - 1];
            depths.push_back(int(number_after(run.lines[i - 1], "info depth ")));
        }

    Game* g = new_test_game();
    int correct = 0, c0_score = 0, c0_possible = 0;
    double nodes = 0, seconds = 0, depth_sum = 0;
    for (size_t i = 0; i < 20; i++) {
        // "move= f4f5, time= 0.203, score= 63, nodes= 100177, 490K nps"
        std::string move = moves[i].substr(6, moves[i].find(',') - 6);
        int score = int(number_after(moves[i], "score= "));
        nodes += number_after(moves[i], "nodes= ");
        seconds += number_after(moves[i], "time= ");
        depth_sum += depths[i];
        EXPECT_EQ(depths[i], 6);
        // The record: the input's four fields, the move without a promotion
        // letter, the score of the search.
        std::string fen = fen_fields(input[i]);
        EXPECT_EQ(records[i], fen + " bm " + move.substr(0, 4) + "; ce " + std::to_string(score) + ";");
        Move played = move_in(g, fen, move);
        ASSERT_NE(played, 0) << fen << " " << move;

        // Scored here independently of the tool: one bm move, c0 move=points pairs.
        correct += move_in(g, fen, operand(input[i], "bm")) == played;
        std::string c0 = operand(input[i], "c0");
        c0.erase(std::remove(c0.begin(), c0.end(), '"'), c0.end());
        std::istringstream pairs(c0);
        int best_points = 0;
        for (std::string pair; std::getline(pairs, pair, ',');) {
            pair.erase(std::remove(pair.begin(), pair.end(), ' '), pair.end());
            size_t eq = pair.find('=');
            int points = std::stoi(pair.substr(eq + 1));
            best_points = std::max(best_points, points);
            if (move_in(g, fen, pair.substr(0, eq)) == played)
                c0_score += points;
        }
        c0_possible += best_points;
    }
    free_test_game(g);

    auto summary = [&](const std::string& prefix) {
        std::vector<std::string> l = starting_with(run.lines, prefix);
        return l.empty() ? std::string() : l.back();
    };
    EXPECT_EQ(summary(std::to_string(correct) + " / "), std::to_string(correct) + " / 20 correct best moves");
    EXPECT_EQ(summary("score= "), "score= " + std::to_string(c0_score) + " / " + std::to_string(c0_possible));
    EXPECT_EQ(c0_possible, 200); // ten points for the best answer of each STS position
    EXPECT_EQ(number_after(summary("total nodes= "), "total nodes= "), nodes);
    char text[64];
    std::snprintf(text, sizeof text, "avg nodes= %0.1f", double(uint64_t(nodes) / 20));
    EXPECT_EQ(summary("avg nodes= "), text);
    std::snprintf(text, sizeof text, "avg depth= %0.1f", depth_sum / 20);
    EXPECT_EQ(summary("avg depth= "), text);
    double total_time = number_after(summary("total time= "), "total time= ");
    EXPECT_NEAR(total_time, seconds, 0.02);
    // The rate divides by the unrounded total time (plus 0.01 s); the total
    // is printed to the hundredth, the rate to the unit.
    double rate = number_after(summary("node_rate= "), "node_rate= ");
    EXPECT_LE(rate, nodes / (total_time - 0.005 + 0.01) + 0.5);
    EXPECT_GE(rate, nodes / (total_time + 0.005 + 0.01) - 0.5);
    EXPECT_GT(number_after(summary("avg bf= "), "avg bf= "), 1.0);
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
    std::filesystem::remove_all(dir);
}

TEST(EpdSuiteRun, MissingFilesEndSilently)
{
    std::string dir = make_temp_dir();
    ToolRun run = run_tool({"-hash", "16", "-d", "4", "-anepd", "no-such-file.epd"}, dir);
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(starting_with(run.lines, "Analyzing").empty());
    EXPECT_FALSE(std::filesystem::exists(dir + "/analysis.epd"));

    // analysis.epd cannot be written where a directory of that name stands.
    std::filesystem::create_directory(dir + "/analysis.epd");
    std::ofstream(dir + "/one.epd") << "6k1/5ppp/8/8/8/8/5PPP/R5K1 w - - bm Ra8+;\n";
    run = run_tool({"-hash", "16", "-d", "4", "-anepd", "one.epd"}, dir);
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(starting_with(run.lines, "Analyzing").empty());
    std::filesystem::remove_all(dir);
}

TEST(EpdSuiteRun, NineNineNineNineSecondsKeepOnlyTheSummary)
{
    std::string dir = make_temp_dir();
    copy_head("epd/wac.epd", 5, dir + "/wac5.epd");
    // -d first: it sets its own move time, which -t then replaces.
    ToolRun run = run_tool({"-hash", "16", "-d", "5", "-t", "9999", "-anepd", "wac5.epd"}, dir);
    ASSERT_EQ(run.status, 0);
    EXPECT_TRUE(starting_with(run.lines, "pos= ").empty());
    EXPECT_TRUE(starting_with(run.lines, "move= ").empty());
    EXPECT_TRUE(starting_with(run.lines, "info depth").empty());
    EXPECT_EQ(starting_with(run.lines, "Analyzing wac5.epd...").size(), 1u);
    EXPECT_EQ(starting_with(run.lines, "total nodes= ").size(), 1u);
    EXPECT_EQ(starting_with(run.lines, "avg bf= ").size(), 1u);
    EXPECT_EQ(read_lines(dir + "/analysis.epd").size(), 5u);
    std::filesystem::remove_all(dir);
}
