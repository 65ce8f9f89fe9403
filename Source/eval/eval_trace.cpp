#include "eval/eval_trace.h"

#include "board/notation.h"
#include "eval/params.h"
#include "output/output.h"

#include <cstdio>
#include <cstring>

namespace
{

int blend(Score s, double phase)
{
    return int(double(opening_of(s)) * (1.0 - phase) + double(endgame_of(s)) * phase);
}

const char* const LABELS[EVAL_GROUPS] = {
    "pawns:", "knights:", "bishops:", "rooks:", "queens:", "king:", "ppawns:", "other:"};

} // namespace

void print_eval_breakdown(const EvalBreakdown& b, int level)
{
    char line[256];
    send_line("           white  black    pos    mtl");
    for (int g = 0; g < EVAL_GROUPS; g++) {
        int type = g + 1; // pawns .. queens carry material
        Score group[2];
        Score material[2] = {0, 0};
        for (int s = 0; s < 2; s++) {
            Score before = g == 0 ? 0 : b.snapshot[g - 1][s];
            if (type <= 5)
                material[s] = b.material[s][type];
            group[s] = score_minus(score_minus(b.snapshot[g][s], before), material[s]);
        }
        int w = blend(group[0], b.phase), k = blend(group[1], b.phase);
        int mtl = type <= 5 ? blend(score_minus(material[0], material[1]), b.phase) : 0;
        send_line(format_line(line, sizeof line, "%-10s  %4d   %4d   %4d   %4d", LABELS[g], w, k, w - k, mtl));
    }
    if (b.hung) {
        size_t used = std::strlen(std::strcpy(line, "hung pieces on: "));
        Bitboard h = b.hung;
        while (h)
            used += size_t(std::snprintf(line + used, sizeof line - used, " %s", SQUARE_NAMES[pop_lsb(h)]));
        send_line(line);
    }
    send_line(
        format_line(line, sizeof line, "eval= %d,  phase= %0.2f, sf= %0.2f", b.shown_score, b.phase, double(b.scale)));
    send_line("");
    if (level >= 2) {
        for (int row = 0; row < param_count; row++)
            if (!std::strstr(param_table[row].name, "PST_"))
                send_line(format_line(line, sizeof line, "%-22s  %4d , %4d", param_table[row].name,
                                      opening_of(param_table[row].score), endgame_of(param_table[row].score)));
        for (const ParamSpec& spec : PARAM_SPECS)
            if (spec.title)
                print_pst(spec.title, spec.first_row);
    }
}
