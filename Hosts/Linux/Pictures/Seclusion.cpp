#include "Hosts/Linux/Pictures/Seclusion.h"

#include <cerrno>
#include <cstdint>
#include <fstream>
#include <optional>

#include <fcntl.h>
#include <linux/landlock.h>
#include <sched.h>
#include <seccomp.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "Hosts/Linux/LibrarySymbols.h"

namespace quorvel::xdg {
namespace {

struct SeccompLibrary {
    decltype(&::seccomp_init) init;
    decltype(&::seccomp_load) load;
    decltype(&::seccomp_release) release;
    decltype(&::seccomp_rule_add_array) addRule;
    decltype(&::seccomp_syscall_resolve_name) number;
};

std::optional<SeccompLibrary> loadSeccomp()
{
    LibrarySymbols symbols{"libseccomp.so.2"};
    SeccompLibrary seccomp{};
    symbols.find("seccomp_init", seccomp.init);
    symbols.find("seccomp_load", seccomp.load);
    symbols.find("seccomp_release", seccomp.release);
    symbols.find("seccomp_rule_add_array", seccomp.addRule);
    symbols.find("seccomp_syscall_resolve_name", seccomp.number);
    return symbols.areComplete() ? std::optional{seccomp} : std::nullopt;
}

/// What computing takes: memory, locks, time, and files that are open; and whether a font may be
/// read.
constexpr const char* kAllowedCalls[] = {"access", "brk", "clock_gettime", "clock_nanosleep",
    "close", "exit", "exit_group", "faccessat", "faccessat2", "fstat", "futex", "futex_time64",
    "futex_waitv", "getpid", "getrandom", "getrusage", "gettid", "gettimeofday", "lseek", "madvise",
    "membarrier", "mmap", "mmap2", "mprotect", "mremap", "munmap", "nanosleep", "poll", "ppoll",
    "read", "recvfrom", "recvmsg", "restart_syscall", "rseq", "rt_sigaction", "rt_sigprocmask",
    "rt_sigreturn", "sched_getaffinity", "sched_yield", "sendmsg", "sendto", "set_robust_list",
    "sigaltstack", "time", "write", "writev"};

using Conditions = std::vector<scmp_arg_cmp>;

bool addRule(const SeccompLibrary& seccomp, scmp_filter_ctx filter, const char* name,
    std::uint32_t action = SCMP_ACT_ALLOW, const Conditions& conditions = {})
{
    // A call that this processor does not know needs no rule.
    const int call = seccomp.number(name);
    return call == __NR_SCMP_ERROR
        || seccomp.addRule(
               filter, action, call, static_cast<unsigned>(conditions.size()), conditions.data())
        == 0;
}

bool addRules(const SeccompLibrary& seccomp, scmp_filter_ctx filter)
{
    for (const char* name : kAllowedCalls) {
        if (!addRule(seccomp, filter, name))
            return false;
    }
    // Landlock decides which files: here, that they are only read. The C library asks for the state
    // of an open file by the call for that of any.
    constexpr auto kWriting = scmp_datum_t{O_ACCMODE | O_CREAT | O_TRUNC};
    const Conditions reads{{2, SCMP_CMP_MASKED_EQ, kWriting, 0}};
    const Conditions isOpen{{3, SCMP_CMP_MASKED_EQ, AT_EMPTY_PATH, AT_EMPTY_PATH}};
    // It ends itself when something is badly wrong, and nobody else.
    const Conditions isOwn{{0, SCMP_CMP_EQ, static_cast<scmp_datum_t>(::getpid()), 0}};
    // Threads, as filters of drawings use them, but no processes. The arguments of clone3 lie where
    // no filter can look: told that the kernel lacks it, the C library falls back to clone.
    const Conditions isThread{{0, SCMP_CMP_MASKED_EQ, CLONE_THREAD, CLONE_THREAD}};
    return addRule(seccomp, filter, "openat", SCMP_ACT_ALLOW, reads)
        && addRule(seccomp, filter, "newfstatat", SCMP_ACT_ALLOW, isOpen)
        && addRule(seccomp, filter, "tgkill", SCMP_ACT_ALLOW, isOwn)
        && addRule(seccomp, filter, "clone", SCMP_ACT_ALLOW, isThread)
        && addRule(seccomp, filter, "clone3", SCMP_ACT_ERRNO(ENOSYS));
}

/// False if there is no filter.
bool filterSystemCalls(const SeccompLibrary& seccomp)
{
    scmp_filter_ctx filter = seccomp.init(SCMP_ACT_ERRNO(EPERM));
    if (!filter)
        return false;
    const bool isLoaded = addRules(seccomp, filter) && seccomp.load(filter) == 0;
    seccomp.release(filter);
    return isLoaded;
}

/// Leaves no file but those in the folders, and these for reading; false where the kernel cannot.
bool landlock(const std::vector<std::string>& folders)
{
    // The rights that the first version of the interface knows: all that open a file or change one.
    constexpr std::uint64_t kAll = (LANDLOCK_ACCESS_FS_MAKE_SYM << 1) - 1;
    const landlock_ruleset_attr rights{.handled_access_fs = kAll};
    const auto rules = static_cast<int>(
        ::syscall(SYS_landlock_create_ruleset, &rights, sizeof rights.handled_access_fs, 0));
    if (rules < 0)
        return false;
    for (const auto& folder : folders) {
        const int opened = ::open(folder.c_str(), O_PATH | O_CLOEXEC);
        if (opened < 0)
            continue;
        const landlock_path_beneath_attr rule{LANDLOCK_ACCESS_FS_READ_FILE, opened};
        ::syscall(SYS_landlock_add_rule, rules, LANDLOCK_RULE_PATH_BENEATH, &rule, 0);
        ::close(opened);
    }
    const bool isBound = ::syscall(SYS_landlock_restrict_self, rules, 0) == 0;
    ::close(rules);
    return isBound;
}

constexpr rlim_t kOpenFiles = 64;

bool limit(__rlimit_resource_t resource, rlim_t value)
{
    const rlimit both{value, value};
    return ::setrlimit(resource, &both) == 0;
}

/// Addresses in use, in bytes; 0 if the kernel does not say.
std::size_t usedAddresses()
{
    std::size_t pages = 0;
    std::ifstream{"/proc/self/statm"} >> pages;
    return pages * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
}

}

bool secludeProcess(const Seclusion& left)
{
    const auto seccomp = loadSeccomp();
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0)
        return false;
    const rlim_t addresses = usedAddresses() + left.memory;
    const rlim_t files = landlock(left.readable) ? kOpenFiles : 0;
    const bool isLimited = limit(RLIMIT_AS, addresses) && limit(RLIMIT_CPU, left.seconds)
        && limit(RLIMIT_CORE, 0) && limit(RLIMIT_FSIZE, 0) && limit(RLIMIT_NOFILE, files);
    if (!isLimited || (seccomp && filterSystemCalls(*seccomp)))
        return isLimited;
    // A connection is an open file too.
    return limit(RLIMIT_NOFILE, 0);
}

}
