// The Polyglot hash of a position: the key under which book files store it.
#pragma once

#include "board/position.h"

// Computed from scratch; separate from the engine's own hashing keys, which
// no book file knows. It is the men's part and the state's part together.
uint64_t book_key(const Position* pos);

// The men on the board.
uint64_t book_key_men(const Position* pos);

// Castling rights, an en-passant square that a pawn can use, the side to move.
uint64_t book_key_state(const Position* pos);

// How the men's part changes between two boards (piece codes by square):
// a move changes two to four squares, so following a game this way is much
// cheaper than hashing every man again.
uint64_t book_key_men_change(const uint8_t* before, const uint8_t* after);
