// Making and taking back moves, with every key and summary kept incrementally.
#pragma once

#include "board/position.h"
#include "board/zobrist.h"

// `move` must be pseudo-legal for the side to move; nothing is checked.
void make_move(Position* pos, Move move);
void unmake_move(Position* pos);
void make_null(Position* pos);
void unmake_null(Position* pos);

// The key after an ordinary move, close enough to prefetch the table bucket
// early (en-passant keys and special moves are not followed exactly).
inline uint64_t key_after(const Position* pos, Move move)
{
    int from = move_from(move), to = move_to(move);
    int piece = pos->board[from], captured = pos->board[to];
    uint64_t k = pos->key ^ piece_key(piece, from) ^ piece_key(piece, to);
    if (captured)
        k ^= piece_key(captured, to);
    if (pos->ep_square != NO_SQUARE)
        k ^= ZOBRIST[pos->ep_square];
    int castling = pos->castling & ~(castle_rights_lost(pos, from) | castle_rights_lost(pos, to));
    if (castling != pos->castling)
        k ^= ZOBRIST[pos->castling] ^ ZOBRIST[castling];
    return (k & ~1ULL) + (pos->side ^ 1);
}

// Piece placement with every summary kept current.
void place_piece(Position* pos, int code, int sq);

