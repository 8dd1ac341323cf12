// A tag is taken apart by the grammar of BCP 47 (RFC 5646), after a POSIX name's encoding and
// modifier are cut off; then it is written as language and region.

#include <kivcore/Locale.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

#include <kivcore/NeverDestroyed.h>
#include <kivcore/StringConversion.h>

namespace kivcore {

namespace {

constexpr UStringView kDefaultLanguage = u"en_US";

struct State {
    bool initialized = false;
    UString language{kDefaultLanguage};
    filesupport::Dir dictionaryDir;
};

State& Current() noexcept
{
    static NeverDestroyed<State> state;
    return *state;
}

struct NamePair {
    std::string_view from;
    std::string_view to;
};

constexpr bool operator<(const NamePair& left, const NamePair& right)
{
    return left.from < right.from;
}

constexpr bool operator<(const NamePair& left, std::string_view right)
{
    return left.from < right;
}

// Languages that have another name today (Unicode CLDR, languageAlias).
constexpr NamePair kAliases[] = {
    {"cmn", "zh"}, {"in", "id"}, {"iw", "he"},  {"ji", "yi"}, {"jw", "jv"},
    {"mo", "ro"},  {"sh", "sr"}, {"tl", "fil"}, {"tw", "ak"},
};
static_assert(std::is_sorted(std::begin(kAliases), std::end(kAliases)));

// Languages behind whose name an extended language may stand (IANA language subtag registry).
constexpr std::string_view kMacroLanguages[] = {"ar", "kok", "lv", "ms", "sgn", "sw", "uz", "zh"};

// The likely region of a language, and of a language in a script other than its likely one (Unicode
// CLDR, likelySubtags).
constexpr NamePair kLikelyRegions[] = {
    {"aa", "ET"},      {"ab", "GE"},       {"ae", "IR"},      {"af", "ZA"},      {"agq", "CM"},
    {"ak", "GH"},      {"am", "ET"},       {"an", "ES"},      {"ar", "EG"},      {"as", "IN"},
    {"asa", "TZ"},     {"ast", "ES"},      {"av", "RU"},      {"ay", "BO"},      {"az", "AZ"},
    {"az_Arab", "IR"}, {"ba", "RU"},       {"bas", "CM"},     {"be", "BY"},      {"bem", "ZM"},
    {"bez", "TZ"},     {"bg", "BG"},       {"bho", "IN"},     {"bi", "VU"},      {"bm", "ML"},
    {"bn", "BD"},      {"bo", "CN"},       {"br", "FR"},      {"brx", "IN"},     {"bs", "BA"},
    {"ca", "ES"},      {"ccp", "BD"},      {"ce", "RU"},      {"ceb", "PH"},     {"cgg", "UG"},
    {"ch", "GU"},      {"chr", "US"},      {"ckb", "IQ"},     {"co", "FR"},      {"cr", "CA"},
    {"cs", "CZ"},      {"cu", "RU"},       {"cu_Glag", "BG"}, {"cv", "RU"},      {"cy", "GB"},
    {"da", "DK"},      {"dav", "KE"},      {"de", "DE"},      {"dje", "NE"},     {"doi", "IN"},
    {"dsb", "DE"},     {"dua", "CM"},      {"dv", "MV"},      {"dyo", "SN"},     {"dz", "BT"},
    {"ebu", "KE"},     {"ee", "GH"},       {"el", "GR"},      {"en", "US"},      {"en_Shaw", "GB"},
    {"eo", "001"},     {"es", "ES"},       {"et", "EE"},      {"eu", "ES"},      {"ewo", "CM"},
    {"fa", "IR"},      {"ff", "SN"},       {"ff_Adlm", "GN"}, {"fi", "FI"},      {"fil", "PH"},
    {"fj", "FJ"},      {"fo", "FO"},       {"fr", "FR"},      {"fur", "IT"},     {"fy", "NL"},
    {"ga", "IE"},      {"gd", "GB"},       {"gl", "ES"},      {"gn", "PY"},      {"gsw", "CH"},
    {"gu", "IN"},      {"guz", "KE"},      {"gv", "IM"},      {"ha", "NG"},      {"haw", "US"},
    {"he", "IL"},      {"hi", "IN"},       {"ho", "PG"},      {"hr", "HR"},      {"hsb", "DE"},
    {"ht", "HT"},      {"hu", "HU"},       {"hy", "AM"},      {"hz", "NA"},      {"ia", "001"},
    {"id", "ID"},      {"ig", "NG"},       {"ii", "CN"},      {"ik", "US"},      {"io", "001"},
    {"is", "IS"},      {"it", "IT"},       {"iu", "CA"},      {"ja", "JP"},      {"jgo", "CM"},
    {"jmc", "TZ"},     {"jv", "ID"},       {"ka", "GE"},      {"kab", "DZ"},     {"kam", "KE"},
    {"kde", "TZ"},     {"kea", "CV"},      {"kg", "CD"},      {"kgp", "BR"},     {"khq", "ML"},
    {"ki", "KE"},      {"kj", "NA"},       {"kk", "KZ"},      {"kk_Arab", "CN"}, {"kkj", "CM"},
    {"kl", "GL"},      {"kln", "KE"},      {"km", "KH"},      {"kn", "IN"},      {"ko", "KR"},
    {"kok", "IN"},     {"ks", "IN"},       {"ksb", "TZ"},     {"ksf", "CM"},     {"ksh", "DE"},
    {"ku", "TR"},      {"ku_Arab", "IQ"},  {"ku_Yezi", "GE"}, {"kv", "RU"},      {"kw", "GB"},
    {"ky", "KG"},      {"ky_Arab", "CN"},  {"ky_Latn", "TR"}, {"la", "VA"},      {"lag", "TZ"},
    {"lb", "LU"},      {"lg", "UG"},       {"li", "NL"},      {"lkt", "US"},     {"ln", "CD"},
    {"lo", "LA"},      {"lrc", "IR"},      {"lt", "LT"},      {"lu", "CD"},      {"luo", "KE"},
    {"luy", "KE"},     {"lv", "LV"},       {"mai", "IN"},     {"mas", "KE"},     {"mer", "KE"},
    {"mfe", "MU"},     {"mg", "MG"},       {"mgh", "MZ"},     {"mgo", "CM"},     {"mh", "MH"},
    {"mi", "NZ"},      {"mk", "MK"},       {"ml", "IN"},      {"mn", "MN"},      {"mn_Mong", "CN"},
    {"mni", "IN"},     {"mr", "IN"},       {"ms", "MY"},      {"mt", "MT"},      {"mua", "CM"},
    {"my", "MM"},      {"mzn", "IR"},      {"na", "NR"},      {"naq", "NA"},     {"nb", "NO"},
    {"nd", "ZW"},      {"nds", "DE"},      {"ne", "NP"},      {"ng", "NA"},      {"nl", "NL"},
    {"nmg", "CM"},     {"nn", "NO"},       {"nnh", "CM"},     {"no", "NO"},      {"nqo", "GN"},
    {"nr", "ZA"},      {"nus", "SS"},      {"nv", "US"},      {"ny", "MW"},      {"nyn", "UG"},
    {"oc", "FR"},      {"oj", "CA"},       {"om", "ET"},      {"or", "IN"},      {"os", "GE"},
    {"pa", "IN"},      {"pa_Arab", "PK"},  {"pcm", "NG"},     {"pl", "PL"},      {"ps", "AF"},
    {"pt", "BR"},      {"qu", "PE"},       {"rm", "CH"},      {"rn", "BI"},      {"ro", "RO"},
    {"rof", "TZ"},     {"ru", "RU"},       {"rw", "RW"},      {"rwk", "TZ"},     {"sa", "IN"},
    {"sah", "RU"},     {"saq", "KE"},      {"sat", "IN"},     {"sbp", "TZ"},     {"sc", "IT"},
    {"sd", "PK"},      {"sd_Deva", "IN"},  {"sd_Khoj", "IN"}, {"sd_Sind", "IN"}, {"se", "NO"},
    {"seh", "MZ"},     {"ses", "ML"},      {"sg", "CF"},      {"shi", "MA"},     {"si", "LK"},
    {"sk", "SK"},      {"sl", "SI"},       {"sm", "WS"},      {"smn", "FI"},     {"sn", "ZW"},
    {"so", "SO"},      {"sq", "AL"},       {"sr", "RS"},      {"ss", "ZA"},      {"st", "ZA"},
    {"su", "ID"},      {"sv", "SE"},       {"sw", "TZ"},      {"syr", "IQ"},     {"ta", "IN"},
    {"te", "IN"},      {"teo", "UG"},      {"tg", "TJ"},      {"tg_Arab", "PK"}, {"th", "TH"},
    {"ti", "ET"},      {"tk", "TM"},       {"tn", "ZA"},      {"to", "TO"},      {"tr", "TR"},
    {"ts", "ZA"},      {"tt", "RU"},       {"twq", "NE"},     {"ty", "PF"},      {"tzm", "MA"},
    {"ug", "CN"},      {"ug_Cyrl", "KZ"},  {"uk", "UA"},      {"ur", "PK"},      {"uz", "UZ"},
    {"uz_Arab", "AF"}, {"vai", "LR"},      {"ve", "ZA"},      {"vi", "VN"},      {"vo", "001"},
    {"vun", "TZ"},     {"wa", "BE"},       {"wae", "CH"},     {"wo", "SN"},      {"xh", "ZA"},
    {"xog", "UG"},     {"yav", "CM"},      {"yi", "001"},     {"yo", "NG"},      {"yrl", "BR"},
    {"yue", "HK"},     {"yue_Hans", "CN"}, {"za", "CN"},      {"zgh", "MA"},     {"zh", "CN"},
    {"zh_Bopo", "TW"}, {"zh_Hanb", "TW"},  {"zh_Hant", "TW"}, {"zu", "ZA"},
};
static_assert(std::is_sorted(std::begin(kLikelyRegions), std::end(kLikelyRegions)));

// Regions of a language whose texts are nearer to each other than to the likely region's (Unicode
// CLDR, parentLocales). Without a nearer region the bare language comes next: simplified Chinese is
// no help to readers of traditional Chinese.
struct NearerRegionRow {
    std::string_view language;
    std::string_view regions;
    std::string_view nearer;
};

constexpr NearerRegionRow kNearerRegions[] = {
    {"es", "AR BO BR BZ CL CO CR CU DO EC GT HN MX NI PA PE PR PY SV US UY VE", "419"},
    {"pt", "AO CH CV FR GQ GW LU MO MZ ST TL", "PT"},
    {"zh", "AU BN GB GF HK ID PA PF PH SR TH US VN", "TW"},
    {"zh", "MO", "HK"},
    {"zh", "TW", ""},
};

constexpr std::string_view kRightToLeftScripts[] = {"Adlm", "Arab", "Aran", "Hebr", "Mand",
                                                    "Nkoo", "Rohg", "Samr", "Syrc", "Thaa"};

// Languages that are written from right to left where no script is named; a row with a region
// counts before the one without (Unicode CLDR, likelySubtags).
struct DirectionRow {
    std::string_view language;
    std::string_view region;
    bool rightToLeft;
};

constexpr DirectionRow kDirections[] = {
    {"ar", "", true},   {"az", "IQ", true},  {"az", "IR", true},  {"ckb", "", true},
    {"dv", "", true},   {"fa", "", true},    {"ha", "CM", true},  {"ha", "SD", true},
    {"he", "", true},   {"kk", "AF", true},  {"kk", "CN", true},  {"kk", "IR", true},
    {"kk", "MN", true}, {"ks", "", true},    {"ku", "IQ", true},  {"ku", "IR", true},
    {"ku", "LB", true}, {"ky", "CN", true},  {"lrc", "", true},   {"ms", "CC", true},
    {"mzn", "", true},  {"nqo", "", true},   {"pa", "PK", true},  {"ps", "", true},
    {"sd", "", true},   {"sd", "IN", false}, {"syr", "", true},   {"tg", "PK", true},
    {"ug", "", true},   {"ug", "KZ", false}, {"ug", "MN", false}, {"ur", "", true},
    {"uz", "AF", true}, {"yi", "", true},
};

bool IsAlpha(char character)
{
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

bool IsDigit(char character)
{
    return character >= '0' && character <= '9';
}

bool AreAll(std::string_view text, bool (*test)(char))
{
    return std::all_of(text.begin(), text.end(), test);
}

bool IsAlphaNumeric(char character)
{
    return IsAlpha(character) || IsDigit(character);
}

char Lower(char character)
{
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                                : character;
}

char Upper(char character)
{
    return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A')
                                                : character;
}

std::string Mapped(std::string_view text, char (*map)(char))
{
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), map);
    return result;
}

/// The value of `from` in a sorted table, empty where it has no row.
template <std::size_t kCount>
std::string_view Look(const NamePair (&rows)[kCount], std::string_view from)
{
    const auto* const found = std::lower_bound(std::begin(rows), std::end(rows), from);
    return found != std::end(rows) && found->from == from ? found->to : std::string_view();
}

/// A language tag's parts that matter here, each in its usual case; language "" for no tag.
struct Tag {
    std::string language;
    std::string script;
    std::string region;
};

/// Hands out the parts between "-" or "_".
class Subtags {
public:
    explicit Subtags(std::string_view text) : rest_(text) { Next(); }

