#include "board/fen.h"

#include "board/attack_queries.h"
#include "board/makemove.h"
#include "board/notation.h"
#include "board/zobrist.h"
#include "output/output.h"

#include <cstring>

namespace
{

// Piece code per character, 0 for anything else: the tuner and the EPD
// tools read millions of positions.
struct PieceLetters {
    uint8_t code[256] = {};
    constexpr PieceLetters()
    {
        const char* white = " PNBRQK";
        const char* black = " pnbrqk";
        for (int t = PAWN; t <= KING; t++) {
            code[uint8_t(white[t])] = uint8_t(piece_code(t, WHITE));
            code[uint8_t(black[t])] = uint8_t(piece_code(t, BLACK));
        }
    }
};
constexpr PieceLetters PIECE_LETTERS;

inline int piece_from_letter(char c)
{
    return PIECE_LETTERS.code[uint8_t(c)];
}

const char* skip_blanks(const char* p)
{
    while (*p == ' ')
        p++;
    return p;
}

// Removes the castling rights whose king and rook are not on their squares.
bool repair_castling(Position* pos)
{
    struct Right {
        int bit, king, rook, side;
    } rights[4] = {{1, 4, 7, WHITE}, {2, 4, 0, WHITE}, {4, 60, 63, BLACK}, {8, 60, 56, BLACK}};
    bool removed = false;
    for (const Right& r : rights) {
        if (!(pos->castling & r.bit))
            continue;
        if (pos->board[r.king] != piece_code(KING, r.side) || pos->board[r.rook] != piece_code(ROOK, r.side)) {
            pos->castling &= ~r.bit;
            removed = true;
        }
    }
    return removed;
}

} // namespace

int read_fen(Position* pos, const char* text)
{
    pos->castling = 15;
    pos->ep_square = NO_SQUARE;
    std::memset(pos->board, 0, sizeof pos->board);
    std::memset(pos->pieces, 0, sizeof pos->pieces);
    pos->material_signature[0] = pos->material_signature[1] = 0;
    pos->phase_material[0] = pos->phase_material[1] = 0;
    pos->fifty = 0;
    pos->key = pos->pawn_key = 0;
    pos->king_square[0] = pos->king_square[1] = NO_SQUARE;

    const char* p = text;
    int file = 0, rank = 7;
    for (; *p && *p != ' '; p++) {
        if (*p >= '1' && *p <= '8') {
            file += *p - '0';
        } else if (*p == '/') {
            file = 0;
            rank--;
        } else if (int code = piece_from_letter(*p)) {
            // Men that fall off the board in a malformed field are dropped.
            if (file < 8 && rank >= 0)
                place_piece_keyless(pos, code, make_square(file, rank));
            file++;
        }
    }
    if (*p == ' ') {
        p++;
        if (*p == 'w')
            pos->side = WHITE;
        else if (*p == 'b')
            pos->side = BLACK;
        if (*p)
            p++;
    }
    p = skip_blanks(p);
    pos->castling = 0;
    for (; *p && *p != ' '; p++) {
        if (*p == 'K')
            pos->castling |= 1;
        else if (*p == 'Q')
            pos->castling |= 2;
        else if (*p == 'k')
            pos->castling |= 4;
        else if (*p == 'q')
            pos->castling |= 8;
    }
    p = skip_blanks(p);
    int ep_file = -1, ep_rank = -1;
    for (; *p && *p != ' '; p++) {
        if (*p >= 'a' && *p <= 'h')
            ep_file = *p - 'a';
        else if (*p >= '1' && *p <= '8')
            ep_rank = *p - '1';
    }
    if (ep_file >= 0 && ep_rank >= 0)
        pos->ep_square = uint8_t(make_square(ep_file, ep_rank));

    bool repaired = repair_castling(pos);
    compute_keys(pos, &pos->key, &pos->pawn_key);
    if (repaired) {
        char line[512];
        send_line(format_line(line, sizeof line, "Illegal EPD - %s", p));
        return -1;
    }
    return 0;
}

int set_position(Position* pos, const char* text)
{
    pos->game_ply = 0;
    pos->search_ply = 1;
    pos->last_move = 0;
    return read_fen(pos, text);
}

void write_fen(const Position* pos, char* text)
{
    const char* digits = "0123456789-PNBRQK-onbrqk";
    char* out = text;
    for (int rank = 7; rank >= 0; rank--) {
        int run = 0;
        for (int file = 0; file < 8; file++) {
            int code = pos->board[make_square(file, rank)];
            if (!code) {
                run++;
                continue;
            }
            if (run)
                *out++ = digits[run];
            run = 0;
            *out++ = piece_side(code) == WHITE ? " PNBRQK"[piece_type(code)] : " pnbrqk"[piece_type(code)];
        }
        if (run)
            *out++ = digits[run];
        if (rank)
            *out++ = '/';
    }
    *out++ = ' ';
    *out++ = pos->side == WHITE ? 'w' : 'b';
    *out++ = ' ';
    if (!pos->castling)
        *out++ = '-';
    const char* letters = "KQkq";
    for (int i = 0; i < 4; i++)
        if (pos->castling & (1 << i))
            *out++ = letters[i];
    *out++ = ' ';
    if (pos->ep_square == NO_SQUARE) {
        *out++ = '-';
    } else {
        *out++ = char('a' + file_of(pos->ep_square));
        *out++ = char('1' + rank_of(pos->ep_square));
    }
    *out = 0;
}

const char* position_problem(const Position* pos)
{
    for (int s = 0; s < 2; s++) {
        if (popcount(pos->pieces[s][KING]) != 1)
            return "each side needs exactly one king";
        int pawns = popcount(pos->pieces[s][PAWN]);
        int extra = 0;
        const int usual[7] = {0, 8, 2, 2, 2, 1, 1};
        for (int t = KNIGHT; t <= QUEEN; t++)
            if (popcount(pos->pieces[s][t]) > usual[t])
                extra += popcount(pos->pieces[s][t]) - usual[t];
        if (pawns > 8 || extra > 8 - pawns || popcount(pos->pieces[s][0]) > 16)
            return "too many men";
    }
    if (all_pawns(pos) & (RANK_1 | RANK_8))
        return "pawn on the first or last rank";
    if (in_check(pos, pos->side ^ 1))
        return "the side not to move is in check";
    if (pos->ep_square != NO_SQUARE) {
        int ep = pos->ep_square, s = pos->side;
        int victim = ep - PAWN_STEP[s], origin = ep + PAWN_STEP[s];
        if (rank_of(ep) != (s == WHITE ? 5 : 2) || pos->board[ep] || pos->board[origin]
            || pos->board[victim] != piece_code(PAWN, s ^ 1))
            return "bad en-passant square";
    }
    return nullptr;
}
