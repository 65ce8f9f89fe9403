#include "uci/game.h"

#include <cstring>

#include "board/fen.h"
#include "board/makemove.h"
#include "search/search_thread.h"
#include "uci/output.h"
#include "uci/protocol_mode.h"

SearchThread* game_thread = nullptr;

namespace {

// The history keeps this many records when a very long game fills it; the
// draw test never looks further back than the fifty-move counter (a byte).
constexpr int KEPT_HISTORY = 256;
constexpr int HISTORY_LIMIT = MAX_GAME_PLY - 2 * MAX_PLY;

void trim_history(SearchThread* t)
{
    if (t->game_ply < HISTORY_LIMIT)
        return;
    int drop = t->game_ply - KEPT_HISTORY;
    std::memmove(t->undo, t->undo + drop, sizeof(UndoRecord) * KEPT_HISTORY);
    t->game_ply = int16_t(KEPT_HISTORY);
}

}  // namespace

void send_info(const char* text)
{
    char line[512];
    send_line(protocol_mode == 1 ? format_line(line, sizeof line, "info string %s", text) : text);
}

int set_game_position(const char* fen)
{
    Position candidate = game_thread->pos;
    read_fen(&candidate, fen);
    if (const char* problem = position_problem(&candidate)) {
        char text[256];
        send_info(format_line(text, sizeof text, "invalid position (%s): %s", problem, fen));
        return 0;
    }
    game_thread->pos = candidate;
    game_thread->game_ply = 0;
    game_thread->search_ply = 1;
    game_thread->last_move = 0;
    return 1;
}

void play_game_move(Move move)
{
    make_move(&game_thread->pos, move);
    trim_history(game_thread);
}

int undo_game_move()
{
    if (game_thread->game_ply <= 0)
        return 0;
    unmake_move(&game_thread->pos);
    return 1;
}
