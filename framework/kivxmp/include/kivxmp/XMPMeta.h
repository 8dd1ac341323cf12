// The XMP object: a packet's tree together with the packet's bytes. What is not changed is
// serialized byte by byte as it was read.
//
// All texts are UTF-8. Objects need no initialized library. An object and its clones share what
// they have in common and are used from one thread at a time.
//
// Type of a value: the packet only tells forms. The typed functions in <kivxmp/XMPAccess.h> take
// the type from the caller.

#pragma once

#include <cstddef>
#include <functional>
#include <limits>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <kivxmp/Export.h>
#include <kivxmp/XMPError.h>
#include <kivxmp/XMPNode.h>
#include <kivxmp/XMPPath.h>

namespace kivxmp {

inline constexpr std::size_t kMaxPacketBytes = 64u << 20;
inline constexpr std::size_t kMaxNesting = 256;  ///< XML elements in a packet
inline constexpr std::size_t kMaxNodes = 1'000'000;
inline constexpr std::size_t kDefaultPadding = 2048;

struct SerializeOptions {
    /// Where the packet has to fit. Padding is given up for it; the rest is not, so the result may
    /// be longer.
    std::size_t maxBytes = std::numeric_limits<std::size_t>::max();
    /// Bytes of padding of a new packet, and of one that outgrew its length.
    std::size_t paddingBytes = kDefaultPadding;
    /// Whether an object that was not parsed from bytes gets the xpacket wrapper (and with it
    /// padding). A parsed packet stays with or without, as it was.
    bool wrapNew = true;
    /// Whether padding is given up as well where nothing was changed; else the bytes stay as read.
    bool shortensUnchanged = false;
};

/// A text of a language alternative.
struct LanguageText {
    std::string language;  ///< as written: "x-default", "de", "en-US"
    std::string text;
    bool operator==(const LanguageText&) const = default;
};

/// Where an object comes from, kept with it for whoever read it. Clones share it.
class KIVXMP_API Origin {
public:
    virtual ~Origin();
    /// What the property is where the packet lacks it (<kivxmp/Derived.h>); null where nobody
    /// tells. Valid as long as the origin.
    virtual const Node* FindDerived(std::string_view uri, std::string_view local);
};

class ObjectState;

}  // namespace kivxmp

struct KIVXMP_API __XMPMeta__ final {
public:
    /// An object without properties.
    static std::unique_ptr<__XMPMeta__> Create();

    /// Reads a packet in UTF-8, UTF-16 or UTF-32, with or without the xpacket wrapper; zero bytes
    /// behind it are kept. Copies the bytes. Throws XMP_Error.
    static std::unique_ptr<__XMPMeta__> Parse(std::string_view bytes);

    __XMPMeta__(const __XMPMeta__&) = delete;
    __XMPMeta__& operator=(const __XMPMeta__&) = delete;
    ~__XMPMeta__();

    /// A copy that is changed on its own. Cheap: the two share what neither changes.
    std::unique_ptr<__XMPMeta__> Clone() const;
    /// Takes over what `other` is, and the other way round. To confirm edits that were made in a
    /// clone: `meta.Swap(*clone)`.
    void Swap(__XMPMeta__& other) noexcept;

    /// Becomes what `other` is, down to the bytes of its packet, but keeps its own origin: saving
    /// then puts that packet in place of the whole old one. The two are clones from then on.
    void ReplacePacket(const __XMPMeta__& other);

    /// The packet. The very bytes it was read from if nothing differs from them, also when a change
    /// was taken back; else with the bytes of the properties that did not change. Throws XMP_Error.
    std::string Serialize(const kivxmp::SerializeOptions& options = {}) const;
    /// True if something differs from the packet that was read (for a new object: from nothing), or
    /// if ReplacePacket put other bytes in its place.
    bool IsChanged() const;
    /// The bytes that were read; empty for a new object. Valid as long as this object or a clone.
    std::string_view SourceBytes() const noexcept;

