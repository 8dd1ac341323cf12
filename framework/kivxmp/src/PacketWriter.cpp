// Writing a packet: changes are spliced into the text that was read, so that everything else keeps
// its bytes; then the padding is fitted and the text goes back to the packet's encoding.

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

#include "framework/kivxmp/src/Encoding.h"
#include "framework/kivxmp/src/ObjectState.h"
#include "framework/kivxmp/src/RdfWriter.h"
#include "framework/kivxmp/src/TagScanner.h"

#include <kivxmp/XMPError.h>

namespace kivxmp {
namespace {

constexpr std::string_view kSpaces = " \t\r\n";

/// A piece of the text and what takes its place.
struct Edit {
    Span span;
    std::string text;
};

/// What changes in one rdf:Description.
struct DescriptionChanges {
    std::vector<const Slot*> elements;    // written anew where they stand
    std::vector<const Slot*> attributes;  // become elements
    std::vector<const Slot*> added;
};

class PacketWriter {
public:
    PacketWriter(const ObjectState& object, const SerializeOptions& options)
        : object_(object),
          packet_(*object.packet),
          terms_(object.names->Terms()),
          options_(options),
          text_(packet_.text)
    {
    }

    std::string Write()
    {
        CollectChanges();
        for (auto& [number, changes] : descriptions_) {
            WriteDescription(packet_.descriptions[number], changes);
        }
        if (!unplaced_.empty()) {
            AddDescription();
        }
        return Assemble();
    }

private:
    void CollectChanges()
    {
        std::vector<const Slot*> added;
        for (const Slot& slot : object_.slots) {
            if (!slot.IsChanged()) {
                continue;
            }
            switch (slot.place) {
                case Slot::Place::kNew:
                    added.push_back(&slot);
                    break;
                case Slot::Place::kElement:
                    if (slot.Current() != nullptr) {
                        descriptions_[slot.description].elements.push_back(&slot);
                    } else {
                        edits_.push_back({WithSpaceInFront(slot.span), {}});
                    }
                    break;
                case Slot::Place::kAttribute:
                    edits_.push_back({slot.span, {}});
                    if (slot.Current() != nullptr) {
                        descriptions_[slot.description].attributes.push_back(&slot);
                    }
                    break;
                case Slot::Place::kTopLevel:
                    if (slot.Current() == nullptr) {
                        edits_.push_back({WithSpaceInFront(slot.span), {}});
                    }
                    break;
                case Slot::Place::kFixed:
                    break;  // refused when it was to be changed
            }
        }
        if (!added.empty()) {
            Place(added);
        }
    }

    /// Finds for each new property the description that it fits into best: one with properties of
    /// its namespace, one that declares its namespace, the first one.
    void Place(const std::vector<const Slot*>& added)
    {
        std::map<std::string_view, std::size_t> byProperty;
        std::map<std::string_view, std::size_t> byDeclaration;
        std::optional<std::size_t> first;
        for (const Slot& slot : object_.slots) {
            if (slot.place == Slot::Place::kElement || slot.place == Slot::Place::kAttribute) {
                byProperty[slot.original->NamespaceUri()] = slot.description;
            }
        }
        for (std::size_t i = 0; i < packet_.descriptions.size(); ++i) {
            const ElementPlace& place = packet_.descriptions[i];
            if (place.isFixed) {
                continue;
            }
            first = first.value_or(i);
            if (place.scope != packet_.rdf.scope && place.scope != nullptr) {
                for (const auto& [prefix, uri] : place.scope->bindings) {
                    byDeclaration.emplace(uri, i);
                }
            }
        }
        for (const Slot* const slot : added) {
            const std::string_view uri = slot->Current()->NamespaceUri();
            if (const auto own = byProperty.find(uri); own != byProperty.end()) {
                descriptions_[own->second].added.push_back(slot);
            } else if (const auto same = byDeclaration.find(uri); same != byDeclaration.end()) {
                descriptions_[same->second].added.push_back(slot);
            } else if (first) {
                descriptions_[*first].added.push_back(slot);
            } else {
                unplaced_.push_back(slot);
            }
        }
    }

    void WriteDescription(const ElementPlace& place, const DescriptionChanges& changes)
    {
        NamespaceContext context(place.scope);
        RdfWriter writer(context, terms_, MaxCharacter(packet_.encoding));
        for (const Slot* const slot : changes.elements) {
            std::string element;
            writer.Write(element, *slot->Current(), LayoutAt(slot->span.begin, &place),
                         place.depth + 1);
            edits_.push_back({slot->span, std::move(element)});
        }
        const Layout layout = ContentLayout(place);
        const auto elements = [&](const std::vector<const Slot*>& slots) {
            std::string text;
            for (const Slot* const slot : slots) {
                text += layout.Break();
                writer.Write(text, *slot->Current(), layout, place.depth + 1);
            }
            return text;
        };
        // In front, so that a property that was the first of its name stays the first.
        std::string front = elements(changes.attributes);
        std::string back = elements(changes.added);
        if (!context.Added().empty()) {
            edits_.push_back({{place.attributesEnd, place.attributesEnd},
                              writer.Declarations(context.Added(), DeclarationSeparator(place))});
        }
        PutInto(place, std::move(front), std::move(back));
    }

