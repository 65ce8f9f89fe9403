// The engine binary over pipes, as an interface drives it.
#include "support/engine_process.h"

#include <fstream>
#include <gtest/gtest.h>
#include <random>
#include <sstream>
#include <sys/stat.h>

TEST(UciSession, EndOfInputActsAsQuit)
{
    EngineProcess e;
    e.send("isready"); // no line end before the input closes
    e.close_input();
    EXPECT_EQ(e.wait_for("readyok"), "readyok");
    EXPECT_EQ(e.wait_exit(), 0);
}

TEST(ConsoleSession, EndOfInputEndsTheEditorToo)
{
    // The editor takes every line as men, the "quit" that stands for the end
    // of input too; the engine must end all the same.
    EngineProcess e({"-c"});
    e.send_line("edit");
    e.send_line("w Ke1");
    e.close_input();
    EXPECT_EQ(e.wait_exit(), 0);
}

TEST(UciSession, IllegalMoveInPositionIsReported)
{
    EngineProcess e;
    EXPECT_EQ(e.ask("position startpos moves e2e4 e7e5 e1e3 g1f3", "info string illegal"),
              "info string illegal move e1e3");
    EXPECT_NE(e.ask("position fen 8/8/8/8/8/8/8/4K3 w - - 0 1", "info string invalid position"), "");
    EXPECT_EQ(e.quit(), 0);
}

TEST(UciSession, LogHoldsOutputAndCommands)
{
    std::string dir = make_temp_dir();
    {
        EngineProcess e({"-log"}, dir);
        EXPECT_EQ(e.ask("isready", "readyok"), "readyok");
        EXPECT_EQ(e.quit(), 0);
    }
    std::string text = read_text_file(dir + "/korvel.log");
    EXPECT_NE(text.find("CMD: isready\nreadyok\nCMD: quit\n"), std::string::npos) << text;

    // A log that cannot be deleted belongs to someone else.
    std::string busy = make_temp_dir();
    mkdir((busy + "/korvel.log").c_str(), 0755);
    EngineProcess e({"-log"}, busy);
    EXPECT_EQ(e.wait_for("log file"), "log file in use.");
    EXPECT_EQ(e.quit(), 0);
}

// A NUL or '@' inside a line reads as a blank: neither may end the command early.
TEST(UciSession, ControlBytesInALineAreBlanks)
{
    EngineProcess e;
    e.send(std::string("position startpos moves e2e4\0e7e5@g1f3 b8c6\ngo depth 1\n", 55));
    std::string best = e.wait_for("bestmove");
    ASSERT_GE(best.size(), 13u);
    EXPECT_LE(best[10], '4') << best << ": White to move after four plies";
    EXPECT_EQ(e.quit(), 0);
}
