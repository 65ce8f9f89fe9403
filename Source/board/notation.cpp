#include "board/notation.h"

#include "board/attack_queries.h"
#include "board/attacks.h"
#include "board/legality.h"
#include "board/movegen.h"
#include "output/output.h"

#include <cctype>
#include <cstring>

namespace
{

const char* PIECE_LETTERS = " PNBRQK";

char promotion_letter(Move move)
{
    int t = promotion_type(move);
    return t ? PIECE_LETTERS[t] : 0;
}

// Men of `side` and `type` other than the one on `from` that reach `to`.
Bitboard rivals(const Position* pos, int side, int type, int from, int to)
{
    Bitboard occ = occupancy(pos) | bit(to);
    Bitboard reach = type == KNIGHT   ? KNIGHT_ATTACKS[to]
                     : type == BISHOP ? bishop_attacks(to, occ)
                     : type == ROOK   ? rook_attacks(to, occ)
                     : type == QUEEN  ? queen_attacks(to, occ)
                                      : KING_ATTACKS[to];
    return reach & pos->pieces[side][type] & ~bit(from);
}

bool gives_check_mark(const Position* pos, Move move)
{
    Position after = *pos;
    int from = move_from(move), to = move_to(move);
    int side = pos->side;
    int code = pos->board[from];
    int type = is_promotion(move) ? promotion_type(move) : piece_type(code);
    after.pieces[side][piece_type(code)] &= ~bit(from);
    after.pieces[side][type] |= bit(to);
    Bitboard mask = (occupancy(pos) & ~bit(from)) | bit(to);
    // Only the mover's men matter; its own all-men board is not consulted.
    return least_attacker(&after, pos->king_square[side ^ 1], side, mask) != NO_SQUARE;
}

void append(char* text, const char* suffix)
{
    std::strcat(text, suffix);
}

void cut_at_plus(char* text)
{
    char* plus = std::strchr(text, '+');
    if (plus)
        *plus = 0;
}

} // namespace

void move_to_coord(Move move, char* text)
{
    if (move == 0) {
        std::strcpy(text, "null");
        return;
    }
    std::memcpy(text, SQUARE_NAMES[move_from(move)], 2);
    std::memcpy(text + 2, SQUARE_NAMES[move_to(move)], 2);
    char* end = text + 4;
    if (char letter = promotion_letter(move)) {
        if (protocol_mode == 1) {
            *end++ = char(std::tolower(letter));
        } else {
            *end++ = '=';
            *end++ = letter;
        }
    }
    *end = 0;
}

void move_texts(const Position* pos, Move move, char* coord, char* san, char* san_file, char* san_rank)
{
    int from = move_from(move), to = move_to(move);
    int code = pos->board[from];
    int type = piece_type(code);
    int side = pos->side;
    const char* to_name = SQUARE_NAMES[to];
    char from_file[2] = {char('a' + file_of(from)), 0};
    char from_rank[2] = {char('1' + rank_of(from)), 0};

    std::memcpy(coord, SQUARE_NAMES[from], 2);
    std::memcpy(coord + 2, to_name, 2);
    coord[4] = 0;
    san[0] = san_file[0] = san_rank[0] = 0;

    if (type == KING && (to == from + 2 || to == from - 2)) {
        bool king_side = to == from + 2;
        std::strcpy(san, king_side ? "o-o" : "o-o-o");
        std::strcpy(san_file, king_side ? "O-O" : "O-O-O");
        std::strcpy(san_rank, king_side ? "0-0" : "0-0-0");
    } else if (type != PAWN) {
        char letter[2] = {PIECE_LETTERS[type], 0};
        const char* x = pos->board[to] ? "x" : "";
        Bitboard others = rivals(pos, side, type, from, to);
        std::strcpy(san, letter);
        // A rival on the same file is told apart by the rank, and one on the
        // same rank by the file; other cases keep the plain form.
        if (others & file_mask(file_of(from)))
            append(san, from_rank);
        else if (others & rank_mask(rank_of(from)))
            append(san, from_file);
        append(san, x);
        append(san, to_name);
        std::strcpy(san_file, letter);
        append(san_file, from_file);
        append(san_file, x);
        append(san_file, to_name);
        std::strcpy(san_rank, letter);
        append(san_rank, from_rank);
        append(san_rank, x);
        append(san_rank, to_name);
    } else {
        if (pos->board[to] || to == pos->ep_square) {
            std::strcpy(san, from_file);
            append(san, "x");
            append(san, to_name);
            std::strcpy(san_file, from_file);
            san_file[1] = char('a' + file_of(to));
            san_file[2] = 0;
        } else {
            std::strcpy(san, to_name);
        }
        if (char letter = promotion_letter(move)) {
            char suffix[3] = {'=', letter, 0};
            append(coord, suffix);
            append(san, suffix);
            append(san_file, suffix);
        }
    }
    if (gives_check_mark(pos, move)) {
        append(coord, "+");
        append(san, "+");
        append(san_file, "+");
        append(san_rank, "+");
    }
}

int parse_move(const Position* pos, const char* text, Move* move)
{
    char input[MOVE_TEXT_SIZE * 2];
    std::strncpy(input, text, sizeof input - 3);
    input[sizeof input - 3] = 0;
    cut_at_plus(input);
    size_t len = std::strlen(input);
    if (len == 0)
        return 0;
    char last = char(std::toupper(input[len - 1]));
    if (last == 'B' || last == 'N' || last == 'Q' || last == 'R') {
        if (len >= 2 && input[len - 2] == '=') {
            input[len - 1] = last;
        } else {
            input[len - 1] = '=';
            input[len] = last;
            input[len + 1] = 0;
        }
    }
    for (char* c = input; *c; c++)
        if (*c == 'O' || *c == '0')
            *c = 'o';

    MoveEntry list[MAX_MOVES];
    gen_all(pos, list);
    int matches = 0;
    Move found = 0;
    for (MoveEntry* e = list; e->move != MOVE_END; e++) {
        if (e->move == 0 || !is_legal(pos, pos->side, e->move))
            continue;
        char forms[4][MOVE_TEXT_SIZE];
        move_texts(pos, e->move, forms[0], forms[1], forms[2], forms[3]);
        for (char* form : forms) {
            cut_at_plus(form);
            if (std::strcmp(form, input) == 0) {
                matches++;
                found = e->move;
                break;
            }
        }
    }
    if (matches == 1) {
        *move = found;
        return 1;
    }
    if (matches == 2)
        send_line("ambiguous move");
    return 0;
}
