// The opening-book prober on any book file (the bytes after a short header),
// through book_probe in both dialects and the reader of one position's
// entries, on a position the header chooses; the header can give entries
// the keys of that position or of a few fixed ones, sorted or not, since
// random keys would never meet it. The prober must read inside its buffers,
// return only entries of the asked key, and answer with a playable move or none.
// fuzz-test-runs: 4000
#include "board/fen.h"
#include "board/legality.h"
#include "board/zobrist.h"
#include "book/book_key.h"
#include "book/book_probe.h"
#include "fuzz_support.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace
{

constexpr const char* BOOK_FILE = "fuzz.bin";

// Positions a book holds, with castling rights, en-passant squares and an
// under-promotion among their moves.
const char* const FENS[] = {START_FEN,
                            "rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq e3 0 1",
                            "rnbqkbnr/ppp1p1pp/8/3pPp2/8/8/PPPP1PPP/RNBQKBNR w KQkq f6 0 3",
                            "rnbqk1nr/ppp2ppp/8/4P3/1BP5/8/PP2KpPP/RN1Q1BNR b kq - 1 7",
                            "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1",
                            "8/2k5/8/8/8/8/5K2/7R w - - 0 1"};
constexpr int FEN_COUNT = int(sizeof FENS / sizeof FENS[0]);

uint64_t fixed_keys[FEN_COUNT];
Game game;

// Gives whole entries the probed key or a fixed one as their first bytes
// say; with `sorted` the keys are then put in ascending order, each entry
// keeping its move and weight.
void rekey(std::vector<unsigned char>* book, uint64_t key, bool sorted)
{
    size_t entries = book->size() / BOOK_ENTRY_SIZE;
    std::vector<uint64_t> keys;
    for (size_t i = 0; i < entries; i++) {
        unsigned char* e = book->data() + i * BOOK_ENTRY_SIZE;
        BookEntry entry;
        decode_book_entry(e, &entry);
        int how = e[0] % 4;
        keys.push_back(how < 2 ? key : how == 2 ? fixed_keys[e[1] % FEN_COUNT] : entry.key);
    }
    if (sorted)
        std::sort(keys.begin(), keys.end());
    for (size_t i = 0; i < entries; i++)
        for (int b = 0; b < 8; b++)
            (*book)[i * BOOK_ENTRY_SIZE + size_t(b)] = uint8_t(keys[i] >> (56 - 8 * b));
}

void check_entries(uint64_t key, int variety, uint32_t draw)
{
    BookEntry entries[MAX_BOOK_MOVES];
    int count = read_book_moves(BOOK_FILE, key, entries);
    if (count < 0 || count > MAX_BOOK_MOVES)
        fuzz_fail("the book reader returned an impossible entry count");
    for (int i = 0; i < count; i++) {
        if (entries[i].key != key)
            fuzz_fail("the book reader returned an entry of another key");
        book_move_to_move(entries[i].move);
    }
    BookRoulette r;
    if (count == 0)
        return;
    spin_book_roulette(entries, count, variety, draw, &r);
    if (r.selected < 0 || r.selected >= count || r.sum < 0 || r.total < 0)
        fuzz_fail("the roulette chose no entry or summed below zero");
}

void check_probe(Position* pos, const BookOptions& options)
{
    Move m = book_probe(pos, BOOK_FILE, options);
    if (!m)
        return;
    if (!is_legal_move(pos, m))
        fuzz_fail("the book answered with a move that cannot be played here");
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    fuzz_silence_stdout();
    fuzz_enter_scratch_dir();
    init_zobrist();
    for (int i = 0; i < FEN_COUNT; i++) {
        set_position(game_init(&game), FENS[i]);
        fixed_keys[i] = book_key(&game.pos);
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    // Header: the position (one of the fixed ones, or a FEN line that
    // follows), the flags and the variety; the rest is the book.
    if (size < 3)
        return 0;
    int which = data[0] % (FEN_COUNT + 1), flags = data[1], variety = data[2] % 101;
    size_t used = 3;
    std::string line = which < FEN_COUNT ? FENS[which] : "";
    while (which == FEN_COUNT && used < size && data[used] != '\n' && line.size() < 100)
        line += char(data[used++]);
    Position* pos = game_init(&game);
    set_position(pos, line.c_str());
    if (position_problem(pos))
        set_position(pos, START_FEN);

    std::vector<unsigned char> book(data + used, data + size);
    if (flags & 1)
        rekey(&book, book_key(pos), flags & 2);
    FILE* f = std::fopen(BOOK_FILE, "wb");
    // An empty book is a fair input; fwrite may not be handed its null data.
    if (!f || (!book.empty() && std::fwrite(book.data(), 1, book.size(), f) != book.size()) || std::fclose(f) != 0)
        fuzz_fail("cannot write the book file");

    // The listing in either dialect, and the quiet probe of the search.
    std::srand(unsigned(flags));
    bool console = !(flags >> 2 & 1);
    check_probe(pos, {variety, bool(flags & 8), console});
    check_probe(pos, {variety, !(flags & 8), console});
    uint32_t draw = uint32_t(data[size - 1] * 4 + data[size - 2]) % 1000;
    check_entries(book_key(pos), variety, draw);
    check_entries(fixed_keys[(flags >> 4) % FEN_COUNT], variety, draw);
    return 0;
}
