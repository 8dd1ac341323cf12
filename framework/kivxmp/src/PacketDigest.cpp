#include "framework/kivxmp/src/PacketDigest.h"

#include <boost/uuid/detail/md5.hpp>

namespace kivxmp::photo {

std::string PacketDigest(std::string_view bytes)
{
    boost::uuids::detail::md5 digester;
    digester.process_bytes(bytes.data(), bytes.size());
    boost::uuids::detail::md5::digest_type digest;
    digester.get_digest(digest);
    static_assert(sizeof digest * 2 == kDigestCharacters);

    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text;
    for (const unsigned int word : digest) {
        for (int shift = 28; shift >= 0; shift -= 4) {
            text.push_back(kDigits[word >> shift & 0xF]);
        }
    }
    return text;
}

}  // namespace kivxmp::photo
