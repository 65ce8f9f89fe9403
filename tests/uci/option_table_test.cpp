// The rows a tuning build adds for SPSA: one spin per half of each
// personality weight (20..200, default 100) and one per search setting,
// with the settings' own defaults and ranges, each setting its own field.
#include "uci/option_table.h"

#include <gtest/gtest.h>
#include <string>
#include <tuple>

TEST(OptionTable, TuningRows)
{
    const char* weights[] = {"Mtl_Pawn",       "Mtl_Knight",      "Mtl_Bishop",      "Mtl_Rook",
                             "Mtl_Queen",      "Activity_Knight", "Activity_Bishop", "Activity_Rook",
                             "Activity_Queen", "Pawn_Structure",  "Passed_Pawns",    "King_Safety",
                             "Threats"};
    const struct {
        const char* name;
        int def, min, max;
    } settings[] = {{"SEP_depth", 3, 0, 100}, {"SEP_mult", 75, 0, 300}, {"NMP_depth", 3, 0, 100},
                    {"FP_depth", 3, 0, 100},  {"FP_mult", 125, 0, 400}, {"PC_depth", 3, 0, 100},
                    {"PC_red", 3, 1, 8},      {"PC_margin", 100, 0, 400}, {"LMP_depth", 6, 0, 100},
                    {"LMP_mult", 2, 0, 10},   {"LMR_depth", 3, 0, 100}};
    ASSERT_EQ(TUNING_OPTION_COUNT, 2 * 13 + 11);
    EngineSettings s{};
    for (int i = 0; i < TUNING_OPTION_COUNT; i++) {
        const OptionSpec& o = TUNING_OPTIONS[i];
        EXPECT_EQ(o.kind, OPTION_SPIN) << o.name;
        int16_t* field = option_value(o, s);
        if (i < 26) {
            EXPECT_EQ(std::string(o.name), std::string(weights[i / 2]) + (i % 2 ? "_Endgame" : "_Opening"));
            EXPECT_EQ(std::tie(o.def, o.min, o.max), std::make_tuple(100, 20, 200)) << o.name;
            EXPECT_EQ(field, &s.personality[i / 2][i % 2]) << o.name;
        } else {
            const auto& t = settings[i - 26];
            EXPECT_STREQ(o.name, t.name);
            EXPECT_EQ(std::tie(o.def, o.min, o.max), std::tie(t.def, t.min, t.max)) << o.name;
            EXPECT_EQ(field, &s.search[i - 26 + 1]) << o.name; // the search settings after the leading one
        }
    }
}