    /// Puts elements at the beginning and the end of an element's content.
    void PutInto(const ElementPlace& place, std::string front, std::string back)
    {
        if (front.empty() && back.empty()) {
            return;
        }
        const std::string close =
            ContentLayout(place).isPretty ? OwnLayout(place).Break() : std::string();
        if (place.isEmpty) {
            const StartTag tag = ScanStartTag(text_, place.begin);
            edits_.push_back({{place.startTagEnd - 2, place.startTagEnd},
                              ">" + front + back + close + "</" + std::string(tag.name) + ">"});
            return;
        }
        const std::size_t end = BeginOfSpace(place.contentEnd, place.startTagEnd);
        if (end == place.contentEnd) {
            (back.empty() ? front : back) += close;
        }
        edits_.push_back({{place.startTagEnd, place.startTagEnd}, std::move(front)});
        edits_.push_back({{end, end}, std::move(back)});
    }

    /// Makes a description for the properties that have none, and what has to be around it.
    void AddDescription()
    {
        const bool hasRdf = packet_.rdf.begin != kNowhere;
        const bool hasRoot = packet_.root.begin != kNowhere;
        const ElementPlace* const around = hasRdf    ? &packet_.rdf
                                           : hasRoot ? &packet_.root
                                                     : nullptr;
        Layout layout;
        layout.isPretty = true;
        if (around != nullptr) {
            layout = ContentLayout(*around);
        }
        std::string text;
        if (hasRdf) {
            text = NewDescription(layout, packet_.rdf.scope, packet_.rdf.depth + 1);
        } else {
            const Layout rdfLayout = hasRoot ? layout : layout.Deeper();
            Scope scope;
            scope.parent = hasRoot ? packet_.root.scope : nullptr;
            scope.bindings.emplace_back("rdf", kRdfUri);
            const std::size_t depth = hasRoot ? packet_.root.depth + 2 : 3;
            text = rdfLayout.Break() + "<rdf:RDF xmlns:rdf=\"" + std::string(kRdfUri) + "\">" +
                   NewDescription(rdfLayout.Deeper(), &scope, depth) + rdfLayout.Break() +
                   "</rdf:RDF>";
        }
        if (around != nullptr) {
            PutInto(*around, {}, std::move(text));
            return;
        }
        text = layout.Break() + "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\">" + text + layout.Break() +
               "</x:xmpmeta>";
        edits_.push_back({{packet_.headerEnd, packet_.headerEnd}, std::move(text)});
    }

    std::string NewDescription(const Layout& layout, const Scope* scope, std::size_t depth)
    {
        NamespaceContext context(scope);
        RdfWriter writer(context, terms_, MaxCharacter(packet_.encoding));
        const std::string rdf = context.PrefixFor(kRdfUri, "rdf") + ":";
        const Layout inner = layout.Deeper();
        std::string content;
        for (const Slot* const slot : unplaced_) {
            content += inner.Break();
            writer.Write(content, *slot->Current(), inner, depth + 1);
        }
        const std::string separator = layout.isPretty ? layout.Break() + "   " : " ";
        return layout.Break() + "<" + rdf + "Description " + rdf + "about=\"" +
               writer.EscapedAttribute(packet_.about) + "\"" +
               writer.Declarations(context.Added(), separator) + ">" + content + layout.Break() +
               "</" + rdf + "Description>";
    }

    /// Indent of the line that `offset` is the first mark of; nothing if it is not.
    std::optional<std::string> LineIndent(std::size_t offset) const
    {
        std::size_t begin = offset;
        while (begin > 0 && (text_[begin - 1] == ' ' || text_[begin - 1] == '\t')) {
            --begin;
        }
        if (begin > 0 && text_[begin - 1] != '\n') {
            return std::nullopt;
        }
        return std::string(text_.substr(begin, offset - begin));
    }

    /// Layout of the element at `offset`, whose parent is `parent`.
    Layout LayoutAt(std::size_t offset, const ElementPlace* parent) const
    {
        Layout layout;
        const std::optional<std::string> indent = LineIndent(offset);
        layout.isPretty = indent.has_value();
        if (!indent) {
            return layout;
        }
        layout.indent = *indent;
        const std::size_t lineEnd = text_.rfind('\n', offset);
        if (lineEnd != std::string_view::npos && lineEnd > 0 && text_[lineEnd - 1] == '\r') {
            layout.newLine = "\r\n";
        }
        const std::optional<std::string> outer =
            parent != nullptr ? LineIndent(parent->begin) : std::nullopt;
        if (outer && indent->size() > outer->size() &&
            indent->compare(0, outer->size(), *outer) == 0) {
            layout.unit = indent->substr(outer->size());
        }
        return layout;
    }

    Layout OwnLayout(const ElementPlace& place) const { return LayoutAt(place.begin, nullptr); }

