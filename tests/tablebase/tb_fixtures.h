// What the tablebase tests share: boards to set positions on, the probe
// answers of the shared data and the directory of the shared tables.
#pragma once

#include "board/position.h"

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
