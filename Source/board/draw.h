// Fifty-move rule and repetition, looking through the undo history.
#pragma once

#include "board/position.h"

// 1 if the position is drawn. `ply_from_root` is the distance from the search
// root (0 from the front end): a repetition inside the search line counts at
// once, one before the root only at its third occurrence.
int is_draw(const Position* pos, int ply_from_root);
