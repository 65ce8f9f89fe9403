// Trouble after start-up is reported and the engine plays on: a table or a
// pool of threads the machine cannot give, a trace file that cannot be
// written. And a table clear asked for during a search happens, after it.
#include "support/engine_process.h"
#include "support/tool_run.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

TEST(CarryOn, ClearHashDuringASearchWaitsForItsEnd)
{
    EngineProcess e;
    e.ask("uci", "uciok");
    e.send_line("position startpos");
    e.send_line("go infinite");
    ASSERT_NE(e.wait_for("info depth", 20000), "");
    e.send_line("setoption name Clear_Hash value x");
    std::vector<std::string> seen;
    e.send_line("isready");
    ASSERT_NE(e.wait_for("readyok", 10000, &seen), "");
    EXPECT_TRUE(starting_with(seen, "info string Hash table cleared").empty());
    e.send_line("stop");
    ASSERT_NE(e.wait_for("bestmove", 10000), "");
    EXPECT_EQ(e.ask("isready", "info string Hash table cleared"), "info string Hash table cleared");
    e.send_line("go depth 2"); // cleared once: the next search leaves its table alone
    seen.clear();
    ASSERT_NE(e.wait_for("bestmove", 10000, &seen), "");
    e.send_line("isready");
    ASSERT_NE(e.wait_for("readyok", 10000, &seen), "");
    EXPECT_TRUE(starting_with(seen, "info string Hash table cleared").empty());
    EXPECT_EQ(e.quit(), 0);
}

TEST(CarryOn, MemoryTheMachineCannotGiveIsRefused)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the sanitizers reserve more address space than the cap allows";
#endif
    EngineProcess e({}, "", 1024);
    e.ask("uci", "uciok");
    EXPECT_EQ(e.ask("setoption name Hash value 16384", "info string could not"),
              "info string could not allocate 16384 Mbytes for hash table, keeping 64");
    EXPECT_EQ(e.ask("setoption name Threads value 128", "info string could not"),
              "info string could not start 128 search threads, keeping 1");
    e.send_line("position startpos");
    EXPECT_NE(e.ask("go depth 6", "bestmove", 30000), "");
    EXPECT_EQ(e.quit(), 0);
}

TEST(CarryOn, ATraceThatCannotBeWrittenIsSwitchedOff)
{
    std::string dir = make_temp_dir();
    ASSERT_EQ(mkdir((dir + "/trace.txt").c_str(), 0755), 0); // fopen of a directory fails
    EngineProcess e({"-c"}, dir);
    e.send_line("depth 4");
    e.send_line("trace 3");
    EXPECT_EQ(e.ask("move", "info string cannot write"), "info string cannot write trace.txt: trace switched off");
    EXPECT_NE(e.wait_for("1. move ", 30000), "");
    EXPECT_EQ(e.quit(), 0);
}
