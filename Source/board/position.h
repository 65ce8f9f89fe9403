// The board record. One per search thread and one for the game; it can be
// copied with a single block copy. The undo records of the game and of the
// current search line live in an array beside it (see Game below); a copy
// shares that array, which is safe as long as every make has its unmake.
#pragma once

#include "board/bitboard.h"

#include <array>

struct UndoRecord;

struct Position {
    UndoRecord* undo;               // the history: record i describes the move from ply i to i + 1
    int16_t game_ply;               // records in use, the index of the next one
    int16_t search_ply;             // ply of the current node in a search; 1 after set-up
    uint16_t last_move;             // the move that led here, 0 if none
    uint8_t board[64];              // piece code per square
    Bitboard pieces[2][8];          // [side][0] all men of the side, [side][type] per type
    uint64_t key;                   // Zobrist key; bit 0 is the side to move
    uint64_t pawn_key;              // pawns only
    uint32_t material_signature[2]; // 4-bit counts: P, N<<4, B<<8, R<<12, Q<<16
    uint16_t phase_material[2];     // N,B 3, R 5, Q 10
    uint8_t side;
    uint8_t fifty;
    uint8_t castling;
    uint8_t ep_square; // 64 when none
    uint8_t king_square[2];
    // Chess960: castling is written king takes rook, and the rights name
    // their rook's square (castle_rook, by right bit) and king's start square
    // (castle_king, by side). In standard chess these are h1 a1 h8 a8, e1 e8.
    uint8_t chess960;
    uint8_t castle_rook[4];
    uint8_t castle_king[2];
};

// What one move changed; record i describes the move from ply i to ply i+1.
struct UndoRecord {
    uint64_t key;
    uint64_t pawn_key;
    uint16_t move;
    uint8_t captured; // type only; 0 for en passant
    uint8_t ep_square;
    uint8_t fifty;
    uint8_t castling;
    uint8_t castled_960; // the move was a Chess960 castling (king took its rook)
    uint8_t unused;
};
static_assert(sizeof(UndoRecord) == 24, "undo record layout");

inline Bitboard occupancy(const Position* pos)
{
    return pos->pieces[0][0] | pos->pieces[1][0];
}
inline Bitboard all_pawns(const Position* pos)
{
    return pos->pieces[0][PAWN] | pos->pieces[1][PAWN];
}

// Castling-rights mask by square: a move from or to the square clears these bits.
constexpr uint8_t castle_mask_of(int sq)
{
    return sq == 0 ? 2 : sq == 4 ? 3 : sq == 7 ? 1 : sq == 56 ? 8 : sq == 60 ? 12 : sq == 63 ? 4 : 0;
}

// The same as a table, for make/unmake: one load instead of a chain of tests.
inline constexpr auto CASTLE_MASK = [] {
    std::array<uint8_t, 64> t{};
    for (int sq = 0; sq < 64; sq++)
        t[sq] = castle_mask_of(sq);
    return t;
}();

// The rights a move from or onto `sq` takes away.
inline uint8_t castle_rights_lost(const Position* pos, int sq)
{
    if (!pos->chess960)
        return CASTLE_MASK[sq];
    uint8_t m = 0;
    for (int r = 0; r < 4; r++)
        if (pos->castle_rook[r] == sq)
            m |= uint8_t(1 << r);
    if (sq == pos->castle_king[WHITE])
        m |= CASTLE_WHITE_KING | CASTLE_WHITE_QUEEN;
    if (sq == pos->castle_king[BLACK])
        m |= CASTLE_BLACK_KING | CASTLE_BLACK_QUEEN;
    return m;
}

// Whether `move` is a Chess960 castling: the king takes its own rook.
inline bool is_castle_960(const Position* pos, Move move)
{
    int from = move_from(move), to = move_to(move);
    return pos->chess960 && piece_type(pos->board[from]) == KING && pos->board[to] == piece_code(ROOK, pos->side);
}

// Where king and rook end up when castling on the given side: g and f, or
// c and d, on the side's first rank, wherever they started.
inline int castle_king_target(int side, bool king_side)
{
    return (king_side ? 6 : 2) + (side == WHITE ? 0 : 56);
}
inline int castle_rook_target(int side, bool king_side)
{
    return (king_side ? 5 : 3) + (side == WHITE ? 0 : 56);
}

// A position with a history of its own: what the front end keeps for the
// game, and what tools and tests set positions up in. Search threads hold
// their position and undo array the same way.
struct Game {
    Position pos;
    UndoRecord undo[MAX_GAME_PLY];
};

// Points the position at its own undo array; once per record (and again
// after the record has been copied whole).
inline Position* game_init(Game* g)
{
    g->pos.undo = g->undo;
    return &g->pos;
}

// Copies a position and the undo records of its game into `dst`, whose
// position keeps pointing at `dst_undo`.
void copy_position(Position* dst, UndoRecord* dst_undo, const Position* src);
