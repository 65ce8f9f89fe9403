#include "output/output.h"
#include "support/engine_process.h"

#include <gtest/gtest.h>
#include <unistd.h>

// One process-wide log: switching it on twice keeps the file, off then on
// resumes it. Runs in a scratch directory, since the log name is fixed.
TEST(Output, LogFile)
{
    char old[4096];
    ASSERT_NE(getcwd(old, sizeof old), nullptr);
    std::string dir = make_temp_dir();
    ASSERT_EQ(chdir(dir.c_str()), 0);

    open_log();
    send_line("first");
    open_log();
    send_line("second");
    stop_logging();
    send_line("hidden");
    log_command("ignored while off");
    open_log();
    log_command("go depth 3");
    send_line("third");
    close_log_file();

    EXPECT_EQ(read_text_file("korvel.log"), "first\nsecond\nCMD: go depth 3\nthird\n");
    ASSERT_EQ(chdir(old), 0);
}
