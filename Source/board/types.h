// Basic codes shared by every part of the engine: squares, sides, pieces, moves.
#pragma once

#include <cstdint>

using Bitboard = uint64_t;
using Move = uint16_t;

// Squares a1 = 0 ... h8 = 63; 64 means "no square".
constexpr int NO_SQUARE = 64;

constexpr int WHITE = 0;
constexpr int BLACK = 1;

// Piece types; a piece code is type | side << 3.
constexpr int EMPTY = 0;
constexpr int PAWN = 1;
constexpr int KNIGHT = 2;
constexpr int BISHOP = 3;
constexpr int ROOK = 4;
constexpr int QUEEN = 5;
constexpr int KING = 6;

constexpr int piece_code(int type, int side)
{
    return type | side << 3;
}
constexpr int piece_type(int code)
{
    return code & 7;
}
constexpr int piece_side(int code)
{
    return code >> 3 & 1;
}

constexpr int file_of(int sq)
{
    return sq & 7;
}
constexpr int rank_of(int sq)
{
    return sq >> 3;
}
constexpr int make_square(int file, int rank)
{
    return rank * 8 + file;
}

// Move code: to-square in bits 0-5, from-square in bits 8-13. The four
// promotion flags sit outside both square fields so that the squares can be
// read without masking the flags first.
constexpr Move PROMO_QUEEN = 0x0040;
constexpr Move PROMO_KNIGHT = 0x0080;
constexpr Move PROMO_BISHOP = 0x4000;
constexpr Move PROMO_ROOK = 0x8000;
constexpr Move PROMO_MASK = 0xC0C0;
constexpr Move MOVE_NONE = 0;
constexpr Move MOVE_END = 65535;

constexpr int move_to(Move m)
{
    return m & 63;
}
constexpr int move_from(Move m)
{
    return m >> 8 & 63;
}
constexpr Move make_move_code(int from, int to)
{
    return Move(from << 8 | to);
}
constexpr bool is_promotion(Move m)
{
    return (m & PROMO_MASK) != 0;
}

// Piece type that a promotion move creates (0 for other moves).
constexpr int promotion_type(Move m)
{
    return (m & PROMO_QUEEN)    ? QUEEN
           : (m & PROMO_KNIGHT) ? KNIGHT
           : (m & PROMO_BISHOP) ? BISHOP
           : (m & PROMO_ROOK)   ? ROOK
                                : 0;
}

// Castling rights: bit 2s is the king side of side s, bit 2s+1 its queen side.
constexpr int CASTLE_WHITE_KING = 1;
constexpr int CASTLE_WHITE_QUEEN = 2;
constexpr int CASTLE_BLACK_KING = 4;
constexpr int CASTLE_BLACK_QUEEN = 8;

constexpr int PAWN_STEP[2] = {8, -8};
constexpr int KING_START[2] = {4, 60};
constexpr Bitboard SEVENTH_RANK[2] = {0x00FF000000000000ULL, 0x000000000000FF00ULL};

constexpr uint32_t SIGNATURE_STEP[8] = {0, 1, 16, 256, 4096, 65536, 0, 0};
constexpr uint16_t PHASE_WEIGHT[8] = {0, 0, 3, 3, 5, 10, 0, 0};

// Undo history per thread; the search line and the game share it.
constexpr int MAX_GAME_PLY = 900;
// The longest line below a search's root: per-ply records and PV buffers
// are this long (plus an end marker). The search's own ply and depth limits
// derive from it.
constexpr int MAX_PLY = 70;
