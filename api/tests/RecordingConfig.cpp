// The recording kivcore: configuration, localizer, locale, error manager, traces.

#include "api/tests/RecordingFramework.h"

#include <kivcore/Config.h>
#include <kivcore/ErrorManager.h>
#include <kivcore/LastFailure.h>
#include <kivcore/Locale.h>
#include <kivcore/Localizer.h>
#include <kivcore/Logging.h>
#include <kivcore/RefCounted.h>
#include <kivcore/StringConversion.h>
#include <kivcore/Trace.h>
#include <kivcore/Xml.h>

#include <stdexcept>
#include <utility>

using recording::Call;
using recording::Get;
using recording::Note;

namespace kivcore {

void* RecyclingAllocate(std::size_t bytes)
{
    return ::operator new(bytes);
}

void RecyclingFree(void* block, std::size_t) noexcept
{
    ::operator delete(block);
}

namespace string {

UString AsciiToUTF16(std::string_view text)
{
    UString wide;
    for (const char unit : text) {
        wide.push_back(static_cast<unsigned char>(unit));
    }
    return wide;
}

UString UTF8to16(std::string_view text)
{
    Call("string::UTF8to16", std::string(text));
    return AsciiToUTF16(text);
}

std::string UTF16to8(UStringView text)
{
    std::string narrow;
    for (const char16_t unit : text) {
        narrow.push_back(static_cast<char>(unit));
    }
    return narrow;
}

}  // namespace string

namespace utility {

RefCountedInterface::~RefCountedInterface() = default;

RefCountedObject::~RefCountedObject() = default;

void RefCountedObject::AddReference() const noexcept
{
    ++count_;
}

void RefCountedObject::Release() const noexcept
{
    if (--count_ == 0) {
        delete this;
    }
}

}  // namespace utility

void SetLastFailureText(std::string_view text) noexcept
{
    Get().lastFailure = text;
}

namespace config {

namespace {

Localizer* localizer = nullptr;
std::shared_ptr<ErrorManager> errorManager = std::make_shared<ErrorManager>();

}  // namespace

bool Initialize(const MessageCallback& callback)
{
    Call("config::Initialize");
    callback("a message that the library drops");
    return true;
}

void Terminate(const std::function<void()>* lastStep)
{
    Note("config::Terminate", lastStep == nullptr ? "null" : "function");
    Get().isClientNameSet = false;
    Get().isLocaleSet = false;
}

bool IsClientNameInitialized() noexcept
{
    return Get().isClientNameSet;
}

void SetCompanyName(const UString& name)
{
    Call("config::SetCompanyName", string::UTF16to8(name));
}

void SetClientName(const UString& name)
{
    Call("config::SetClientName", string::UTF16to8(name));
    Get().isClientNameSet = true;
}

void SetClientVersion(const UString& version)
{
    Call("config::SetClientVersion", string::UTF16to8(version));
}

void SetClientInternalVersion(const UString& version)
{
    Call("config::SetClientInternalVersion", string::UTF16to8(version));
}

void SetClientBuildNumber(const UString& number)
{
    Call("config::SetClientBuildNumber", string::UTF16to8(number));
}

void SetAppIsHeadless(bool headless) noexcept
{
    Note("config::SetAppIsHeadless", headless ? "true" : "false");
}

void ExecuteTopLevelFunction(const std::function<void()>& function, bool* failed) noexcept
{
    const auto manager = errorManager;
    Get().lastFailure.clear();
    const bool ok = manager->ExecuteFunctionAndConvertException(function);
    if (failed != nullptr) {
        *failed = !ok;
    }
}

ErrorManager::ErrorManager() = default;

ErrorManager::~ErrorManager() = default;

std::size_t ErrorManager::PurgeMemory()
{
    return 0;
}

void ErrorManager::IncrementLazilyDisplayErrors() {}

void ErrorManager::DecrementLazilyDisplayErrors() {}

bool ErrorManager::ExecuteFunctionAndConvertException(
    const std::function<void()>& function) noexcept
{
    try {
        function();
        return true;
    } catch (const std::exception& error) {
        SetLastFailureText(error.what());
    } catch (...) {
        SetLastFailureText("unknown exception");
    }
    return false;
}

int ErrorManager::RunAndContain(std::function<int()>) noexcept
{
    return 1;
}

std::unique_ptr<DeferredErrorReporter> ErrorManager::NewDeferredErrorReporter()
{
    return nullptr;
}

void ErrorManager::RaiseError(bool, const char* messageId, const ReplacementValue&,
                              const ReplacementValue&, const ReplacementValue&,
                              const ReplacementValue&)
{
    throw std::runtime_error(messageId);
}

ReplacementValue::ReplacementValue(const char* utf8Text) : text_(string::AsciiToUTF16(utf8Text)) {}

ReplacementValue::ReplacementValue(std::int64_t number)
    : text_(string::AsciiToUTF16(std::to_string(number)))
{
}

std::string SubstituteErrorMessage(const char* messageId, const ReplacementValue& value0,
                                   const ReplacementValue& value1, const ReplacementValue& value2,
                                   const ReplacementValue& value3)
{
    std::string text = messageId;
    for (const auto* value : {&value0, &value1, &value2, &value3}) {
        text += "|" + string::UTF16to8(value->Text());
    }
    return text;
}

void SetErrorManager(std::shared_ptr<ErrorManager> manager)
{
    Call("config::SetErrorManager");
    errorManager = std::move(manager);
}

void ResetToDefaultErrorManager()
{
    Note("config::ResetToDefaultErrorManager");
    errorManager = std::make_shared<ErrorManager>();
}

std::shared_ptr<ErrorManager> GetErrorManager()
{
    return errorManager;
}

Localizer::~Localizer()
{
    if (localizer == this) {
        localizer = nullptr;
    }
}

bool Localizer::Initialized() noexcept
{
    return localizer != nullptr;
}

Localizer* Localizer::Get()
{
    return localizer;
}

void Localizer::Set(Localizer* newLocalizer, const filesupport::Dir* dictionaryDir)
{
    Call("Localizer::Set", std::string(newLocalizer == nullptr ? "null" : "localizer") +
                               (dictionaryDir == nullptr ? " null" : " dir"));
    localizer = newLocalizer;
}

}  // namespace config

bool Locale::IsInitialized() noexcept
{
    return recording::Get().isLocaleSet;
}

void Locale::Initialize(const UString& language, const filesupport::Dir& dictionaryDir)
{
    Call("Locale::Initialize",
         string::UTF16to8(language) + (dictionaryDir.IsEmpty() ? "" : " dir"));
    recording::Get().language = string::UTF16to8(language);
    recording::Get().isLocaleSet = true;
}

const UString& Locale::ApplicationLanguage()
{
    static UString language;
    language = string::AsciiToUTF16(recording::Get().language);
    return language;
}

namespace debug {

namespace {

std::uint32_t changeCount = 1;

}  // namespace

bool TraceEnabled(const char* channel, int level, bool readEnvironment)
{
    ++Get().traceQuestions;
    Note("debug::TraceEnabled", std::string(channel) + " " + std::to_string(level) +
                                    (readEnvironment ? " true" : " false"));
    return Get().isTraceOn;
}

void Trace(int level, const char* channel, std::string_view text) noexcept
{
    Get().traces.push_back(std::to_string(level) + " " + channel + " " + std::string(text));
}

std::uint32_t TraceChangeCount() noexcept
{
    return changeCount;
}

}  // namespace debug

namespace logging {

void UnregisterLogFilePathsCallback(const std::string& name) noexcept
{
    Note("logging::UnregisterLogFilePathsCallback", name);
}

}  // namespace logging

namespace xml {

DocParserFactory::~DocParserFactory() = default;

MSXMLParserFactory::MSXMLParserFactory()
{
    Call("MSXMLParserFactory");
}

MSXMLParserFactory::~MSXMLParserFactory() = default;

std::unique_ptr<DocParser> MSXMLParserFactory::NewParser()
{
    return nullptr;
}

bool Initialized() noexcept
{
    return Get().isXmlSet;
}

void SetParserFactory(std::unique_ptr<DocParserFactory>)
{
    Call("xml::SetParserFactory");
    Get().isXmlSet = true;
}

void ResetParserFactory() noexcept
{
    Note("xml::ResetParserFactory");
    Get().isXmlSet = false;
}

}  // namespace xml

}  // namespace kivcore

void recording::SwitchTrace(bool on)
{
    Get().isTraceOn = on;
    ++kivcore::debug::changeCount;
}

const char* KivLastFailureText(void)
{
    return Get().lastFailure.c_str();
}
