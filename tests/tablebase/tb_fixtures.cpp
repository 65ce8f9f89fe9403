#include "tablebase/tb_fixtures.h"

#include "board/fen.h"
#include "board/position_check.h"
#include "support/engine_process.h"
#include "support/test_positions.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <sstream>

Position* TestBoard::set(const std::string& fen, int fifty)
{
    static bool keys = (free_test_game(new_test_game()), true); // the hashing keys, once
    (void)keys;
    game_init(game.get());
    set_test_position(game.get(), fen);
    game->pos.fifty = uint8_t(fifty);
    return &game->pos;
}

Position* TestBoard::try_set(const std::string& fen)
{
    Position* pos = set(START_FEN);
    set_position(pos, fen.c_str());
    return position_problem(pos) ? nullptr : pos;
}

std::vector<ProbeAnswer> load_probe_answers()
{
    std::vector<ProbeAnswer> answers;
    std::ifstream in(data_path("syzygy_probes.epd"));
    for (std::string line; std::getline(in, line);) {
        size_t id = line.find(" id ");
        if (id == std::string::npos)
            continue;
        ProbeAnswer a{line.substr(0, id), "", 0, 0};
        std::istringstream rest(line.substr(id + 4));
        std::string word;
        rest >> a.id >> word >> a.wdl >> word >> word >> a.dtz; // "tb0; wdl 2; dtz 13;"
        if (!a.id.empty() && a.id.back() == ';')
            a.id.pop_back();
        answers.push_back(a);
    }
    return answers;
}

std::string shared_tables()
{
    return data_path("syzygy");
}

void write_file(const std::string& path, const std::vector<uint8_t>& bytes)
{
    std::ofstream(path, std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
}

std::string directory_with(const std::vector<std::string>& files, size_t keep)
{
    std::string dir = make_temp_dir();
    for (const std::string& f : files) {
        std::ifstream in(shared_tables() + "/" + f, std::ios::binary);
        std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        EXPECT_FALSE(bytes.empty()) << f;
        bytes.resize(std::min(bytes.size(), keep));
        write_file(dir + "/" + f, bytes);
    }
    return dir;
}

void remove_directory(const std::string& dir)
{
    std::error_code ignored;
    std::filesystem::remove_all(dir, ignored);
}
