// Finding the tables: directory lists, the first directory winning, the
// shared character budget of a lookup, and room for every six-man name.
#include "tablebase/tb_files.h"
#include "tablebase/tb_fixtures.h"
#include "tablebase/tbprobe.h"

#include <cstdio>
#include <filesystem>
#include <gtest/gtest.h>
#include <iterator>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

// Inits from `path` and returns what it printed.
std::string init_output(const std::string& path)
{
    testing::internal::CaptureStdout();
    tb_init(path.c_str());
    return testing::internal::GetCapturedStdout();
}

int probe(TestBoard& board, const char* fen)
{
    return tb_probe_wdl(board.set(fen), 10);
}

constexpr const char* KQK = "8/8/8/8/8/2k5/8/KQ6 w - -"; // 4: a win
constexpr const char* KRK = "8/8/8/8/8/2k5/8/KR6 w - -"; // 4
constexpr const char* KPK = "8/8/8/8/8/2k5/P7/K7 w - -"; // 2: the rook pawn is held

// Every material of up to six men, named as the files are: the side with
// more men first, letters from queen to pawn, and with equal numbers the
// stronger letters first.
std::vector<std::string> all_table_names()
{
    const std::string letters = "QRBNP";
    std::vector<std::vector<std::string>> sets(5); // by size, letters in order
    sets[0] = {""};
    for (int n = 1; n <= 4; n++)
        for (const std::string& s : sets[n - 1])
            for (char c : letters)
                if (s.empty() || letters.find(c) >= letters.find(s.back()))
                    sets[n].push_back(s + c);
    auto rank = [&](const std::string& s) {
        std::string r;
        for (char c : s)
            r += char('0' + letters.find(c));
        return r;
    };
    std::vector<std::string> names;
    for (int a = 1; a <= 4; a++)
        for (int b = 0; b <= a && a + b <= 4; b++)
            for (const std::string& x : sets[a])
                for (const std::string& y : sets[b])
                    if (a > b || rank(x) <= rank(y))
                        names.push_back("K" + x + "vK" + y);
    return names;
}

} // namespace

TEST(TbRegistry, DirectoriesSplitAtSemicolonsAndColons)
{
    std::string a = directory_with({"KQvK.rtbw", "KQvK.rtbz"});
    std::string b = directory_with({"KRvK.rtbw", "KRvK.rtbz"});
    std::string c = directory_with({"KPvK.rtbw", "KPvK.rtbz"});
    TestBoard board;
    for (const std::string& path : {a + ";" + b + ":" + c, ";" + a + ";;" + b + "::" + c + ":"}) {
        EXPECT_EQ(init_output(path), "info string found 3 tablebases\n") << path;
        EXPECT_EQ(tb_largest, 3u);
        EXPECT_EQ(probe(board, KQK), 4);
        EXPECT_EQ(probe(board, KRK), 4);
        EXPECT_EQ(probe(board, KPK), 2);
    }
    EXPECT_EQ(init_output(b), "info string found 1 tablebases\n");
    EXPECT_EQ(probe(board, KQK), -1);
    EXPECT_EQ(probe(board, KRK), 4);
    tb_init("");
    for (const std::string& d : {a, b, c})
        remove_directory(d);
}

// A table in two directories counts once and is read from the first; here
// the first copy is cut short, so its probes fail.
TEST(TbRegistry, FirstDirectoryWins)
{
    std::string cut = directory_with({"KQvK.rtbw"}, 100);
    std::string whole = directory_with({"KQvK.rtbw", "KQvK.rtbz", "KRvK.rtbw", "KRvK.rtbz"});
    TestBoard board;
    EXPECT_EQ(init_output(cut + ";" + whole), "info string found 2 tablebases\n");
    testing::internal::CaptureStderr();
    EXPECT_EQ(probe(board, KQK), -1);
    EXPECT_EQ(probe(board, KQK), -1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Corrupted table.\n"); // said once
    EXPECT_EQ(probe(board, KRK), 4);

    EXPECT_EQ(init_output(whole + ";" + cut), "info string found 2 tablebases\n");
    EXPECT_EQ(probe(board, KQK), 4);
    tb_init("");
    remove_directory(cut);
    remove_directory(whole);
}

TEST(TbRegistry, EveryMaterialOfSixMenHasRoom)
{
    std::vector<std::string> names = all_table_names();
    ASSERT_EQ(names.size(), 510u);
    std::string dir = directory_with({});
    for (const std::string& n : names)
        write_file(dir + "/" + n + ".rtbw", {0});
    EXPECT_EQ(init_output(dir), "info string found 510 tablebases\n");
    EXPECT_EQ(tb_largest, 6u);
    // Nothing in those files is a table.
    TestBoard board;
    testing::internal::CaptureStderr();
    EXPECT_EQ(probe(board, KQK), -1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Corrupted table.\n");
    tb_init("");
    remove_directory(dir);
}

TEST(TbRegistry, FilesThatVanishAreReported)
{
    std::string dir = directory_with({"KQvK.rtbw", "KQvK.rtbz", "KRvK.rtbw"});
    TestBoard board;
    tb_init(dir.c_str());
    std::remove((dir + "/KQvK.rtbw").c_str());
    testing::internal::CaptureStderr();
    EXPECT_EQ(probe(board, KQK), -1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Could not find KQvK.rtbw\n");

    // Without its distance file a table still answers the search.
    Move move;
    testing::internal::CaptureStderr();
    EXPECT_EQ(probe(board, KRK), 4);
    EXPECT_EQ(tb_probe_root(board.set(KRK), &move), -1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Could not find KRvK.rtbz\n");
    tb_init("");
    remove_directory(dir);
}

// A table file that cannot be measured or is no file at all takes only its
// own table out of play: the probe fails and the engine goes on.
TEST(TbRegistry, UnreadableFilesTakeOnlyTheirTableOut)
{
    std::string dir = directory_with({"KRvK.rtbw"});
    ASSERT_EQ(mkdir((dir + "/KQvK.rtbw").c_str(), 0755), 0);
    TestBoard board;
    tb_init(dir.c_str());
    testing::internal::CaptureStderr();
    EXPECT_EQ(probe(board, KQK), -1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Corrupted table.\n");
    EXPECT_EQ(probe(board, KRK), 4);

    TbMapping m = {nullptr, 0, -1};
    testing::internal::CaptureStderr();
    EXPECT_FALSE(tb_map_file(-1, 0, "KRvK.rtbw", &m));
    EXPECT_NE(testing::internal::GetCapturedStderr().find("fstat() failed, name = " + dir + "/KRvK.rtbw"),
              std::string::npos);
    EXPECT_EQ(m.fd, -1);
    tb_init("");
    remove_directory(dir);
}

// Pointing the engine at its tables again (a GUI setting SyzygyPath) gives
// back every file and mapping of the tables probed before.
TEST(TbRegistry, InitAgainReleasesEveryTable)
{
    auto open_files = [] { return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}); };
    tb_init("");
    auto before = open_files();
    TestBoard board;
    for (int round = 0; round < 3; round++) {
        tb_init(shared_tables().c_str());
        for (const ProbeAnswer& a : load_probe_answers())
            EXPECT_EQ(tb_probe_wdl(board.set(a.fen), 0), a.wdl + 2) << a.id;
        tb_init("");
        EXPECT_EQ(open_files(), before) << round;
    }
}
