// The few moves the prober plays on its own board record: captures (to see
// whether one beats what a table stores) and a test for any other move.
#pragma once

#include "tablebase/tb_board.h"

struct TbMove {
    uint8_t from;
    uint8_t to;
    uint8_t victim; // square of the captured man (differs from `to` en passant)
    uint8_t promotion; // piece type, 0 for none
};

// Room for every capture of a side of at most six men.
constexpr int TB_MAX_CAPTURES = 64;

// The legal captures of the side to move, en passant and every promotion
// included; kings are never taken. Returns the count.
int tb_legal_captures(const TbBoard* b, TbMove* list);

// Does the side to move have a legal move that takes nothing?
bool tb_has_quiet_move(const TbBoard* b);

// The board after the capture `m`, the other side to move.
TbBoard tb_after(const TbBoard* b, const TbMove& m);
