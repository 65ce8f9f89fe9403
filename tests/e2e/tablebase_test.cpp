// Tables through the real engine: the ways to point it at them.
#include "support/engine_process.h"

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>

TEST(TablebaseE2E, SwitchesAndConfigurationFilePointAtTables)
{
    {
        EngineProcess e({"-tbpath", data_path("syzygy")});
        e.send_line("isready");
        std::vector<std::string> seen;
        EXPECT_NE(e.wait_for("readyok", 10000, &seen), "");
        EXPECT_EQ(std::count(seen.begin(), seen.end(), "info string found 35 tablebases"), 1);
        EXPECT_EQ(e.quit(), 0);
    }
    {
        EngineProcess e({"-tbx"});
        EXPECT_EQ(e.ask("uci", "option name SyzygyPath"),
                  "option name SyzygyPath type string default /usr/share/syzygy;/usr/share/syzygy/6-Piece");
        EXPECT_EQ(e.quit(), 0);
    }
    {
        std::string dir = make_temp_dir();
        std::ofstream(dir + "/tables.cfg") << "# tables for the engine\nSyzygyPath = " << data_path("syzygy") << "\n";
        EngineProcess e({"-cfg", dir + "/tables.cfg"});
        EXPECT_EQ(e.ask("isready", "info string found"), "info string found 35 tablebases");
        EXPECT_EQ(e.quit(), 0);
    }
}
