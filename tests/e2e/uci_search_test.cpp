// Searches driven over pipes the way an interface drives them.
#include "board/draw.h"
#include "board/fen.h"
#include "board/makemove.h"
#include "board/notation.h"
#include "search/timeman.h"
#include "support/engine_process.h"
#include "support/test_positions.h"

#include <algorithm>
#include <chrono>
#include <gtest/gtest.h>
#include <sstream>

namespace
{

long long value_after(const std::string& line, const std::string& word)
{
    std::istringstream in(line);
    std::string w;
    while (in >> w)
        if (w == word && in >> w)
            return std::stoll(w);
    return -1;
}

std::string last_info(const std::vector<std::string>& lines)
{
    for (auto it = lines.rbegin(); it != lines.rend(); ++it)
        if (it->rfind("info depth", 0) == 0 && it->find(" pv ") != std::string::npos)
            return *it;
    return "";
}

struct Uci {
    EngineProcess e;
    explicit Uci(std::vector<std::string> args = {}) : e(args)
    {
        e.send_line("uci");
        e.wait_for("uciok");
    }
    std::string go(const std::string& position, const std::string& go, std::vector<std::string>* seen = nullptr)
    {
        e.send_line("position " + position);
        e.send_line("go " + go);
        return e.wait_for("bestmove", 60000, seen);
    }
};

} // namespace

TEST(UciSearch, LimitsAreHonoured)
{
    Uci u;
    std::vector<std::string> seen;
    std::string best = u.go("startpos", "depth 6", &seen);
    EXPECT_EQ(value_after(last_info(seen), "depth"), 6);
    EXPECT_EQ(last_info(seen).find(" pv " + best.substr(9, 4) + " "), last_info(seen).rfind(" pv ")) << best;
    for (const std::string& line : seen) // the tables were built at start-up
        EXPECT_EQ(line.find("setting search and eval params"), std::string::npos) << line;

    seen.clear();
    EXPECT_NE(u.go("startpos moves e2e4", "nodes 20000", &seen), "");
    long long nodes = value_after(last_info(seen), "nodes");
    EXPECT_GT(nodes, 0);
    EXPECT_LT(nodes, 20000 * 104 / 100 + 5000); // jittered limit, checked once per node

    // A best move that never changes still lets the node limit stop the
    // search (the queen is taken at every depth).
    seen.clear();
    EXPECT_EQ(u.go("fen 4k3/8/8/3q4/8/8/3R4/4K3 w - - 0 1", "nodes 2000", &seen).rfind("bestmove d2d5", 0), 0u);
    nodes = value_after(last_info(seen), "nodes");
    EXPECT_GT(nodes, 0);
    EXPECT_LT(nodes, 2000 * 104 / 100 + 5000);

    seen.clear();
    EXPECT_NE(u.go("startpos", "movetime 300", &seen), "");
    EXPECT_GE(value_after(last_info(seen), "time"), 250);

    // Mate in one: the PV ends with the mate, so there is no ponder move and
    // the line ends right after the move.
    EXPECT_EQ(u.go("fen 6k1/5ppp/8/8/8/8/5PPP/R5K1 w - - 0 1", "wtime 10000 btime 10000"), "bestmove a1a8");

    // A changed option rebuilds the evaluation's tables before the next
    // search: a queen up still scores as one.
    u.e.send_line("setoption name Mtl_Pawn value 100,100");
    EXPECT_NE(u.go("fen rnb1kbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -", "depth 3", &seen), "");
    EXPECT_GT(value_after(last_info(seen), "cp"), 500) << last_info(seen);

    // A strength limit holds the node rate down to the rating's rate: the
    // nodes searched never run ahead of the time spent.
    u.e.send_line("setoption name UCI_LimitStrength value true");
    u.e.send_line("setoption name UCI_Elo value 2000");
    seen.clear();
    EXPECT_NE(u.go("startpos", "movetime 300", &seen), "");
    std::string info = last_info(seen);
    nodes = value_after(info, "nodes");
    EXPECT_GT(nodes, 0) << info;
    EXPECT_LE(double(nodes), rate_for_elo(2000) * double(value_after(info, "time") + 5) / 1000 + 20) << info;
}

