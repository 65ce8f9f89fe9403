#include "board/fen.h"
#include "eval/evaluate.h"
#include "eval/params.h"
#include "search/search_thread.h"
#include "search/threads.h"
#include "support/engine_process.h"
#include "support/search_harness.h"
#include "tools/tuner.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <unistd.h>
#include <vector>

namespace
{

// Runs in a scratch directory: the tuner writes params.txt where it stands.
class Tuner : public ::testing::Test
{
  protected:
    void SetUp() override
    {
        harness_start();
        ASSERT_NE(getcwd(old_, sizeof old_), nullptr);
        ASSERT_EQ(chdir((dir_ = make_temp_dir()).c_str()), 0);
        init_eval_params(0);
    }
    void TearDown() override
    {
        set_frozen("all", false);
        ASSERT_EQ(chdir(old_), 0);
        std::filesystem::remove_all(dir_); // params.txt with it, before the table is laid down again
        init_eval_params(0);
    }
    std::vector<EvalParam> rows() const { return {param_table, param_table + PARAM_ROWS}; }
    char old_[4096];
    std::string dir_;
};

int changed_rows(const std::vector<EvalParam>& before)
{
    int n = 0;
    for (int row = 0; row < PARAM_ROWS; row++)
        n += before[row].opening_f != param_table[row].opening_f || before[row].endgame_f != param_table[row].endgame_f;
    return n;
}

const char* const MIDDLEGAME = "r1bq1rk1/pp2bppp/2n1pn2/3p4/2PP4/2N1PN2/PP2BPPP/R2QKB1R w KQ -";

} // namespace

// The target mixes the game's result (nine tenths) with the score's win
// chance; results come as the labelling tools write them, as any decimal,
// as a game's "1-0" (White's view) or between brackets with the chance.
TEST_F(Tuner, TargetsFromTheLabels)
{
    EXPECT_DOUBLE_EQ(win_probability(0), 0.5);
    EXPECT_GT(win_probability(200), 0.6);
    EXPECT_FLOAT_EQ(tuning_target("x ce 0; gr 1.0;", WHITE, 0), 0.95f);
    EXPECT_FLOAT_EQ(tuning_target("x ce 0; gr 0.25;", WHITE, 0), 0.275f);
    EXPECT_FLOAT_EQ(tuning_target("x ce 0; gr 1;", BLACK, 0), 0.95f);
    EXPECT_FLOAT_EQ(tuning_target("x ce 0; c9 \"1-0\";", BLACK, 0), 0.05f);
    EXPECT_FLOAT_EQ(tuning_target("x ce 0; c9 \"1-0\";", WHITE, 0), 0.95f);
    EXPECT_FLOAT_EQ(tuning_target("x ce 0; c9 \"1/2-1/2\";", BLACK, 0), 0.5f);
    EXPECT_FLOAT_EQ(tuning_target("x [0.0] ce 40;", BLACK, 40), 1.0f);
    EXPECT_FLOAT_EQ(tuning_target("x ce 200;", WHITE, 200), float(win_probability(200)));
}

