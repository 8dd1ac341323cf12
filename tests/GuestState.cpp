#include "tests/GuestState.h"

namespace kivtests {

std::string Differences(const ProcessState& before, const ProcessState& after)
{
    constexpr char kNone[] = "(none)";
    std::string text;
    const auto tell = [&text](const std::string& name, const std::string& was,
                              const std::string& is) {
        text += name + ": " + was + " -> " + is + '\n';
    };
    for (const auto& [name, value] : before) {
        const auto now = after.find(name);
        if (now == after.end()) {
            tell(name, value, kNone);
        } else if (now->second != value) {
            tell(name, value, now->second);
        }
    }
    for (const auto& [name, value] : after) {
        if (before.find(name) == before.end()) {
            tell(name, kNone, value);
        }
    }
    return text;
}

}  // namespace kivtests
