#include "dictionary/ByteSink.h"

#include <sstream>
#include <string>

#include <gtest/gtest.h>

namespace morvish_private {
namespace {

using namespace std::string_literals;

std::string Written(ByteOrder order)
{
    std::ostringstream out;
    ByteSink sink(out, order);
    sink.Put8(0xFF);
    sink.Put16(0x0102);
    sink.Put32(0x03040506);
    sink.Put("ab");
    sink.PutUnits(u"\u20AC");
    sink.Flush();
    EXPECT_EQ(sink.WrittenBytes(), out.str().size());
    return out.str();
}

TEST(ByteSink, BothOrders)
{
    EXPECT_EQ(Written(ByteOrder::kLittle),
              "\xFF\x02\x01\x06\x05\x04\x03"
              "ab\xAC\x20"s);
    EXPECT_EQ(Written(ByteOrder::kBig),
              "\xFF\x01\x02\x03\x04\x05\x06"
              "ab\x20\xAC"s);
}

TEST(ByteSink, CountsWhatTheStreamTook)
{
    std::ostringstream out;
    ByteSink sink(out, ByteOrder::kLittle);
    sink.Put("abc");
    EXPECT_EQ(sink.WrittenBytes(), 0u);  // nothing has gone out yet
    sink.Flush();
    EXPECT_EQ(sink.WrittenBytes(), 3u);
    sink.Put(std::string(200000, 'x'));
    EXPECT_EQ(sink.WrittenBytes(), 200003u);
    out.setstate(std::ios_base::badbit);
    sink.Put("lost");
    sink.Flush();
    EXPECT_EQ(sink.WrittenBytes(), 200003u);
    EXPECT_EQ(out.str().size(), 200003u);
}

TEST(ByteOrder, Loads)
{
    const unsigned char bytes[] = {0x81, 0x02, 0x03, 0xF4};
    EXPECT_EQ(Load16(bytes, ByteOrder::kLittle), 0x0281u);
    EXPECT_EQ(Load16(bytes, ByteOrder::kBig), 0x8102u);
    EXPECT_EQ(Load32(bytes, ByteOrder::kLittle), 0xF4030281u);
    EXPECT_EQ(Load32(bytes, ByteOrder::kBig), 0x810203F4u);
}

}  // namespace
}  // namespace morvish_private
