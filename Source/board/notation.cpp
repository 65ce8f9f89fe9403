#include "board/notation.h"

#include "board/attack_queries.h"
#include "board/attacks.h"
#include "board/legality.h"
#include "board/movegen.h"
#include "output/output.h"

#include <cctype>
#include <cstring>
#include <initializer_list>

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

// Writes a text from the front; the caller ends it.
struct TextEnd {
    char* end;
    void put(char c) { *end++ = c; }
    void put(const char* text)
    {
        while (*text)
            *end++ = *text++;
    }
};

void cut_at_plus(char* text)
{
    char* plus = std::strchr(text, '+');
    if (plus)
        *plus = 0;
}

// Could any text of `move` read as `input` (already in the parser's form:
// check marks cut, promotion as "=X", castling zeros and capitals as "o")?
// A move that fails this test cannot match, so the parser skips its
// legality test and its texts. What the texts look like:
// - the coordinate form starts with the from-square and holds the to-square;
// - a piece's SAN forms start with its letter and end with the to-square;
// - a pawn's SAN forms start with a file letter and hold the to-square,
//   except the short capture ("ed", "ed=Q") and, for a push, the file form,
//   which is only the promotion suffix ("=Q");
// - castling reads "o-o" or "o-o-o" (its capital and zero forms cannot
//   match, since the input holds neither).
bool could_read_as(const Position* pos, Move move, const char* input, Bitboard named)
{
    int from = move_from(move), to = move_to(move);
    int type = piece_type(pos->board[from]);
    char first = input[0];
    if (first == 'o')
        return type == KING && (to == from + 2 || to == from - 2 || is_castle_960(pos, move));
    if (first == '=')
        return type == PAWN;
    bool names_to = named & bit(to);
    if (first >= 'a' && first <= 'h') {
        if (type == PAWN)
            return names_to || (first == 'a' + file_of(from) && input[1] == 'a' + file_of(to));
        return names_to && first == 'a' + file_of(from) && input[1] == '1' + rank_of(from);
    }
    return names_to && first == PIECE_LETTERS[type];
}

// Every square whose name appears somewhere in the text.
Bitboard named_squares(const char* text)
{
    Bitboard named = 0;
    for (const char* c = text; c[0] && c[1]; c++)
        if (c[0] >= 'a' && c[0] <= 'h' && c[1] >= '1' && c[1] <= '8')
            named |= bit(make_square(c[0] - 'a', c[1] - '1'));
    return named;
}

} // namespace

void move_to_coord(Move move, char* text, MoveStyle style)
{
    if (move == 0) {
        std::strcpy(text, "null");
        return;
    }
    std::memcpy(text, SQUARE_NAMES[move_from(move)], 2);
    std::memcpy(text + 2, SQUARE_NAMES[move_to(move)], 2);
    char* end = text + 4;
    if (char letter = promotion_letter(move)) {
        if (style == MOVE_STYLE_UCI) {
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
    char from_file = char('a' + file_of(from));
    char from_rank = char('1' + rank_of(from));
    TextEnd c{coord}, s{san}, f{san_file}, r{san_rank};

    c.put(SQUARE_NAMES[from]);
    c.put(to_name);
    if (type == KING && (to == from + 2 || to == from - 2 || is_castle_960(pos, move))) {
        bool king_side = to > from;
        s.put(king_side ? "o-o" : "o-o-o");
        f.put(king_side ? "O-O" : "O-O-O");
        r.put(king_side ? "0-0" : "0-0-0");
    } else if (type != PAWN) {
        char letter = PIECE_LETTERS[type];
        bool capture = pos->board[to] != 0;
        Bitboard others = rivals(pos, side, type, from, to);
        s.put(letter);
        // A rival on the same file is told apart by the rank, and one on the
        // same rank by the file; other cases keep the plain form.
        if (others & file_mask(file_of(from)))
            s.put(from_rank);
        else if (others & rank_mask(rank_of(from)))
            s.put(from_file);
        f.put(letter);
        f.put(from_file);
        r.put(letter);
        r.put(from_rank);
        for (TextEnd* t : {&s, &f, &r}) {
            if (capture)
                t->put('x');
            t->put(to_name);
        }
    } else {
        if (pos->board[to] || to == pos->ep_square) {
            s.put(from_file);
            s.put('x');
            s.put(to_name);
            f.put(from_file);
            f.put(char('a' + file_of(to)));
        } else {
            s.put(to_name);
        }
        if (char letter = promotion_letter(move)) {
            for (TextEnd* t : {&c, &s, &f}) {
                t->put('=');
                t->put(letter);
            }
        }
    }
    if (gives_check_mark(pos, move))
        for (TextEnd* t : {&c, &s, &f, &r})
            t->put('+');
    for (TextEnd* t : {&c, &s, &f, &r})
        *t->end = 0;
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

    // Only castling, a bare promotion suffix and the short pawn capture
    // ("ed") can match without naming the to-square; otherwise only the
    // moves to the squares named need to be generated.
    Bitboard named = named_squares(input);
    bool short_capture = input[0] >= 'a' && input[0] <= 'h' && input[1] >= 'a' && input[1] <= 'h';
    bool any_square = input[0] == 'o' || input[0] == '=' || short_capture;
    MoveEntry list[MAX_MOVES];
    gen_all_to(pos, any_square ? ~Bitboard(0) : named, list);
    int matches = 0;
    Move found = 0;
    for (MoveEntry* e = list; e->move != MOVE_END; e++) {
        if (e->move == 0 || !could_read_as(pos, e->move, input, named) || !is_legal(pos, pos->side, e->move))
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
