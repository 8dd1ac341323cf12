#include "host/Console.h"

#include <cstdio>
#include <cwchar>
#include <memory>
#include <stdexcept>

#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

namespace kivhost {

namespace {

struct LocalDeleter {
    void operator()(void* block) const { LocalFree(block); }
};

// Half of a surrogate pair, which a file name may hold, becomes U+FFFD.
std::string ToUtf8(const wchar_t* text)
{
    const int units = static_cast<int>(std::wcslen(text));
    if (units == 0) {
        return {};
    }
    const int bytes = WideCharToMultiByte(CP_UTF8, 0, text, units, nullptr, 0, nullptr, nullptr);
    std::string result(static_cast<std::size_t>(bytes), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, units, result.data(), bytes, nullptr, nullptr);
    return result;
}

}  // namespace

Console::Console()
{
    // Lines end as they do on other systems: what a script compares is the same everywhere.
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    const UINT before = GetConsoleOutputCP();
    if (before != 0 && before != CP_UTF8 && SetConsoleOutputCP(CP_UTF8) != 0) {
        codePageBefore_ = before;
    }
}

Console::~Console()
{
    if (codePageBefore_ != 0) {
        SetConsoleOutputCP(codePageBefore_);
    }
}

// What main() gets is in the ANSI code page, with "*" and "?" replaced by the files they match.
std::vector<std::string> CommandLineArguments(int /*argc*/, char** /*argv*/)
{
    int count = 0;
    const std::unique_ptr<wchar_t*, LocalDeleter> arguments(
        CommandLineToArgvW(GetCommandLineW(), &count));
    if (!arguments) {
        throw std::runtime_error("the command line cannot be read");
    }
    std::vector<std::string> result;
    for (int i = 1; i < count; ++i) {
        result.push_back(ToUtf8(arguments.get()[i]));
    }
    return result;
}

}  // namespace kivhost
