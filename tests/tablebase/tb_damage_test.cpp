// Damaged and missing files and many threads: a table cut short, or
// without the tables it leads to, makes probes fail or answer exactly (the
// fuzzer changes bytes anywhere), and probes from several threads at once
// agree with the shared answers while tables open under them.
#include "tablebase/tb_fixtures.h"
#include "tablebase/tbprobe.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>

namespace
{

// The table name of a position's material, e.g. "KRPvK" (stronger side first).
std::string material_name(const std::string& fen)
{
    std::string side[2] = {"K", "K"};
    for (char c : std::string("QRBNP"))
        for (char f : fen.substr(0, fen.find(' ')))
            if (f == c || f == char(c + 32))
                side[f != c] += c;
    auto strength = [](const std::string& s) {
        std::string rank;
        for (char c : s)
            rank += char('0' + 9 - std::string("KQRBNP").find(c));
        return std::make_pair(s.size(), rank);
    };
    return strength(side[0]) < strength(side[1]) ? side[1] + "v" + side[0] : side[0] + "v" + side[1];
}

std::vector<ProbeAnswer> answers_of(const std::string& material)
{
    std::vector<ProbeAnswer> out;
    for (const ProbeAnswer& a : load_probe_answers())
        if (material_name(a.fen) == material)
            out.push_back(a);
    return out;
}

// Probes every position with every entry point: results stay in range,
// and with `exact` every answer given is right. Returns how many positions
// got no answer.
int probe_all(TestBoard& board, const std::vector<ProbeAnswer>& answers, bool exact)
{
    int refused = 0;
    for (const ProbeAnswer& a : answers) {
        Position* pos = board.set(a.fen);
        int r = tb_probe_wdl(pos, 10);
        EXPECT_TRUE(r == -1 || (r >= 0 && r <= 4)) << a.id;
        if (exact && r >= 0) {
            EXPECT_EQ(r, a.wdl + 2) << a.id;
        }
        Move move;
        int root = tb_probe_root(pos, &move);
        EXPECT_TRUE(root >= -1 && root <= 4) << a.id;
        int wdl, dtz;
        if (tb_probe_full(pos, &wdl, &dtz)) {
            if (exact) {
                EXPECT_TRUE(wdl == a.wdl && dtz == a.dtz) << a.id;
            }
        } else {
            refused++;
        }
    }
    return refused;
}

} // namespace

// A table whose partners are missing (the tables its captures and
// promotions lead to, or its distance file) answers exactly or not at all.
TEST(TbDamage, MissingPartnersNeverGiveAWrongAnswer)
{
    for (const std::vector<std::string>& files : std::vector<std::vector<std::string>>{{"KRvKP.rtbw", "KRvKP.rtbz"},
                                                                                       {"KQvKP.rtbw", "KQvKP.rtbz"},
                                                                                       {"KPvKP.rtbw", "KPvKP.rtbz"},
                                                                                       {"KPvKP.rtbw"}}) {
        std::string material = files[0].substr(0, files[0].find('.'));
        std::string dir = directory_with(files);
        tb_init(dir.c_str());
        TestBoard board;
        testing::internal::CaptureStderr();
        EXPECT_GT(probe_all(board, answers_of(material), true), 0) << files.back();
        testing::internal::GetCapturedStderr();
        remove_directory(dir);
    }
    tb_init("");
}

TEST(TbDamage, ThreadsProbeAtOnce)
{
    std::vector<ProbeAnswer> answers = load_probe_answers();
    constexpr int THREADS = 4;
    std::vector<TestBoard> boards(THREADS);
    for (int round = 0; round < 3; round++) {
        tb_init(shared_tables().c_str()); // every table opens under the threads' probes
        std::atomic<int> wrong{0}, failed{0};
        std::vector<std::thread> threads;
        for (int k = 0; k < THREADS; k++)
            threads.emplace_back([&, k] {
                for (size_t i = 0; i < answers.size(); i++) {
                    const ProbeAnswer& a = answers[(i + k * answers.size() / THREADS) % answers.size()];
                    Position* pos = boards[size_t(k)].set(a.fen);
                    int wdl, dtz;
                    if (tb_probe_wdl(pos, 0) != a.wdl + 2)
                        wrong++;
                    if (!tb_probe_full(pos, &wdl, &dtz))
                        failed++;
                    else if (wdl != a.wdl || dtz != a.dtz)
                        wrong++;
                }
            });
        for (std::thread& t : threads)
            t.join();
        EXPECT_EQ(wrong.load(), 0);
        EXPECT_EQ(failed.load(), 0);
    }
}