    /// Layout of what is put into an element: that of its first part, or one level below its own.
    Layout ContentLayout(const ElementPlace& place) const
    {
        if (place.firstChild != kNowhere) {
            return LayoutAt(place.firstChild, &place);
        }
        return OwnLayout(place).Deeper();
    }

    std::string DeclarationSeparator(const ElementPlace& place) const
    {
        const StartTag tag = ScanStartTag(text_, place.begin);
        if (tag.attributes.empty()) {
            return " ";
        }
        const AttributePlace& last = tag.attributes.back();
        const std::string_view space =
            text_.substr(last.spaceBegin, last.span.begin - last.spaceBegin);
        return space.find('\n') == std::string_view::npos ? " " : std::string(space);
    }

    /// Begin of the white space in front of `end`, but not before `limit`.
    std::size_t BeginOfSpace(std::size_t end, std::size_t limit) const
    {
        while (end > limit && kSpaces.find(text_[end - 1]) != std::string_view::npos) {
            --end;
        }
        return end;
    }

    Span WithSpaceInFront(Span span) const { return {BeginOfSpace(span.begin, 0), span.end}; }

    std::string Assemble()
    {
        std::stable_sort(edits_.begin(), edits_.end(), [](const Edit& left, const Edit& right) {
            return std::pair(left.span.begin, left.span.end) <
                   std::pair(right.span.begin, right.span.end);
        });
        std::string body;
        body.reserve(text_.size());
        const bool isBare = packet_.isNew && !options_.wrapNew;
        std::size_t at = isBare ? packet_.headerEnd + 1 : 0;
        for (const Edit& edit : edits_) {
            body += text_.substr(at, edit.span.begin - at);
            body += edit.text;
            at = edit.span.end;
        }
        if (isBare) {
            body += text_.substr(at, packet_.trailerBegin - at);
            return body;
        }
        const std::string_view behind =
            packet_.encoding == Encoding::kUtf8
                ? std::string_view(packet_.bytes).substr(packet_.isNew ? 0 : text_.size())
                : std::string_view(packet_.recoded).substr(text_.size());
        if (!packet_.hasWrapper) {
            body += text_.substr(at);
            body += behind;
            return Encoded(body);
        }
        const std::size_t paddingBegin =
            std::max(at, BeginOfSpace(packet_.trailerBegin, packet_.headerEnd));
        body += text_.substr(at, paddingBegin - at);
        const std::string_view oldPadding =
            text_.substr(paddingBegin, packet_.trailerBegin - paddingBegin);
        std::string tail(text_.substr(packet_.trailerBegin));
        tail += behind;
        body += Padding(oldPadding, EncodedBytes(body, packet_.encoding) +
                                        EncodedBytes(tail, packet_.encoding));
        body += tail;
        return Encoded(body);
    }

    /// White space for a packet whose other parts have `otherBytes` bytes.
    std::string Padding(std::string_view oldPadding, std::size_t otherBytes) const
    {
        const std::size_t oldBytes = packet_.bytes.size();
        const std::size_t wanted =
            otherBytes <= oldBytes ? oldBytes - otherBytes : options_.paddingBytes;
        const std::size_t room =
            options_.maxBytes > otherBytes ? options_.maxBytes - otherBytes : 0;
        const std::size_t count = std::min(wanted, room) / UnitBytes(packet_.encoding);
        if (count <= oldPadding.size()) {
            // The line end that the padding begins with stays as long as anything does.
            std::string kept(oldPadding.substr(0, std::min<std::size_t>(count, 1)));
            kept += oldPadding.substr(oldPadding.size() - (count - kept.size()));
            return kept;
        }
        constexpr std::size_t kLineLength = 100;
        std::string padding;
        padding.reserve(count);
        for (std::size_t i = 0; i < count - oldPadding.size(); ++i) {
            padding.push_back(i % kLineLength == 0 ? '\n' : ' ');
        }
        padding += oldPadding;
        return padding;
    }

    std::string Encoded(const std::string& text) const
    {
        std::string bytes = EncodeFromUtf8(text, packet_.encoding);
        if (bytes.size() > kMaxPacketBytes) {
            throw XMP_Error(kKivXmpTooBig,
                            "the changed packet would have " + std::to_string(bytes.size()) +
                                " bytes; the limit is " + std::to_string(kMaxPacketBytes));
        }
        return bytes;
    }

    const ObjectState& object_;
    const Packet& packet_;
    const RdfTerms& terms_;
    const SerializeOptions& options_;
    std::string_view text_;
    std::vector<Edit> edits_;
    std::map<std::size_t, DescriptionChanges> descriptions_;
    std::vector<const Slot*> unplaced_;
};

}  // namespace

std::string WritePacket(const ObjectState& object, const SerializeOptions& options)
{
    const bool isChanged = std::any_of(object.slots.begin(), object.slots.end(),
                                       [](const Slot& slot) { return slot.IsChanged(); });
    const bool isKept = !options.shortensUnchanged || !object.packet->hasWrapper ||
                        object.packet->bytes.size() <= options.maxBytes;
    if (!isChanged && !object.packet->isNew && isKept) {
        return object.packet->bytes;
    }
    return PacketWriter(object, options).Write();
}

}  // namespace kivxmp
