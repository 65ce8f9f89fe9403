// The seeded random driver: runs a target without libFuzzer (g++ builds,
// make test). It feeds the seeds, then seeds changed by a few random edits
// (bytes, cut and copied ranges, dictionary words, splices) and some wholly
// random inputs. It reads libFuzzer's flags where they mean the same:
//
//   fuzz_<target> [-seed=N] [-runs=N] [-max_total_time=S] [-timeout=S]
//                 [-max_len=N] [-dict=FILE] [-artifact_prefix=P] [SEEDS...]
//
// Each input is written to <artifact_prefix>input before it runs, so that
// the one that crashed, failed a sanitizer or hung (SIGALRM after -timeout
// ends the process) is there afterwards; a clean run removes the file.
#include "fuzz_support.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) __attribute__((weak));
extern "C" int __lsan_do_recoverable_leak_check() __attribute__((weak));

namespace
{

std::string read_file(const std::string& path)
{
    std::ostringstream s;
    s << std::ifstream(path, std::ios::binary).rdbuf();
    return s.str();
}

} // namespace

int main(int argc, char** argv)
{
    std::mt19937_64 rng(uint64_t(std::chrono::steady_clock::now().time_since_epoch().count()));
    double runs = -1, max_time = 0, timeout_flag = 60, max_len_flag = 4096;
    std::vector<std::string> seeds, dict;
    std::string artifact = std::filesystem::current_path().string() + "/";
    for (int i = 1; i < argc; i++) {
        std::string a = argv[i], name = a.substr(0, a.find('=')), v = a.substr(a.find('=') + 1);
        if (name == "-seed")
            rng.seed(std::strtoull(v.c_str(), nullptr, 10));
        else if (name == "-runs" || name == "-max_total_time" || name == "-timeout" || name == "-max_len") {
            double x = std::atof(v.c_str());
            (name == "-runs"      ? runs
             : name == "-max_len" ? max_len_flag
             : name == "-timeout" ? timeout_flag
                                  : max_time) = x;
        } else if (name == "-artifact_prefix")
            artifact = std::filesystem::absolute(v).string(); // targets may change directory
        else if (name == "-dict") {
            // libFuzzer's lines: name="word", with \xNN escapes.
            std::ifstream in(v);
            for (std::string line; std::getline(in, line);) {
                size_t q = line.find('"'), end = line.rfind('"');
                if (line[0] == '#' || q == std::string::npos || end <= q + 1)
                    continue;
                std::string w;
                for (size_t k = q + 1; k < end; k++)
                    if (line[k] == '\\' && line[k + 1] == 'x' && k + 3 < end) {
                        w += char(std::strtol(line.substr(k + 2, 2).c_str(), nullptr, 16));
                        k += 3;
                    } else {
                        w += line[k] == '\\' ? line[++k] : line[k];
                    }
                dict.push_back(w);
            }
        } else if (a[0] != '-' && std::filesystem::is_directory(a)) {
            std::vector<std::string> files;
            for (const auto& e : std::filesystem::directory_iterator(a))
                files.push_back(e.path().string());
            std::sort(files.begin(), files.end()); // the same order on every machine
            for (const std::string& f : files)
                seeds.push_back(read_file(f).substr(0, size_t(std::max(1.0, max_len_flag))));
        } else if (a[0] != '-') {
            seeds.push_back(read_file(a).substr(0, size_t(std::max(1.0, max_len_flag))));
        }
    }
    artifact += "input";
    unsigned timeout = unsigned(std::max(1.0, timeout_flag));
    size_t max_len = size_t(std::max(1.0, max_len_flag));
    if (LLVMFuzzerInitialize)
        LLVMFuzzerInitialize(&argc, &argv);

    auto below = [&](size_t n) { return n ? size_t(rng() % n) : 0; };
    auto start = std::chrono::steady_clock::now();
    long long done = 0;
    for (;; done++) {
        std::chrono::duration<double> spent = std::chrono::steady_clock::now() - start;
        if ((runs >= 0 && done >= runs) || (max_time > 0 && spent.count() >= max_time))
            break;
        std::string b;
        if (size_t(done) < seeds.size()) {
            b = seeds[size_t(done)];
        } else if (seeds.empty() || below(8) == 0) {
            for (size_t n = 1 + below(512); n > 0; n--)
                b += char(rng());
        } else {
            b = seeds[below(seeds.size())];
            for (size_t edits = 1 + below(6); edits > 0; edits--) {
                size_t at = below(b.size() + 1), n = 1 + below(16);
                switch (below(6)) {
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
                    if (!dict.empty())
                        b.insert(at, dict[below(dict.size())]);
                    break;
                default: { // splice with another seed
                    const std::string& other = seeds[below(seeds.size())];
                    b = b.substr(0, at) + other.substr(below(other.size() + 1));
                }
                }
            }
        }
        b.resize(std::min(b.size(), max_len));
        std::ofstream(artifact, std::ios::binary) << b;
        alarm(timeout);
        LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(b.data()), b.size());
        alarm(0);
    }
    if (__lsan_do_recoverable_leak_check && __lsan_do_recoverable_leak_check()) {
        std::fprintf(stderr, "==fuzz== memory leaked; the last input is %s\n", artifact.c_str());
        return 1;
    }
    std::remove(artifact.c_str());
    std::fprintf(stderr, "==fuzz== %lld inputs, none crashed, hung or failed a check\n", done);
    std::fprintf(stderr, "stat::number_of_executed_units: %lld\n", done);
    return 0;
}
