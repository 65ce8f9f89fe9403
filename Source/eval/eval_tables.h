// Fixed tables of the evaluation and the tables derived from the parameter
// rows' working values.
#pragma once

#include "eval/score.h"

// Mobility curves: factor by number of reachable squares.
constexpr float KNIGHT_CURVE[9] = {-0.4f, -0.17f, -0.02f, 0.1f, 0.22f, 0.32f, 0.42f, 0.51f, 0.6f};
constexpr float BISHOP_CURVE[14] = {-0.4f, -0.23f, -0.13f, -0.04f, 0.04f, 0.11f, 0.18f,
                                    0.25f, 0.31f,  0.37f,  0.43f,  0.49f, 0.55f, 0.6f};
constexpr float ROOK_CURVE[15] = {-0.4f, -0.24f, -0.14f, -0.06f, 0.02f, 0.09f, 0.15f, 0.22f,
                                  0.28f, 0.33f,  0.39f,  0.44f,  0.5f,  0.55f, 0.6f};
constexpr float QUEEN_CURVE[28] = {-0.4f, -0.25f, -0.17f, -0.1f, -0.04f, 0.02f, 0.07f, 0.12f, 0.17f, 0.22f,
                                   0.26f, 0.3f,   0.34f,  0.38f, 0.42f,  0.46f, 0.49f, 0.52f, 0.55f, 0.58f,
                                   0.6f,  0.6f,   0.6f,   0.6f,  0.6f,   0.6f,  0.6f,  0.6f};

// Special endings: 0 on the edge, 1 on the next ring, 2 on c3-f6.
constexpr int center_10(int sq)
{
    int f = sq & 7, r = sq >> 3;
    int df = f < 4 ? f : 7 - f, dr = r < 4 ? r : 7 - r;
    int ring = df < dr ? df : dr;
    return ring > 2 ? 2 : ring;
}

// Distance from the long light diagonal a8-h1.
constexpr int light_diag_dist(int sq)
{
    int d = (sq & 7) + (sq >> 3) - 7;
    return d < 0 ? -d : d;
}

// 0 on the four centre squares, 10 per step towards the edge, 60 in the corners.
constexpr int edge_60(int sq)
{
    int f = sq & 7, r = sq >> 3;
    int df = f < 4 ? 3 - f : f - 4, dr = r < 4 ? 3 - r : r - 4;
    return 10 * (df + dr);
}

constexpr int MAX_DANGER = 39;

// King distances to a passed pawn count for more the further
// the pawn has come; by relative rank, 1 on the sixth.
constexpr float PASSER_KING_WEIGHT[8] = {0.0f, 0.0f, 0.0f, 1.0f / 3, 2.0f / 3, 1.0f, 4.0f / 3, 0.0f};

struct DerivedTables {
    Score knight_mobility[9];
    Score bishop_mobility[14];
    Score rook_mobility[15];
    Score queen_mobility[28];
    Score shield[10];                     // by shield count 0..9
    Score king_danger[2][MAX_DANGER + 1]; // [0] enemy has a queen, [1] none
    Score passer_own_king[8][8];          // [relative rank][distance]
    Score passer_enemy_king[8][8];
};

extern DerivedTables derived;

// Rebuilds the packed copy of the rows and the tables derived from their
// working values; to be called whenever rows change.
void refresh_derived_tables();

// The same for one changed row: its packed copy and the tables it feeds.
void refresh_derived_row(int row);
