// The evaluation's parameter table: every number the evaluation uses is a
// named row with an opening and an endgame value. The rows are laid down in
// the order of param_list.def; a name repeated over consecutive rows forms
// an array, and the identifier of a parameter is the index of its first row.
#pragma once

#include "eval/eval_options.h"
#include "eval/score.h"

#include <cstdint>
#include <initializer_list>

struct EvalParam {
    Score score;      // packed value the evaluation adds
    double opening_f; // working copies for tuning and personality scaling
    double endgame_f;
    float coef;     // how strongly the row entered the last evaluation while tuning
    int16_t frozen; // non-zero keeps the tuner off the row
    char name[26];
};

// One default pair of a row.
struct ParamPair {
    int16_t opening, endgame;
};

// A parameter as the list gives it.
struct ParamSpec {
    const char* name;
    Personality weight; // the personality weight that scales it, or NO_WEIGHT
    int8_t times;       // how often that weight applies (two for the outpost-attack rows)
    const char* title;  // piece-square tables: the heading of the evaluation display
    int rows;
    int first_row;
};

enum ParamId : int {
#define PARAM(id, ...) P_##id,
#include "eval/param_list.def"
#undef PARAM
    PARAM_COUNT
};

namespace param_layout
{

constexpr int ROWS[PARAM_COUNT] = {
#define PARAM(id, name, weight, times, title, ...) int(std::initializer_list<ParamPair>{__VA_ARGS__}.size()),
#include "eval/param_list.def"
#undef PARAM
};

constexpr int first_row(int id)
{
    int row = 0;
    for (int i = 0; i < id; i++)
        row += ROWS[i];
    return row;
}

} // namespace param_layout

// Row index of every parameter's first row: MTL_PAWN, PPAWN, PST_N1, ...
#define PARAM(id, ...) constexpr int id = param_layout::first_row(P_##id);
#include "eval/param_list.def"
#undef PARAM

constexpr int PARAM_ROWS = param_layout::first_row(PARAM_COUNT);
static_assert(PARAM_ROWS == 913 && STM_BONUS == 71 && PST_P1 == 81, "parameter table layout");

extern const ParamSpec PARAM_SPECS[PARAM_COUNT];

extern EvalParam param_table[PARAM_ROWS];
extern int param_count;

// Packed scores in a compact copy for the evaluation's hot loop; refreshed
// with the derived tables whenever rows change.
extern Score param_score[PARAM_ROWS];

// Bumped whenever the table is rebuilt: caches filled under an older table
// are stale (the evaluation clears them on their next use).
extern uint32_t param_generation;

// Lays down the rows and, unless mode is 1, applies the defaults, the
// personality weights of eval_options (mode 0) and params.txt.
void init_eval_params(int mode);

// Sequential setter: writes the row at the cursor and advances it. "mtl_pawn"
// resets the cursor; a name that differs from the row's is reported with
// "error %s  %s" and written all the same.
void fset(const char* name, int opening, int endgame);

// The compiled-in defaults, one fset call per row.
void apply_default_params();

// Scales rows by the thirteen personality weights of eval_options.
void apply_personality();

// Reads "params.txt" from the working directory if it exists.
void load_params_file();

// Sets a row's pair from its working values, rounding half away from zero.
void repack_row(int row);

// Rows whose values the piece-square tables are built around: the layout's
// zeros (pawn tables on the first and last ranks, the defended-pawn table
// also on the second, the king table on files a-d) and a handful of values
// every table must keep. The tuner never moves them.
bool is_stated_row(int row);

// Freezes (or thaws) every row whose name contains `pattern` ("all" for
// every row); stated rows stay frozen. Returns the number of rows named.
int set_frozen(const char* pattern, bool frozen);

// Prints one piece-square table: rank 8 first, opening values then endgame.
void print_pst(const char* title, int first_row);
