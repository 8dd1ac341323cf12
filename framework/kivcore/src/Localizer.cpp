#include <kivcore/Localizer.h>

#include <atomic>
#include <stdexcept>

#include <kivcore/Dir.h>
#include <kivcore/Locale.h>
#include <kivcore/StringConversion.h>

namespace kivcore::config {

namespace {

constinit std::atomic<Localizer*> registered{nullptr};

constexpr std::string_view kPrefix = "$$$/";

UString DefaultOf(std::string_view key)
{
    std::string_view inner = key;
    if (key.size() > kPrefix.size() && key.front() == '(' && key.back() == ')') {
        inner = key.substr(1, key.size() - 2);
    }
    const std::size_t equals = inner.find('=');
    if (!inner.starts_with(kPrefix) || equals == std::string_view::npos) {
        return string::UTF8to16(key);
    }
    return string::UTF8to16(inner.substr(equals + 1));
}

}  // namespace

Localizer::~Localizer()
{
    Localizer* self = this;
    registered.compare_exchange_strong(self, nullptr);
}

bool Localizer::Initialized() noexcept
{
    return registered.load() != nullptr;
}

Localizer* Localizer::Get()
{
    Localizer* const localizer = registered.load();
    if (localizer == nullptr) {
        throw std::logic_error("no localizer is registered");
    }
    return localizer;
}

void Localizer::Set(Localizer* localizer, const filesupport::Dir* dictionaryDir)
{
    registered.store(localizer);
    if (localizer != nullptr && dictionaryDir != nullptr && !dictionaryDir->IsEmpty()) {
        const UString name = u"kiv_" + Locale::ApplicationLanguage() + u".dict";
        localizer->LoadDictionary(filesupport::File(*dictionaryDir, name).FullPath());
    }
}

UString Localize(std::string_view key)
{
    Localizer* const localizer = registered.load();
    return localizer != nullptr ? localizer->Localize(std::string(key)) : DefaultOf(key);
}

}  // namespace kivcore::config
