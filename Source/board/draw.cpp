#include "board/draw.h"

#include "board/legality.h"
#include "board/movegen.h"

namespace
{

bool has_legal_move(const Position* pos)
{
    MoveEntry list[MAX_MOVES];
    gen_all(pos, list);
    for (MoveEntry* e = list; e->move != MOVE_END; e++)
        if (is_legal(pos, pos->side, e->move))
            return true;
    return false;
}

} // namespace

int is_draw(const Position* pos, int ply_from_root)
{
    if (pos->fifty < 4)
        return 0;
    if (pos->fifty > 100) {
        if (ply_from_root > 0)
            return 1;
        if (!has_legal_move(pos))
            return 1;
    }
    int now = pos->game_ply;
    int oldest = now - pos->fifty;
    if (oldest < 0)
        oldest = 0;
    int root = now - ply_from_root;
    bool seen_before_root = false;
    for (int i = now - 4; i >= oldest; i -= 2) {
        if (pos->undo[i].key != pos->key)
            continue;
        if (i >= root || seen_before_root)
            return 1;
        seen_before_root = true;
    }
    return 0;
}
