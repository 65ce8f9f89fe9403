// Options, configuration files and command-line switches, from outside.
#include "support/engine_process.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace
{

std::vector<std::string> uci_answer(EngineProcess& e)
{
    e.send_line("uci");
    std::vector<std::string> seen;
    e.wait_for("uciok", 10000, &seen);
    std::vector<std::string> answer;
    bool started = false;
    for (const std::string& line : seen) {
        started |= line.rfind("id name", 0) == 0;
        if (started)
            answer.push_back(line);
    }
    return answer;
}

std::string reply(EngineProcess& e, const std::string& command, const std::string& prefix = "info string")
{
    e.send_line(command);
    e.send_line("isready");
    std::vector<std::string> seen;
    e.wait_for("readyok", 10000, &seen);
    for (const std::string& line : seen)
        if (line.rfind(prefix, 0) == 0)
            return line;
    return "";
}

} // namespace

TEST(Options, TheUciAnswerInOrder)
{
    EngineProcess e;
    std::vector<std::string> a = uci_answer(e);
    std::vector<std::string> expected = {"id name Korvel 4.50",
                                         "id author Tamsin Vell",
                                         "option name ConfigFilePath type string default ",
                                         "option name Hash type spin default 64 min 0 max 16384",
                                         "option name Threads type spin default 1 min 1 max 128",
                                         "option name Clear_Hash type button",
                                         "option name OwnBook type check default false",
                                         "option name OwnBook_File type string default ",
                                         "option name OwnBook_Depth type spin default 24 min 0 max 60",
                                         "option name OwnBook2_File type string default ",
                                         "option name OwnBook2_Depth type spin default 0 min 0 max 60",
                                         "option name OwnBook_Variety type spin default 25 min 0 max 100",
                                         "option name SyzygyPath type string default ",
                                         "option name SyzygyProbeDepth5 type spin default 0 min -5 max 100",
                                         "option name SyzygyProbeDepth6 type spin default 1 min -5 max 100",
                                         "option name Log type check default false",
                                         "option name Ponder type check default true",
                                         "option name MultiPV type spin default 1 min 1 max 255",
                                         "option name Move Overhead type spin default 50 min 0 max 5000",
                                         "option name UCI_LimitStrength type check default false",
                                         "", // UCI_Elo: the machine's own estimate, checked below
                                         "option name UCI_ShowWDL type check default false",
                                         "option name UCI_Chess960 type check default false",
                                         "option name Contempt type spin default 0 min -150 max 150",
                                         "option name Selectivity type spin default 100 min 0 max 200"};
    const char* weights[13] = {"Mtl_Pawn",       "Mtl_Knight",      "Mtl_Bishop",      "Mtl_Rook",
                               "Mtl_Queen",      "Activity_Knight", "Activity_Bishop", "Activity_Rook",
                               "Activity_Queen", "Pawn_Structure",  "Passed_Pawns",    "King_Safety",
                               "Threats"};
    for (const char* w : weights)
        expected.push_back(std::string("option name ") + w + " type string default 100,100");
    expected.push_back("uciok");
    ASSERT_EQ(a.size(), expected.size());
    for (size_t i = 0; i < a.size(); i++) {
        int elo = 0, max = 0; // the UCI_Elo line offers the machine's own estimate, at most
        if (expected[i].empty())
            EXPECT_TRUE(
                std::sscanf(a[i].c_str(), "option name UCI_Elo type spin default %d min 1500 max %d", &elo, &max) == 2
                && elo == max && max >= 1500)
                << a[i];
        else
            EXPECT_EQ(a[i], expected[i]);
    }
}

// Values are clamped into the range the uci answer shows and echoed;
// names match in any letter case, and the spelling with a blank that bots
// send sets the same option; without "value" nothing is set.
TEST(Options, SetoptionClampsAndEchoes)
{
    EngineProcess e;
    uci_answer(e);
    const std::pair<const char*, const char*> cases[] = {
        {"Hash value 99999", "Hash set to 16384"},
        {"Hash value 8", "Hash set to 8"},
        {"MultiPV value 0", "MultiPV set to 1"},
        {"Contempt value -500", "Contempt set to -150"},
        {"Mtl_Pawn value 10", "Mtl_Pawn set to 20,100"},
        {"Mtl_Pawn value 150,300", "Mtl_Pawn set to 150,200"},
        {"Ponder value TRUE", "Ponder set to 0"},
        {"Ponder value true", "Ponder set to 1"},
        {"Threads value -3", "Threads set to 1"},
        {"UCI_Elo value 100", "UCI_Elo set to 1500"},
        {"Clear_Hash value x", "Hash table cleared"},
        {"OwnBook_File value my book.bin", "OwnBook_File set to 'my book.bin'"},
        {"Hash", ""},
        {"Clear_Hash", ""},
        {"hash value 3", "Hash set to 3"},
        {"MoveOverhead value 100", "Move Overhead set to 100"},
        {"move overhead value 7000", "Move Overhead set to 5000"},
        {"Selectivity value abc", "Selectivity set to 0"},
        {"UCI_ShowWDL value true", "UCI_ShowWDL set to 1"}};
    for (auto [command, echo] : cases) {
        std::string got = reply(e, std::string("setoption name ") + command);
        EXPECT_EQ(got, *echo ? std::string("info string ") + echo : "") << command;
    }
    int shown_max = 0;
    for (const std::string& l : uci_answer(e))
        std::sscanf(l.c_str(), "option name UCI_Elo type spin default %*d min 1500 max %d", &shown_max);
    EXPECT_EQ(reply(e, "setoption name UCI_Elo value 3300"), "info string UCI_Elo set to " + std::to_string(shown_max));
    // The search settings' defaults, as the debugging word lists them.
    e.send_line("_show");
    std::vector<std::string> shown;
    for (int i = 0; i < 12; i++)
        shown.push_back(e.wait_for("info string "));
    EXPECT_EQ(shown, (std::vector<std::string>{
                         "info string SEP_depth= 3", "info string SEP_mult= 75", "info string NMP_depth= 3",
                         "info string FP_depth= 3", "info string FP_mult= 125", "info string PC_depth= 3",
                         "info string PC_red= 3", "info string PC_margin= 100", "info string LMP_depth= 6",
                         "info string LMP_mult= 2", "info string LMR_depth= 3", "info string Selectivity= 0"}));
    // The engine still plays after all that, with win/draw/loss chances
    // in permille on its info lines as asked for; a mate found is certain.
    auto chances = [&](const std::string& position) {
        e.send_line("position " + position);
        e.send_line("go depth 4");
        std::vector<std::string> seen;
        EXPECT_NE(e.wait_for("bestmove", 10000, &seen), "");
        std::vector<int> wdl(3, -1);
        for (const std::string& line : seen)
            if (size_t at = line.find(" wdl "); at != std::string::npos)
                std::sscanf(line.c_str() + at, " wdl %d %d %d", &wdl[0], &wdl[1], &wdl[2]);
        return wdl;
    };
    std::vector<int> start = chances("startpos");
    EXPECT_TRUE(start[0] > 0 && start[1] > 0 && start[2] > 0 && start[0] + start[1] + start[2] == 1000);
    EXPECT_EQ(chances("fen 6k1/5ppp/8/8/8/8/5PPP/R5K1 w - -"), (std::vector<int>{1000, 0, 0}));
    EXPECT_EQ(chances("fen k7/8/1K6/8/8/8/8/7R b - -"), (std::vector<int>{0, 0, 1000}));
    EXPECT_EQ(e.quit(), 0);
}

