// -mktune through the real binary: which lines are searched and written,
// and that the labels follow the side to move of each written position.
#include "board/fen.h"
#include "support/engine_process.h"
#include "support/test_positions.h"
#include "support/tool_run.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

namespace
{

struct Labelled {
    std::string fen;
    int side = 0; // 0 White, 1 Black to move
    int ce = 0;
    double gr = -1; // -1 without a " gr " label
};

Labelled read_labelled(const std::string& line)
{
    Labelled l;
    std::istringstream in(line);
    std::string f[4];
    in >> f[0] >> f[1] >> f[2] >> f[3];
    l.fen = f[0] + " " + f[1] + " " + f[2] + " " + f[3];
    l.side = f[1] == "b";
    size_t ce = line.find(" ce ");
    if (ce != std::string::npos)
        l.ce = std::stoi(line.substr(ce + 4));
    size_t gr = line.find(" gr ");
    if (gr != std::string::npos)
        l.gr = std::stod(line.substr(gr + 4));
    return l;
}

int men(const std::string& fen)
{
    int n = 0;
    for (char c : fen.substr(0, fen.find(' ')))
        n += std::isalpha(static_cast<unsigned char>(c)) != 0;
    return n;
}

} // namespace

TEST(TuneDataRun, ScannedGamesToTrainingPositions)
{
    std::string dir = make_temp_dir();
    {
        std::ifstream in(data_path("pgn/engine-games-evals.pgn"));
        std::ofstream out(dir + "/games.pgn");
        int events = 0;
        for (std::string l; std::getline(in, l);) {
            if (l.rfind("[Event ", 0) == 0 && ++events > 30)
                break;
            out << l << "\n";
        }
    }
    ASSERT_EQ(run_tool({"-scan_pgn2", "games.pgn"}, dir).status, 0);
    std::vector<std::string> scanned = read_lines(dir + "/tmp.epd");
    scanned.resize(120);
    {
        std::ofstream out(dir + "/labelled.epd");
        for (const std::string& l : scanned)
            out << l << "\n";
    }
    ToolRun run = run_tool({"-hash", "16", "-d", "3", "-mktune", "labelled.epd"}, dir);
    ASSERT_EQ(run.status, 0);
    EXPECT_EQ(starting_with(run.lines, "Creating file tune_new.epd").size(), 1u);
    // The count is reported before each 4096th position, the first included.
    EXPECT_EQ(starting_with(run.lines, " n= "), std::vector<std::string>{" n= 0"});
    // The search's own lines are silent while the tool runs.
    EXPECT_TRUE(starting_with(run.lines, "info depth").empty());

    // The lines the filters let through, in order.
    std::vector<Labelled> candidates;
    for (const std::string& l : scanned) {
        Labelled in = read_labelled(l);
        bool keep = std::abs(in.ce) <= 1200 && in.gr >= 0 && in.gr <= 1 && !(in.gr == 1.0 && in.ce < -100)
                    && !(in.gr == 0.0 && in.ce > 100) && !(in.gr == 0.5 && std::abs(in.ce) > 250);
        if (keep)
            candidates.push_back(in);
    }
    std::vector<std::string> written = read_lines(dir + "/tune_new.epd");
    // A search score beyond +-1200 drops a few; most stay.
    EXPECT_GE(written.size() * 10, candidates.size() * 8);
    EXPECT_LE(written.size(), candidates.size());

    Game* g = new_test_game();
    size_t next = 0;
    int flipped = 0;
    for (const std::string& line : written) {
        Labelled out = read_labelled(line);
        set_test_position(g, out.fen); // a playable position
        EXPECT_EQ(line, out.fen + " ce " + std::to_string(out.ce) + "; gr "
                            + (out.gr == 1   ? "1.0"
                               : out.gr == 0 ? "0.0"
                                             : "0.5")
                            + ";");
        // Its input: the next candidate whose labels fit the side to move.
        bool found = false;
        for (; next < candidates.size() && !found; next++) {
            const Labelled& in = candidates[next];
            bool same = out.side == in.side && out.ce == in.ce && out.gr == in.gr;
            bool turned = out.side != in.side && out.ce == -in.ce && out.gr == 1 - in.gr;
            if ((same || turned) && men(out.fen) <= men(in.fen)) {
                found = true;
                flipped += turned;
            }
        }
        ASSERT_TRUE(found) << line;
    }
    free_test_game(g);
    // Three-ply lines end with the other side to move.
    EXPECT_GT(flipped, 0);
    std::filesystem::remove_all(dir);
}

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
    Labelled out = read_labelled(written[0]);
    EXPECT_TRUE((out.side == 0 && out.ce == -100 && out.gr == 1.0) || (out.side == 1 && out.ce == 100 && out.gr == 0.0))
        << written[0];

    // A file that cannot be read: nothing at all.
    run = run_tool({"-hash", "16", "-d", "3", "-mktune", "missing.epd"}, dir);
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(starting_with(run.lines, "Creating").empty());
    std::filesystem::remove_all(dir);
}
