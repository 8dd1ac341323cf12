#include "tools/pemtext/Commands.h"
#include "tools/pemtext/Files.h"
#include "tools/pemtext/TextOutput.h"

#include <string>
#include <string_view>

namespace pemtext {

namespace {

using morvish_private::ByteOrder;

constexpr std::int32_t kImageMode = 0;
constexpr std::int32_t kExportMode = 1;

}  // namespace

int RunCompile(const Arguments& arguments)
{
    constexpr std::string_view kOrders[] = {"little", "big"};
    constexpr std::string_view kFlags[] = {"0", "1"};
    const std::string output = arguments.Required("-o");
    const ByteOrder order =
        arguments.Choice("--byte-order", kOrders) == "big" ? ByteOrder::kBig : ByteOrder::kLittle;
    const bool wantedFlag = arguments.Choice("--store-flag", kFlags) == "1";

    morvish::Dictionary dictionary;
    LoadCleanly(dictionary, arguments.Files().front());
    if (const auto header = arguments.Value("--header"))
        dictionary.SetHeaderText(*header);
    const bool flag = arguments.Has("--store-flag") ? wantedFlag : dictionary.StoreFlag() != 0;
    WriteOutput(output,
                [&](std::ostream& out) { dictionary.Serialize(out, kImageMode, flag, order); });
    return kDone;
}

int RunExport(const Arguments& arguments)
{
    const std::string output = arguments.Required("-o");
    morvish::Dictionary dictionary;
    LoadCleanly(dictionary, arguments.Files().front());
    WriteOutput(output, [&](std::ostream& out) {
        dictionary.Serialize(out, kExportMode, false, ByteOrder::kLittle);
    });
    return kDone;
}

int RunText(const Arguments& arguments)
{
    const std::string output = arguments.Required("-o");
    WriteAsText(arguments.Files().front(), output,
                [](std::u16string_view value) { return std::u16string(value); });
    return kDone;
}

}  // namespace pemtext
