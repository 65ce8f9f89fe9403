#include "search/perft.h"

#include "board/legality.h"
#include "board/makemove.h"
#include "board/movegen.h"
#include "board/notation.h"
#include "output/output.h"
#include "search/clock.h"
#include "search/movepick.h"
#include "search/search_report.h"
#include "search/search_thread.h"

void perft(SearchThread* t, int side, int ply, int depth)
{
    Position* pos = &t->pos;
    PinInfo info = pin_info(pos, side);
    t->plies[ply].in_check = info.in_check;
    init_picker(t, ply, MODE_PLAIN, info.checker);
    if (depth == 1) {
        // Bulk count: the picker generates the whole list at once in its
        // plain mode; count the legal entries without making them.
        MoveEntry* first = next_move(t, ply);
        if (!first)
            return;
        // Most moves need no look at all: they neither start on a careful
        // square nor land on the en-passant square.
        uint64_t n = 0;
        Bitboard careful = info.careful;
        int ep = pos->ep_square;
        for (MoveEntry* e = first; e != t->plies[ply].list_end; e++) {
            Move m = e->move;
            if (!(careful & bit(move_from(m))) && move_to(m) != ep)
                n++;
            else
                n += is_legal_careful(pos, side, m, info);
        }
        t->nodes += n;
        return;
    }
    while (MoveEntry* e = next_move(t, ply)) {
        if (!is_legal_fast(pos, side, e->move, info))
            continue;
        make_move(pos, e->move);
        perft(t, side ^ 1, ply + 1, depth - 1);
        unmake_move(pos);
    }
}

uint64_t perft_command(SearchThread* t, int depth)
{
    if (depth > 20)
        depth = 20;
    if (depth < 0)
        depth = 0;
    double start = now_seconds();
    t->nodes = 0;
    if (depth >= 1)
        perft(t, t->pos.side, 1, depth);
    double seconds = now_seconds() - start;
    char line[256];
    send_line(format_line(line, sizeof line, "visited %0.0f nodes in %0.3f seconds, nps= %0.0f", double(t->nodes),
                          seconds, double(t->nodes) / (seconds + 0.001)));
    return t->nodes;
}

uint64_t perft_divide(SearchThread* t, int depth)
{
    Position* pos = &t->pos;
    MoveEntry list[MAX_MOVES];
    int n = gen_legal(pos, list);
    // The root's list is this one: the counts below start the thread's
    // move buffer from its beginning.
    t->plies[1].list_end = t->move_buffer;
    uint64_t total = 0;
    char line[64], text[MOVE_TEXT_SIZE];
    for (int i = 0; i < n; i++) {
        uint64_t count = 1;
        if (depth > 1) {
            make_move(pos, list[i].move);
            t->nodes = 0;
            perft(t, pos->side, 2, depth - 1);
            count = t->nodes;
            unmake_move(pos);
        }
        total += count;
        move_to_coord(list[i].move, text, reported_move_style());
        send_line(format_line(line, sizeof line, "%s: %llu", text, (unsigned long long)count));
    }
    send_line("");
    send_line(format_line(line, sizeof line, "Nodes searched: %llu", (unsigned long long)total));
    return total;
}
