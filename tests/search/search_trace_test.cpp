#include "search/search_trace.h"
#include "support/engine_process.h"
#include "support/test_positions.h"

#include <gtest/gtest.h>
#include <unistd.h>

// One path of the tree per line; a move at a ply already written starts a
// new line indented to its ply; moves beyond the trace depth are left out.
TEST(SearchTrace, WritesOnePathPerLine)
{
    char old[4096];
    ASSERT_NE(getcwd(old, sizeof old), nullptr);
    std::string dir = make_temp_dir();
    ASSERT_EQ(chdir(dir.c_str()), 0);

    SearchThread* t = new_test_thread();
    trace_depth = 2;
    t->iteration_depth = 1;
    t->pos.search_ply = 1;
    t->plies[1].depth = 3;
    trace_move(t, make_move_code(12, 28));
    t->pos.search_ply = 2;
    t->plies[2].depth = 2;
    trace_move(t, make_move_code(52, 36));
    t->pos.search_ply = 3;
    trace_move(t, make_move_code(6, 21)); // beyond the trace depth
    t->pos.search_ply = 2;
    trace_move(t, 0);
    trace_depth = 0;
    close_trace_file();
    free_test_thread(t);

    EXPECT_EQ(read_text_file("trace.txt"), "\n\nSEARCH DEPTH= 1\n( 3)e2e4 ( 2)e7e5 \n         ( 2)null ");
    ASSERT_EQ(chdir(old), 0);
}
