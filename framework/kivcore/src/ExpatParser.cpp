// Expat is C: an exception must not pass through its frames. Each callback catches what is thrown,
// keeps it, and stops the parser; Parse throws it again once Expat has returned. Expat may call
// back a few times more after it was stopped, so every callback looks first.

#include "framework/kivcore/src/ExpatParser.h"

#include <limits>
#include <memory>
#include <new>
#include <type_traits>

#include <expat.h>

namespace kivcore::xml {

namespace {

constexpr std::size_t kMaxDepth = 256;

}  // namespace

/// What one Parse needs.
struct ExpatParser::Run {
    std::unique_ptr<std::remove_pointer_t<XML_Parser>, decltype(&XML_ParserFree)> parser;
    Doctype doctype;
    std::string_view sourceName;
    DocHandler& handler;
    std::size_t depth = 0;
    std::exception_ptr thrown;

    [[noreturn]] void Fail(const std::string& reason) const
    {
        const auto line = XML_GetCurrentLineNumber(parser.get());
        const auto column = XML_GetCurrentColumnNumber(parser.get()) + 1;
        throw ParseError(std::string(sourceName) + ":" + std::to_string(line) + ":" +
                         std::to_string(column) + ": " + reason);
    }

    template <class Work>
    static void Contain(void* userData, const Work& work) noexcept
    {
        Run& run = *static_cast<Run*>(userData);
        if (run.thrown) {
            return;
        }
        try {
            work(run);
        } catch (...) {
            run.thrown = std::current_exception();
            XML_StopParser(run.parser.get(), XML_FALSE);
        }
    }

    static void XMLCALL OnStart(void* userData, const XML_Char* name, const XML_Char** pairs)
    {
        Contain(userData, [=](Run& run) {
            if (++run.depth > kMaxDepth) {
                run.Fail("elements are nested deeper than " + std::to_string(kMaxDepth));
            }
            Attributes attributes;
            for (const XML_Char** pair = pairs; *pair; pair += 2) {
                attributes.emplace_back(pair[0], pair[1]);
            }
            run.handler.StartElement(name, attributes);
        });
    }

    static void XMLCALL OnEnd(void* userData, const XML_Char* name)
    {
        Contain(userData, [=](Run& run) {
            --run.depth;
            run.handler.EndElement(name);
        });
    }

    static void XMLCALL OnText(void* userData, const XML_Char* text, int length)
    {
        Contain(userData, [=](Run& run) {
            run.handler.Text({text, static_cast<std::size_t>(length)});
        });
    }

    static void XMLCALL OnDoctype(void* userData, const XML_Char*, const XML_Char*, const XML_Char*,
                                  int)
    {
        Contain(userData, [](Run& run) {
            if (run.doctype == Doctype::kRefused) {
                run.Fail("a document type is not allowed here");
            }
        });
    }

    static int XMLCALL OnExternalEntity(XML_Parser parser, const XML_Char*, const XML_Char*,
                                        const XML_Char* systemId, const XML_Char*)
    {
        Contain(XML_GetUserData(parser), [=](Run& run) {
            run.Fail("the external entity \"" + std::string(systemId ? systemId : "") +
                     "\" is refused");
        });
        return XML_STATUS_ERROR;
    }

    static void XMLCALL OnSkippedEntity(void* userData, const XML_Char* name, int)
    {
        Contain(userData, [=](Run& run) {
            run.Fail("the entity \"" + std::string(name) + "\" is not defined");
        });
    }
};

void ExpatParser::Parse(std::string_view text, std::string_view sourceName, DocHandler& handler)
{
    Run run{
        {XML_ParserCreate(nullptr), &XML_ParserFree}, doctype_, sourceName, handler, 0, nullptr};
    XML_Parser parser = run.parser.get();
    if (!parser) {
        throw std::bad_alloc();
    }
    if (text.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        run.Fail("the document is too large");
    }
    XML_SetUserData(parser, &run);
    XML_SetElementHandler(parser, &Run::OnStart, &Run::OnEnd);
    XML_SetCharacterDataHandler(parser, &Run::OnText);
    XML_SetStartDoctypeDeclHandler(parser, &Run::OnDoctype);
    // Parameter entities are expanded only if asked for; the external ones among them then come to
    // the handler, which refuses them like the others.
    XML_SetParamEntityParsing(parser, XML_PARAM_ENTITY_PARSING_ALWAYS);
    XML_SetExternalEntityRefHandler(parser, &Run::OnExternalEntity);
    XML_SetSkippedEntityHandler(parser, &Run::OnSkippedEntity);

    struct Restore {
        const Run*& current;
        const Run* outer;
        ~Restore() { current = outer; }
    } const restore{run_, run_};
    run_ = &run;
    const XML_Status status =
        XML_Parse(parser, text.data(), static_cast<int>(text.size()), XML_TRUE);
    if (run.thrown) {
        std::rethrow_exception(run.thrown);
    }
    if (status != XML_STATUS_OK) {
        const XML_Error error = XML_GetErrorCode(parser);
        if (error == XML_ERROR_NO_MEMORY) {
            throw std::bad_alloc();
        }
        const XML_LChar* const reason = XML_ErrorString(error);
        run.Fail(reason ? reason : "not well-formed");
    }
}

std::size_t ExpatParser::Line() const
{
    return run_ ? XML_GetCurrentLineNumber(run_->parser.get()) : 0;
}

void ExpatParser::Fail(const std::string& reason) const
{
    run_->Fail(reason);
}

}  // namespace kivcore::xml
