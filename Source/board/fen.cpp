#include "board/fen.h"

#include "board/attack_queries.h"
#include "board/notation.h"
#include "board/zobrist.h"
#include "output/output.h"

#include <cstring>

namespace
{

// Per character of the placement field: the piece code (0 for anything
// else) and how many files it advances (a digit its value, a man one). The
// tuner and the EPD tools read millions of positions, and a table lets the
// reader go through a field without a branch per character.
struct PlacementLetters {
    uint8_t code[256] = {};
    uint8_t files[256] = {};
    constexpr PlacementLetters()
    {
        const char* white = " PNBRQK";
        const char* black = " pnbrqk";
        for (int t = PAWN; t <= KING; t++) {
            code[uint8_t(white[t])] = uint8_t(piece_code(t, WHITE));
            code[uint8_t(black[t])] = uint8_t(piece_code(t, BLACK));
            files[uint8_t(white[t])] = files[uint8_t(black[t])] = 1;
        }
        for (int d = 1; d <= 8; d++)
            files['0' + d] = uint8_t(d);
    }
};
constexpr PlacementLetters PLACEMENT_LETTERS;

// With several kings of a side (rejected later), the one read last counts:
// the rightmost on the lowest rank. Found once at the end rather than with a
// test per character, which the reader's loop cannot predict.
uint8_t last_read(Bitboard kings)
{
    if (!kings)
        return uint8_t(NO_SQUARE);
    Bitboard lowest_rank = RANK_1 << (8 * rank_of(lsb(kings)));
    return uint8_t(msb(kings & lowest_rank));
}

// Reads the placement field into the board and the piece sets; returns the
// first character after it. A man standing after the eighth file of its
// rank, or below the first rank, in a malformed field is dropped.
const char* read_placement(Position* pos, const char* p)
{
    // Index 64 takes what falls off the board; set 0 what is not a man.
    uint8_t cells[65] = {};
    Bitboard by_code[16] = {};
    int file = 0, rank = 7;
    for (unsigned char c; (c = uint8_t(*p)) && c != ' '; p++) {
        int code = PLACEMENT_LETTERS.code[c];
        bool on_board = file < 8 && rank >= 0;
        int sq = on_board ? make_square(file, rank) : 64;
        cells[sq] = uint8_t(code);
        Bitboard here = on_board ? bit(sq) : 0;
        by_code[code] |= here;
        bool slash = c == '/';
        file = slash ? 0 : file + PLACEMENT_LETTERS.files[c];
        rank -= slash;
    }
    std::memcpy(pos->board, cells, sizeof pos->board);
    for (int side = WHITE; side <= BLACK; side++) {
        Bitboard all = 0;
        uint32_t signature = 0;
        int phase = 0;
        for (int type = PAWN; type <= KING; type++) {
            Bitboard men = by_code[piece_code(type, side)];
            pos->pieces[side][type] = men;
            all |= men;
            signature += uint32_t(popcount(men)) * SIGNATURE_STEP[type];
            phase += popcount(men) * PHASE_WEIGHT[type];
        }
        pos->pieces[side][0] = all;
        pos->pieces[side][7] = 0;
        pos->material_signature[side] = signature;
        pos->phase_material[side] = uint16_t(phase);
        pos->king_square[side] = last_read(by_code[piece_code(KING, side)]);
    }
    return p;
}

const char* skip_blanks(const char* p)
{
    while (*p == ' ')
        p++;
    return p;
}

// The castling field: "KQkq" (in Chess960 the outermost rook on that side
// of the king) or the rooks' files ("HAha", as Shredder writes them). A
// right whose king and rook are not where it needs them is dropped; outside
// Chess960 only the standard squares (king on e1 or e8, rooks in the
// corners) can castle. Returns whether a right had to be dropped.
bool read_castling(Position* pos, const char* p)
{
    static constexpr uint8_t CORNERS[4] = {7, 0, 63, 56};
    std::memcpy(pos->castle_rook, CORNERS, sizeof CORNERS);
    pos->castle_king[WHITE] = uint8_t(KING_START[WHITE]);
    pos->castle_king[BLACK] = uint8_t(KING_START[BLACK]);
    pos->castling = 0;
    bool dropped = false;
    for (; *p && *p != ' '; p++) {
        char c = *p;
        bool upper = c >= 'A' && c <= 'Z';
        char u = upper ? c : char(c - 'a' + 'A');
        if (u != 'K' && u != 'Q' && (u < 'A' || u > 'H'))
            continue;
        int side = upper ? WHITE : BLACK;
        int back = side == WHITE ? 0 : 56;
        int king = pos->king_square[side];
        int rook_code = piece_code(ROOK, side);
        int rook = -1;
        bool king_side = u == 'K';
        if (king < back || king > back + 7 || pos->board[king] != piece_code(KING, side)) {
            dropped = true;
            continue;
        }
        if (u == 'K') {
            for (int f = 7; f > file_of(king) && rook < 0; f--)
                if (pos->board[back + f] == rook_code)
                    rook = back + f;
        } else if (u == 'Q') {
            for (int f = 0; f < file_of(king) && rook < 0; f++)
                if (pos->board[back + f] == rook_code)
                    rook = back + f;
        } else {
            rook = back + (u - 'A');
            king_side = file_of(rook) > file_of(king);
            if (pos->board[rook] != rook_code || rook == king)
                rook = -1;
        }
        bool standard = king == KING_START[side] && rook == back + (king_side ? 7 : 0);
        if (rook < 0 || (!pos->chess960 && !standard)) {
            dropped = true;
            continue;
        }
        int right = 2 * side + (king_side ? 0 : 1);
        pos->castling |= uint8_t(1 << right);
        pos->castle_rook[right] = uint8_t(rook);
        pos->castle_king[side] = uint8_t(king);
    }
    return dropped;
}

} // namespace

int read_fen(Position* pos, const char* text)
{
    pos->ep_square = NO_SQUARE;
    pos->fifty = 0;
    const char* p = read_placement(pos, text);
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
    bool repaired = read_castling(pos, p);
    while (*p && *p != ' ')
        p++;
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
    for (int i = 0; i < 4; i++) {
        if (!(pos->castling & (1 << i)))
            continue;
        // Chess960: a rook that is not the outermost on its side is named by
        // its file.
        int rook = pos->castle_rook[i], side = i / 2, back = side == WHITE ? 0 : 56;
        bool outermost = true;
        for (int f = i % 2 == 0 ? file_of(rook) + 1 : 0; f < (i % 2 == 0 ? 8 : file_of(rook)); f++)
            outermost &= pos->board[back + f] != piece_code(ROOK, side);
        if (pos->chess960 && !outermost)
            *out++ = char((side == WHITE ? 'A' : 'a') + file_of(rook));
        else
            *out++ = letters[i];
    }
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
