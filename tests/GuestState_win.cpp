#include "tests/GuestState.h"

#include <array>
#include <cfenv>
#include <clocale>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <exception>
#include <filesystem>
#include <new>
#include <stdexcept>

#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <objbase.h>
#include <xmmintrin.h>

namespace kivtests {

namespace {

// UTF-8.
std::string Narrow(const wchar_t* text)
{
    const std::u8string narrow = std::filesystem::path(text).u8string();
    return {narrow.begin(), narrow.end()};
}

template <class Function>
std::string Address(Function function)
{
    return std::to_string(reinterpret_cast<std::uintptr_t>(function));
}

std::string SignalText(int number)
{
    const auto handler = std::signal(number, SIG_DFL);
    std::signal(number, handler);
    return Address(handler);
}

std::string ExceptionFilter()
{
    const LPTOP_LEVEL_EXCEPTION_FILTER filter = SetUnhandledExceptionFilter(nullptr);
    SetUnhandledExceptionFilter(filter);
    return Address(filter);
}

std::string InvalidParameterHandler()
{
    const auto handler = _set_invalid_parameter_handler(nullptr);
    _set_invalid_parameter_handler(handler);
    return Address(handler);
}

std::string LibraryFolder()
{
    std::array<wchar_t, 1024> folder = {};
    GetDllDirectoryW(static_cast<DWORD>(folder.size()), folder.data());
    return Narrow(folder.data());
}

// "none" while the thread has not joined COM.
std::string Apartment()
{
    APTTYPE type = {};
    APTTYPEQUALIFIER qualifier = {};
    const HRESULT result = CoGetApartmentType(&type, &qualifier);
    return result == S_OK ? std::to_string(type) : "none";
}

std::string StreamText(int stream)
{
    const int mode = _setmode(stream, _O_BINARY);
    if (mode != -1) {
        _setmode(stream, mode);
    }
    const HANDLE handle = reinterpret_cast<HANDLE>(_get_osfhandle(stream));
    return std::to_string(mode) + ' ' + std::to_string(GetFileType(handle));
}

void AddVariables(ProcessState& state)
{
    wchar_t* const all = GetEnvironmentStringsW();
    for (const wchar_t* each = all; *each != 0; each += std::wcslen(each) + 1) {
        const std::string text = Narrow(each);
        // The system's own ones begin with the sign.
        const std::size_t sign = text.find('=', 1);
        state["variable " + text.substr(0, sign)] = text.substr(sign + 1);
    }
    FreeEnvironmentStringsW(all);
}

}  // namespace

ProcessState StateOfProcess()
{
    ProcessState state;
    state["locale"] = std::setlocale(LC_ALL, nullptr);
    state["thread locale"] = std::to_string(GetThreadLocale());
    state["user interface language"] = std::to_string(GetThreadUILanguage());
    state["folder"] = Narrow(std::filesystem::current_path().c_str());
    state["rounding"] = std::to_string(std::fegetround());
    state["floating point"] = std::to_string(_mm_getcsr() & 0xFFC0U);
    state["error mode"] = std::to_string(GetErrorMode());
    state["exception filter"] = ExceptionFilter();
    state["invalid parameters"] = InvalidParameterHandler();
    state["end"] = Address(std::get_terminate());
    state["memory"] = Address(std::get_new_handler());
    state["folder of libraries"] = LibraryFolder();
    state["code pages"] =
        std::to_string(GetConsoleCP()) + ' ' + std::to_string(GetConsoleOutputCP());
    state["priority"] = std::to_string(GetPriorityClass(GetCurrentProcess())) + ' ' +
                        std::to_string(GetThreadPriority(GetCurrentThread()));
    state["scaling"] =
        std::to_string(GetAwarenessFromDpiAwarenessContext(GetThreadDpiAwarenessContext()));
    state["apartment"] = Apartment();
    for (const int number : {SIGABRT, SIGFPE, SIGILL, SIGINT, SIGSEGV, SIGTERM}) {
        state["signal " + std::to_string(number)] = SignalText(number);
    }
    for (int stream = 0; stream <= 2; ++stream) {
        state["stream " + std::to_string(stream)] = StreamText(stream);
    }
    AddVariables(state);
    return state;
}

// Nothing but the module links the toolkit, and the module starts it when it is loaded.
bool IsToolkitStarted()
{
    return GetModuleHandleW(L"kivtoolkit.dll") != nullptr;
}

OutputCapture::OutputCapture()
{
    std::fflush(nullptr);
    std::array<wchar_t, MAX_PATH + 1> folder = {};
    std::array<wchar_t, MAX_PATH + 1> name = {};
    GetTempPathW(static_cast<DWORD>(folder.size()), folder.data());
    GetTempFileNameW(folder.data(), L"kiv", 0, name.data());
    // Goes away with the last of its descriptors.
    file_ = _wopen(name.data(), _O_RDWR | _O_BINARY | _O_TEMPORARY | _O_NOINHERIT);
    if (file_ < 0) {
        throw std::runtime_error("no file for the output");
    }
    standardOutput_ = _dup(1);
    standardError_ = _dup(2);
    _dup2(file_, 1);
    _dup2(file_, 2);
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
    _dup2(standardOutput_, 1);
    _dup2(standardError_, 2);
    _close(standardOutput_);
    _close(standardError_);
    standardOutput_ = -1;
}

std::string OutputCapture::Finish()
{
    Restore();
    std::string text;
    char block[4096];
    _lseek(file_, 0, SEEK_SET);
    for (int count = 0; (count = _read(file_, block, sizeof block)) > 0;) {
        text.append(block, static_cast<std::size_t>(count));
    }
    _close(file_);
    return text;
}

}  // namespace kivtests
