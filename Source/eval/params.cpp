#include "eval/params.h"

#include "eval/eval_cache.h"
#include "eval/eval_tables.h"
#include "uci/settings.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

EvalParam param_table[PARAM_ROWS];
Score param_score[PARAM_ROWS];
int param_count = 0;
int param_cursor = 0;

namespace
{

// The table's structure: each name and how many consecutive rows it spans.
struct RowRun {
    const char* name;
    int rows;
};

const RowRun LAYOUT[] = {
    {"mtl_pawn", 1},
    {"mtl_knight", 1},
    {"mtl_bishop", 1},
    {"mtl_rook", 1},
    {"mtl_queen", 1},
    {"bishop_pair", 1},
    {"ppawn", 8},
    {"ppawn_mobile", 8},
    {"ppawn_free", 8},
    {"ppawn_fking_dist", 1},
    {"ppawn_eking_dist", 1},
    {"ppawn_connected", 1},
    {"candidate_passer", 1},
    {"pawn_isolated", 1},
    {"pawn_weak", 1},
    {"pawn_blocked", 1},
    {"pawn_doubled", 1},
    {"knight_mobility", 1},
    {"knight_outpost", 1},
    {"knight_outpost_atk", 1},
    {"knight_trapped", 1},
    {"bishop_mobility", 1},
    {"bishop_mob2", 1},
    {"bishop_outpost", 1},
    {"bishop_outpost_atk", 1},
    {"bishop_trapped", 1},
    {"rook_mobility", 1},
    {"rook_mob2", 1},
    {"rook_openfile", 1},
    {"rook_7th", 1},
    {"rook_trapped", 1},
    {"queen_mobility", 1},
    {"queen_trapped", 1},
    {"pawn_shield", 1},
    {"enemy_checks", 1},
    {"king_danger1", 1},
    {"king_danger2", 1},
    {"king_trapped", 1},
    {"king_pawn_prox", 1},
    {"hung_pawn", 1},
    {"hung_minor", 1},
    {"hung_major", 1},
    {"attacked_pawn", 1},
    {"attacked_minor", 1},
    {"attacked_major", 1},
    {"ppush_threat", 1},
    {"pinned_piece", 1},
    {"pinned_pawn", 1},
    {"mtl_RvB", 1},
    {"bishop_rampawns", 1},
    {"stm_bonus", 1},
    {"tmp0", 1},
    {"tmp1", 1},
    {"tmp2", 1},
    {"tmp3", 1},
    {"tmp4", 1},
    {"tmp5", 1},
    {"tmp6", 1},
    {"tmp7", 1},
    {"tmp8", 1},
    {"PST_P1", 64},
    {"PST_CP", 64},
    {"PST_DP", 64},
    {"PST_N1", 64},
    {"PST_B1", 64},
    {"PST_R1", 64},
    {"PST_Q1", 64},
    {"PST_K", 64},
    {"PST_P2", 64},
    {"PST_N2", 64},
    {"PST_B2", 64},
    {"PST_R2", 64},
    {"PST_Q2", 64},
};

// Personality weights and the name patterns they scale, in the order applied.
struct Pattern {
    const char* text;
    int personality;
};

const Pattern PATTERNS[] = {
    {"mtl_pawn", WEIGHT_MTL_PAWN},
    {"mtl_knight", WEIGHT_MTL_KNIGHT},
    {"mtl_bishop", WEIGHT_MTL_BISHOP},
    {"mtl_rook", WEIGHT_MTL_ROOK},
    {"mtl_queen", WEIGHT_MTL_QUEEN},
    {"knight_mobility", WEIGHT_ACTIVITY_KNIGHT},
    {"knight_outpost", WEIGHT_ACTIVITY_KNIGHT},
    {"knight_outpost_atk", WEIGHT_ACTIVITY_KNIGHT},
    {"bishop_mobility", WEIGHT_ACTIVITY_BISHOP},
    {"bishop_mob2", WEIGHT_ACTIVITY_BISHOP},
    {"bishop_outpost", WEIGHT_ACTIVITY_BISHOP},
    {"bishop_outpost_atk", WEIGHT_ACTIVITY_BISHOP},
    {"rook_mobility", WEIGHT_ACTIVITY_ROOK},
    {"rook_mob2", WEIGHT_ACTIVITY_ROOK},
    {"queen_mobility", WEIGHT_ACTIVITY_QUEEN},
    {"PST_N1", WEIGHT_ACTIVITY_KNIGHT},
    {"PST_N2", WEIGHT_ACTIVITY_KNIGHT},
    {"PST_B1", WEIGHT_ACTIVITY_BISHOP},
    {"PST_B2", WEIGHT_ACTIVITY_BISHOP},
    {"PST_R1", WEIGHT_ACTIVITY_ROOK},
    {"PST_R2", WEIGHT_ACTIVITY_ROOK},
    {"PST_Q1", WEIGHT_ACTIVITY_QUEEN},
    {"PST_Q2", WEIGHT_ACTIVITY_QUEEN},
    {"PST_P1", WEIGHT_PAWN_STRUCTURE},
    {"PST_P2", WEIGHT_PAWN_STRUCTURE},
    {"PST_CP", WEIGHT_PAWN_STRUCTURE},
    {"PST_DP", WEIGHT_PAWN_STRUCTURE},
    {"ppawn", WEIGHT_PASSED_PAWNS},
    {"candidate_passer", WEIGHT_PASSED_PAWNS},
    {"king_danger1", WEIGHT_KING_SAFETY},
    {"king_danger2", WEIGHT_KING_SAFETY},
    {"enemy_checks", WEIGHT_KING_SAFETY},
    {"hung_pawn", WEIGHT_THREATS},
    {"hung_minor", WEIGHT_THREATS},
    {"hung_major", WEIGHT_THREATS},
    {"attacked_pawn", WEIGHT_THREATS},
    {"attacked_minor", WEIGHT_THREATS},
    {"attacked_major", WEIGHT_THREATS},
    {"knight_trapped", WEIGHT_THREATS},
    {"bishop_trapped", WEIGHT_THREATS},
    {"rook_trapped", WEIGHT_THREATS},
    {"queen_trapped", WEIGHT_THREATS},
    {"pinned_pawn", WEIGHT_THREATS},
    {"pinned_piece", WEIGHT_THREATS},
};

double single(double x)
{
    return double(float(x));
}

void lay_down_rows()
{
    int row = 0;
    for (const RowRun& run : LAYOUT)
        for (int i = 0; i < run.rows; i++) {
            EvalParam& p = param_table[row++];
            std::memset(&p, 0, sizeof p);
            std::strncpy(p.name, run.name, sizeof p.name - 1);
        }
    param_count = row;
    param_cursor = 0;
}

void apply_row(const char* name, int opening, int endgame)
{
    if (!std::strcmp(name, "mtl_pawn"))
        param_cursor = 0;
    if (param_cursor < 0 || param_cursor >= param_count)
        return; // past the last row: nothing to write
    EvalParam& p = param_table[param_cursor];
    if (std::strcmp(name, p.name))
        std::printf("error %s  %s\n", name, p.name);
    p.opening_f = single(opening);
    p.endgame_f = single(endgame);
    p.score = make_score(opening, endgame);
    param_cursor++;
}

} // namespace

