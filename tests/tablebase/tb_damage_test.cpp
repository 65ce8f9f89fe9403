// Missing and damaged files and many threads: without the tables its
// captures and promotions lead to, without its distance file, or cut short
// (the fuzzer changes bytes anywhere), a table answers exactly or not at
// all; probes from several threads at once agree while tables open, and
// every table is let go on the next initialisation.
#include "tablebase/tb_fixtures.h"
#include "tablebase/tbprobe.h"

#include <atomic>
#include <filesystem>
#include <gtest/gtest.h>
#include <iterator>
#include <thread>

TEST(TbDamage, MissingOrCutTablesAnswerExactlyOrNotAtAll)
{
    // What every entry point says with all the tables.
    tb_init(shared_tables().c_str());
    std::vector<std::string> fens;
    for (const ProbeAnswer& a : load_probe_answers())
        fens.push_back(a.fen);
    unsigned seed = 100;
    for (const char* material : {"KRvKP", "KQvKP", "KPvKP", "KRPvK"})
        for (const std::string& fen : random_positions(material, 100, seed++))
            fens.push_back(fen);
    struct Expected {
        std::string fen;
        int wdl, dtz, root;
        Move move;
    };
    TestBoard board;
    std::vector<Expected> expected;
    for (const std::string& fen : fens) {
        Expected e{fen, 0, 0, 0, 0};
        ASSERT_TRUE(tb_probe_full(board.set(fen), &e.wdl, &e.dtz)) << fen;
        e.root = tb_probe_root(board.set(fen), &e.move);
        expected.push_back(e);
    }

    for (const auto& [tables, keep] : std::vector<std::pair<std::vector<std::string>, size_t>>{
             {{"KRvKP"}, SIZE_MAX},
             {{"KQvKP"}, SIZE_MAX},
             {{"KPvKP"}, SIZE_MAX},
             {{"KPvKP.rtbw"}, SIZE_MAX},
             {{"KRPvK", "KRvK"}, SIZE_MAX},
             // Values, but no distances of the four men.
             {{"KRvKP.rtbw", "KRvK", "KPvK", "KQvKR", "KRvKR", "KRvKB", "KRvKN"}, SIZE_MAX},
             {{"KRvKP", "KQvKP", "KRvK", "KPvK", "KQvK"}, 4000},
         }) {
        std::string dir = directory_with(tables, keep);
        std::string name = tables[0] + (keep == SIZE_MAX ? " " : " cut ");
        tb_init(dir.c_str());
        testing::internal::CaptureStderr();
        int answered = 0, refused = 0;
        for (const Expected& e : expected) {
            Position* pos = board.set(e.fen);
            int r = tb_probe_wdl(pos, 0), wdl, dtz;
            EXPECT_TRUE(r == -1 || r == e.wdl + 2) << name << e.fen;
            if (tb_probe_full(pos, &wdl, &dtz)) {
                EXPECT_TRUE(wdl == e.wdl && dtz == e.dtz) << name << e.fen;
                answered++;
            } else {
                refused++;
            }
            Move move = 1;
            r = tb_probe_root(pos, &move);
            EXPECT_TRUE(r == -1 ? move == 0 : r == e.root && move == e.move) << name << e.fen;
        }
        testing::internal::GetCapturedStderr();
        EXPECT_TRUE(answered > 0 && refused > 0) << name;
    }
    tb_init("");
}

// Each round opens every table under the threads' probes, and pointing the
// engine at its tables again (a GUI setting SyzygyPath) gives back every
// file and mapping of the round before.
TEST(TbDamage, ThreadsProbeAtOnceAndInitAgainReleasesEveryTable)
{
    auto open_files = [] { return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}); };
    tb_init("");
    auto before = open_files();
    std::vector<ProbeAnswer> answers = load_probe_answers();
    constexpr int THREADS = 4;
    std::vector<TestBoard> boards(THREADS);
    for (int round = 0; round < 3; round++) {
        tb_init(shared_tables().c_str());
        std::atomic<int> wrong{0};
        std::vector<std::thread> threads;
        for (int k = 0; k < THREADS; k++)
            threads.emplace_back([&, k] {
                for (size_t i = 0; i < answers.size(); i++) {
                    const ProbeAnswer& a = answers[(i + k * answers.size() / THREADS) % answers.size()];
                    Position* pos = boards[size_t(k)].set(a.fen);
                    int wdl, dtz;
                    if (tb_probe_wdl(pos, 0) != a.wdl + 2 || !tb_probe_full(pos, &wdl, &dtz) || wdl != a.wdl
                        || dtz != a.dtz)
                        wrong++;
                }
            });
        for (std::thread& t : threads)
            t.join();
        EXPECT_EQ(wrong.load(), 0);
        tb_init("");
        EXPECT_EQ(open_files(), before) << round;
    }
}
