#include "installer/Surroundings.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <initializer_list>

namespace halvane::installer {

void Surroundings::leave() {
    for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGPIPE}) std::signal(signal, SIG_IGN);
    std::signal(SIGCHLD, SIG_DFL);  // ignored, it would take the ends of our children from us
    sigset_t none;
    ::sigemptyset(&none);
    ::pthread_sigmask(SIG_SETMASK, &none, nullptr);
    for (const int limit : {RLIMIT_FSIZE, RLIMIT_CPU, RLIMIT_AS, RLIMIT_DATA, RLIMIT_NPROC}) {
        const rlimit unlimited{RLIM_INFINITY, RLIM_INFINITY};
        ::setrlimit(static_cast<__rlimit_resource>(limit), &unlimited);
    }
    ::setpriority(PRIO_PROCESS, 0, 0);
    ::setsid();
    ::umask(022);
    ::clearenv();
    ::setenv("PATH", "/usr/sbin:/usr/bin:/sbin:/bin", 1);
    ::setenv("HOME", "/root", 1);
    ::setenv("LC_ALL", "C.UTF-8", 1);
    ::setenv("DEBIAN_FRONTEND", "noninteractive", 1);
    // What the package manager's programs complain of is for our caller only where we say it.
    if (const int nothing = ::open("/dev/null", O_WRONLY); nothing >= 0) {
        ::dup2(nothing, STDERR_FILENO);
        if (nothing > STDERR_FILENO) ::close(nothing);
    }
}

}  // namespace halvane::installer