TEST(Options, ConfigurationFiles)
{
    std::string dir = make_temp_dir();
    // Comments, blanks around "=", a leading blank (no such option), junk.
    std::ofstream(dir + "/korvel.cfg") << "# a comment\nHash = 8\nContempt=12   # trailing comment\n"
                                       << "   MultiPV = 3\nMtl_Pawn = 110,90\nx\n";
    EngineProcess e({"-cfg", dir + "/korvel.cfg"});
    std::vector<std::string> seen;
    ASSERT_NE(e.wait_for("info string Mtl_Pawn", 10000, &seen), "");
    std::string all;
    for (const std::string& l : seen)
        all += l + "\n";
    EXPECT_NE(all.find("info string loading parameters from " + dir + "/korvel.cfg\n"), std::string::npos) << all;
    EXPECT_NE(all.find("info string Hash set to 8\n"), std::string::npos);
    EXPECT_NE(all.find("info string Contempt set to 12\n"), std::string::npos);
    EXPECT_EQ(all.find("MultiPV"), std::string::npos);
    std::vector<std::string> a = uci_answer(e);
    EXPECT_NE(std::find(a.begin(), a.end(), "option name Hash type spin default 8 min 0 max 16384"), a.end());
    // A file that names itself is loaded again, then no further.
    std::ofstream(dir + "/second.cfg") << "Selectivity = 150\nConfigFilePath = " + dir + "/second.cfg\n";
    EXPECT_NE(e.ask("setoption name ConfigFilePath value " + dir + "/second.cfg",
                    "info string ConfigFilePath set to '" + dir + "/second.cfg'"),
              "");
    EXPECT_NE(e.wait_for("info string Selectivity set to 150"), "");
    EXPECT_EQ(e.ask("isready", "readyok"), "readyok");
    EXPECT_EQ(e.quit(), 0);

    // -mkconfig writes every option as a configuration file; read back, it
    // gives the engine the same "uci" answer.
    std::vector<std::string> written;
    {
        EngineProcess maker({"-hash", "8", "-book", "/tmp/b.bin", "-mkconfig"});
        std::string line;
        while (maker.read_line(&line, 10000))
            written.push_back(line);
        EXPECT_EQ(maker.wait_exit(), 0);
    }
    ASSERT_GT(written.size(), 30u);
    std::ofstream made(dir + "/made.cfg");
    for (const std::string& l : written)
        made << l << "\n";
    made.close();
    EngineProcess from_file({"-cfg", dir + "/made.cfg"});
    EngineProcess from_switches({"-hash", "8", "-book", "/tmp/b.bin"});
    // Both engines estimate their own strength, each its own figure.
    auto comparable = [](std::vector<std::string> answer) {
        std::erase_if(answer, [](const std::string& l) {
            return l.find("name UCI_Elo ") != std::string::npos || l.find("name ConfigFilePath ") != std::string::npos;
        });
        return answer;
    };
    std::vector<std::string> expected = comparable(uci_answer(from_switches));
    EXPECT_EQ(comparable(uci_answer(from_file)), expected);
    EXPECT_NE(std::find(expected.begin(), expected.end(), "option name OwnBook_File type string default /tmp/b.bin"),
              expected.end());
    from_file.quit();
    from_switches.quit();
}

TEST(Switches, CommandLine)
{
    EXPECT_EQ(EngineProcess({"-tune"}).wait_exit(), 1);
    EngineProcess e({"-threads", "500", "-hash", "99999"});
    EXPECT_EQ(e.wait_for("info string allocated"), "info string allocated 16384 Mbytes for hash table");
    std::vector<std::string> a = uci_answer(e);
    EXPECT_NE(std::find(a.begin(), a.end(), "option name Threads type spin default 128 min 1 max 128"), a.end());
    EXPECT_EQ(e.quit(), 0);
}
