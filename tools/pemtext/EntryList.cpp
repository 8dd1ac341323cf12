#include "tools/pemtext/EntryList.h"

#include <algorithm>
#include <cstdint>

namespace pemtext {

EntryList::EntryList(const morvish::Dictionary& dictionary)
{
    class Collector : public morvish::Dictionary::EntryVisitor {
    public:
        explicit Collector(EntryList& target) : target_(target) {}
        void Visit(std::string_view key, std::u16string_view value) override
        {
            target_.keyed_.push_back({key, value});
        }
        void VisitBare(std::uint32_t /*index*/, std::u16string_view value) override
        {
            target_.bare_.push_back(value);
        }

    private:
        EntryList& target_;
    };
    Collector collector(*this);
    dictionary.VisitEntries(collector);
    std::ranges::sort(keyed_, {}, &Entry::key);
}

}  // namespace pemtext
