// A test with a game to set positions on and a scratch directory for the
// files it writes, both gone when the test ends.
#pragma once

#include "support/engine_process.h"
#include "support/test_positions.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>

class GameAndDir : public testing::Test
{
  protected:
    void SetUp() override
    {
        game = new_test_game();
        dir = make_temp_dir();
    }
    void TearDown() override
    {
        free_test_game(game);
        std::filesystem::remove_all(dir);
    }

    Game* game;
    std::string dir;
};
