// What the evaluation takes from the user's settings. The front end fills
// this record between searches; the evaluation only reads it.
#pragma once

#include <cstdint>

// The thirteen personality weights, each a pair of opening and endgame
// percentages that scale a group of parameter rows.
enum Personality : int8_t {
    NO_WEIGHT = -1,
    WEIGHT_MTL_PAWN,
    WEIGHT_MTL_KNIGHT,
    WEIGHT_MTL_BISHOP,
    WEIGHT_MTL_ROOK,
    WEIGHT_MTL_QUEEN,
    WEIGHT_ACTIVITY_KNIGHT,
    WEIGHT_ACTIVITY_BISHOP,
    WEIGHT_ACTIVITY_ROOK,
    WEIGHT_ACTIVITY_QUEEN,
    WEIGHT_PAWN_STRUCTURE,
    WEIGHT_PASSED_PAWNS,
    WEIGHT_KING_SAFETY,
    WEIGHT_THREATS,
    PERSONALITY_COUNT
};

struct EvalOptions {
    int16_t personality[PERSONALITY_COUNT][2]; // opening, endgame percentages (20..200)
    int contempt;                              // centipawns against draws, -150..150
    int engine_side;                           // the side the engine plays in the running search
};

extern EvalOptions eval_options;
