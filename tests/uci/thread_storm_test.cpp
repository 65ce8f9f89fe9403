// The command loop and eight search threads in one process, driven through
// standard input: what the interface must see, and under ThreadSanitizer
// (make tsan) that the threads share nothing they should not.
#include "board/fen.h"
#include "board/notation.h"
#include "search/threads.h"
#include "support/engine_session.h"
#include "support/test_positions.h"
#include "support/tool_run.h"

#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

namespace
{

// Rounds of about a millisecond each: far more than any of these searches
// needs, so that only a hang runs out of them.
constexpr int PATIENCE = 120000;

std::vector<std::string> lines_of(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

class ThreadStorm : public ::testing::Test
{
  protected:
    void SetUp() override
    {
        session_engine_start(8, 16);
        session_open(false);
        ::testing::internal::CaptureStdout();
    }
    void TearDown() override
    {
        if (capturing_)
            ::testing::internal::GetCapturedStdout();
        session_engine_stop();
    }
    void send(const std::string& line) { session_write_line(line.c_str()); }
    std::vector<std::string> output()
    {
        capturing_ = false;
        return lines_of(::testing::internal::GetCapturedStdout());
    }
    // Every line is "bestmove" and a legal move of the start position.
    void expect_start_position_replies(const std::vector<std::string>& replies)
    {
        Game* g = new_test_game();
        set_test_position(g, START_FEN);
        for (const std::string& r : replies) {
            Move m = 0;
            EXPECT_TRUE(r.size() >= 13 && parse_move(&g->pos, r.substr(9, 4).c_str(), &m)) << r;
        }
        free_test_game(g);
    }

  private:
    bool capturing_ = true;
};

} // namespace

TEST_F(ThreadStorm, EveryStoppedSearchReportsOnce)
{
    const char* const searches[] = {"go infinite", "go depth 40", "go nodes 3000000", "go movetime 60000",
                                    "go wtime 600000 btime 600000"};
    const int count = 40;
    for (int i = 0; i < count; i++) {
        send(searches[i % 5]);
        session_rounds(i % 9); // from before the search has started to well into it
        send("stop");
        ASSERT_TRUE(session_until_idle(PATIENCE)) << "search " << i << " never went idle";
    }
    std::vector<std::string> replies = starting_with(output(), "bestmove");
    EXPECT_EQ(replies.size(), size_t(count));
    expect_start_position_replies(replies);
}

TEST_F(ThreadStorm, OptionsAndPositionsArriveDuringSearches)
{
    // What the engine then reports is the protocol's business; here the
    // threads must only come to rest and the engine keep answering.
    const char* const intruders[] = {"setoption name Hash value 4",
                                     "setoption name MultiPV value 3",
                                     "setoption name Contempt value 20",
                                     "setoption name Threads value 3",
                                     "setoption name Clear_Hash value x",
                                     "ucinewgame",
                                     "position startpos moves e2e4",
                                     "position fen 8/8/4k3/8/8/4K3/4P3/8 w - - 0 1",
                                     "go depth 5",
                                     "ponderhit"};
    for (int i = 0; i < 30; i++) {
        send(i % 3 ? "go infinite" : "go ponder wtime 1000 btime 1000");
        session_rounds(i % 5);
        send(intruders[i % 10]);
        session_rounds(i % 4);
        send("stop");
        ASSERT_TRUE(session_until_idle(PATIENCE)) << "round " << i << " never went idle";
    }
    send("isready");
    session_until_idle(PATIENCE);
    EXPECT_EQ(starting_with(output(), "readyok").size(), 1u);
}

TEST_F(ThreadStorm, QuitDuringASearchEndsWithoutAReport)
{
    send("go infinite");
    session_rounds(30);
    send("quit");
    EXPECT_TRUE(session_rounds(PATIENCE));
    EXPECT_TRUE(starting_with(output(), "bestmove").empty());
    session_engine_stop();
    EXPECT_EQ(worker_count(), 0);
}