TEST(UciSearch, InfiniteAndPonderWaitForTheInterface)
{
    Uci u;
    u.e.send_line("position startpos");
    u.e.send_line("go infinite");
    EXPECT_NE(u.e.wait_for("info depth 8 ", 5000), ""); // no limit left over
    std::string line;
    std::vector<std::string> seen;
    // Nothing is reported while the search runs, even when asked if ready.
    EXPECT_EQ(u.e.ask("isready", "readyok"), "readyok");
    EXPECT_EQ(u.e.wait_for("bestmove", 500), "");
    auto start = std::chrono::steady_clock::now();
    EXPECT_NE(u.e.ask("stop", "bestmove", 5000), "");
    double ms = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    RecordProperty("stop_to_bestmove_ms", int(ms));
    EXPECT_LT(ms, 2000); // a hang guard, not a speed test

    // A ponder search that ends on its own (mate in one) waits for ponderhit.
    u.e.send_line("position fen 6k1/5ppp/8/8/8/8/5PPP/R5K1 w - - 0 1");
    EXPECT_EQ(u.e.ask("go ponder wtime 10000 btime 10000", "bestmove", 700), "");
    EXPECT_EQ(u.e.ask("ponderhit", "bestmove", 5000), "bestmove a1a8");

    // go ponder then stop.
    u.e.send_line("position startpos moves e2e4");
    EXPECT_EQ(u.e.ask("go ponder wtime 10000 btime 10000", "bestmove", 300), "");
    EXPECT_NE(u.e.ask("stop", "bestmove", 5000), "");
    EXPECT_EQ(u.e.quit(), 0);
}

// An interface may change the position or an option while a search runs:
// the search goes on with its own root and its report still comes at "stop";
// a new table size waits for the search to end.
TEST(UciSearch, ChangesDuringASearchKeepItsReport)
{
    Uci u;
    u.e.send_line("position startpos");
    u.e.send_line("go infinite");
    EXPECT_EQ(u.e.ask("isready", "readyok"), "readyok");
    u.e.send_line("position startpos moves e2e4");
    u.e.send_line("setoption name Hash value 32");
    EXPECT_EQ(u.e.wait_for("info string allocated", 300), "");
    std::string best = u.e.ask("stop", "bestmove", 5000);
    ASSERT_EQ(best.rfind("bestmove ", 0), 0u);
    // A White move of the position the search started from.
    int from_rank = best[10] - '1';
    EXPECT_LE(from_rank, 1) << best;
    EXPECT_EQ(u.e.wait_for("info string allocated", 5000), "info string allocated 32 Mbytes for hash table");
    // The next search starts from the position set meanwhile: a Black move.
    best = u.go("startpos moves e2e4", "depth 4");
    ASSERT_EQ(best.rfind("bestmove ", 0), 0u);
    EXPECT_GE(best[10] - '1', 6) << best;
    EXPECT_EQ(u.e.quit(), 0);
}

// Engine against itself through the protocol, with a clock and two
// threads: every move must be legal, until the game ends or 160 plies.
TEST(UciSearch, SelfPlayGameStaysLegal)
{
    Uci u;
    u.e.send_line("setoption name Threads value 2");
    u.e.send_line("ucinewgame");
    Game* g = new_test_game();
    set_test_position(g, START_FEN);
    std::string moves;
    int ply = 0;
    for (MoveEntry list[MAX_MOVES]; ply < 160 && gen_legal(&g->pos, list) && !is_draw(&g->pos, 0); ply++) {
        std::string line = u.go("startpos moves" + moves, "wtime 600 btime 600 winc 10 binc 10");
        ASSERT_EQ(line.rfind("bestmove ", 0), 0u) << moves;
        std::string move = line.substr(9, line.find(' ', 9) - 9);
        Move m = 0;
        ASSERT_TRUE(parse_move(&g->pos, move.c_str(), &m) && move.size() >= 4) << move << " after" << moves;
        make_move(&g->pos, m);
        moves += " " + move;
    }
    EXPECT_GT(ply, 10);
    free_test_game(g);
    EXPECT_EQ(u.e.quit(), 0);
}

