// Reading a packet: its encoding, the XML parser's events, namespaces and the xpacket wrapper.
//
// The parser's own handling of namespaces stays off, so that prefixes are known as written.

#include <climits>
#include <exception>
#include <map>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

#include "framework/kivxmp/src/ObjectState.h"
#include "framework/kivxmp/src/RdfBuilder.h"

#include <expat.h>
#include <kivcore/Trace.h>
#include <kivxmp/XMPError.h>

namespace kivxmp {
namespace {

static_assert(2 * kMaxPacketBytes < INT_MAX, "the parser takes its length as int");

using ParserHandle = std::unique_ptr<std::remove_pointer_t<XML_Parser>, decltype(&XML_ParserFree)>;

class PacketReader {
public:
    PacketReader(std::shared_ptr<Packet> packet, ObjectState& object)
        : packet_(std::move(packet)),
          names_(*object.names),
          builder_(packet_, object),
          parser_(XML_ParserCreate("UTF-8"), &XML_ParserFree)
    {
        if (parser_ == nullptr) {
            throw std::bad_alloc();
        }
        BindingOf("xml").uris.push_back(names_.Terms().xmlUri);
        XML_SetUserData(parser_.get(), this);
        XML_SetElementHandler(parser_.get(), &OnStart, &OnEnd);
        XML_SetCharacterDataHandler(parser_.get(), &OnText);
        XML_SetProcessingInstructionHandler(parser_.get(), &OnInstruction);
        XML_SetExternalEntityRefHandler(parser_.get(), &OnExternalEntity);
        XML_SetSkippedEntityHandler(parser_.get(), &OnSkippedEntity);
    }

    void Read()
    {
        const std::string_view text = packet_->text;
        const XML_Status status =
            XML_Parse(parser_.get(), text.data(), static_cast<int>(text.size()), XML_TRUE);
        if (failure_) {
            std::rethrow_exception(failure_);
        }
        packet_->hasWrapper = hasHeader_ && packet_->trailerBegin != 0;
        const XML_Error error = XML_GetErrorCode(parser_.get());
        const bool isEmptyWrapper = error == XML_ERROR_NO_ELEMENTS && packet_->hasWrapper;
        if (status != XML_STATUS_OK && !isEmptyWrapper) {
            Fail(CodeOf(error), XML_ErrorString(error));
        }
        builder_.Finish();
        if (packet_->rdf.begin == kNowhere && packet_->root.begin == kNowhere && !isEmptyWrapper) {
            throw XMP_Error(kKivXmpNoPacket, "there is no rdf:RDF element in this XML");
        }
    }

private:
    /// What a prefix stands for, in the elements that are open.
    struct Binding {
        const std::string* prefix = nullptr;   // of the name pool
        std::vector<const std::string*> uris;  // innermost last
    };

    /// Runs a handler. What it throws must not cross the parser's own frames.
    template <class Function>
    static void Guard(void* userData, const Function& function) noexcept
    {
        auto& self = *static_cast<PacketReader*>(userData);
        if (self.failure_) {
            return;  // the parser may still report what it has begun
        }
        try {
            function(self);
        } catch (...) {
            self.failure_ = std::current_exception();
            XML_StopParser(self.parser_.get(), XML_FALSE);
        }
    }

    static void OnStart(void* userData, const XML_Char* name, const XML_Char** attributes)
    {
        Guard(userData, [&](PacketReader& self) { self.Start(name, attributes); });
    }

    static void OnEnd(void* userData, const XML_Char*)
    {
        Guard(userData, [](PacketReader& self) { self.End(); });
    }

    static void OnText(void* userData, const XML_Char* text, int length)
    {
        Guard(userData, [&](PacketReader& self) {
            self.builder_.Text(std::string_view(text, static_cast<std::size_t>(length)));
        });
    }

    static void OnInstruction(void* userData, const XML_Char* target, const XML_Char* data)
    {
        Guard(userData, [&](PacketReader& self) { self.Instruction(target, data); });
    }

    static int OnExternalEntity(XML_Parser, const XML_Char*, const XML_Char*, const XML_Char*,
                                const XML_Char*)
    {
        return XML_STATUS_ERROR;
    }

    static void OnSkippedEntity(void* userData, const XML_Char* name, int)
    {
        Guard(userData, [&](PacketReader& self) {
            self.Fail(kKivXmpEntities, std::string("the entity ") + name + " lies outside");
        });
    }

