#include "board/makemove.h"

#include "board/position_check.h"
#include "board/zobrist.h"

namespace
{

// Moves a man on board and bitboards, keys included (make).
inline void shift_piece(Position* pos, int code, int from, int to)
{
    int side = piece_side(code), type = piece_type(code);
    Bitboard both = bit(from) | bit(to);
    pos->board[to] = uint8_t(code);
    pos->board[from] = 0;
    pos->pieces[side][0] ^= both;
    pos->pieces[side][type] ^= both;
    pos->key ^= piece_key(code, from) ^ piece_key(code, to);
}

// Moves a man back without key work (unmake restores the keys wholesale).
inline void shift_back(Position* pos, int from, int to)
{
    int code = pos->board[to];
    int side = piece_side(code), type = piece_type(code);
    Bitboard both = bit(from) | bit(to);
    pos->board[from] = uint8_t(code);
    pos->board[to] = 0;
    pos->pieces[side][0] ^= both;
    pos->pieces[side][type] ^= both;
}

// Places or lifts a man without key work (unmake restores the keys wholesale).
inline void put_back(Position* pos, int code, int sq)
{
    int side = piece_side(code), type = piece_type(code);
    pos->board[sq] = uint8_t(code);
    pos->pieces[side][0] |= bit(sq);
    pos->pieces[side][type] |= bit(sq);
    pos->phase_material[side] += PHASE_WEIGHT[type];
    pos->material_signature[side] += SIGNATURE_STEP[type];
    if (type == KING)
        pos->king_square[side] = uint8_t(sq);
}

inline void lift(Position* pos, int sq)
{
    int code = pos->board[sq];
    int side = piece_side(code), type = piece_type(code);
    pos->board[sq] = 0;
    pos->pieces[side][0] &= ~bit(sq);
    pos->pieces[side][type] &= ~bit(sq);
    pos->phase_material[side] -= PHASE_WEIGHT[type];
    pos->material_signature[side] -= SIGNATURE_STEP[type];
}

inline void place_keyed(Position* pos, int code, int sq)
{
    put_back(pos, code, sq);
    pos->key ^= piece_key(code, sq);
    if (piece_type(code) == PAWN)
        pos->pawn_key ^= piece_key(code, sq);
}

inline void remove_keyed(Position* pos, int sq)
{
    int code = pos->board[sq];
    lift(pos, sq);
    pos->key ^= piece_key(code, sq);
    if (piece_type(code) == PAWN)
        pos->pawn_key ^= piece_key(code, sq);
}

} // namespace

void place_piece(Position* pos, int code, int sq)
{
    place_keyed(pos, code, sq);
}

void make_move(Position* pos, Move move)
{
    int from = move_from(move), to = move_to(move);
    int piece = pos->board[from];
    int s = pos->side;
    int step = PAWN_STEP[s];

    UndoRecord* u = &pos->undo[pos->game_ply];
    u->key = pos->key;
    u->pawn_key = pos->pawn_key;
    u->move = move;
    u->captured = uint8_t(piece_type(pos->board[to]));
    u->ep_square = pos->ep_square;
    u->fifty = pos->fifty;
    u->castling = pos->castling;
    pos->game_ply++;
    pos->search_ply++;
    pos->last_move = move;

    int old_ep = pos->ep_square;
    int old_castling = pos->castling;
    pos->fifty++;
    pos->ep_square = NO_SQUARE;
    bool castle_960 = is_castle_960(pos, move);
    u->castled_960 = castle_960;
    pos->castling &= ~(castle_rights_lost(pos, from) | castle_rights_lost(pos, to));
    pos->side ^= 1;
    if (old_ep != NO_SQUARE)
        pos->key ^= ZOBRIST[old_ep];
    if (pos->castling != old_castling)
        pos->key ^= ZOBRIST[old_castling] ^ ZOBRIST[pos->castling];
    if (castle_960) {
        // King and rook lift off first: either may land where the other stood.
        bool king_side = to > from;
        remove_keyed(pos, from);
        remove_keyed(pos, to);
        place_keyed(pos, piece, castle_king_target(s, king_side));
        place_keyed(pos, piece_code(ROOK, s), castle_rook_target(s, king_side));
        pos->fifty = 0;
        pos->key = (pos->key & ~1ULL) + pos->side;
        DEBUG_CHECK_POSITION(pos);
        return;
    }

    if (pos->board[to]) {
        remove_keyed(pos, to);
        pos->fifty = 0;
    }
    shift_piece(pos, piece, from, to);

    int type = piece_type(piece);
    if (type == PAWN) {
        pos->pawn_key ^= piece_key(piece, from) ^ piece_key(piece, to);
        pos->fifty = 0;
        if (to == from + 2 * step) {
            pos->ep_square = uint8_t(from + step);
            pos->key ^= ZOBRIST[from + step];
        } else if (to == old_ep) {
            remove_keyed(pos, to - step);
        } else if (is_promotion(move)) {
            remove_keyed(pos, to);
            place_keyed(pos, piece_code(promotion_type(move), s), to);
        }
    } else if (type == KING) {
        int rook = piece_code(ROOK, s);
        if (to == from + 2) {
            shift_piece(pos, rook, from + 3, from + 1);
            pos->fifty = 0;
        } else if (to == from - 2) {
            shift_piece(pos, rook, from - 4, from - 1);
            pos->fifty = 0;
        }
        pos->king_square[s] = uint8_t(to);
    }
    pos->key = (pos->key & ~1ULL) + pos->side;
    DEBUG_CHECK_POSITION(pos);
}

