
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

namespace
{

std::string scratch_dir;

void remove_scratch_dir()
{
    std::error_code ignored;
    std::filesystem::remove_all(scratch_dir, ignored);
}

} // namespace

void fuzz_fail(const char* what)
{
    std::fprintf(stderr, "==fuzz== broken promise: %s\n", what);
    std::abort();
}

void fuzz_silence_stdout()
{
    std::fflush(stdout);
    int null = open("/dev/null", O_WRONLY);
    if (null >= 0) {
        dup2(null, 1);
        close(null);
    }
}

void fuzz_enter_scratch_dir()
{
    std::string pattern = (std::filesystem::temp_directory_path() / "korvel-fuzz-XXXXXX").string();
    char* made = mkdtemp(pattern.data());
    if (!made || chdir(made) != 0)
        fuzz_fail("no scratch directory");
    scratch_dir = made;
    std::atexit(remove_scratch_dir);
}

std::string fuzz_placement(const char board[64])
{
    std::string out;
    for (int rank = 7; rank >= 0; rank--) {
        for (int file = 0, run = 0; file < 8; file++) {
            char c = board[rank * 8 + file];
            run += !c;
            if ((c || file == 7) && run)
                out += char('0' + run);
            if (c) {
                out += c;
                run = 0;
            }
        }
        out += rank ? "/" : "";
    }
    return out;
}
