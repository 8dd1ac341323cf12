// Packets of many parts of one kind, and work on them whose cost must grow as their number does:
// the tests do it once, the benchmarks compare numbers.

#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <kivxmp/XMPAccess.h>
#include <kivxmp/XMPMeta.h>

namespace kivxmp::testing {

struct PartFamily {
    const char* about;
    std::string_view before;
    std::string_view part;  ///< every '#' is replaced by the part's number
    std::string_view after;
};

inline constexpr PartFamily kPartFamilies[] = {
    {"items", "<ex:a><rdf:Bag>", "<rdf:li>text</rdf:li>", "</rdf:Bag></ex:a>"},
    {"languages", "<ex:a><rdf:Alt>", "<rdf:li xml:lang='l#'>t</rdf:li>", "</rdf:Alt></ex:a>"},
    {"properties", "", "<ex:a#>text</ex:a#>", ""},
    {"doubled properties", "", "<ex:a>text</ex:a>", ""},
    {"fields", "<ex:a rdf:parseType='Resource'>", "<ex:a#>text</ex:a#>", "</ex:a>"},
    {"doubled fields", "<ex:a rdf:parseType='Resource'>", "<ex:b>text</ex:b>", "</ex:a>"},
    {"qualifiers", "<ex:a rdf:parseType='Resource'><rdf:value/>", "<ex:a#>text</ex:a#>", "</ex:a>"},
    {"declarations", "", "<p:a# xmlns:p='http://p/#'>text</p:a#>", ""},
    {"raw items", "<ex:a><rdf:Bag>", "<rdf:li rdf:ID='a'>text</rdf:li>", "</rdf:Bag></ex:a>"},
};

inline std::string PacketOfParts(const PartFamily& family, std::size_t count)
{
    std::string packet =
        "<rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'>"
        "<rdf:Description rdf:about='' xmlns:ex='http://example.org/ex/' ex:z='1'>";
    packet += family.before;
    for (std::size_t i = 0; i < count; ++i) {
        const std::string number = std::to_string(i);
        for (const char c : family.part) {
            if (c == '#') {
                packet += number;
            } else {
                packet += c;
            }
        }
    }
    packet += family.after;
    return packet + "</rdf:Description></rdf:RDF>";
}

/// Reads the packet, changes a little of it, writes it, reads it back and compares.
inline void ReadChangeAndCompare(const std::string& packet)
{
    const auto meta = __XMPMeta__::Parse(packet);
    meta->SetText("ex:z", "2");
    meta->Ensure("ex:n", NodeForm::kBag);
    if (const Node* const list = meta->Find("ex:a"); list != nullptr && list->IsArray()) {
        meta->MoveItem("ex:a", 1, 2);
    }
    Compare(*meta, *__XMPMeta__::Parse(meta->Serialize()));
}

/// Changes each item of a list by itself; returns how many there are afterwards.
inline std::size_t EditEveryItem(std::size_t count)
{
    const auto meta = __XMPMeta__::Parse(PacketOfParts(kPartFamilies[0], count));
    for (std::size_t i = 1; i <= count; ++i) {
        meta->SetText("ex:a[" + std::to_string(i) + "]", "other");
    }
    meta->SetList("ex:a", NodeForm::kSeq, std::vector<std::string>(count, "other"));
    return __XMPMeta__::Parse(meta->Serialize())->Find("ex:a")->Children().size();
}

/// Sets properties of as many namespaces; returns how many there are afterwards.
inline std::size_t SetManyProperties(std::size_t count)
{
    const auto meta = __XMPMeta__::Create();
    for (std::size_t i = 0; i < count; ++i) {
        const std::string number = std::to_string(i);
        meta->SetText("{http://u" + number + "/}a" + number, "x");
    }
    return __XMPMeta__::Parse(meta->Serialize())->PropertyCount();
}

}  // namespace kivxmp::testing
