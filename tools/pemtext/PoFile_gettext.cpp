#include "tools/pemtext/Common.h"
#include "tools/pemtext/Files.h"
#include "tools/pemtext/PoFile.h"
#include "tools/pemtext/TemporaryFile.h"

#include <gettext-po.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <type_traits>
#include <utility>

namespace pemtext {

namespace {

// The first complaint since the last TakeComplaint().
std::string& Complaint()
{
    static std::string complaint;
    return complaint;
}

void Complain(int severity, po_message_t /*message*/, const char* file, std::size_t line,
              std::size_t /*column*/, int /*multiline*/, const char* text)
{
    std::string place = file != nullptr ? file : "PO file";
    if (line != static_cast<std::size_t>(-1))
        place += ":" + std::to_string(line);
    const std::string whole = place + ": " + text;
    if (severity == PO_SEVERITY_FATAL_ERROR) {
        // The library must not get control back, and no exception may pass through it.
        std::fprintf(stderr, "pemtext: %s\n", whole.c_str());
        std::exit(1);
    }
    if (severity == PO_SEVERITY_ERROR && Complaint().empty())
        Complaint() = whole;
}

void ComplainTwice(int severity, po_message_t message, const char* file, std::size_t line,
                   std::size_t column, int multiline, const char* text, po_message_t /*message2*/,
                   const char* /*file2*/, std::size_t /*line2*/, std::size_t /*column2*/,
                   int /*multiline2*/, const char* /*text2*/)
{
    Complain(severity, message, file, line, column, multiline, text);
}

constexpr po_xerror_handler kHandler = {Complain, ComplainTwice};

void ThrowComplaint()
{
    const std::string complaint = std::exchange(Complaint(), {});
    if (!complaint.empty())
        throw Failure(complaint);
}

struct FileDeleter {
    void operator()(po_file_t file) const { po_file_free(file); }
};
using PoFile = std::unique_ptr<po_file, FileDeleter>;

struct IteratorDeleter {
    void operator()(po_message_iterator_t iterator) const { po_message_iterator_free(iterator); }
};
using Iterator = std::unique_ptr<std::remove_pointer_t<po_message_iterator_t>, IteratorDeleter>;

bool IsUtf8(po_file_t file)
{
    const char* const header = po_file_domain_header(file, nullptr);
    if (header == nullptr)
        return true;
    char* const type = po_header_field(header, "Content-Type");
    const std::string_view text = type != nullptr ? type : "charset=UTF-8";
    const std::size_t charset = text.find("charset=");
    const std::string name(charset == std::string_view::npos ? "" : text.substr(charset + 8));
    std::free(type);
    return name == "UTF-8" || name == "utf-8" || name == "ASCII" || name == "US-ASCII" ||
           name == "CHARSET";
}

}  // namespace

std::vector<PoMessage> ReadPo(const std::string& file)
{
    const PoFile po(po_file_read(file.c_str(), &kHandler));
    ThrowComplaint();
    if (!po)
        throw Failure(file + ": cannot be opened");
    if (!IsUtf8(po.get()))
        throw Failure(file + ": is not in UTF-8 (msgconv -t UTF-8 makes it so)");
    std::vector<PoMessage> messages;
    const Iterator iterator(po_message_iterator(po.get(), nullptr));
    while (po_message_t message = po_next_message(iterator.get())) {
        const char* const key = po_message_msgctxt(message);
        const std::string text = po_message_msgid(message);
        if (key == nullptr && text.empty())
            continue;  // the header
        const std::string translation = po_message_msgstr(message);
        if (po_message_is_obsolete(message) != 0 || po_message_is_fuzzy(message) != 0 ||
            translation.empty())
            continue;
        if (key == nullptr)
            throw Failure(file + ": the message \"" + text + "\" has no msgctxt and so no key");
        if (po_message_msgid_plural(message) != nullptr)
            throw Failure(file + ": the message " + std::string(key) +
                          " has a plural, which dictionaries do not know");
        messages.push_back({key, text, translation});
    }
    return messages;
}

std::string FormatPo(const std::vector<PoMessage>& messages, const std::string& language)
{
    const PoFile po(po_file_create());
    {
        const Iterator iterator(po_message_iterator(po.get(), nullptr));
        const auto insert = [&](const char* key, const char* text, const char* translation) {
            po_message_t message = po_message_create();
            po_message_set_msgctxt(message, key);
            po_message_set_msgid(message, text);
            po_message_set_msgstr(message, translation);
            po_message_insert(iterator.get(), message);
        };
        const std::string header = "Language: " + language +
                                   "\nMIME-Version: 1.0\n"
                                   "Content-Type: text/plain; charset=UTF-8\n"
                                   "Content-Transfer-Encoding: 8bit\n";
        insert(nullptr, "", header.c_str());
        for (const PoMessage& message : messages)
            insert(message.key.c_str(), message.text.c_str(), message.translation.c_str());
    }
    const TemporaryFile file;
    po_file_write(po.get(), file.Utf8Path().c_str(), &kHandler);
    ThrowComplaint();
    return ReadInput(file.Utf8Path());
}

}  // namespace pemtext
