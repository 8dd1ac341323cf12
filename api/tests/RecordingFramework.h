// A second implementation of what the library calls of its framework: it writes down every call and
// can fail at any of them.

#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <kivcore/PropList.h>
#include <kivmetadata/Definitions.h>
#include <kivmetadata/Provider.h>

namespace recording {

/// What one test sets up and reads back. Everything is public: the tests are its only user.
struct Framework {
    std::vector<std::string> calls;  ///< "config::SetClientName Darkroom"
    std::string failAt;              ///< name of the call that throws; empty for none
    bool throwsUnknown = false;      ///< what it throws is no std::exception

    std::string lastFailure;
    std::vector<std::string> traces;  ///< "0 kivmetadataapi text"
    bool isTraceOn = false;
    int traceQuestions = 0;  ///< TraceEnabled calls

    bool isClientNameSet = false;
    bool isLocaleSet = false;
    std::string language;
    bool isXmlSet = false;
    bool hasPreferencesFile = false;
    kivcore::proplist::PropList storedPreferences;

    kivmetadata::ViewDefinitions views;
    std::vector<std::shared_ptr<const kivmetadata::SchemaDefinition>> schemas;

    bool dialogResult = false;
    std::function<void(kivmetadata::MetaDataProvider&)> inDialog;  ///< while the dialog is "open"

    int gdiPlusRunning = 0;
    const void* svgHandler = nullptr;  ///< what svgloom::Handler handed out
};

/// The one in force.
Framework& Get();

/// Begins anew, with nothing registered.
void Reset();

/// Writes a call down, and throws if it is the one to fail.
void Call(const std::string& name, const std::string& argument = {});
/// Writes down a call that cannot fail.
void Note(const std::string& name, const std::string& argument = {}) noexcept;

/// Moves the trace-change count, as switching a channel does.
void SwitchTrace(bool on);

/// Asks the scale function that the library set.
float AskScale(float screenScale);

/// The calls since the last Take, one a line, and forgets them.
std::string TakeCalls();

}  // namespace recording
