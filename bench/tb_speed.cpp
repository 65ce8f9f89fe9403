// Tablebase speed: win/draw/loss probes per second over the shared probe
// positions with the tables warm, on one thread, and the time tb_init takes
// to find the tables of a directory. Medians of several rounds.
#include "board/fen.h"
#include "board/zobrist.h"
#include "tablebase/tbprobe.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <fstream>
#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

namespace
{

constexpr int ROUNDS = 7;
constexpr int PASSES = 400; // passes over the positions in one timed round

double seconds_of(clockid_t clock)
{
    timespec ts;
    clock_gettime(clock, &ts);
    return double(ts.tv_sec) + double(ts.tv_nsec) * 1e-9;
}

// Wall time, and the CPU time of this thread: on a busy machine the second
// still tells what a probe costs.
double now_seconds()
{
    return seconds_of(CLOCK_MONOTONIC);
}
double cpu_seconds()
{
    return seconds_of(CLOCK_THREAD_CPUTIME_ID);
}

double median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

// tb_init reports what it found on stdout; the rounds keep it quiet.
void init_quietly(const char* path)
{
    std::fflush(stdout);
    int saved = dup(1);
    int null = open("/dev/null", O_WRONLY);
    dup2(null, 1);
    tb_init(path);
    std::fflush(stdout);
    dup2(saved, 1);
    close(null);
    close(saved);
}

} // namespace

int main(int argc, char** argv)
{
    std::string data = argc > 1 ? argv[1] : "../shared/data";
    std::string tables = data + "/syzygy";
    std::ifstream in(data + "/syzygy_probes.epd");
    init_zobrist();
    auto game = std::make_unique<Game>();
    Position* pos = game_init(game.get());
    std::vector<Position> positions;
    for (std::string line; std::getline(in, line);) {
        size_t id = line.find(" id ");
        if (id == std::string::npos)
            continue;
        set_position(pos, line.substr(0, id).c_str());
        positions.push_back(*pos);
    }
    if (positions.empty()) {
        std::fprintf(stderr, "no positions in %s/syzygy_probes.epd\n", data.c_str());
        return 1;
    }

    // Finding the tables.
    std::vector<double> init_ms, init_cpu_ms;
    for (int r = 0; r < ROUNDS; r++) {
        double start = now_seconds(), cpu_start = cpu_seconds();
        init_quietly(tables.c_str());
        init_ms.push_back(1000 * (now_seconds() - start));
        init_cpu_ms.push_back(1000 * (cpu_seconds() - cpu_start));
    }
    if (!tb_largest) {
        std::fprintf(stderr, "no tables in %s\n", tables.c_str());
        return 1;
    }

    // One pass opens every table; the timed rounds find them warm.
    long long sum = 0;
    for (const Position& p : positions)
        sum += tb_probe_wdl(&p, 0);
    std::vector<double> rates, cpu_rates;
    double probes = double(PASSES) * double(positions.size());
    for (int r = 0; r < ROUNDS; r++) {
        double start = now_seconds(), cpu_start = cpu_seconds();
        for (int pass = 0; pass < PASSES; pass++)
            for (const Position& p : positions)
                sum += tb_probe_wdl(&p, 0);
        rates.push_back(probes / (now_seconds() - start));
        cpu_rates.push_back(probes / (cpu_seconds() - cpu_start));
    }
    std::printf("tb_init of %s: %.2f ms, %.2f ms of CPU (medians of %d)\n", tables.c_str(), median(init_ms),
                median(init_cpu_ms), ROUNDS);
    std::printf("tb_probe_wdl, %zu positions, warm, one thread: %.0f probes/s, %.0f per CPU second "
                "(medians of %d rounds of %.0f probes) [checksum %lld]\n",
                positions.size(), median(rates), median(cpu_rates), ROUNDS, probes, sum);
    return 0;
}
