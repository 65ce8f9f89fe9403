#include "fuzz_support.h"

#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <string>
#include <unistd.h>

namespace
{

std::string scratch_dir;

void remove_scratch_dir()
{
    if (scratch_dir.empty())
        return;
    if (DIR* d = opendir(scratch_dir.c_str())) {
        while (dirent* e = readdir(d)) {
            std::string name = e->d_name;
            if (name != "." && name != "..")
                unlink((scratch_dir + "/" + name).c_str());
        }
        closedir(d);
    }
    rmdir(scratch_dir.c_str());
}

} // namespace

void fuzz_fail(const char* what)
{
    std::fprintf(stderr, "==fuzz== broken promise: %s\n", what);
    std::fflush(stderr);
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
    const char* tmp = std::getenv("TMPDIR");
    std::string pattern = std::string(tmp && *tmp ? tmp : "/tmp") + "/korvel-fuzz-XXXXXX";
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
        int run = 0;
        for (int file = 0; file < 8; file++) {
            char c = board[rank * 8 + file];
            if (!c) {
                run++;
                continue;
            }
            if (run)
                out += char('0' + run);
            run = 0;
            out += c;
        }
        if (run)
            out += char('0' + run);
        if (rank)
            out += '/';
    }
    return out;
}
