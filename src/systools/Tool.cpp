#include "systools/Tool.h"

#include <unistd.h>

#include <array>
#include <csignal>
#include <cstring>
#include <exception>
#include <iostream>

namespace halvane::systools {

namespace {

constexpr unsigned kLongestRun = 20;  // seconds

/// Set before the alarm is, read in its handler; never changed after.
const char* programName = "";

void onAlarm(int) {
    constexpr const char* kText = ": gave up after 20 s\n";
    // Only what a signal handler may call; whether the text got out changes nothing.
    if (::write(STDERR_FILENO, programName, std::strlen(programName)) >= 0 && ::write(STDERR_FILENO, kText, std::strlen(kText)) >= 0) {
    }
    ::_exit(kTimedOut);
}

}  // namespace

int Complaint::misused(std::ostream& err, const std::string& message) const {
    err << program << ": " << message << "\n" << usage;
    return kUsage;
}

int Complaint::failed(std::ostream& err, const util::Error& error, const std::string& subject) const {
    err << program << ": " << subject << (subject.empty() ? "" : ": ") << error.description << "\n";
    if (error.domain == util::kDataErrorDomain) return kMalformed;
    return error.domain == kToolErrorDomain ? error.code : kFailure;
}

Arguments argumentsOf(int argc, char** argv) { return {argv + (argc > 0 ? 1 : 0), argv + argc}; }

int runTool(const char* name, const Arguments& arguments, const Tool& tool) {
    programName = name;
    std::signal(SIGALRM, onAlarm);
    // Whoever started us may have blocked it.
    sigset_t alarms;
    sigemptyset(&alarms);
    sigaddset(&alarms, SIGALRM);
    sigprocmask(SIG_UNBLOCK, &alarms, nullptr);
    ::alarm(kLongestRun);

    int code = kFailure;
    try {
        code = tool(arguments, std::cout, std::cerr);
    } catch (const std::exception& error) {
        std::cerr << name << ": " << error.what() << "\n";
    }
    std::cout.flush();
    if (!std::cout && code == kSuccess) {
        std::cerr << name << ": the output could not be written\n";
        code = kFailure;
    }
    return code;
}

}  // namespace halvane::systools
