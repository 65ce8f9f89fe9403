#include "eval/eval_tables.h"

#include "eval/params.h"

#include <cmath>

DerivedTables derived;

namespace
{

// Rounds half away from zero, exactly, without a library call (the tuner
// derives these tables again after every step it takes on one of their rows).
inline int round_half_away(double x)
{
    double t = std::trunc(x);
    if (std::fabs(x - t) >= 0.5)
        t += x > 0 ? 1 : -1;
    return int(t);
}

// Both halves of a row's working values times a factor, rounded half away from zero.
Score scaled(int row, double factor)
{
    const EvalParam& p = param_table[row];
    return make_score(round_half_away(p.opening_f * factor), round_half_away(p.endgame_f * factor));
}

void derive_mobility()
{
    for (int n = 0; n < 9; n++)
        derived.knight_mobility[n] = scaled(KNIGHT_MOBILITY, KNIGHT_CURVE[n]);
    for (int n = 0; n < 14; n++)
        derived.bishop_mobility[n] = scaled(BISHOP_MOBILITY, BISHOP_CURVE[n]);
    for (int n = 0; n < 15; n++)
        derived.rook_mobility[n] = scaled(ROOK_MOBILITY, ROOK_CURVE[n]);
    for (int n = 0; n < 28; n++)
        derived.queen_mobility[n] = scaled(QUEEN_MOBILITY, QUEEN_CURVE[n]);
}

void derive_king_safety()
{
    for (int count = 0; count <= 9; count++)
        derived.shield[count] = scaled(PAWN_SHIELD, float(count - 9) * 0.111f);
    for (int d = 0; d <= MAX_DANGER; d++) {
        float f = float(d) * 0.0018f * float(d);
        derived.king_danger[0][d] = scaled(KING_DANGER1, f);
        derived.king_danger[1][d] = scaled(KING_DANGER2, f);
    }
}

void derive_passer_distances()
{
    for (int r = 0; r < 8; r++)
        for (int dist = 0; dist < 8; dist++) {
            float x = float(dist) * PASSER_KING_WEIGHT[r];
            derived.passer_own_king[r][dist] = scaled(PPAWN_FKING_DIST, x);
            derived.passer_enemy_king[r][dist] = scaled(PPAWN_EKING_DIST, x);
        }
}

} // namespace

void refresh_derived_tables()
{
    for (int row = 0; row < PARAM_ROWS; row++)
        param_score[row] = param_table[row].score;
    derive_mobility();
    derive_king_safety();
    derive_passer_distances();
}

void refresh_derived_row(int row)
{
    // Scores cached with the row's old value are stale now.
    param_generation++;
    param_score[row] = param_table[row].score;
    if (row == KNIGHT_MOBILITY || row == BISHOP_MOBILITY || row == ROOK_MOBILITY || row == QUEEN_MOBILITY)
        derive_mobility();
    else if (row == PAWN_SHIELD || row == KING_DANGER1 || row == KING_DANGER2)
        derive_king_safety();
    else if (row == PPAWN_FKING_DIST || row == PPAWN_EKING_DIST)
        derive_passer_distances();
}
