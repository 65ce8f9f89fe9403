// Per-ply record of the search stack.
#pragma once

#include "board/movegen.h"

// Only what some other ply or the picker reads is kept here: the node's
// type, beta, the move's class and the razoring mark live in locals of the
// node that uses them.
struct PlyInfo {
    int16_t depth; // draft after the check extension
    int16_t eval;  // static evaluation, side to move's view
    int16_t alpha; // window after mate-distance pruning
    uint16_t in_check;
    int8_t reduction; // LMR reduction of the move now searched
    uint8_t iid_active;
    int16_t threat[2]; // per side, left by the evaluation
    int16_t moves_tried;
    int32_t tb_result; // -1 when not probed
    uint16_t hash_move;
    uint16_t killer[2];
    uint16_t check_killer;
    uint8_t checker_square; // square of a checking man, 64 when not in check
    uint16_t pick_stage;    // picker mode bits and stage
    MoveEntry* move_list;
    MoveEntry* current_move;

    // Picker state beyond the stage: the end of the generated entries, the
    // next unsearched one, and the table move handed out first.
    MoveEntry* list_end;
    MoveEntry* next;
    MoveEntry hash_entry;
};
