#include "tablebase/tb_fixtures.h"

#include "board/fen.h"
#include "support/engine_process.h"
#include "support/test_positions.h"

#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <random>

Position* TestBoard::set(const std::string& fen, int fifty)
{
    static bool keys = (free_test_game(new_test_game()), true); // the hashing keys, once
    (void)keys;
    game_init(game.get());
    set_test_position(game.get(), fen);
    game->pos.fifty = uint8_t(fifty);
    return &game->pos;
}

std::vector<ProbeAnswer> load_probe_answers()
{
    std::vector<ProbeAnswer> answers;
    std::ifstream in(data_path("syzygy_probes.epd"));
    for (std::string line; std::getline(in, line);) { // "<fen> id tb0; wdl 2; dtz 13;"
        size_t id = line.find(" id "), wdl = line.find(" wdl "), dtz = line.find(" dtz ");
        if (dtz != std::string::npos)
            answers.push_back({line.substr(0, id), std::stoi(line.substr(wdl + 5)), std::stoi(line.substr(dtz + 5))});
    }
    return answers;
}

std::vector<std::string> random_positions(const std::string& material, int count, unsigned seed)
{
    std::mt19937 rng(seed);
    TestBoard board;
    std::vector<std::string> fens;
    while (int(fens.size()) < count) {
        std::string men(64, '1');
        bool white = true;
        for (char c : material) {
            if (c == 'v') {
                white = false;
                continue;
            }
            size_t sq;
            do
                sq = rng() % 64;
            while (men[sq] != '1');
            men[sq] = white ? c : char(c + 32);
        }
        std::string fen;
        for (int rank = 7; rank >= 0; rank--)
            fen += men.substr(size_t(rank) * 8, 8) + (rank ? "/" : rng() % 2 ? " w - -" : " b - -");
        Position* pos = board.set(START_FEN);
        set_position(pos, fen.c_str());
        if (!position_problem(pos))
            fens.push_back(fen);
    }
    return fens;
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
    std::vector<std::string> names;
    for (const std::string& f : files) {
        bool table = f.find('.') == std::string::npos;
        names.push_back(table ? f + ".rtbw" : f);
        if (table)
            names.push_back(f + ".rtbz");
    }
    for (const std::string& f : names) {
        std::ifstream in(shared_tables() + "/" + f, std::ios::binary);
        std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        EXPECT_FALSE(bytes.empty()) << f;
        bytes.resize(std::min(bytes.size(), keep));
        write_file(dir + "/" + f, bytes);
    }
    return dir;
}
