// The staged move picker: the table move, captures by expected gain, then
// quiet moves by history, killers, counter and follow-up moves with the
// losing captures mixed in. Moves are generated only when a stage needs them.
#pragma once

#include "board/types.h"

struct SearchThread;
struct MoveEntry;

// Mode bits of pick_stage (the low four bits hold the stage).
constexpr int PICK_HASH_FIRST = 16; // the table move first
constexpr int PICK_ORDERED = 32;    // staged, scored ordering (without it: a plain walk)
constexpr int PICK_SEE = 64;        // captures scored by exchange value, then quiet moves
constexpr int PICK_CHECKS = 128;    // after the captures, quiet checking moves

constexpr int MODE_SEARCH = PICK_HASH_FIRST | PICK_ORDERED | PICK_SEE; // 112
constexpr int MODE_QUIESCE = PICK_ORDERED;                             // 32
constexpr int MODE_QUIESCE_CHECKS = PICK_ORDERED | PICK_CHECKS;        // 160
constexpr int MODE_PLAIN = 0;

// Score the picker gives the table move.
constexpr int HASH_MOVE_SCORE = 255;

// Where the list of `ply` starts: behind the list of the ply before.
MoveEntry* list_start(SearchThread* t, int ply);

// Prepares the picker of `ply`; `checker` is the square of a checking man
// (64 when not in check): with it only evasions are generated.
void init_picker(SearchThread* t, int ply, int mode, int checker);

// The next move, or nullptr when the list is exhausted.
MoveEntry* next_move(SearchThread* t, int ply);
