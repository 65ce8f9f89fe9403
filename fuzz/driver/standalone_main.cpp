// The seeded random driver: runs a target without libFuzzer (g++ builds,
// make test). It feeds the seeds first, then seeds changed by a few random
// edits (bytes, cut and copied ranges, dictionary words, splices) and some
// wholly random inputs. It reads libFuzzer's flags where they mean the same:
//
//   fuzz_<target> [-seed=N] [-runs=N] [-max_total_time=S] [-timeout=S]
//                 [-max_len=N] [-dict=FILE] [-artifact_prefix=P] [SEEDS...]
//
// An input that crashes, fails a sanitizer or outlives -timeout is written to
// <artifact_prefix>crash or <artifact_prefix>timeout before the process ends.
#include "fuzz_support.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) __attribute__((weak));
extern "C" void __sanitizer_set_death_callback(void (*callback)()) __attribute__((weak));
extern "C" int __lsan_do_recoverable_leak_check() __attribute__((weak));

namespace
{

using Bytes = std::string;

Bytes current; // the input under way, for the artifact
std::string artifact_prefix;

void save_current(const char* kind)
{
    static bool saved = false;
    if (saved)
        return;
    saved = true;
    std::string name = artifact_prefix + kind;
    std::ofstream(name, std::ios::binary) << current;
    std::fprintf(stderr, "==fuzz== the input is saved as %s\n", name.c_str());
}

void on_death()
{
    save_current("crash");
}

void on_signal(int sig)
{
    if (sig == SIGALRM)
        std::fprintf(stderr, "==fuzz== an input ran past the timeout: a hang\n");
    save_current(sig == SIGALRM ? "timeout" : "crash");
    std::signal(SIGABRT, SIG_DFL);
    std::abort();
}

std::string flag(const char* arg, const char* name)
{
    size_t n = std::strlen(name);
    return std::strncmp(arg, name, n) == 0 && arg[n] == '=' ? arg + n + 1 : "";
}

Bytes read_file(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

// libFuzzer's dictionary lines: name="word", with \\, \" and \xNN escapes.
std::vector<Bytes> load_dictionary(const std::string& path)
{
    std::vector<Bytes> words;
    std::ifstream in(path);
    for (std::string line; std::getline(in, line);) {
        size_t q = line.find('"');
        if (q == std::string::npos || line[0] == '#')
            continue;
        Bytes w;
        for (size_t i = q + 1; i < line.size() && line[i] != '"'; i++) {
            if (line[i] == '\\' && i + 1 < line.size() && line[++i] == 'x' && i + 2 < line.size()) {
                w.push_back(char(std::strtol(line.substr(i + 1, 2).c_str(), nullptr, 16)));
                i += 2;
            } else {
                w.push_back(line[i]);
            }
        }
        if (!w.empty())
            words.push_back(w);
    }
    return words;
}

void run_one(const Bytes& b, unsigned timeout)
{
    current = b;
    alarm(timeout);
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(current.data()), current.size());
    alarm(0);
}

} // namespace

int main(int argc, char** argv)
{
    uint64_t seed = uint64_t(std::chrono::steady_clock::now().time_since_epoch().count());
    long long runs = -1;
    double max_time = 0;
    unsigned timeout = 60;
    size_t max_len = 4096;
    std::vector<Bytes> seeds, dict;
    artifact_prefix = std::filesystem::current_path().string() + "/";
    for (int i = 1; i < argc; i++) {
        const char* a = argv[i];
        std::string v;
        if (!(v = flag(a, "-seed")).empty())
            seed = std::strtoull(v.c_str(), nullptr, 10);
        else if (!(v = flag(a, "-runs")).empty())
            runs = std::atoll(v.c_str());
        else if (!(v = flag(a, "-max_total_time")).empty())
            max_time = std::atof(v.c_str());
        else if (!(v = flag(a, "-timeout")).empty())
            timeout = unsigned(std::max(1, std::atoi(v.c_str())));
        else if (!(v = flag(a, "-max_len")).empty())
            max_len = size_t(std::max(1LL, std::atoll(v.c_str())));
        else if (!(v = flag(a, "-dict")).empty())
            dict = load_dictionary(v);
        else if (!(v = flag(a, "-artifact_prefix")).empty())
            artifact_prefix = std::filesystem::absolute(v).string(); // targets may change directory
        else if (a[0] != '-' && std::filesystem::is_directory(a)) {
            std::vector<std::string> files;
            for (const auto& e : std::filesystem::directory_iterator(a))
                files.push_back(e.path().string());
            std::sort(files.begin(), files.end()); // the same order on every machine
            for (const std::string& f : files)
                seeds.push_back(read_file(f).substr(0, max_len));
        } else if (a[0] != '-') {
            seeds.push_back(read_file(a).substr(0, max_len));
        }
    }
    if (__sanitizer_set_death_callback)
        __sanitizer_set_death_callback(on_death); // after the sanitizer's report
    for (int sig : {SIGABRT, SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGALRM})
        std::signal(sig, on_signal);
    if (LLVMFuzzerInitialize)
        LLVMFuzzerInitialize(&argc, &argv);

    std::mt19937_64 rng(seed);
    auto below = [&](size_t n) { return n ? size_t(rng() % n) : 0; };
    auto start = std::chrono::steady_clock::now();
    long long done = 0;
    auto more = [&] {
        std::chrono::duration<double> spent = std::chrono::steady_clock::now() - start;
        return (runs < 0 || done < runs) && (max_time <= 0 || spent.count() < max_time);
    };
    for (size_t i = 0; i < seeds.size() && more(); i++, done++)
        run_one(seeds[i], timeout);
    for (; more(); done++) {
        Bytes b;
        if (seeds.empty() || below(8) == 0) {
            b.resize(1 + below(512));
            for (char& c : b)
                c = char(rng());
        } else {
            b = seeds[below(seeds.size())];
            for (size_t edits = 1 + below(6); edits > 0; edits--) {
                size_t at = below(b.size() + 1), n = 1 + below(16);
                switch (below(7)) {
                case 0: // flip a bit
                    if (at < b.size())
                        b[at] = char(b[at] ^ (1 << below(8)));
                    break;
                case 1: // random bytes
                    b.insert(at, n % 4 + 1, char(rng()));
                    break;
                case 2: // cut a range
                    b.erase(at, n);
                    break;
                case 3: // copy a range elsewhere
                    b.insert(below(b.size() + 1), b.substr(below(b.size() + 1), 4 * n));
                    break;
                case 4: // a dictionary word
                case 5:
                    if (!dict.empty())
                        b.insert(at, dict[below(dict.size())]);
                    break;
                default: { // splice with another seed
                    const Bytes& other = seeds[below(seeds.size())];
                    b = b.substr(0, at) + other.substr(below(other.size() + 1));
                }
                }
            }
        }
        run_one(b.substr(0, max_len), timeout);
    }
    if (__lsan_do_recoverable_leak_check && __lsan_do_recoverable_leak_check()) {
        std::fprintf(stderr, "==fuzz== memory leaked\n");
        return 1;
    }
    std::fprintf(stderr, "==fuzz== seed %llu: %lld inputs, none crashed, hung or failed a check\n",
                 (unsigned long long)seed, done);
    std::fprintf(stderr, "stat::number_of_executed_units: %lld\n", done);
    return 0;
}