void fset(const char* name, int opening, int endgame)
{
    apply_row(name, opening, endgame);
}

void repack_row(int row)
{
    EvalParam& p = param_table[row];
    p.score = make_score(int(std::lround(p.opening_f)), int(std::lround(p.endgame_f)));
}

void apply_personality()
{
    for (const Pattern& pat : PATTERNS) {
        const int16_t* pct = settings.personality[pat.personality];
        for (int row = 0; row < param_count; row++) {
            EvalParam& p = param_table[row];
            if (!std::strstr(p.name, pat.text))
                continue;
            p.endgame_f = single(p.endgame_f * pct[1] * 0.01);
            p.opening_f = single(p.opening_f * pct[0] * 0.01);
            repack_row(row);
        }
    }
}

void load_params_file()
{
    FILE* f = std::fopen("params.txt", "r");
    if (!f)
        return;
    char line[254];
    while (std::fgets(line, sizeof line, f)) {
        char* tokens[4] = {};
        int n = 0;
        char* save = nullptr;
        for (char* tok = strtok_r(line, "(),\"\n", &save); tok && n < 4; tok = strtok_r(nullptr, "(),\"\n", &save))
            tokens[n++] = tok;
        if (n < 4)
            continue; // a malformed or empty line
        apply_row(tokens[1], std::atoi(tokens[2]), std::atoi(tokens[3]));
    }
    std::fclose(f);
}

void init_eval_params(int mode)
{
    clear_all_eval_caches();
    lay_down_rows();
    if (mode != 1) {
        apply_default_params();
        if (mode == 0)
            apply_personality();
        load_params_file();
    }
    refresh_derived_tables();
}

void print_pst(const char* title, int first_row)
{
    std::printf("%s\n", title);
    for (int rank = 7; rank >= 0; rank--) {
        for (int file = 0; file < 8; file++)
            std::printf(" %3d", opening_of(param_table[first_row + rank * 8 + file].score));
        std::printf("     ");
        for (int file = 0; file < 8; file++)
            std::printf(" %3d", endgame_of(param_table[first_row + rank * 8 + file].score));
        std::printf("\n");
    }
    std::printf("\n");
}
