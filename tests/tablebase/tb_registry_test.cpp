// Finding the tables: directory lists, the shared character budget of a
// lookup, room for every six-man name, the first directory winning, and
// files that vanish or cannot be read.
#include "tablebase/tb_files.h"
#include "tablebase/tb_fixtures.h"
#include "tablebase/tbprobe.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <sys/stat.h>

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
    std::vector<std::string> sets = {""}; // up to four men as digits, the queen 0 and first
    for (size_t i = 0; i < sets.size(); i++)
        for (char c = sets[i].empty() ? '0' : sets[i].back(); sets[i].size() < 4 && c <= '4'; c++)
            sets.push_back(sets[i] + c);
    auto letters = [](std::string s) {
        for (char& c : s)
            c = "QRBNP"[c - '0'];
        return s;
    };
    std::vector<std::string> names;
    for (const std::string& x : sets)
        for (const std::string& y : sets)
            if (!x.empty() && x.size() + y.size() <= 4 && (x.size() > y.size() || (x.size() == y.size() && x <= y)))
                names.push_back("K" + letters(x) + "vK" + letters(y));
    return names;
}

} // namespace

// Directories split at ";" and ":", empty pieces skipped. One budget of 259
// characters serves a whole lookup: a long first directory leaves too
// little for the next, so that only the shorter names of three men reach it.
// Every material of six men has room.
TEST(TbRegistry, DirectoryListsNameBudgetAndRoomForEveryName)
{
    std::string a = directory_with({"KQvK"});
    std::string b = directory_with({"KRvK"});
    std::string c = directory_with({"KPvK"});
    TestBoard board;
    for (const std::string& path : {a + ";" + b + ":" + c, ";" + a + ";;" + b + "::" + c + ":"}) {
        EXPECT_EQ(init_output(path), "info string found 3 tablebases\n") << path;
        EXPECT_EQ(tb_largest, 3u);
        EXPECT_TRUE(probe(board, KQK) == 4 && probe(board, KRK) == 4 && probe(board, KPK) == 2) << path;
    }
    EXPECT_EQ(init_output(b), "info string found 1 tablebases\n");
    EXPECT_TRUE(probe(board, KQK) == -1 && probe(board, KRK) == 4);

    std::string shared = shared_tables();
    int l = int(shared.size());
    ASSERT_LT(l, 200);
    auto filler = [](int length) { return "/" + std::string(size_t(length - 1), 'd'); };
    // "KQvK.rtbw" is 9 characters, four men 10; each directory also spends
    // its length and a separator.
    EXPECT_EQ(init_output(filler(238 - l) + ";" + shared), "info string found 5 tablebases\n");
    EXPECT_EQ(tb_largest, 3u);
    EXPECT_EQ(init_output(filler(239 - l) + ";" + shared), "info string found 0 tablebases\n");
    EXPECT_EQ(init_output(filler(236 - l) + ";" + shared), "info string found 35 tablebases\n");

    std::vector<std::string> names = all_table_names();
    ASSERT_EQ(names.size(), 510u);
    for (const std::string& n : names)
        write_file(a + "/" + n + ".rtbw", {0});
    EXPECT_EQ(init_output(a), "info string found 510 tablebases\n");
    EXPECT_EQ(tb_largest, 6u);
    testing::internal::CaptureStderr();
    EXPECT_EQ(probe(board, KQK), -1); // nothing in those files is a table
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Corrupted table.\n");
    tb_init("");
}

// A table in two directories counts once and is read from the first; here
// the first copy is cut short, so its probes fail.
TEST(TbRegistry, FirstDirectoryWins)
{
    std::string cut = directory_with({"KQvK.rtbw"}, 100);
    std::string whole = directory_with({"KQvK", "KRvK"});
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
}

// A file that vanishes, cannot be measured or is no file at all takes only
// its own table out of play: the probe fails, says why, and the engine goes
// on. Without its distance file a table still answers the search.
TEST(TbRegistry, FilesThatVanishOrCannotBeReadAreReported)
{
    std::string dir = directory_with({"KQvK", "KRvK.rtbw"});
    ASSERT_EQ(mkdir((dir + "/KPvK.rtbw").c_str(), 0755), 0);
    TestBoard board;
    tb_init(dir.c_str());
    std::remove((dir + "/KQvK.rtbw").c_str());
    testing::internal::CaptureStderr();
    EXPECT_EQ(probe(board, KQK), -1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Could not find KQvK.rtbw\n");
    testing::internal::CaptureStderr();
    EXPECT_EQ(probe(board, KPK), -1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Corrupted table.\n");

    Move move;
    testing::internal::CaptureStderr();
    EXPECT_EQ(probe(board, KRK), 4);
    EXPECT_EQ(tb_probe_root(board.set(KRK), &move), -1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Could not find KRvK.rtbz\n");

    TbMapping m = {nullptr, 0, -1};
    testing::internal::CaptureStderr();
    EXPECT_FALSE(tb_map_file(-1, 0, "KRvK.rtbw", &m));
    EXPECT_NE(testing::internal::GetCapturedStderr().find("fstat() failed, name = " + dir + "/KRvK.rtbw"),
              std::string::npos);
    EXPECT_EQ(m.fd, -1);
    tb_init("");
}
