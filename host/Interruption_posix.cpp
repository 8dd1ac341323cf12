#include "host/Interruption.h"

#include <array>
#include <csignal>
#include <cstddef>

namespace kivhost {

namespace {

constexpr std::array kSignals = {SIGINT, SIGTERM, SIGHUP};

volatile std::sig_atomic_t noted = 0;

std::array<struct sigaction, kSignals.size()> before = {};

extern "C" void NoteSignal(int number)
{
    noted = number;
}

}  // namespace

Interruption::Interruption()
{
    noted = 0;
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
        sigaction(kSignals.at(i), nullptr, &before.at(i));
        if (before.at(i).sa_handler == SIG_IGN) {
            continue;  // nohup, or a shell that runs it in the background
        }
        struct sigaction action = {};
        action.sa_handler = &NoteSignal;
        // Calls that are under way go on; the next signal finds the system's own answer.
        action.sa_flags = SA_RESTART | static_cast<int>(SA_RESETHAND);
        sigemptyset(&action.sa_mask);
        sigaction(kSignals.at(i), &action, nullptr);
    }
}

Interruption::~Interruption()
{
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
        sigaction(kSignals.at(i), &before.at(i), nullptr);
    }
}

bool Interruption::IsAskedFor() const
{
    return noted != 0;
}

int Interruption::End() const
{
    constexpr int kStatusOfSignals = 128;
    const int number = noted;
    std::signal(number, SIG_DFL);
    std::raise(number);
    return kStatusOfSignals + number;
}

}  // namespace kivhost
