#include "eval/eval_options.h"

const char* const PERSONALITY_NAMES[PERSONALITY_COUNT] = {
    "Mtl_Pawn",        "Mtl_Knight",      "Mtl_Bishop",    "Mtl_Rook",       "Mtl_Queen",
    "Activity_Knight", "Activity_Bishop", "Activity_Rook", "Activity_Queen", "Pawn_Structure",
    "Passed_Pawns",    "King_Safety",     "Threats"};

EvalOptions eval_options = {
    {{100, 100},
     {100, 100},
     {100, 100},
     {100, 100},
     {100, 100},
     {100, 100},
     {100, 100},
     {100, 100},
     {100, 100},
     {100, 100},
     {100, 100},
     {100, 100},
     {100, 100}},
    0,
    0,
};
