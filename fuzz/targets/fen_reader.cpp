// The FEN, EPD and move readers on any text. The first line is read as a
// FEN (and as an EPD record); a position accepted as playable must be
// consistent, read back the same from the FEN written for it, and survive
// make and unmake of every legal move and of move codes made up from the
// rest of the input that the pseudo-legality test lets pass. Words of the
// rest read as console moves must name legal moves, and every written form
// of a legal move must read back as that move.
// fuzz-test-runs: 20000
#include "board/attack_queries.h"
#include "board/epd.h"
#include "board/fen.h"
#include "board/gives_check.h"
#include "board/legality.h"
#include "board/makemove.h"
#include "board/movegen.h"
#include "board/notation.h"
#include "board/position_check.h"
#include "board/see.h"
#include "eval/eval_cache.h"
#include "eval/evaluate.h"
#include "eval/params.h"
#include "fuzz_support.h"

#include <cstring>
#include <sstream>
#include <string>

namespace
{

Game game, again;
EvalCaches caches;

void check(const Position* pos, const char* when)
{
    if (*position_fault(pos))
        fuzz_fail((std::string(when) + ": " + position_fault(pos)).c_str());
}

void make_and_unmake(Position* pos, Move m)
{
    uint64_t key = pos->key;
    bool checks = gives_check(pos, m, check_info(pos));
    int mover = pos->side, from = move_from(m), to = move_to(m);
    bool legal = is_legal(pos, mover, m);
    bool castles = piece_type(pos->board[from]) == KING && (to == from + 2 || to == from - 2);
    make_move(pos, m);
    check(pos, "after make");
    // Castling is also refused for the squares the king passes, which the
    // position after the move does not show.
    if (legal ? in_check(pos, mover) : !castles && !in_check(pos, mover))
        fuzz_fail("is_legal disagrees with the position after the move");
    if (legal && checks != in_check(pos, pos->side))
        fuzz_fail("gives_check disagrees with the position after the move");
    unmake_move(pos);
    check(pos, "after unmake");
    if (pos->key != key)
        fuzz_fail("unmake did not restore the key");
}

void exercise(Position* pos, const std::string& rest)
{
    char fen[128];
    write_fen(pos, fen);
    Position* back = game_init(&again);
    set_position(back, fen);
    if (back->key != pos->key || std::memcmp(back->board, pos->board, sizeof pos->board)
        || back->castling != pos->castling)
        fuzz_fail("the FEN written for a position reads back as another");

    MoveEntry list[MAX_MOVES];
    int n = gen_legal(pos, list);
    for (int i = 0; i < n; i++) {
        Move m = list[i].move;
        if (!is_pseudo_legal(pos, m))
            fuzz_fail("a generated move is not pseudo-legal");
        char forms[4][MOVE_TEXT_SIZE];
        move_texts(pos, m, forms[0], forms[1], forms[2], forms[3]);
        for (int f = 0; f < 4; f++) {
            Move read = 0;
            int ok = parse_move(pos, forms[f], &read);
            if ((ok && read != m) || (f == 0 && !ok))
                fuzz_fail("a written move form does not read back as its move");
        }
        if (list[i].captured || is_promotion(m))
            swap(pos, pos->side, move_from(m), move_to(m));
        make_and_unmake(pos, m);
    }
    // Move codes made up from the input, as a book or another position's
    // table entry would offer them.
    for (size_t k = 0; k + 1 < rest.size() && k < 16; k += 2) {
        Move m = Move(uint8_t(rest[k]) << 8 | uint8_t(rest[k + 1]));
        if (m && m != MOVE_END && is_pseudo_legal(pos, m))
            make_and_unmake(pos, m);
    }
    int16_t threats[2];
    evaluate(pos, &caches, pos->side, 1, 0, threats);
    // Words of the rest as console moves, each played when it reads.
    std::istringstream words(rest);
    std::string word;
    for (int i = 0; i < 64 && words >> word && pos->game_ply < MAX_GAME_PLY - 2; i++) {
        Move m = 0;
        if (!parse_move(pos, word.c_str(), &m))
            continue;
        if (!is_legal_move(pos, m))
            fuzz_fail("the parser read text as a move that is not legal");
        make_move(pos, m);
        check(pos, "after a parsed move");
    }
}

void read_one(const char* text, const std::string& rest)
{
    Position* pos = game_init(&game);
    set_position(pos, text);
    char fen[128];
    write_fen(pos, fen); // even of a position that cannot be played
    if (!position_problem(pos)) {
        check(pos, "after reading");
        exercise(pos, rest);
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    fuzz_silence_stdout();
    init_zobrist();
    init_evaluation();
    init_eval_params(0);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    // The text ends at the first line end or NUL, as the readers' callers
    // hand it over.
    size_t len = 0;
    while (len < size && data[len] && data[len] != '\n')
        len++;
    std::string text(reinterpret_cast<const char*>(data), len);
    std::string rest(reinterpret_cast<const char*>(data) + std::min(len + 1, size), size - std::min(len + 1, size));
    read_one(text.c_str(), rest);
    EpdFields fields;
    std::memset(&fields, 0, sizeof fields);
    split_epd(text.c_str(), &fields);
    if (std::strcmp(fields.fen, text.c_str()))
        read_one(fields.fen, rest);
    return 0;
}
