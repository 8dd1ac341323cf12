// The plain C interface: each call runs the C++ one and turns exceptions into codes.

#include "framework/kivxmp/src/CInterface.h"

#include <cstdlib>
#include <cstring>
#include <exception>
#include <new>
#include <vector>

#include <kivcore/LastFailure.h>
#include <kivxmp/Derived.h>
#include <kivxmp/XMPAccess.h>
#include <kivxmp/XMPMeta.h>
#include <kivxmp/XMPNamespaces.h>
#include <kivxmp/kivxmp.h>

using kivxmp::CopyForCaller;
using kivxmp::Node;
using kivxmp::NodeForm;
using kivxmp::RunGuarded;

namespace kivxmp {

KivXmpCode CodeOfCurrentException() noexcept
{
    try {
        throw;
    } catch (const XMP_Error& error) {
        kivcore::SetLastFailureText(error.Text());
        return error.Code();
    } catch (const std::bad_alloc&) {
        kivcore::SetLastFailureText("there is not enough memory");
        return kKivXmpOutOfMemory;
    } catch (...) {
        kivcore::SetLastFailureFromCurrentException();
        return kKivXmpInternal;
    }
}

void ThrowIfNull(const void* pointer, const char* name)
{
    if (pointer == nullptr) {
        throw XMP_Error(kKivXmpBadArgument, std::string(name) + " is null");
    }
}

char* CopyForCaller(std::string_view text)
{
    auto* const copy = static_cast<char*>(std::malloc(text.size() + 1));
    if (copy == nullptr) {
        throw std::bad_alloc();
    }
    std::memcpy(copy, text.data(), text.size());
    copy[text.size()] = '\0';
    return copy;
}

void ClearLastFailure() noexcept
{
    kivcore::SetLastFailureText({});
}

namespace {

const Node& NodeAt(const __XMPMeta__* meta, const char* path)
{
    ThrowIfNull(meta, "meta");
    ThrowIfNull(path, "path");
    const Node* const node = meta->Find(path);
    if (node == nullptr) {
        throw XMP_Error(kKivXmpNotFound, std::string(path) + ": nothing stands there");
    }
    return *node;
}

void SetOneText(__XMPMeta__* meta, const char* path, const char* text, NodeForm form)
{
    ThrowIfNull(meta, "meta");
    ThrowIfNull(path, "path");
    ThrowIfNull(text, "the text");
    const Path parsed = meta->ParsePath(path);
    const Node* const node = FindWithDerived(*meta, parsed);
    if (node != nullptr && !node->IsText()) {
        throw XMP_Error(kKivXmpWrongForm, std::string(path) + ": a " + FormName(node->Form()) +
                                              " stands there; remove it first, or name its parts");
    }
    if (form == NodeForm::kUri) {
        meta->SetUri(parsed, text);
    } else {
        meta->SetText(parsed, text);
    }
}

bool CallVisitor(const __XMPMeta__::Visit& visit, KivXmpVisitor visitor, void* context)
{
    const std::string value(visit.node.Value());
    KivXmpNode node = {};
    node.path = visit.path.c_str();
    node.form = static_cast<KivXmpForm>(visit.node.Form());
    node.value = value.c_str();
    node.valueLength = value.size();
    node.childCount = visit.node.Children().size();
    node.depth = visit.depth;
    node.isQualifier = visit.isQualifier ? 1 : 0;
    return visitor(context, &node) == 0;
}

}  // namespace
}  // namespace kivxmp

using kivxmp::ThrowIfNull;

const char* KivXmpLastErrorText(void)
{
    return KivLastFailureText();
}

void KivXmpFree(void* block)
{
    std::free(block);
}

KivXmpCode KivXmpCreate(__XMPMeta__** meta)
{
    return RunGuarded([&] {
        ThrowIfNull(meta, "meta");
        *meta = nullptr;
        *meta = __XMPMeta__::Create().release();
    });
}

KivXmpCode KivXmpParse(const void* bytes, size_t size, __XMPMeta__** meta)
{
    return RunGuarded([&] {
        ThrowIfNull(meta, "meta");
        *meta = nullptr;
        ThrowIfNull(bytes, "bytes");
        *meta = __XMPMeta__::Parse({static_cast<const char*>(bytes), size}).release();
    });
}

KivXmpCode KivXmpClone(const __XMPMeta__* meta, __XMPMeta__** clone)
{
    return RunGuarded([&] {
        ThrowIfNull(clone, "clone");
        *clone = nullptr;
        ThrowIfNull(meta, "meta");
        *clone = meta->Clone().release();
    });
}

KivXmpCode KivXmpReplacePacket(__XMPMeta__* meta, const __XMPMeta__* other)
{
    return RunGuarded([&] {
        ThrowIfNull(meta, "meta");
        ThrowIfNull(other, "other");
        meta->ReplacePacket(*other);
    });
}

void KivXmpRelease(__XMPMeta__* meta)
{
    delete meta;
}