    static KivXmpCode CodeOf(XML_Error error) noexcept
    {
        switch (error) {
            case XML_ERROR_NO_MEMORY:
                return kKivXmpOutOfMemory;
            case XML_ERROR_AMPLIFICATION_LIMIT_BREACH:
            case XML_ERROR_EXTERNAL_ENTITY_HANDLING:
            case XML_ERROR_RECURSIVE_ENTITY_REF:
                return kKivXmpEntities;
            default:
                return kKivXmpMalformed;
        }
    }

    [[noreturn]] void Fail(KivXmpCode code, const std::string& reason) const
    {
        throw XMP_Error(code, "the packet cannot be read at line " +
                                  std::to_string(XML_GetCurrentLineNumber(parser_.get())) +
                                  ", column " +
                                  std::to_string(XML_GetCurrentColumnNumber(parser_.get()) + 1) +
                                  ": " + reason);
    }

    std::size_t Offset() const noexcept
    {
        return static_cast<std::size_t>(XML_GetCurrentByteIndex(parser_.get()));
    }

    std::size_t OffsetBehind() const noexcept
    {
        return Offset() + static_cast<std::size_t>(XML_GetCurrentByteCount(parser_.get()));
    }

    void Start(const XML_Char* name, const XML_Char** attributes)
    {
        const Scope* const outer = scopes_.empty() ? nullptr : scopes_.back();
        const Scope* const scope = Declare(outer, attributes);
        scopes_.push_back(scope);
        attributes_.clear();
        const auto specified =
            static_cast<std::size_t>(XML_GetSpecifiedAttributeCount(parser_.get())) / 2;
        for (std::size_t i = 0; attributes[2 * i] != nullptr; ++i) {
            const std::string_view attribute = attributes[2 * i];
            if (attribute != "xmlns" && attribute.substr(0, 6) != "xmlns:") {
                attributes_.push_back({Resolve(attribute, /*isElement=*/false),
                                       attributes[2 * i + 1], i < specified ? i : kNowhere});
            }
        }
        const std::size_t begin = Offset();
        const bool isLiteral = begin < packet_->text.size() && packet_->text[begin] == '<';
        builder_.Start(
            {Resolve(name, /*isElement=*/true), attributes_, begin, isLiteral, outer, scope});
    }

    void End()
    {
        builder_.End(Offset(), OffsetBehind());
        const Scope* const own = scopes_.back();
        scopes_.pop_back();
        const Scope* const outer = scopes_.empty() ? nullptr : scopes_.back();
        if (own != outer) {
            for (const auto& [prefix, uri] : own->bindings) {
                bindings_.find(prefix)->second.uris.pop_back();
            }
        }
    }

    const Scope* Declare(const Scope* outer, const XML_Char** attributes)
    {
        Scope* own = nullptr;
        for (; *attributes != nullptr; attributes += 2) {
            const std::string_view name = attributes[0];
            const bool isDefault = name == "xmlns";
            if (!isDefault && name.substr(0, 6) != "xmlns:") {
                continue;
            }
            const std::string_view prefix = isDefault ? std::string_view() : name.substr(6);
            if (prefix == "xml" || prefix == "xmlns") {
                continue;  // they cannot stand for anything else
            }
            if (own == nullptr) {
                own = &packet_->scopes.emplace_back(Scope{outer, {}});
            }
            own->bindings.emplace_back(prefix, attributes[1]);
            BindingOf(prefix).uris.push_back(names_.EnsureText(attributes[1]));
            if (!prefix.empty() && *attributes[1] != '\0') {
                names_.NoteDeclaration(prefix, attributes[1]);
            }
        }
        return own != nullptr ? own : outer;
    }

    Binding& BindingOf(std::string_view prefix)
    {
        auto found = bindings_.find(prefix);
        if (found == bindings_.end()) {
            found = bindings_.emplace(prefix, Binding{names_.EnsureText(prefix), {}}).first;
        }
        return found->second;
    }

