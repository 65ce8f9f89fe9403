// Book probes per second on a real book: every probe opens the file, finds
// the position by binary search, reads its moves and closes the file again.
#include "board/fen.h"
#include "board/zobrist.h"
#include "book/book_key.h"
#include "book/book_probe.h"
#include "search/clock.h"

#include <cstdio>
#include <ctime>
#include <fstream>
#include <string>
#include <vector>

namespace
{

double cpu_seconds()
{
    timespec t;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return double(t.tv_sec) + 1e-9 * double(t.tv_nsec);
}

struct Rate {
    double wall; // probes per second of elapsed time
    double cpu;  // probes per second of processor time (user and system)
};

// Probes every position in turn for about `seconds`. On a busy machine the
// elapsed time includes waiting for a processor; the processor time does not.
Rate probe_rate(const std::vector<Position>& positions, const char* book, double seconds, long long* found)
{
    const BookOptions quiet = {25, true, false};
    long long probes = 0;
    double start = now_seconds(), cpu_start = cpu_seconds(), elapsed = 0;
    while (elapsed < seconds) {
        for (const Position& p : positions)
            *found += book_probe(&p, book, quiet) != 0;
        probes += static_cast<long long>(positions.size());
        elapsed = now_seconds() - start;
    }
    return {double(probes) / elapsed, double(probes) / (cpu_seconds() - cpu_start)};
}

} // namespace

int main(int argc, char** argv)
{
    std::string book = argc > 1 ? argv[1] : "../shared/data/books/performance.bin";
    std::string list = argc > 2 ? argv[2] : "../shared/data/books/performance_probes.txt";
    init_zobrist();
    Game g;
    game_init(&g);
    std::vector<Position> in_book, not_in_book;
    std::ifstream in(list);
    for (std::string line; std::getline(in, line);) {
        size_t bar = line.find('|');
        if (bar == std::string::npos)
            continue;
        set_position(&g.pos, line.substr(0, bar).c_str());
        // An empty move list after the key: the book does not hold the position.
        bool empty = line.find_first_not_of(' ', line.rfind('|') + 1) == std::string::npos;
        (empty ? not_in_book : in_book).push_back(g.pos);
    }
    if (in_book.empty() || not_in_book.empty()) {
        std::fprintf(stderr, "no positions in %s\n", list.c_str());
        return 1;
    }
    long long found = 0;
    Rate hits = probe_rate(in_book, book.c_str(), 1.0, &found);
    Rate misses = probe_rate(not_in_book, book.c_str(), 1.0, &found);
    std::vector<Position> all = in_book;
    all.insert(all.end(), not_in_book.begin(), not_in_book.end());
    Rate mixed = probe_rate(all, book.c_str(), 2.0, &found);
    std::printf("book probes per second: in the book (%zu positions) %.0f, not in it (%zu) %.0f, mixed %.0f "
                "(%.1f us each); per second of processor time: %.0f, %.0f, %.0f [moves found %lld]\n",
                in_book.size(), hits.wall, not_in_book.size(), misses.wall, mixed.wall, 1e6 / mixed.wall, hits.cpu,
                misses.cpu, mixed.cpu, found);
    return 0;
}
