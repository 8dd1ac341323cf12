#include "tests/GuestState.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <cfenv>
#include <clocale>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

extern char** environ;

namespace kivtests {

namespace {

std::string SignalText(int number)
{
    struct sigaction action = {};
    if (sigaction(number, nullptr, &action) != 0) {
        return "none";
    }
    constexpr int kRestorer = 0x04000000;  // the C library's own mark on what it has set
    if (action.sa_handler == SIG_DFL || action.sa_handler == SIG_IGN) {
        return action.sa_handler == SIG_DFL ? "default" : "ignored";  // flags and mask mean nothing
    }
    const auto handler = reinterpret_cast<std::uintptr_t>(action.sa_handler);
    std::string text = std::to_string(handler) + ' ' + std::to_string(action.sa_flags & ~kRestorer);
    for (int other = 1; other < NSIG; ++other) {
        text += sigismember(&action.sa_mask, other) == 1 ? '1' : '0';
    }
    return text;
}

std::string BlockedSignals()
{
    sigset_t blocked;
    sigprocmask(SIG_BLOCK, nullptr, &blocked);
    std::string text;
    for (int number = 1; number < NSIG; ++number) {
        text += sigismember(&blocked, number) == 1 ? '1' : '0';
    }
    return text;
}

std::string Mask()
{
    const mode_t mask = umask(0);
    umask(mask);
    return std::to_string(mask);
}

std::string Timer(__itimer_which kind)
{
    itimerval value = {};
    getitimer(kind, &value);
    return std::to_string(value.it_value.tv_sec != 0 || value.it_value.tv_usec != 0);
}

}  // namespace

ProcessState StateOfProcess()
{
    ProcessState state;
    state["locale"] = std::setlocale(LC_ALL, nullptr);
    state["folder"] = std::filesystem::current_path().string();
    state["mask"] = Mask();
    state["rounding"] = std::to_string(std::fegetround());
    state["blocked signals"] = BlockedSignals();
    state["timer"] = Timer(ITIMER_REAL) + Timer(ITIMER_VIRTUAL) + Timer(ITIMER_PROF);
    for (int number = 1; number < NSIG; ++number) {
        state["signal " + std::to_string(number)] = SignalText(number);
    }
    for (int stream = 0; stream <= 2; ++stream) {
        state["stream " + std::to_string(stream)] = std::to_string(fcntl(stream, F_GETFL));
    }
    for (char** variable = environ; *variable != nullptr; ++variable) {
        const std::string text = *variable;
        const std::size_t sign = text.find('=');
        state["variable " + text.substr(0, sign)] = text.substr(sign + 1);
    }
    return state;
}

bool IsToolkitStarted()
{
    void* const types = dlopen("libgobject-2.0.so.0", RTLD_NOW | RTLD_NOLOAD);
    if (types == nullptr) {
        return false;
    }
    // Its start registers the type of its windows.
    using TypeFromName = std::size_t (*)(const char*);
    const auto find = reinterpret_cast<TypeFromName>(dlsym(types, "g_type_from_name"));
    const bool isStarted = find != nullptr && find("GtkWindow") != 0;
    dlclose(types);
    return isStarted;
}

OutputCapture::OutputCapture()
{
    std::fflush(nullptr);
    std::FILE* const file = std::tmpfile();
    if (file == nullptr) {
        throw std::runtime_error("no file for the output");
    }
    file_ = fcntl(fileno(file), F_DUPFD_CLOEXEC, 3);
    std::fclose(file);
    standardOutput_ = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
    standardError_ = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3);
    dup2(file_, STDOUT_FILENO);
    dup2(file_, STDERR_FILENO);
}

OutputCapture::~OutputCapture()
{
    Restore();
}

void OutputCapture::Restore()
{
    if (standardOutput_ < 0) {
        return;
    }
    std::fflush(nullptr);
    dup2(standardOutput_, STDOUT_FILENO);
    dup2(standardError_, STDERR_FILENO);
    close(standardOutput_);
    close(standardError_);
    standardOutput_ = -1;
}

std::string OutputCapture::Finish()
{
    Restore();
    std::string text;
    char block[4096];
    off_t position = 0;
    for (ssize_t count = 0; (count = pread(file_, block, sizeof block, position)) > 0;) {
        text.append(block, static_cast<std::size_t>(count));
        position += count;
    }
    close(file_);
    return text;
}

}  // namespace kivtests
