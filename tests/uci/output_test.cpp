#include "search/search_thread.h"
#include "support/engine_process.h"
#include "support/test_positions.h"
#include "uci/output.h"

#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <unistd.h>

// One process-wide log: switching it on twice keeps the file, off then on
// resumes it. Runs in a scratch directory, since the log name is fixed.
TEST(Output, LogAndTraceFiles)
{
    char old[4096];
    ASSERT_NE(getcwd(old, sizeof old), nullptr);
    std::string dir = make_temp_dir();
    ASSERT_EQ(chdir(dir.c_str()), 0);

    SearchThread* t = new_test_thread();
    open_log();
    send_line("first");
    open_log();
    send_line("second");
    close_log_flag();
    send_line("hidden");
    log_command("ignored while off");
    open_log();
    log_command("go depth 3");
    send_line("third");

    trace_depth = 2;
    t->iteration_depth = 1;
    t->search_ply = 1;
    t->plies[1].depth = 3;
    trace_move(t, make_move_code(12, 28));
    t->search_ply = 2;
    t->plies[2].depth = 2;
    trace_move(t, make_move_code(52, 36));
    t->search_ply = 3;
    trace_move(t, make_move_code(6, 21)); // beyond the trace depth
    t->search_ply = 2;
    trace_move(t, 0);
    trace_depth = 0;
    close_output_files();
    free_test_thread(t);

    EXPECT_EQ(read_text_file("korvel.log"), "first\nsecond\nCMD: go depth 3\nthird\n");
    EXPECT_EQ(read_text_file("trace.txt"), "\n\nSEARCH DEPTH= 1\n( 3)e2e4 ( 2)e7e5 \n         ( 2)null ");
    ASSERT_EQ(chdir(old), 0);
}
