#include "framework/kivcore/tests/FileWorker.h"

#include <windows.h>

#include <shellapi.h>

#include <kivcore/Dir.h>

// main() gets them in the user's code page, which has few of all characters.
std::vector<std::string> WorkerArguments(int /*count*/, char** /*arguments*/)
{
    int count = 0;
    wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> arguments;
    for (int i = 1; i < count; ++i) {
        const std::wstring text = wide[i];
        arguments.push_back(
            kivcore::filesupport::PathToUTF8(kivcore::UString(text.begin(), text.end())));
    }
    LocalFree(static_cast<void*>(wide));
    return arguments;
}
