// The evaluation's parameter table: every number the evaluation uses is a
// named row with an opening and an endgame value. Rows are laid down in a
// fixed order; a name repeated over consecutive rows forms an array.
#pragma once

#include "eval/score.h"

#include <cstdint>

struct EvalParam {
    Score score;      // packed value the evaluation adds
    double opening_f; // working copies for tuning and personality scaling
    double endgame_f;
    float coef;     // how strongly the row entered the last traced evaluation
    int16_t frozen; // non-zero keeps the tuner off the row
    char name[26];
};

// Row indices. Arrays give their first row.
enum ParamRow : int {
    MTL_PAWN,
    MTL_KNIGHT,
    MTL_BISHOP,
    MTL_ROOK,
    MTL_QUEEN,
    BISHOP_PAIR,
    PPAWN = 6,
    PPAWN_MOBILE = 14,
    PPAWN_FREE = 22,
    PPAWN_FKING_DIST = 30,
    PPAWN_EKING_DIST,
    PPAWN_CONNECTED,
    CANDIDATE_PASSER,
    PAWN_ISOLATED,
    PAWN_WEAK,
    PAWN_BLOCKED,
    PAWN_DOUBLED,
    KNIGHT_MOBILITY,
    KNIGHT_OUTPOST,
    KNIGHT_OUTPOST_ATK,
    KNIGHT_TRAPPED,
    BISHOP_MOBILITY,
    BISHOP_MOB2,
    BISHOP_OUTPOST,
    BISHOP_OUTPOST_ATK,
    BISHOP_TRAPPED,
    ROOK_MOBILITY,
    ROOK_MOB2,
    ROOK_OPENFILE,
    ROOK_7TH,
    ROOK_TRAPPED,
    QUEEN_MOBILITY,
    QUEEN_TRAPPED,
    PAWN_SHIELD,
    ENEMY_CHECKS,
    KING_DANGER1,
    KING_DANGER2,
    KING_TRAPPED,
    KING_PAWN_PROX,
    HUNG_PAWN,
    HUNG_MINOR,
    HUNG_MAJOR,
    ATTACKED_PAWN,
    ATTACKED_MINOR,
    ATTACKED_MAJOR,
    PPUSH_THREAT,
    PINNED_PIECE,
    PINNED_PAWN,
    MTL_RVB,
    BISHOP_RAMPAWNS,
    STM_BONUS,
    TMP0 = 72,
    PST_P1 = 81,
    PST_CP = 145,
    PST_DP = 209,
    PST_N1 = 273,
    PST_B1 = 337,
    PST_R1 = 401,
    PST_Q1 = 465,
    PST_K = 529,
    PST_P2 = 593,
    PST_N2 = 657,
    PST_B2 = 721,
    PST_R2 = 785,
    PST_Q2 = 849,
    PARAM_ROWS = 913
};
static_assert(STM_BONUS == 71, "scalar rows end before the spare rows");

extern EvalParam param_table[PARAM_ROWS];
extern int param_count;
extern int param_cursor;

// Packed scores in a compact copy for the evaluation's hot loop; refreshed
// with the derived tables whenever rows change.
extern Score param_score[PARAM_ROWS];

// Clears every thread's caches, lays down the rows and, unless mode is 1,
// applies the defaults, the personality weights (mode 0) and params.txt.
void init_eval_params(int mode);

// Sequential setter: writes the row at the cursor and advances it. "mtl_pawn"
// resets the cursor; a name that differs from the row's is reported with
// "error %s  %s" and written all the same.
void fset(const char* name, int opening, int endgame);

// The compiled-in defaults, one fset call per row.
void apply_default_params();

// Scales rows by the thirteen personality weights of the engine settings.
void apply_personality();

// Reads "params.txt" from the working directory if it exists.
void load_params_file();

// Sets a row's pair from its working values, rounding half away from zero.
void repack_row(int row);

// Prints one piece-square table: rank 8 first, opening values then endgame.
void print_pst(const char* title, int first_row);