    /// Properties in the packet's order, new ones last. Pointers to nodes are valid until the
    /// object is changed, swapped or gone.
    std::vector<const kivxmp::Node*> Properties() const;
    std::size_t PropertyCount() const noexcept;
    /// The first property of that name, null where there is none.
    const kivxmp::Node* FindProperty(std::string_view uri, std::string_view local) const noexcept;
    /// Null where nothing stands at the path. Throws XMP_Error (kKivXmpBadPath).
    const kivxmp::Node* Find(std::string_view path) const;
    const kivxmp::Node* Find(const kivxmp::Path& path) const noexcept;

    /// Paths with this packet's own prefixes.
    kivxmp::Path ParsePath(std::string_view text) const;
    std::string PrintPath(const kivxmp::Path& path) const;

    /// Called with each node; false ends the walk. `path` is valid during the call only.
    struct Visit {
        const std::string& path;
        const kivxmp::Node& node;
        int depth;
        bool isQualifier;
    };
    /// Visits every node: properties in order, each followed by its qualifiers, then its fields or
    /// items. An item of alternatives is named by its language where no other item has that.
    void Walk(const std::function<bool(const Visit& visit)>& visitor) const;

    // Changes. All take a path; the overloads for texts parse it. What is missing on the way is
    // made: a structure where a field is asked for, alternatives for `[@de]` (a simple text becomes
    // the item x-default). `[n]` may be one past the last item of a list that is there. All throw
    // XMP_Error (bad path, wrong form on the way, a value with characters that XML cannot hold,
    // a place built from entities) and then leave the object as it was.

    /// A simple text, in place of whatever was there; qualifiers stay, and a URI stays a URI.
    void SetText(std::string_view path, std::string_view text);
    void SetText(const kivxmp::Path& path, std::string_view text);
    /// A URI, in place of whatever was there; qualifiers stay.
    void SetUri(std::string_view path, std::string_view uri);
    void SetUri(const kivxmp::Path& path, std::string_view uri);
    /// A list of texts (kBag, kSeq or kAlt). Texts that were items before keep their qualifiers.
    void SetList(std::string_view path, kivxmp::NodeForm form, std::span<const std::string> items);
    void SetList(const kivxmp::Path& path, kivxmp::NodeForm form,
                 std::span<const std::string> items);
    /// Alternatives by language, in this order. Languages that were there keep their qualifiers.
    void SetLanguages(std::string_view path, std::span<const kivxmp::LanguageText> items);
    void SetLanguages(const kivxmp::Path& path, std::span<const kivxmp::LanguageText> items);
    /// Makes sure that a structure or list of that form stands there; one that is there keeps its
    /// parts (a list of another form is turned into this one), anything else is replaced.
    void Ensure(std::string_view path, kivxmp::NodeForm form);
    void Ensure(const kivxmp::Path& path, kivxmp::NodeForm form);
    /// A copy of a node of any object, except that the path gives its name.
    void SetCopy(std::string_view path, const kivxmp::Node& node);
    void SetCopy(const kivxmp::Path& path, const kivxmp::Node& node);
    /// Puts a new text (kSimple or kUri), structure or list without parts in front of item `index`
    /// of the list at `path`, or behind its last one (index = count + 1).
    void InsertItem(std::string_view path, std::size_t index, kivxmp::NodeForm form,
                    std::string_view value);
    /// Moves item `from` of the list at `path` so that it becomes item `to`; both from 1.
    void MoveItem(std::string_view path, std::size_t from, std::size_t to);
    /// False where nothing was. A list or structure that loses its last part goes with it; a
    /// property that the packet holds several times goes whole.
    bool Remove(std::string_view path);
    bool Remove(const kivxmp::Path& path);

    /// Null unless set.
    const std::shared_ptr<kivxmp::Origin>& GetOrigin() const noexcept;
    void SetOrigin(std::shared_ptr<kivxmp::Origin> origin) noexcept;

private:
    explicit __XMPMeta__(std::unique_ptr<kivxmp::ObjectState> state) noexcept;

    std::unique_ptr<kivxmp::ObjectState> state_;
};
