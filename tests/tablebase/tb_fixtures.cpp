#include "tablebase/tb_fixtures.h"

#include "support/engine_process.h"
#include "support/test_positions.h"

#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

struct TestBoard::Owner {
    Game* game;
};

TestBoard::TestBoard() : owner_(new Owner{new_test_game()}) {}

TestBoard::~TestBoard()
{
    free_test_game(owner_->game);
    delete owner_;
}

Position* TestBoard::set(const std::string& fen, int fifty)
{
    set_test_position(owner_->game, fen);
    owner_->game->pos.fifty = uint8_t(fifty);
    return &owner_->game->pos;
}

std::vector<ProbeAnswer> load_probe_answers()
{
    std::vector<ProbeAnswer> answers;
    std::ifstream in(data_path("syzygy_probes.epd"));
    std::string line;
    while (std::getline(in, line)) {
        size_t id = line.find(" id ");
        if (id == std::string::npos)
            continue;
        ProbeAnswer a;
        a.fen = line.substr(0, id);
        std::istringstream rest(line.substr(id + 4));
        std::string word;
        rest >> a.id;
        if (!a.id.empty() && a.id.back() == ';')
            a.id.pop_back();
        rest >> word >> a.wdl >> word >> word >> a.dtz;
        answers.push_back(a);
    }
    return answers;
}

std::string shared_tables()
{
    return data_path("syzygy");
}
