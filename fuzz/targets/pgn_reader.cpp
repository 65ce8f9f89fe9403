// The PGN readers on any file: the book builder's game reader (-mkbook), the
// evaluation-comment scanner in its four variants (-scan_pgn1..4) and the
// game labeller (-label_games). They take a file name, so the input is
// written to a file in the scratch directory first. Whatever the text, the
// readers must stay inside their buffers and end; the book the builder
// writes must be whole entries in ascending key order, and the position
// counts the tools return must not be negative.
// fuzz-test-runs: 1500
#include "board/zobrist.h"
#include "book/book_builder.h"
#include "book/book_entry.h"
#include "fuzz_support.h"
#include "tools/label_games.h"
#include "tools/pgn_scan.h"

#include <cstdio>
#include <cstring>
#include <vector>

namespace
{

constexpr const char* PGN_FILE = "fuzz.pgn";
constexpr const char* BOOK_FILE = "fuzz.bin";

bool write_file(const char* name, const uint8_t* data, size_t size)
{
    FILE* f = std::fopen(name, "wb");
    if (!f)
        return false;
    bool ok = std::fwrite(data, 1, size, f) == size;
    return std::fclose(f) == 0 && ok;
}

// The book just written: whole entries, keys never falling.
void check_book(const char* name)
{
    FILE* f = std::fopen(name, "rb");
    if (!f)
        fuzz_fail("the builder reported a book it did not write");
    std::vector<unsigned char> bytes;
    unsigned char chunk[4096];
    size_t got;
    while ((got = std::fread(chunk, 1, sizeof chunk, f)) > 0)
        bytes.insert(bytes.end(), chunk, chunk + got);
    std::fclose(f);
    if (bytes.size() % BOOK_ENTRY_SIZE)
        fuzz_fail("the built book ends inside an entry");
    uint64_t previous = 0;
    for (size_t at = 0; at < bytes.size(); at += BOOK_ENTRY_SIZE) {
        BookEntry e;
        decode_book_entry(&bytes[at], &e);
        if (e.key < previous)
            fuzz_fail("the built book is out of key order");
        previous = e.key;
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    fuzz_silence_stdout();
    fuzz_enter_scratch_dir();
    init_zobrist();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (!write_file(PGN_FILE, data, size))
        fuzz_fail("cannot write the input file");

    if (build_book(PGN_FILE, BOOK_FILE))
        check_book(BOOK_FILE);
    for (int variant = 1; variant <= 4; variant++)
        if (scan_pgn_files(PGN_FILE, variant, "scan.out", "scan.side") < 0)
            fuzz_fail("the scanner could not open its files");
    if (label_games(PGN_FILE) < 0)
        fuzz_fail("the labeller could not open its files");
    return 0;
}