void unmake_move(Position* pos)
{
    pos->game_ply--;
    pos->search_ply--;
    const UndoRecord* u = &pos->undo[pos->game_ply];
    pos->last_move = pos->game_ply > 0 ? pos->undo[pos->game_ply - 1].move : 0;

    Move move = u->move;
    int from = move_from(move), to = move_to(move);
    pos->ep_square = u->ep_square;
    pos->castling = u->castling;
    pos->fifty = u->fifty;
    pos->side ^= 1;
    int s = pos->side;

    if (u->castled_960) {
        bool king_side = to > from;
        lift(pos, castle_king_target(s, king_side));
        lift(pos, castle_rook_target(s, king_side));
        put_back(pos, piece_code(KING, s), from);
        put_back(pos, piece_code(ROOK, s), to);
        pos->key = u->key;
        pos->pawn_key = u->pawn_key;
        DEBUG_CHECK_POSITION(pos);
        return;
    }
    shift_back(pos, from, to);
    if (u->captured)
        put_back(pos, piece_code(u->captured, s ^ 1), to);
    int type = piece_type(pos->board[from]);
    if (type == PAWN && to == pos->ep_square) {
        put_back(pos, piece_code(PAWN, s ^ 1), to - PAWN_STEP[s]);
    } else if (type == KING) {
        if (to == from + 2)
            shift_back(pos, from + 3, from + 1);
        else if (to == from - 2)
            shift_back(pos, from - 4, from - 1);
        pos->king_square[s] = uint8_t(from);
    }
    if (is_promotion(move)) {
        lift(pos, from);
        put_back(pos, piece_code(PAWN, s), from);
    }
    pos->key = u->key;
    pos->pawn_key = u->pawn_key;
    DEBUG_CHECK_POSITION(pos);
}

void make_null(Position* pos)
{
    UndoRecord* u = &pos->undo[pos->game_ply];
    u->key = pos->key;
    u->move = 0;
    u->ep_square = pos->ep_square;
    u->fifty = pos->fifty;
    u->castling = pos->castling;
    pos->game_ply++;
    pos->search_ply++;
    // A reset counter keeps the draw test from looking back across the null move.
    pos->fifty = 0;
    if (pos->ep_square != NO_SQUARE)
        pos->key ^= ZOBRIST[pos->ep_square];
    pos->ep_square = NO_SQUARE;
    pos->side ^= 1;
    pos->last_move = 0;
    pos->key = (pos->key & ~1ULL) + pos->side;
}

void unmake_null(Position* pos)
{
    pos->game_ply--;
    pos->search_ply--;
    const UndoRecord* u = &pos->undo[pos->game_ply];
    pos->ep_square = u->ep_square;
    pos->castling = u->castling;
    pos->fifty = u->fifty;
    pos->key = u->key;
    pos->side ^= 1;
    pos->last_move = pos->game_ply > 0 ? pos->undo[pos->game_ply - 1].move : 0;
}
