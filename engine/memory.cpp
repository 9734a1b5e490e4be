#include "engine/memory.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <fstream>
#include <string>

namespace engine {
namespace {

constexpr unsigned long long kNoLimit = ~0ull;

// A limit file of the control group: a number, or "max" where none is set.
unsigned long long ReadLimit(const std::string& path) {
    std::ifstream in(path);
    std::string word;
    if (!(in >> word) || word == "max") return kNoLimit;
    try {
        return std::stoull(word);
    } catch (...) {
        return kNoLimit;
    }
}

// The smallest limit on the way from the process's control group up to the root: each one above applies too.
// Both hierarchies are asked; where the group's folder is not visible, the root's file still is.
unsigned long long ControlGroupLimit() {
    unsigned long long limit = kNoLimit;
    std::ifstream groups("/proc/self/cgroup");
    for (std::string line; std::getline(groups, line);) {
        const size_t colon = line.find(':');
        const size_t second = line.find(':', colon + 1);
        if (colon == std::string::npos || second == std::string::npos) continue;
        const std::string controllers = line.substr(colon + 1, second - colon - 1);
        std::string group = line.substr(second + 1);
        std::string base, file;
        if (controllers.empty()) {
            base = "/sys/fs/cgroup", file = "/memory.max";
        } else if (controllers.find("memory") != std::string::npos) {
            base = "/sys/fs/cgroup/memory", file = "/memory.limit_in_bytes";
        } else {
            continue;
        }
        for (;;) {
            limit = std::min(limit, ReadLimit(base + group + file));
            if (group.empty() || group == "/") break;
            group.erase(group.rfind('/'));
        }
    }
    return limit;
}

// The process's address space and its resident part, in bytes.
struct CProcessSize {
    unsigned long long mapped = 0, resident = 0;
};

CProcessSize ProcessSize() {
    std::ifstream statm("/proc/self/statm");
    unsigned long long size = 0, resident = 0;
    if (!(statm >> size >> resident)) return {};
    const auto page = static_cast<unsigned long long>(sysconf(_SC_PAGE_SIZE));
    return {size * page, resident * page};
}

// True when bytes more of address space fit within the limit, if there is one.
bool AddressSpaceFits(double bytes, const CProcessSize& now) {
    const unsigned long long limit = AddressSpaceLimit();
    return limit == 0 || bytes + static_cast<double>(now.mapped) <= static_cast<double>(limit);
}

std::atomic<int> g_blasBuffers{0};  // buffers the BLAS has had room for

unsigned long long UsableMemoryNow() {
    const long pages = sysconf(_SC_PHYS_PAGES);
    const long pageSize = sysconf(_SC_PAGE_SIZE);
    unsigned long long usable =
        pages > 0 && pageSize > 0 ? static_cast<unsigned long long>(pages) * pageSize : kNoLimit;
    usable = std::min(usable, ControlGroupLimit());
    if (AddressSpaceLimit() != 0) usable = std::min(usable, AddressSpaceLimit());
    return usable;
}

}  // namespace

unsigned long long UsableMemory() {
    // The machine and its limits stay as they are while the program runs: asked once.
    static const unsigned long long usable = UsableMemoryNow();
    return usable;
}

unsigned long long AddressSpaceLimit() {
    static const unsigned long long limit = [] {
        struct rlimit space {};
        if (getrlimit(RLIMIT_AS, &space) != 0 || space.rlim_cur == RLIM_INFINITY) return 0ull;
        return static_cast<unsigned long long>(space.rlim_cur);
    }();
    return limit;
}

bool MemoryFits(double bytes) {
    if (!(bytes >= 0)) return false;
    // A block this small can't be what exhausts the memory, and a run asks for its scratch blocks at every
    // iteration: the process's own size is read only for larger ones.
    constexpr double kSmallBlock = 16.0 * 1024 * 1024;
    const double usable = static_cast<double>(UsableMemory());
    if (bytes <= kSmallBlock) return bytes <= usable;
    const CProcessSize now = ProcessSize();
    return bytes + static_cast<double>(now.resident) <= usable && AddressSpaceFits(bytes, now);
}

bool BlasBuffersFit(int callers) {
    const int held = g_blasBuffers.load();
    if (callers <= held) return true;
    // A buffer is address space, not memory: only a few pages of it are ever touched. Beside the buffers the
    // products need their scratch rows (checked apart, at most some 16 MiB) and a helper thread's stack.
    constexpr double kBeside = 32.0 * 1024 * 1024;
    if (!AddressSpaceFits((callers - held) * kBlasBufferBytes + kBeside, ProcessSize())) return false;
    int expected = held;
    g_blasBuffers.compare_exchange_strong(expected, callers);
    return true;
}

}  // namespace engine
