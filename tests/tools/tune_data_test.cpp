// Tuning data: which labelled lines are searched.
#include "tools/tune_data.h"

#include <gtest/gtest.h>

// An evaluation that contradicts a won or lost game by more than 100, a
// draw scored beyond 250, evaluations beyond 1200 and results outside 0..1
// are dropped; other results carry no contradiction test.
TEST(TuneData, FiltersOnResultAndEvaluation)
{
    const struct {
        int ce;
        double gr;
        bool kept;
    } cases[] = {{-100, 1.0, true}, {-101, 1.0, false}, {100, 0.0, true},   {101, 0.0, false}, {-1200, 0.0, true},
                 {250, 0.5, true},  {251, 0.5, false},  {-251, 0.5, false}, {1200, 1.0, true}, {1201, 1.0, false},
                 {0, 1.5, false},   {0, -0.5, false},   {-900, 0.75, true}};
    for (const auto& c : cases)
        EXPECT_EQ(tune_keeps(c.ce, c.gr), c.kept) << c.ce << " " << c.gr;
}
