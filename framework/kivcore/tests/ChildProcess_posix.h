// Work in child processes: one that may be killed, one without rights, another program.

#pragma once

#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include <fcntl.h>
#include <grp.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace kivcore::testing {

/// How a child ended, and what it had to say.
struct ChildOutcome {
    int status = 0;  // as waitpid gives it
    long peakKiB = 0;
    std::string text;

    bool WasKilled() const { return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL; }
    bool Succeeded() const { return WIFEXITED(status) && WEXITSTATUS(status) == 0; }
};

/// Runs `work` in a child; what it writes to the descriptor it gets is the outcome's text. The
/// child ends without the tests' own clean-up, with what `work` returns.
inline ChildOutcome RunInChild(const std::function<int(int out)>& work)
{
    int ends[2] = {-1, -1};
    EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
    const pid_t child = fork();
    if (child == 0) {
        close(ends[0]);
        _exit(work(ends[1]));
    }
    close(ends[1]);
    ChildOutcome outcome;
    char buffer[4096];
    for (ssize_t count = 0; (count = read(ends[0], buffer, sizeof buffer)) > 0;) {
        outcome.text.append(buffer, static_cast<std::size_t>(count));
    }
    close(ends[0]);
    rusage usage{};
    EXPECT_EQ(wait4(child, &outcome.status, 0, &usage), child);
    outcome.peakKiB = usage.ru_maxrss;
    return outcome;
}

/// Runs `work` without an administrator's rights, and returns the text it returned.
inline std::string RunUnprivileged(const std::function<std::string()>& work)
{
    const ChildOutcome outcome = RunInChild([&work](int out) {
        constexpr uid_t kNobody = 65534;
        if (geteuid() == 0 &&
            (setgroups(0, nullptr) != 0 || setresgid(kNobody, kNobody, kNobody) != 0 ||
             setresuid(kNobody, kNobody, kNobody) != 0)) {
            return 2;
        }
        const std::string text = work();
        return write(out, text.data(), text.size()) == static_cast<ssize_t>(text.size()) ? 0 : 3;
    });
    EXPECT_TRUE(outcome.Succeeded()) << outcome.status;
    return outcome.text;
}

/// Runs `program` with `environment` and nothing else in its environment.
inline ChildOutcome RunProgram(const std::string& program,
                               const std::vector<std::string>& arguments,
                               const std::vector<std::string>& environment)
{
    return RunInChild([&](int out) {
        const auto pointers = [](const std::vector<std::string>& texts) {
            std::vector<char*> result;
            for (const std::string& text : texts) {
                result.push_back(const_cast<char*>(text.c_str()));
            }
            result.push_back(nullptr);
            return result;
        };
        std::vector<std::string> all = {program};
        all.insert(all.end(), arguments.begin(), arguments.end());
        dup2(out, STDOUT_FILENO);
        execve(program.c_str(), pointers(all).data(), pointers(environment).data());
        return 127;
    });
}

}  // namespace kivcore::testing