// A line with a ce beyond 5000 trains nothing. Otherwise only the rows the
// position uses move, less frozen ones and the layout's zeros, and an unused
// row keeps even its fractional working value. A search afterwards sees the
// new values even where its caches answered before.
TEST_F(Tuner, WhichRowsMoveAndTheSearchSeesThem)
{
    param_table[PST_Q2 + 7].opening_f = 3.25;
    repack_row(PST_Q2 + 7);
    std::vector<EvalParam> before = rows();
    std::ofstream("skip.epd") << MIDDLEGAME << " ce 6000; gr 1.0;\n# a comment\n";
    tune("skip.epd", 0.05, 1, 3);
    EXPECT_EQ(changed_rows(before), 0);

    SearchThread* t = worker(0);
    ASSERT_NE(t, nullptr);
    set_position(&t->pos, MIDDLEGAME);
    // Deep in a search both caches answer for this position.
    int old_eval = evaluate(&t->pos, &t->eval, t->pos.side, 2, 0, nullptr);
    std::ofstream("use.epd") << MIDDLEGAME << " ce 0; gr 0.0;\n";
    set_frozen("PST_N1", true);
    tune("use.epd", 5.0, 1, 20);
    EXPECT_GT(changed_rows(before), 10);
    EXPECT_EQ(param_table[MTL_PAWN].score, before[MTL_PAWN].score);
    for (int sq = 0; sq < 64; sq++)
        EXPECT_EQ(param_table[PST_N1 + sq].opening_f, before[PST_N1 + sq].opening_f);
    EXPECT_EQ(param_table[PST_K].opening_f, before[PST_K].opening_f);
    EXPECT_EQ(param_table[PST_Q2 + 7].opening_f, 3.25);
    set_position(&t->pos, MIDDLEGAME);
    int cached = evaluate(&t->pos, &t->eval, t->pos.side, 2, 0, nullptr);
    int fresh = evaluate(&t->pos, &t->eval, t->pos.side, 0, 0, nullptr);
    EXPECT_LT(fresh, old_eval); // trained towards a loss
    EXPECT_EQ(cached, fresh);
    EXPECT_EQ(t->eval.tuning, 0); // the search's caches are in use again

    // Black's lines move the rows, which hold White's view, the other way.
    const char* black = "r1bq1rk1/pp2bppp/2n1pn2/3p4/2PP4/2N1PN2/PP2BPPP/R2QKB1R b KQ -";
    set_position(&t->pos, black);
    old_eval = evaluate(&t->pos, &t->eval, BLACK, 0, 0, nullptr);
    std::ofstream("black.epd") << black << " ce 0; gr 0.0;\n";
    tune("black.epd", 5.0, 1, 20);
    set_position(&t->pos, black);
    EXPECT_LT(evaluate(&t->pos, &t->eval, BLACK, 0, 0, nullptr), old_eval);
}

// The common tuning sets label a position with the game's result alone:
// such lines train towards the result, lines with neither a score nor a
// result are skipped and counted, and the run leaves params.txt behind.
TEST_F(Tuner, ResultOnlyLinesTrainAndSkippedLinesAreCounted)
{
    {
        std::ofstream f("results.epd");
        for (int i = 0; i < 200; i++) {
            f << "r1bqkb1r/pppppppp/2n2n2/8/8/2N2N2/PPPPPPPP/R1BQKB1R w KQkq - c9 \"1-0\";\n";
            f << "r1bqkb1r/pppppppp/2n2n2/8/8/N4N2/PPPPPPPP/R1BQKB1R w KQkq - c9 \"0-1\";\n";
        }
        f << "r1bqkb1r/pppppppp/2n2n2/8/8/N4N2/PPPPPPPP/R1BQKB1R w KQkq - id \"x\";\n";
        f << "r1bqkb1r/pppppppp/2n2n2/8/8/N4N2/PPPPPPPP/R1BQKB1R w KQkq - ce 6000; c9 \"1-0\";\n";
        f << "r1bqkb1r/pppppppp/2n2n2/8/8/N4N2/PPPPPPPP/R1BQKB1R w KQkq - ce 7;\n"; // trains on its score
    }
    std::vector<EvalParam> before = rows();
    testing::internal::CaptureStdout();
    tune("results.epd", 0.5, 1, 2000);
    std::string out = testing::internal::GetCapturedStdout();
    double first = std::atof(out.c_str() + out.find("avg err= ") + 9);
    double last = std::atof(out.c_str() + out.rfind("avg err= ") + 9);
    EXPECT_GT(first, 0.1) << out;
    EXPECT_LT(last, first * 0.8) << out;
    EXPECT_NE(out.find("\ndone.\n"), std::string::npos);
    EXPECT_NE(out.find("avg err= " + out.substr(out.find("avg err= ") + 9, 7)
                       + "\nskipped 2 lines: 1 with neither a ce score nor a result, 1 with a ce beyond 5000\n"),
              std::string::npos)
        << out;
    // Lines as the tuner's formats give them: the only empty line is the
    // one before "done.".
    EXPECT_EQ(out.find("\n\n"), out.find("\n\ndone.\n")) << out;
    EXPECT_EQ(out.rfind("Training using results.epd, ", 0), 0u) << out;

    std::vector<EvalParam> tuned = rows();
    init_eval_params(0); // reads params.txt, written when the run ended
    int moved = 0;
    for (int row = 0; row < PARAM_ROWS; row++) {
        ASSERT_EQ(param_table[row].score, tuned[row].score) << row;
        moved += tuned[row].score != before[row].score;
    }
    EXPECT_GT(moved, 0);
}
