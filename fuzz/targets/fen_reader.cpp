// The FEN and EPD readers on any text: whatever the text, reading it must
// stay inside the position record; a position the reader accepts as playable
// must be consistent, must read back the same from the FEN written for it,
// and must survive move generation, make and unmake of every legal move (and
// of moves made up from the input that the pseudo-legality test lets pass),
// the check test, exchange evaluation and the static evaluation.
// fuzz-test-runs: 20000
#include "board/attack_queries.h"
#include "board/epd.h"
#include "board/fen.h"
#include "board/gives_check.h"
#include "board/legality.h"
#include "board/makemove.h"
#include "board/movegen.h"
#include "board/position_check.h"
#include "board/see.h"
#include "board/zobrist.h"
#include "eval/eval_cache.h"
#include "eval/evaluate.h"
#include "eval/params.h"
#include "fuzz_input.h"
#include "fuzz_support.h"

#include <cstring>
#include <string>

namespace
{

Game game, again;
EvalCaches caches;

bool same_position(const Position* a, const Position* b)
{
    return a->key == b->key && a->pawn_key == b->pawn_key && a->side == b->side && a->castling == b->castling
           && a->ep_square == b->ep_square && !std::memcmp(a->board, b->board, sizeof a->board)
           && !std::memcmp(a->pieces, b->pieces, sizeof a->pieces);
}

void check_consistent(const Position* pos, const char* when)
{
    const char* fault = position_fault(pos);
    if (*fault) {
        std::string what = std::string(when) + ": " + fault;
        fuzz_fail(what.c_str());
    }
}

// One legal or pseudo-legal move made and taken back.
void make_and_unmake(Position* pos, Move m)
{
    uint64_t key = pos->key;
    CheckInfo ci = check_info(pos);
    bool checks = gives_check(pos, m, ci);
    int mover = pos->side;
    bool legal = is_legal(pos, mover, m);
    int from = move_from(m), to = move_to(m);
    bool castles = piece_type(pos->board[from]) == KING && (to == from + 2 || to == from - 2);
    make_move(pos, m);
    check_consistent(pos, "after make");
    // Castling is also refused for the squares the king passes, which the
    // position after the move does not show.
    if (legal ? in_check(pos, mover) : !castles && !in_check(pos, mover))
        fuzz_fail("is_legal disagrees with the position after the move");
    if (legal && checks != in_check(pos, pos->side))
        fuzz_fail("gives_check disagrees with the position after the move");
    unmake_move(pos);
    check_consistent(pos, "after unmake");
    if (pos->key != key)
        fuzz_fail("unmake did not restore the key");
}

void exercise(Position* pos, FuzzInput* rest)
{
    check_consistent(pos, "after reading");
    char fen[128];
    write_fen(pos, fen);
    Position* back = game_init(&again);
    set_position(back, fen);
    if (!same_position(pos, back))
        fuzz_fail("the FEN written for a position reads back as another");

    MoveEntry list[MAX_MOVES];
    int n = gen_legal(pos, list);
    for (int i = 0; i < n; i++) {
        Move m = list[i].move;
        if (!is_pseudo_legal(pos, m))
            fuzz_fail("a generated move is not pseudo-legal");
        if (list[i].captured || is_promotion(m))
            swap(pos, pos->side, move_from(m), move_to(m));
        make_and_unmake(pos, m);
    }
    // Move codes made up from the input, as a table entry of another
    // position would offer them.
    for (int k = 0; k < 8 && input_left(rest); k++) {
        Move m = Move(take_byte(rest) << 8 | take_byte(rest));
        if (m && m != MOVE_END && is_pseudo_legal(pos, m))
            make_and_unmake(pos, m);
    }
    for (int sq = 0; sq < 64; sq++)
        if (pos->board[sq])
            swap(pos, piece_side(pos->board[sq]) ^ 1, NO_SQUARE, sq);
    int16_t threats[2];
    evaluate(pos, &caches, pos->side, 1, 0, threats);
}

void read_one(const char* text, FuzzInput* rest)
{
    Position* pos = game_init(&game);
    set_position(pos, text);
    char fen[128];
    write_fen(pos, fen); // even of a position that cannot be played
    if (!position_problem(pos))
        exercise(pos, rest);
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
    // hand it over; the bytes after it steer the made-up moves.
    size_t len = 0;
    while (len < size && data[len] && data[len] != '\n')
        len++;
    std::string text(reinterpret_cast<const char*>(data), len);
    FuzzInput rest{data, size, len < size ? len + 1 : size};

    read_one(text.c_str(), &rest);
    EpdFields fields;
    std::memset(&fields, 0, sizeof fields);
    split_epd(text.c_str(), &fields);
    if (std::strcmp(fields.fen, text.c_str()))
        read_one(fields.fen, &rest);
    return 0;
}
