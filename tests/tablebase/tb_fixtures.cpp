#include "tablebase/tb_fixtures.h"

#include "board/fen.h"
#include "support/engine_process.h"
#include "support/test_positions.h"

#include <filesystem>
#include <fstream>
#include <iterator>
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

Position* TestBoard::try_set(const std::string& fen)
{
    Position* pos = game_init(owner_->game);
    set_position(pos, fen.c_str());
    return position_problem(pos) ? nullptr : pos;
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

std::vector<uint8_t> read_file(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return std::vector<uint8_t>(std::istreambuf_iterator<char>(in), {});
}

void write_file(const std::string& path, const std::vector<uint8_t>& bytes)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
    EXPECT_TRUE(out.good()) << path;
}

std::string directory_with(const std::vector<std::string>& files, size_t keep)
{
    std::string dir = make_temp_dir();
    for (const std::string& f : files) {
        std::vector<uint8_t> bytes = read_file(shared_tables() + "/" + f);
        EXPECT_FALSE(bytes.empty()) << f;
        if (bytes.size() > keep)
            bytes.resize(keep);
        write_file(dir + "/" + f, bytes);
    }
    return dir;
}

void remove_directory(const std::string& dir)
{
    std::error_code ignored;
    std::filesystem::remove_all(dir, ignored);
}