// What clients (python-chess, lichess-bot, match runners) read: no legal
// move is answered 0000 after a mate or draw score; a search stopped inside
// its first iteration gives a real score at depth 1; searchmoves and mate
// limit the search as asked; bad parameters are reported and left out.
TEST(UciSearch, ClientsGetWhatTheyParse)
{
    Uci u;
    std::vector<std::string> seen;
    EXPECT_EQ(u.go("fen rnb1kbnr/pppp1ppp/8/4p3/6Pq/5P2/PPPPP2P/RNBQKBNR w KQkq -", "depth 5", &seen), "bestmove 0000");
    EXPECT_EQ(seen[seen.size() - 2], "info depth 0 score mate 0");
    EXPECT_EQ(u.go("fen 7k/5Q2/6K1/8/8/8/8/8 b - -", "depth 5", &seen), "bestmove 0000");
    EXPECT_EQ(seen[seen.size() - 2], "info depth 0 score cp 0");

    // A node limit of one stops the first iteration almost at once.
    u.go("startpos", "nodes 1", &seen);
    std::string info = last_info(seen);
    EXPECT_EQ(info.find("mate"), std::string::npos) << info;
    EXPECT_GE(value_after(info, "depth"), 1) << info;

    std::string best = u.go("startpos", "depth 6 searchmoves a2a3 h2h4 zz9", &seen);
    EXPECT_TRUE(best.rfind("bestmove a2a3", 0) == 0 || best.rfind("bestmove h2h4", 0) == 0) << best;
    EXPECT_NE(std::find(seen.begin(), seen.end(), "info string searchmoves: zz9 is no legal move here, ignored"),
              seen.end());
    // Nothing legal listed: every move is searched.
    EXPECT_EQ(u.go("startpos", "depth 1 searchmoves e2e5", &seen).rfind("bestmove ", 0), 0u);

    // WAC 50: mate in three, found and the search ends there.
    best = u.go("fen k4r2/1R4pb/1pQp1n1p/3P4/5p1P/3P2P1/r1q1R2K/8 w - -", "mate 3", &seen);
    EXPECT_EQ(best.rfind("bestmove b7b6", 0), 0u) << best;
    EXPECT_NE(last_info(seen).find("score mate 3 "), std::string::npos) << last_info(seen);
    for (const char* bad : {"mate 0 depth 2", "mate -3 depth 2"}) {
        EXPECT_EQ(u.go("startpos", bad, &seen).rfind("bestmove ", 0), 0u) << bad;
        EXPECT_NE(std::find_if(seen.begin(), seen.end(),
                               [](const std::string& l) { return l.rfind("info string mate ", 0) == 0; }),
                  seen.end())
            << bad;
    }
    EXPECT_EQ(u.e.quit(), 0);
}

// Chess960 as interfaces and match runners play it: the option, Shredder
// castling fields, castling written king takes rook both ways, go perft;
// impossible castling files and bad perft depths change nothing else.
TEST(UciSearch, Chess960Games)
{
    Uci u;
    u.e.send_line("setoption name UCI_Chess960 value true");
    std::vector<std::string> seen;
    auto perft = [&](const std::string& position, const std::string& depth) {
        u.e.send_line("position " + position);
        u.e.send_line("go perft " + depth);
        seen.clear();
        return u.e.wait_for("Nodes searched", 20000, &seen);
    };
    // After castling king side the rook stands on f1 and takes f7 and f8
    // from the black king.
    EXPECT_EQ(perft("fen 4k3/8/8/8/8/8/8/R3K2R w HA - moves e1h1", "1"), "Nodes searched: 3");
    // Castling the other way from a king on b1: king c1, rook d1, and a1
    // free for the black rook.
    EXPECT_EQ(perft("fen r3k3/8/8/8/8/8/8/RK5R w HAa - moves b1a1", "1"), "Nodes searched: 13");
    EXPECT_NE(std::find(seen.begin(), seen.end(), "a8a1: 1"), seen.end());
    // Start position 0 of the numbering, with castling moves at depth 2 of
    // neither side: the count as any move generator gives it.
    EXPECT_EQ(perft("fen bbqnnrkr/pppppppp/8/8/8/8/PPPPPPPP/BBQNNRKR w HFhf - 0 1", "2"), "Nodes searched: 400");
    EXPECT_NE(u.go("fen bbqnnrkr/pppppppp/8/8/8/8/PPPPPPPP/BBQNNRKR w HFhf - 0 1", "depth 5"), "");

    u.e.send_line("position fen 4k3/8/8/8/8/8/8/R3K2R w ZQxy -");
    u.e.send_line("go perft 0");
    EXPECT_EQ(u.e.ask("isready", "info string perft"), "info string perft 0: the depth must be 1 to 20");
    EXPECT_EQ(perft("fen 4k3/8/8/8/8/8/8/R3K2R w Q -", "1").rfind("Nodes searched: ", 0), 0u);
    EXPECT_EQ(u.e.quit(), 0);
}
