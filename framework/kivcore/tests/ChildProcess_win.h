// Another program, run to its end.

#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <windows.h>

#include <gtest/gtest.h>

#include "framework/kivcore/tests/TestFolder.h"

namespace kivcore::testing {

/// How a child ended, and what it had to say.
struct ChildOutcome {
    DWORD status = 0;
    std::string text;

    bool WasKilled() const { return status == STATUS_CONTROL_C_EXIT; }
    bool Succeeded() const { return status == 0; }
};

/// A running program; what it writes to its standard output is the outcome's text.
class Child {
public:
    /// Arguments are UTF-8 without quotation marks, and do not end in a backslash. `environment`
    /// ("NAME=value") is added to ours.
    Child(const std::filesystem::path& program, const std::vector<std::string>& arguments,
          const std::vector<std::string>& environment)
    {
        SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
        HANDLE out = nullptr;
        EXPECT_TRUE(CreatePipe(&in_, &out, &inherited, 0));
        SetHandleInformation(in_, HANDLE_FLAG_INHERIT, 0);
        std::wstring line = L"\"" + program.wstring() + L"\"";
        for (const std::string& argument : arguments) {
            line += L" \"" + PathOfText(argument).wstring() + L"\"";
        }
        STARTUPINFOW start = {};
        start.cb = sizeof start;
        start.dwFlags = STARTF_USESTDHANDLES;
        start.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
        start.hStdOutput = out;
        start.hStdError = GetStdHandle(STD_ERROR_HANDLE);
        std::wstring variables = Variables(environment);
        EXPECT_TRUE(CreateProcessW(program.c_str(), line.data(), nullptr, nullptr,
                                   /*bInheritHandles=*/TRUE, CREATE_UNICODE_ENVIRONMENT,
                                   variables.data(), nullptr, &start, &process_))
            << program << ": " << GetLastError();
        CloseHandle(out);
        CloseHandle(process_.hThread);
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    ~Child()
    {
        CloseHandle(in_);
        CloseHandle(process_.hProcess);
    }

    bool HasEnded() const { return WaitForSingleObject(process_.hProcess, 0) == WAIT_OBJECT_0; }

    ChildOutcome Wait()
    {
        ChildOutcome outcome;
        char buffer[4096];
        for (DWORD count = 0; ReadFile(in_, buffer, sizeof buffer, &count, nullptr) && count > 0;) {
            outcome.text.append(buffer, count);
        }
        EXPECT_EQ(WaitForSingleObject(process_.hProcess, INFINITE), WAIT_OBJECT_0);
        EXPECT_TRUE(GetExitCodeProcess(process_.hProcess, &outcome.status));
        return outcome;
    }

private:
    static std::wstring NameIn(const std::wstring& entry)
    {
        return entry.substr(0, entry.find(L'=', 1));
    }

    static std::wstring Variables(const std::vector<std::string>& environment)
    {
        std::wstring block;
        std::vector<std::wstring> added;
        for (const std::string& entry : environment) {
            added.push_back(PathOfText(entry).wstring());
            block += added.back();
            block += L'\0';
        }
        wchar_t* const ours = GetEnvironmentStringsW();
        for (const wchar_t* entry = ours; *entry != L'\0';) {
            const std::wstring text = entry;
            entry += text.size() + 1;
            bool replaced = false;
            for (const std::wstring& other : added) {
                replaced = replaced || NameIn(other) == NameIn(text);
            }
            if (!replaced) {
                block += text;
                block += L'\0';
            }
        }
        FreeEnvironmentStringsW(ours);
        block += L'\0';
        return block;
    }

    HANDLE in_ = nullptr;
    PROCESS_INFORMATION process_{};
};

inline ChildOutcome RunProgram(const std::filesystem::path& program,
                               const std::vector<std::string>& arguments,
                               const std::vector<std::string>& environment)
{
    return Child(program, arguments, environment).Wait();
}

}  // namespace kivcore::testing
