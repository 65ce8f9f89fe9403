// What the tablebase tests share: a board to set positions on, the probe
// answers of the shared data, random positions and copies of the tables.
#pragma once

#include "board/position.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct TestBoard {
    std::unique_ptr<Game> game{new Game()};
    // The position from FEN (counters ignored), failing the test when it is
    // not playable; `fifty` is the fifty-move counter.
    Position* set(const std::string& fen, int fifty = 0);
};

struct ProbeAnswer {
    std::string fen;
    int wdl, dtz;
};

std::vector<ProbeAnswer> load_probe_answers();

// `count` playable positions of a material ("KRvKP": White's men, then
// Black's), either side to move, the same for the same seed.
std::vector<std::string> random_positions(const std::string& material, int count, unsigned seed);

// The shared 3- and 4-man tables.
std::string shared_tables();

// A fresh temporary directory (gone when the tests end) holding copies of the named shared files
// ("KQvK.rtbw", or "KQvK" for both of its files), each cut to at most
// `keep` bytes.
std::string directory_with(const std::vector<std::string>& files, size_t keep = SIZE_MAX);
void write_file(const std::string& path, const std::vector<uint8_t>& bytes);