    /// The part at hand; empty at the end, and where nothing stands between two separators.
    std::string_view Current() const { return current_; }
    bool AtEnd() const { return atEnd_; }

    void Next()
    {
        atEnd_ = !hasRest_;
        const std::size_t separator = rest_.find_first_of("-_");
        hasRest_ = !atEnd_ && separator != std::string_view::npos;
        current_ = atEnd_ ? std::string_view() : rest_.substr(0, separator);
        rest_ = hasRest_ ? rest_.substr(separator + 1) : std::string_view();
    }

private:
    std::string_view rest_;
    std::string_view current_;
    bool hasRest_ = true;
    bool atEnd_ = false;
};

bool IsMacroLanguage(std::string_view language)
{
    return std::find(std::begin(kMacroLanguages), std::end(kMacroLanguages), language) !=
           std::end(kMacroLanguages);
}

bool IsScript(std::string_view part)
{
    return part.size() == 4 && AreAll(part, IsAlpha);
}

bool IsRegion(std::string_view part)
{
    return (part.size() == 2 && AreAll(part, IsAlpha)) ||
           (part.size() == 3 && AreAll(part, IsDigit));
}

bool IsVariant(std::string_view part)
{
    return AreAll(part, IsAlphaNumeric) &&
           ((part.size() >= 5 && part.size() <= 8) || (part.size() == 4 && IsDigit(part.front())));
}

/// True if what is left are extensions, each one character and then longer parts, and at the end
/// private parts of any length behind an "x".
bool AreExtensions(Subtags parts)
{
    bool hasBegun = false;
    bool isPrivate = false;
    bool wantsMore = false;
    for (; !parts.AtEnd(); parts.Next()) {
        const std::string_view part = parts.Current();
        if (part.empty() || part.size() > 8 || !AreAll(part, IsAlphaNumeric)) {
            return false;
        }
        const bool begins = part.size() == 1 && !isPrivate;
        if (begins ? wantsMore : !hasBegun) {
            return false;
        }
        wantsMore = begins;
        hasBegun = true;
        isPrivate = isPrivate || (begins && Lower(part.front()) == 'x');
    }
    return !wantsMore;
}

Tag ReadTag(UStringView text)
{
    Tag tag;
    const UStringView name = text.substr(0, text.find_first_of(u".@"));  // "de_DE.UTF-8@euro"
    const std::string ascii = string::UTF16to8(name);
    Subtags parts(ascii);

    const std::string_view first = parts.Current();
    if (first.size() < 2 || first.size() > 3 || !AreAll(first, IsAlpha)) {
        return tag;
    }
    std::string language = Mapped(first, Lower);
    parts.Next();
    // An extended language is one of its own: "zh-yue" is "yue".
    if (IsMacroLanguage(language) && parts.Current().size() == 3 &&
        AreAll(parts.Current(), IsAlpha)) {
        language = Mapped(parts.Current(), Lower);
        parts.Next();
    }
    if (IsScript(parts.Current())) {
        tag.script = Mapped(parts.Current(), Lower);
        tag.script.front() = Upper(tag.script.front());
        parts.Next();
    }
    if (IsRegion(parts.Current())) {
        tag.region = Mapped(parts.Current(), Upper);
        parts.Next();
    }
    while (IsVariant(parts.Current())) {
        parts.Next();
    }
    if (language == "und" || !AreExtensions(parts)) {
        return Tag();
    }
    const std::string_view today = Look(kAliases, language);
    tag.language = today.empty() ? std::move(language) : std::string(today);
    return tag;
}

std::string LikelyRegion(const Tag& tag)
{
    std::string_view region;
    if (!tag.script.empty()) {
        region = Look(kLikelyRegions, tag.language + "_" + tag.script);
    }
    return std::string(region.empty() ? Look(kLikelyRegions, tag.language) : region);
}

/// Completes the region, where the language has a likely one; "en_US" for no tag.
Tag ReadFullTag(UStringView text)
{
    Tag tag = ReadTag(text);
    if (tag.language.empty()) {
        return Tag{"en", "", "US"};
    }
    if (tag.region.empty()) {
        tag.region = LikelyRegion(tag);
    }
    return tag;
}

UString Written(const Tag& tag)
{
    return string::AsciiToUTF16(tag.region.empty() ? tag.language
                                                   : tag.language + "_" + tag.region);
}

/// The region whose texts come next after those of `tag`; empty for the bare language.
std::string NextRegion(const Tag& tag)
{
    for (const NearerRegionRow& row : kNearerRegions) {
        if (row.language == tag.language &&
            row.regions.find(tag.region) != std::string_view::npos) {
            return std::string(row.nearer);
        }
    }
    const std::string likely = LikelyRegion(Tag{tag.language, "", ""});
    return likely == tag.region ? std::string() : likely;
}

}  // namespace

