// What the tablebase tests share: boards to set positions on, the probe
// answers of the shared data and the directory of the shared tables.
#pragma once

#include "board/position.h"

#include <cstdint>
#include <string>
#include <vector>

// A position with its own move history. Every position of the tablebase
// tests is set up through here.
class TestBoard
{
  public:
    TestBoard();
    ~TestBoard();
    TestBoard(const TestBoard&) = delete;
    TestBoard& operator=(const TestBoard&) = delete;

    // Sets the position from FEN (counters ignored), failing the test when
    // it is not a playable position; `fifty` is the fifty-move counter.
    Position* set(const std::string& fen, int fifty = 0);
    // The same without failing: nullptr when the position is not playable.
    Position* try_set(const std::string& fen);

  private:
    struct Owner;
    Owner* owner_;
};

struct ProbeAnswer {
    std::string fen;
    std::string id;
    int wdl;
    int dtz;
};

std::vector<ProbeAnswer> load_probe_answers();

// The shared 3- and 4-man tables.
std::string shared_tables();

// A fresh temporary directory holding copies of the named shared files
// ("KQvK.rtbw"), each cut to at most `keep` bytes.
std::string directory_with(const std::vector<std::string>& files, size_t keep = SIZE_MAX);

// Removes a directory made for a test, with its files.
void remove_directory(const std::string& dir);

// Writes `bytes` as the file `path`.
void write_file(const std::string& path, const std::vector<uint8_t>& bytes);
std::vector<uint8_t> read_file(const std::string& path);
