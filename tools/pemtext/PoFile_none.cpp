#include "tools/pemtext/Common.h"
#include "tools/pemtext/PoFile.h"

namespace pemtext {

namespace {

[[noreturn]] void Refuse()
{
    throw Failure("this build reads and writes no PO files: it was made without libgettextpo");
}

}  // namespace

std::vector<PoMessage> ReadPo(const std::string& /*file*/)
{
    Refuse();
}

std::string FormatPo(const std::vector<PoMessage>& /*messages*/, const std::string& /*language*/)
{
    Refuse();
}

}  // namespace pemtext