    const QName* Resolve(std::string_view name, bool isElement)
    {
        const std::size_t colon = name.find(':');
        const bool hasPrefix = colon != std::string_view::npos;
        const std::string_view prefix = hasPrefix ? name.substr(0, colon) : std::string_view();
        const std::string_view local = hasPrefix ? name.substr(colon + 1) : name;
        if (local.empty() || (hasPrefix && prefix.empty()) ||
            local.find(':') != std::string_view::npos) {
            Fail(kKivXmpMalformed, "\"" + std::string(name) + "\" is no name with one prefix");
        }
        if (!hasPrefix && !isElement) {
            return names_.Ensure(nothing_, names_.EnsureKey(nothing_, local));
        }
        // Mostly it is the prefix of the element or attribute before.
        const Binding*& last = isElement ? lastOfElements_ : lastOfAttributes_;
        if (last == nullptr || *last->prefix != prefix) {
            last = &BindingOf(prefix);
        }
        const std::string* const uri = last->uris.empty() ? nothing_ : last->uris.back();
        if (hasPrefix && uri->empty()) {
            Fail(kKivXmpMalformed, "the prefix \"" + std::string(prefix) + "\" is not declared");
        }
        return names_.Ensure(last->prefix, names_.EnsureKey(uri, local));
    }

    void Instruction(std::string_view target, std::string_view data)
    {
        const std::size_t begin = Offset();
        if (target != "xpacket" || packet_->text[begin] != '<') {
            return;
        }
        if (data.substr(0, 5) == "begin" && !hasHeader_) {
            hasHeader_ = true;
            packet_->headerEnd = OffsetBehind();
        } else if (data.substr(0, 3) == "end" && scopes_.empty()) {
            packet_->trailerBegin = begin;
        }
    }

    std::shared_ptr<Packet> packet_;
    NamePool& names_;
    RdfBuilder builder_;
    ParserHandle parser_;
    std::exception_ptr failure_;
    const std::string* nothing_ = names_.EnsureText({});

    std::map<std::string, Binding, std::less<>> bindings_;
    const Binding* lastOfElements_ = nullptr;
    const Binding* lastOfAttributes_ = nullptr;
    std::vector<const Scope*> scopes_;  // of open elements
    std::vector<ElementStart::Attribute> attributes_;
    bool hasHeader_ = false;
};

// What a new object is written from. The wrapper's texts are those of ISO 16684-1.
constexpr std::string_view kNewPacket =
    "<?xpacket begin=\"\xEF\xBB\xBF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>\n"
    "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\">\n"
    " <rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">\n"
    " </rdf:RDF>\n"
    "</x:xmpmeta>\n"
    "<?xpacket end=\"w\"?>";

constexpr std::size_t kBytesPerName = 64;  // in packets whose names all differ

std::unique_ptr<ObjectState> Build(std::shared_ptr<Packet> packet)
{
    auto object = std::make_unique<ObjectState>();
    object->names = std::make_shared<NamePool>(packet->text.size() / kBytesPerName);
    PacketReader(packet, *object).Read();
    object->packet = std::move(packet);
    return object;
}

std::unique_ptr<ObjectState> ReadBytes(std::string_view bytes)
{
    if (bytes.size() > kMaxPacketBytes) {
        throw XMP_Error(kKivXmpTooBig, "the packet has " + std::to_string(bytes.size()) +
                                           " bytes; the limit is " +
                                           std::to_string(kMaxPacketBytes));
    }
    auto packet = std::make_shared<Packet>();
    packet->bytes = bytes;
    packet->encoding = DetectEncoding(bytes);
    if (packet->encoding != Encoding::kUtf8) {
        packet->recoded = DecodeToUtf8(packet->bytes, packet->encoding);
        packet->text = packet->recoded;
    } else {
        packet->text = packet->bytes;
    }
    // Places that are longer than their packet are filled up with zeros.
    const std::size_t last = packet->text.find_last_not_of('\0');
    packet->text = packet->text.substr(0, last == std::string_view::npos ? 0 : last + 1);
    if (packet->text.find_first_not_of(" \t\r\n") == std::string_view::npos) {
        throw XMP_Error(kKivXmpNoPacket, "there is no packet: nothing but white space");
    }
    return Build(std::move(packet));
}

constinit kivcore::debug::TraceSite failureTrace("kivxmp", 0);

}  // namespace

std::unique_ptr<ObjectState> ReadPacket(std::string_view bytes)
{
    try {
        return ReadBytes(bytes);
    } catch (const XMP_Error& error) {
        if (failureTrace.Enabled()) {
            failureTrace.Write(error.Text());
        }
        throw;
    }
}

std::unique_ptr<ObjectState> NewPacket()
{
    auto packet = std::make_shared<Packet>();
    packet->isNew = true;
    packet->text = kNewPacket;
    return Build(std::move(packet));
}

}  // namespace kivxmp
