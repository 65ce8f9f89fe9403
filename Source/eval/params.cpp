#include "eval/params.h"

#include "eval/eval_tables.h"
#include "output/output.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

EvalParam param_table[PARAM_ROWS];
Score param_score[PARAM_ROWS];
int param_count = 0;
namespace
{
// The row the next line of params.txt (or the next default) is written to.
int param_cursor = 0;
} // namespace
uint32_t param_generation = 0;

const ParamSpec PARAM_SPECS[PARAM_COUNT] = {
#define PARAM(id, name, weight, times, title, ...) {name, weight, times, title, param_layout::ROWS[P_##id], id},
#include "eval/param_list.def"
#undef PARAM
};

namespace
{

// Every row's default pair, in row order.
constexpr ParamPair DEFAULTS[PARAM_ROWS] = {
#define PARAM(id, name, weight, times, title, ...) __VA_ARGS__,
#include "eval/param_list.def"
#undef PARAM
};

double single(double x)
{
    return double(float(x));
}

// Squares as the tables index them: White's view, a1 = 0.
constexpr int sq(char file, int rank)
{
    return (rank - 1) * 8 + (file - 'a');
}

// The values the tables are known by, square by square.
constexpr int STATED_VALUES[][2] = {
    {PST_K, sq('h', 1)},  {PST_K, sq('g', 1)},  {PST_K, sq('e', 1)},  {PST_K, sq('f', 6)},  {PST_N1, sq('a', 8)},
    {PST_N1, sq('h', 8)}, {PST_N1, sq('e', 4)}, {PST_N1, sq('f', 5)}, {PST_P1, sq('g', 2)}, {PST_P1, sq('f', 6)},
    {PST_P1, sq('b', 7)}, {PST_P2, sq('g', 6)}, {PST_P2, sq('f', 7)}, {PST_CP, sq('f', 5)}, {PST_CP, sq('c', 7)},
    {PST_CP, sq('d', 7)}, {PST_CP, sq('e', 7)}, {PST_CP, sq('f', 7)}, {PST_DP, sq('d', 6)}, {PST_R1, sq('e', 6)},
    {PST_Q1, sq('b', 7)}};

// The choices made so far, replayed whenever the table is laid down again.
struct FreezeChoice {
    char pattern[26];
    bool frozen;
};
FreezeChoice freeze_choices[32];
int freeze_choice_count = 0;

int apply_frozen(const char* pattern, bool frozen)
{
    bool all = !std::strcmp(pattern, "all");
    int named = 0;
    for (int row = 0; row < param_count; row++) {
        EvalParam& p = param_table[row];
        if (!all && !std::strstr(p.name, pattern))
            continue;
        named++;
        p.frozen = frozen || is_stated_row(row);
    }
    return named;
}

void lay_down_rows()
{
    int row = 0;
    for (const ParamSpec& spec : PARAM_SPECS)
        for (int i = 0; i < spec.rows; i++) {
            EvalParam& p = param_table[row];
            std::memset(&p, 0, sizeof p);
            std::strncpy(p.name, spec.name, sizeof p.name - 1);
            p.frozen = is_stated_row(row);
            row++;
        }
    for (int i = 0; i < freeze_choice_count; i++)
        apply_frozen(freeze_choices[i].pattern, freeze_choices[i].frozen);
    param_count = row;
    param_cursor = 0;
}

void apply_row(const char* name, int opening, int endgame, bool write = true)
{
    if (!std::strcmp(name, "mtl_pawn"))
        param_cursor = 0;
    if (param_cursor < 0 || param_cursor >= param_count)
        return; // past the last row: nothing to write
    EvalParam& p = param_table[param_cursor];
    if (std::strcmp(name, p.name)) {
        char line[160];
        send_line(format_line(line, sizeof line, "error %.60s  %s", name, p.name));
    }
    if (!write) {
        param_cursor++;
        return;
    }
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

bool is_stated_row(int row)
{
    for (const auto& v : STATED_VALUES)
        if (row == v[0] + v[1])
            return true;
    int rank = 0, file = 0;
    auto in = [&](int table) {
        if (row < table || row >= table + 64)
            return false;
        rank = (row - table) / 8;
        file = (row - table) % 8;
        return true;
    };
    if (in(PST_P1) || in(PST_P2) || in(PST_CP))
        return rank == 0 || rank == 7;
    if (in(PST_DP))
        return rank <= 1 || rank == 7;
    if (in(PST_K))
        return file < 4;
    return false;
}

int set_frozen(const char* pattern, bool frozen)
{
    // "all" starts the list afresh; when the list is full the oldest choice goes.
    if (!std::strcmp(pattern, "all"))
        freeze_choice_count = 0;
    if (freeze_choice_count == 32) {
        std::memmove(freeze_choices, freeze_choices + 1, sizeof freeze_choices[0] * 31);
        freeze_choice_count--;
    }
    FreezeChoice& c = freeze_choices[freeze_choice_count++];
    std::snprintf(c.pattern, sizeof c.pattern, "%s", pattern);
    c.frozen = frozen;
    return apply_frozen(pattern, frozen);
}

void apply_default_params()
{
    for (int row = 0; row < PARAM_ROWS; row++)
        fset(param_table[row].name, DEFAULTS[row].opening, DEFAULTS[row].endgame);
}

// Each row is scaled by its own weight only (the outpost-attack rows twice,
// by the same weight), so scaling row by row gives what scaling group by
// group would.
void apply_personality()
{
    for (const ParamSpec& spec : PARAM_SPECS) {
        if (spec.weight == NO_WEIGHT)
            continue;
        const int16_t* pct = eval_options.personality[spec.weight];
        for (int row = spec.first_row; row < spec.first_row + spec.rows; row++) {
            EvalParam& p = param_table[row];
            for (int n = 0; n < spec.times; n++) {
                p.endgame_f = single(p.endgame_f * pct[1] * 0.01);
                p.opening_f = single(p.opening_f * pct[0] * 0.01);
                repack_row(row);
            }
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
        // A packed half holds 16 bits: a row given more keeps its value
        // (the line still stands for its row, so the next lines stay in step).
        long opening = std::strtol(tokens[2], nullptr, 10), endgame = std::strtol(tokens[3], nullptr, 10);
        bool fits = opening >= INT16_MIN && opening <= INT16_MAX && endgame >= INT16_MIN && endgame <= INT16_MAX;
        if (!fits) {
            char text[128];
            send_line(
                format_line(text, sizeof text, "info string params.txt: %.60s out of range, row kept", tokens[1]));
        }
        apply_row(tokens[1], int(fits ? opening : 0), int(fits ? endgame : 0), fits);
    }
    std::fclose(f);
}

void init_eval_params(int mode)
{
    // Cached scores depend on the parameters: every cache is stale now.
    param_generation++;
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
    send_line(title);
    for (int rank = 7; rank >= 0; rank--) {
        char line[128];
        size_t used = 0;
        for (int file = 0; file < 8; file++)
            used += size_t(std::snprintf(line + used, sizeof line - used, " %3d",
                                         opening_of(param_table[first_row + rank * 8 + file].score)));
        used += size_t(std::snprintf(line + used, sizeof line - used, "     "));
        for (int file = 0; file < 8; file++)
            used += size_t(std::snprintf(line + used, sizeof line - used, " %3d",
                                         endgame_of(param_table[first_row + rank * 8 + file].score)));
        send_line(line);
    }
    send_line("");
}
