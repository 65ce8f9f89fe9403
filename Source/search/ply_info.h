// Per-ply record of the search stack.
#pragma once

#include "board/movegen.h"

struct PlyInfo {
    int16_t node_type; // 0 PV, 1 expected cut, -1 expected all
    int16_t depth;     // draft after the check extension
    int16_t eval;      // static evaluation, side to move's view
    int16_t alpha;     // window after mate-distance pruning
    int16_t beta;
    uint16_t in_check;
    int8_t reduction; // LMR reduction of the move now searched
    uint8_t iid_active;
    uint8_t extend_hash_move;
    uint16_t move_class; // class bits of the move now searched
    uint16_t razored;
    int16_t threat[2]; // per side, left by the evaluation
    int16_t moves_tried;
    int32_t tb_result; // -1 when not probed
    uint16_t hash_move;
    uint16_t killer[2];
    uint16_t check_killer;
    uint8_t king_square; // square of the checking man, 64 when not in check
    uint16_t pick_stage; // picker mode bits and stage
    MoveEntry* move_list;
    MoveEntry* current_move;

    // Picker state beyond the stage: the end of the generated entries, the
    // next unsearched one, and the table move handed out first.
    MoveEntry* list_end;
    MoveEntry* next;
    MoveEntry hash_entry;
};
