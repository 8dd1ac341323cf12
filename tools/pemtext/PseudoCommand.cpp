#include "tools/pemtext/Commands.h"
#include "tools/pemtext/TextOutput.h"

#include <charconv>
#include <string>

namespace pemtext {

namespace {

constexpr std::size_t kMaxPercent = 1000;

constexpr std::u16string_view kPlain = u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
constexpr std::u16string_view kAccented =
    u"\u00C5\u0181\u00C7\u00D0\u00C9\u0191\u011C\u0124\u00CE\u0134\u0136\u013B\u1E40\u00D1\u00D6"
    u"\u00DE\u01EA\u0154\u0160\u0162\u00DB\u1E7C\u0174\u1E8A\u00DD\u017D"
    u"\u00E5\u0180\u00E7\u00F0\u00E9\u0192\u011D\u0125\u00EE\u0135\u0137\u013C\u1E41\u00F1\u00F6"
    u"\u00FE\u01EB\u0155\u0161\u0163\u00FB\u1E7D\u0175\u1E8B\u00FD\u017E";

static_assert(kPlain.size() == kAccented.size());

constexpr char16_t kRightToLeftOverride = 0x202E;
constexpr char16_t kPopDirection = 0x202C;

struct Style {
    bool accented;
    bool bidi;
    std::size_t longerPercent;
};

bool IsPlaceholder(std::u16string_view text, std::size_t at)
{
    return text[at] == u'^' && at + 1 < text.size() && text[at + 1] >= u'0' && text[at + 1] <= u'9';
}

// Accents on the letters, every run between placeholders turned round.
std::u16string Changed(std::u16string_view text, const Style& style)
{
    std::u16string out;
    bool turned = false;
    const auto turn = [&](bool on) {
        if (style.bidi && on != turned)
            out += on ? kRightToLeftOverride : kPopDirection;
        turned = on;
    };
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (IsPlaceholder(text, i)) {
            turn(false);
            out += text.substr(i++, 2);
            continue;
        }
        const bool space = text[i] == u' ' || text[i] == u'\n' || text[i] == u'\r';
        turn(!space);
        const std::size_t letter = style.accented ? kPlain.find(text[i]) : std::string_view::npos;
        out += letter != std::string_view::npos ? kAccented[letter] : text[i];
    }
    turn(false);
    return out;
}

std::u16string Pseudo(std::u16string_view text, const Style& style)
{
    if (text.empty())
        return {};
    std::u16string out = Changed(text, style);
    if (style.longerPercent > 0) {
        // Marks at both ends show what is cut off.
        const std::size_t more = (text.size() * style.longerPercent + 99) / 100;
        out = u"[" + out + u" ";
        out.append(more, u'~');
        out += u']';
    }
    return out;
}

std::size_t ReadPercent(std::string text)
{
    if (text.ends_with('%'))
        text.pop_back();
    std::size_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || value > kMaxPercent)
        throw UsageError("option --longer takes 0% to 1000%");
    return value;
}

}  // namespace

int RunPseudo(const Arguments& arguments)
{
    const std::string output = arguments.Required("-o");
    const Style style = {arguments.Has("--accented"), arguments.Has("--bidi"),
                         ReadPercent(arguments.Value("--longer").value_or("0"))};
    if (!style.accented && !style.bidi && style.longerPercent == 0)
        throw UsageError("one of --accented, --bidi and --longer is missing");
    WriteAsText(arguments.Files().front(), output,
                [&style](std::u16string_view value) { return Pseudo(value, style); });
    return kDone;
}

}  // namespace pemtext
