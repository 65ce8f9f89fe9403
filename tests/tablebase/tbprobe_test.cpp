// The engine's view of the tables: every shared probe answer, and the
// refusals that keep probes cheap.
#include "tablebase/tbprobe.h"

#include "tablebase/tb_fixtures.h"

#include <gtest/gtest.h>

TEST(TbProbe, EveryProbeAnswerMatches)
{
    tb_init(shared_tables().c_str());
    ASSERT_EQ(tb_largest, 4u);
    std::vector<ProbeAnswer> answers = load_probe_answers();
    ASSERT_EQ(answers.size(), 500u);
    TestBoard board;
    int wrong_wdl = 0, wrong_dtz = 0;
    for (const ProbeAnswer& a : answers) {
        Position* pos = board.set(a.fen);
        int wdl = 99, dtz = 9999;
        ASSERT_TRUE(tb_probe_full(pos, &wdl, &dtz)) << a.id << " " << a.fen;
        EXPECT_EQ(wdl, a.wdl) << a.id << " " << a.fen;
        EXPECT_EQ(dtz, a.dtz) << a.id << " " << a.fen;
        EXPECT_EQ(tb_probe_wdl(pos, 0), a.wdl + 2) << a.id << " " << a.fen;
        wrong_wdl += wdl != a.wdl;
        wrong_dtz += dtz != a.dtz;
    }
    EXPECT_EQ(wrong_wdl, 0);
    EXPECT_EQ(wrong_dtz, 0);
}
