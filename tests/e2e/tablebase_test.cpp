// Tables through the real engine: the ways to point it at them, and the
// root decision seen by an interface.
#include "support/engine_process.h"

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>

namespace
{

// KQvK reached by ten quiet plies (the fifty-move count is then 10); the
// first nine leave Black to move with a count of 9.
constexpr const char* START = "position fen 8/8/8/7k/8/8/8/KQ6 w - - 0 1 moves";
constexpr const char* NINE_PLIES = " a1a2 h5h6 a2b3 h6g7 b3c4 g7f7 c4d5 f7e7 d5e5";

bool starts(const std::string& line, const std::string& prefix)
{
    return line.rfind(prefix, 0) == 0;
}

} // namespace

TEST(TablebaseE2E, RootDecisionFollowsTheFiftyMoveCount)
{
    EngineProcess e;
    EXPECT_NE(e.ask("uci", "uciok"), "");
    e.send_line("setoption name Threads value 2");
    e.send_line("setoption name SyzygyPath value " + data_path("syzygy"));
    EXPECT_EQ(e.wait_for("info string found"), "info string found 35 tablebases");

    // Count 10: the move comes at once, reported at depth 99, no ponder move.
    e.send_line(std::string(START) + NINE_PLIES + " e7d7");
    e.send_line("go wtime 60000 btime 60000");
    std::vector<std::string> seen;
    std::string best = e.wait_for("bestmove", 20000, &seen);
    ASSERT_NE(best, "");
    EXPECT_EQ(best.size(), 13u) << best; // "bestmove e5e6": no ponder part
    int depth99 = 0, other_depths = 0;
    for (const std::string& line : seen) {
        depth99 += starts(line, "info depth 99 seldepth 99 score cp 9799 ");
        other_depths += starts(line, "info depth ") && !starts(line, "info depth 99 ");
    }
    EXPECT_GE(depth99, 1);
    EXPECT_EQ(other_depths, 0);

    // Count 9: a normal search, with the result known at the root.
    e.send_line(std::string(START) + NINE_PLIES);
    e.send_line("go depth 8");
    seen.clear();
    best = e.wait_for("bestmove", 20000, &seen);
    ASSERT_NE(best, "");
    depth99 = 0;
    int depth1 = 0;
    for (const std::string& line : seen) {
        depth99 += starts(line, "info depth 99 ");
        depth1 += starts(line, "info depth 1 ");
    }
    EXPECT_EQ(depth99, 0);
    EXPECT_GE(depth1, 1);
    EXPECT_EQ(e.quit(), 0);
}

TEST(TablebaseE2E, SwitchesAndConfigurationFilePointAtTables)
{
    {
        EngineProcess e({"-tbpath", data_path("syzygy")});
        e.send_line("isready");
        std::vector<std::string> seen;
        EXPECT_NE(e.wait_for("readyok", 10000, &seen), "");
        EXPECT_EQ(std::count(seen.begin(), seen.end(), "info string found 35 tablebases"), 1);
        EXPECT_EQ(e.quit(), 0);
    }
    {
        EngineProcess e({"-tbx"});
        EXPECT_EQ(e.ask("uci", "option name SyzygyPath"),
                  "option name SyzygyPath type string default /usr/share/syzygy;/usr/share/syzygy/6-Piece");
        EXPECT_EQ(e.quit(), 0);
    }
    {
        std::string dir = make_temp_dir();
        std::ofstream(dir + "/tables.cfg") << "# tables for the engine\nSyzygyPath = " << data_path("syzygy") << "\n";
        EngineProcess e({"-cfg", dir + "/tables.cfg"});
        EXPECT_EQ(e.ask("isready", "info string found"), "info string found 35 tablebases");
        EXPECT_EQ(e.quit(), 0);
    }
}
