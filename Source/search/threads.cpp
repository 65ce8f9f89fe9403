#include "search/threads.h"

#include "search/clock.h"
#include "search/iterate.h"
#include "search/limits.h"
#include "search/search_thread.h"
#include "search/tt.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <pthread.h>
#include <sched.h>
#include <string>
#include <vector>

bool numa_binding = false;
std::mutex info_lock;
std::mutex stats_lock;

namespace
{

constexpr int MAX_THREADS = 128;
constexpr int NUMA_THRESHOLD = 32;

std::atomic<SearchThread*> workers[MAX_THREADS];
// Set by a worker that could not get its memory: it ends at once, and the
// pool is started again smaller by whoever asked for it.
std::atomic<bool> failed[MAX_THREADS];
pthread_t handles[MAX_THREADS];
int count = 0;
int planned = 0; // the size of the pool being started, for the NUMA spread

// CPUs of each NUMA node from sysfs; empty when the topology is not there.
std::vector<cpu_set_t> numa_nodes()
{
    std::vector<cpu_set_t> nodes;
    for (int node = 0; node < 1024; node++) {
        std::ifstream in("/sys/devices/system/node/node" + std::to_string(node) + "/cpulist");
        if (!in)
            break;
        std::string list;
        std::getline(in, list);
        cpu_set_t set;
        CPU_ZERO(&set);
        size_t pos = 0;
        while (pos < list.size()) {
            size_t comma = list.find(',', pos);
            std::string part = list.substr(pos, comma == std::string::npos ? std::string::npos : comma - pos);
            int a = 0, b = 0;
            if (std::sscanf(part.c_str(), "%d-%d", &a, &b) == 2) {
                for (int c = a; c <= b && c < CPU_SETSIZE; c++)
                    CPU_SET(c, &set);
            } else if (std::sscanf(part.c_str(), "%d", &a) == 1 && a < CPU_SETSIZE) {
                CPU_SET(a, &set);
            }
            if (comma == std::string::npos)
                break;
            pos = comma + 1;
        }
        nodes.push_back(set);
    }
    return nodes;
}

// Spreads the workers evenly over the nodes, skipped without a topology.
void bind_to_node(int number, int total)
{
    std::vector<cpu_set_t> nodes = numa_nodes();
    if (nodes.size() < 2)
        return;
    size_t node = size_t(number) * nodes.size() / size_t(total);
    pthread_setaffinity_np(pthread_self(), sizeof(cpu_set_t), &nodes[node]);
}

void* worker_main(void* arg)
{
    int number = int(reinterpret_cast<intptr_t>(arg));
    SearchThread* t = new_search_thread();
    if (!t) {
        failed[number].store(true);
        return nullptr;
    }
    t->thread_number = number;
    if (numa_binding || planned > NUMA_THRESHOLD)
        bind_to_node(number, planned);
    workers[number].store(t);
    for (;;) {
        uint8_t command = t->command.load();
        if (command == CMD_IDLE) {
            sleep_ms(1);
        } else if (command == CMD_SEARCH) {
            run_search(t);
            t->command = CMD_IDLE;
        } else if (command == CMD_CLEAR_HASH) {
            tt_clear_slice(number, count);
            t->command = CMD_IDLE;
        } else if (command > 90) {
            break;
        }
    }
    t->command = CMD_GONE;
    return nullptr;
}

} // namespace

bool start_threads(int n)
{
    if (n < 1)
        n = 1;
    if (n > MAX_THREADS)
        n = MAX_THREADS;
    for (int i = 0; i < MAX_THREADS; i++) {
        workers[i].store(nullptr);
        failed[i].store(false);
    }
    planned = n;
    int created = 0;
    while (created < n
           && pthread_create(&handles[created], nullptr, worker_main, reinterpret_cast<void*>(intptr_t(created))) == 0)
        created++;
    count = created;
    // Every thread created reports in, alive or out of memory, before the
    // pool is either kept whole or taken down again.
    bool whole = created == n;
    for (int i = 0; i < created; i++) {
        while (!workers[i].load() && !failed[i].load())
            sleep_ms(1);
        whole = whole && !failed[i].load();
    }
    if (!whole) {
        stop_threads();
        return false;
    }
    return true;
}

void stop_threads()
{
    if (!count)
        return;
    limits.stop_signal = STOP_SHUTDOWN;
    while (count_busy_threads())
        sleep_ms(1);
    for (int i = 0; i < count; i++)
        if (SearchThread* t = workers[i].load())
            t->command = CMD_QUIT;
    for (int i = 0; i < count; i++) {
        if (SearchThread* t = workers[i].load())
            while (t->command != CMD_GONE)
                sched_yield();
        pthread_join(handles[i], nullptr);
    }
    for (int i = 0; i < count; i++) {
        free_search_thread(workers[i].load());
        workers[i].store(nullptr);
    }
    count = 0;
}

int worker_count()
{
    return count;
}

SearchThread* worker(int i)
{
    return i >= 0 && i < count ? workers[i].load() : nullptr;
}

int count_busy_threads()
{
    int busy = 0;
    for (int i = 0; i < count; i++)
        if (SearchThread* t = workers[i].load(); t && t->command != CMD_IDLE)
            busy++;
    return busy;
}

void stop_and_wait(uint8_t signal)
{
    limits.stop_signal = signal;
    while (count_busy_threads())
        sleep_ms(1);
}

void start_search_threads()
{
    if (!count)
        return;
    workers[0].load()->command = CMD_SEARCH;
    if (count >= 2) {
        sleep_ms(5);
        for (int i = 1; i < count; i++)
            workers[i].load()->command = CMD_SEARCH;
    }
}

void clear_hash_table()
{
    if (count < 2) {
        tt_clear();
        return;
    }
    for (int i = 0; i < count; i++)
        workers[i].load()->command = CMD_CLEAR_HASH;
    while (count_busy_threads())
        sleep_ms(1);
}