KivXmpCode KivXmpSerialize(const __XMPMeta__* meta, size_t maxBytes, void** bytes, size_t* size)
{
    return RunGuarded([&] {
        ThrowIfNull(bytes, "bytes");
        ThrowIfNull(size, "size");
        *bytes = nullptr;
        *size = 0;
        ThrowIfNull(meta, "meta");
        kivxmp::SerializeOptions options;
        if (maxBytes != 0) {
            options.maxBytes = maxBytes;
        }
        const std::string packet = meta->Serialize(options);
        *bytes = CopyForCaller(packet);
        *size = packet.size();
    });
}

KivXmpCode KivXmpIsChanged(const __XMPMeta__* meta, int* changed)
{
    return RunGuarded([&] {
        ThrowIfNull(changed, "changed");
        *changed = 0;
        ThrowIfNull(meta, "meta");
        *changed = meta->IsChanged() ? 1 : 0;
    });
}

KivXmpCode KivXmpWalk(const __XMPMeta__* meta, KivXmpVisitor visitor, void* context)
{
    return RunGuarded([&] {
        ThrowIfNull(meta, "meta");
        if (visitor == nullptr) {
            throw XMP_Error(kKivXmpBadArgument, "the visitor is null");
        }
        meta->Walk([&](const __XMPMeta__::Visit& visit) {
            return kivxmp::CallVisitor(visit, visitor, context);
        });
    });
}

KivXmpCode KivXmpGetForm(const __XMPMeta__* meta, const char* path, KivXmpForm* form)
{
    return RunGuarded([&] {
        ThrowIfNull(form, "form");
        *form = kKivXmpSimple;
        *form = static_cast<KivXmpForm>(kivxmp::NodeAt(meta, path).Form());
    });
}

KivXmpCode KivXmpGetText(const __XMPMeta__* meta, const char* path, char** text)
{
    return RunGuarded([&] {
        ThrowIfNull(text, "text");
        *text = nullptr;
        const Node& node = kivxmp::NodeAt(meta, path);
        if (node.IsArray() || node.Form() == NodeForm::kStruct) {
            throw XMP_Error(kKivXmpWrongForm, std::string(path) + ": a " +
                                                  kivxmp::FormName(node.Form()) + ", no text");
        }
        *text = CopyForCaller(node.Value());
    });
}

KivXmpCode KivXmpCount(const __XMPMeta__* meta, const char* path, size_t* count)
{
    return RunGuarded([&] {
        ThrowIfNull(count, "count");
        *count = 0;
        *count = kivxmp::NodeAt(meta, path).Children().size();
    });
}

KivXmpCode KivXmpSetText(__XMPMeta__* meta, const char* path, const char* text)
{
    return RunGuarded([&] { kivxmp::SetOneText(meta, path, text, NodeForm::kSimple); });
}

KivXmpCode KivXmpSetUri(__XMPMeta__* meta, const char* path, const char* uri)
{
    return RunGuarded([&] { kivxmp::SetOneText(meta, path, uri, NodeForm::kUri); });
}

KivXmpCode KivXmpGetList(const __XMPMeta__* meta, const char* path, char** json)
{
    return RunGuarded([&] {
        ThrowIfNull(json, "json");
        *json = nullptr;
        const auto items = kivxmp::ListOf(&kivxmp::NodeAt(meta, path));
        if (!items) {
            throw XMP_Error(kKivXmpWrongForm, std::string(path) + ": no list of texts");
        }
        std::string text = "[";
        for (const std::string& item : *items) {
            text += (text.size() > 1 ? "," : "") + kivxmp::JsonString(item);
        }
        *json = CopyForCaller(text + "]");
    });
}

KivXmpCode KivXmpSetList(__XMPMeta__* meta, const char* path, KivXmpForm form,
                         const char* const* items, size_t count)
{
    return RunGuarded([&] {
        ThrowIfNull(meta, "meta");
        ThrowIfNull(path, "path");
        if (count != 0) {
            ThrowIfNull(items, "items");
        }
        if (form != kKivXmpBag && form != kKivXmpSeq && form != kKivXmpAlt) {
            throw XMP_Error(kKivXmpBadArgument, "this is no form of a list");
        }
        std::vector<std::string> texts;
        for (size_t i = 0; i < count; ++i) {
            ThrowIfNull(items[i], "an item");
            texts.emplace_back(items[i]);
        }
        meta->SetList(path, static_cast<NodeForm>(form), texts);
    });
}

KivXmpCode KivXmpRemove(__XMPMeta__* meta, const char* path)
{
    return RunGuarded([&] {
        ThrowIfNull(meta, "meta");
        ThrowIfNull(path, "path");
        if (!meta->Remove(path)) {
            throw XMP_Error(kKivXmpNotFound, std::string(path) + ": nothing stands there");
        }
    });
}

KivXmpCode KivXmpRegisterNamespace(const char* prefix, const char* uri)
{
    return RunGuarded([&] {
        ThrowIfNull(prefix, "prefix");
        ThrowIfNull(uri, "uri");
        const std::string taken = kivxmp::NamespaceOfPrefix(prefix);
        if (!taken.empty() && taken != uri) {
            throw XMP_Error(kKivXmpBadValue,
                            "the prefix \"" + std::string(prefix) + "\" stands for " + taken);
        }
        kivxmp::RegisterNamespace(prefix, uri);
    });
}
