// Consistency check of a position against a recomputation from its board
// array. Debug and test builds run it after every make and unmake; release
// builds compile it out.
#pragma once

#include "board/position.h"

// Empty string when consistent, else a description of the first fault.
const char* position_fault(const Position* pos);

#ifdef KORVEL_CHECKS
void check_position_or_die(const Position* pos);
#define DEBUG_CHECK_POSITION(pos) check_position_or_die(pos)
#else
#define DEBUG_CHECK_POSITION(pos) ((void)0)
#endif
