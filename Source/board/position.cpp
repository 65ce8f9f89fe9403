#include "board/position.h"

#include <cstring>

void copy_position(Position* dst, UndoRecord* dst_undo, const Position* src)
{
    *dst = *src;
    dst->undo = dst_undo;
    // The record at game_ply goes along too: it tells the search which move,
    // if any, led to the root.
    int records = src->game_ply + 1 < MAX_GAME_PLY ? src->game_ply + 1 : MAX_GAME_PLY;
    if (src->undo != dst_undo)
        std::memcpy(dst_undo, src->undo, sizeof(UndoRecord) * size_t(records));
}
