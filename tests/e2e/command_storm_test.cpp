// Whatever an interface sends, in whatever order, the engine keeps serving:
// a long random stream of commands, half of them nonsense, must leave it
// answering "readyok" and quitting cleanly.
#include "support/engine_process.h"

#include <gtest/gtest.h>
#include <random>

namespace
{

std::string random_command(std::mt19937& rng)
{
    static const char* const fixed[] = {"isready",
                                        "ucinewgame",
                                        "stop",
                                        "ponderhit",
                                        "go depth 3",
                                        "go nodes 2000",
                                        "go movetime 15",
                                        "go wtime 200 btime 200 winc 10 binc 10",
                                        "go ponder wtime 1000 btime 1000",
                                        "go infinite",
                                        "go depth -3",
                                        "go nodes 0",
                                        "go movetime -5",
                                        "go wtime 1e400 btime nan",
                                        "go movestogo 0 wtime 50",
                                        "position startpos",
                                        "position startpos moves e2e4 e7e5 g1f3",
                                        "position startpos moves e2e4 e2e4",
                                        "position fen 8/8/8/8/8/8/8/8 w - - 0 1",
                                        "position fen k7/8/8/8/8/8/8/K7 w - - 0 1 moves a1b2",
                                        "position fen 7k/5Q2/6K1/8/8/8/8/8 b - - 0 1",
                                        "position fen rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq z9",
                                        "position fen r3k2r/8/8/8/8/8/8/R3K2R w KQkq - 0 1 moves e1g1 e8c8",
                                        "position fen",
                                        "position moves",
                                        "setoption name Hash value 1",
                                        "setoption name Hash value 3",
                                        "setoption name Threads value 2",
                                        "setoption name Threads value 1",
                                        "setoption name MultiPV value 3",
                                        "setoption name Clear_Hash value",
                                        "setoption name Selectivity value 0",
                                        "setoption name Contempt value 40",
                                        "setoption name Mtl_Pawn value 40,",
                                        "setoption name UCI_LimitStrength value true",
                                        "setoption name UCI_Elo value 1600",
                                        "setoption name UCI_LimitStrength value false",
                                        "setoption name ConfigFilePath value /nonexistent",
                                        "setoption name SyzygyPath value /tmp:/nonexistent",
                                        "setoption value name",
                                        "debug on",
                                        "_show",
                                        "uci",
                                        "eval",
                                        "perft 9",
                                        "go",
                                        "position fen 4k3/8/8/8/8/8/4P3/4K3 w - - 0 1",
                                        "quiet please"};
    int n = sizeof fixed / sizeof fixed[0];
    if (rng() % 4 == 0) {
        std::string junk;
        int len = int(rng() % 40);
        for (int i = 0; i < len; i++)
            junk.push_back(char(32 + rng() % 95));
        return junk;
    }
    return fixed[rng() % n];
}

} // namespace

TEST(CommandStorm, EngineStaysResponsive)
{
    EngineProcess e;
    std::mt19937 rng(2026);
    for (int i = 0; i < 400; i++) {
        e.send_line(random_command(rng));
        if (i % 50 == 49) {
            e.send_line("isready");
            ASSERT_EQ(e.wait_for("readyok", 20000), "readyok") << "after command " << i;
        }
    }
    e.send_line("stop");
    EXPECT_EQ(e.ask("isready", "readyok", 20000), "readyok");
    EXPECT_EQ(e.quit(20000), 0);
}