bool Locale::IsInitialized() noexcept
{
    return Current().initialized;
}

void Locale::Initialize(const UString& language, const filesupport::Dir& dictionaryDir)
{
    State& state = Current();
    if (state.initialized) {
        return;
    }
    UString normalized = Normalize(language);
    state.dictionaryDir = dictionaryDir;
    state.language = std::move(normalized);
    state.initialized = true;
}

void Locale::Reset() noexcept
{
    State& state = Current();
    state.initialized = false;
    state.language = kDefaultLanguage;
    state.dictionaryDir = filesupport::Dir();
}

const UString& Locale::ApplicationLanguage()
{
    return Current().language;
}

filesupport::Dir Locale::DictionaryDir()
{
    return Current().dictionaryDir;
}

UString Locale::Normalize(UStringView tag)
{
    return Written(ReadFullTag(tag));
}

std::vector<UString> Locale::FallbackChain(UStringView language)
{
    std::vector<UString> chain;
    const auto add = [&chain](UString name) {
        if (std::find(chain.begin(), chain.end(), name) == chain.end()) {
            chain.push_back(std::move(name));
        }
    };
    Tag tag = ReadFullTag(language);
    while (!tag.region.empty()) {
        add(Written(tag));
        tag.region = NextRegion(tag);
    }
    add(Written(tag));
    add(UString(kDefaultLanguage));
    return chain;
}

bool Locale::IsRightToLeft(UStringView language)
{
    const Tag tag = ReadFullTag(language);
    if (!tag.script.empty()) {
        return std::find(std::begin(kRightToLeftScripts), std::end(kRightToLeftScripts),
                         tag.script) != std::end(kRightToLeftScripts);
    }
    bool result = false;
    for (const DirectionRow& row : kDirections) {
        if (row.language != tag.language) {
            continue;
        }
        if (row.region == tag.region) {
            return row.rightToLeft;
        }
        if (row.region.empty()) {
            result = row.rightToLeft;
        }
    }
    return result;
}

}  // namespace kivcore
