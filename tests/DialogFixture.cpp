#include "tests/DialogFixture.h"

#include <stdexcept>
#include <utility>

namespace kivtests {

const char kSamplePacket[] =
    "<?xpacket begin=\"\xEF\xBB\xBF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>\n"
    "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\">\n"
    " <rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">\n"
    "  <!-- kept -->\n"
    "  <rdf:Description rdf:about=\"\" xmlns:dc=\"http://purl.org/dc/elements/1.1/\"\n"
    "    xmlns:xmp=\"http://ns.adobe.com/xap/1.0/\" xmlns:f='http://foreign.example/'\n"
    "    xmp:Rating=\"3\"   f:odd='kept as it is'>\n"
    "   <dc:title><rdf:Alt><rdf:li xml:lang=\"x-default\">Harbour</rdf:li>\n"
    "     <rdf:li xml:lang=\"de\">Hafen</rdf:li></rdf:Alt></dc:title>\n"
    "   <dc:subject><rdf:Bag><rdf:li>sea</rdf:li><rdf:li>sky</rdf:li></rdf:Bag></dc:subject>\n"
    "  </rdf:Description>\n"
    " </rdf:RDF>\n"
    "</x:xmpmeta>\n"
    "                                                                                \n"
    "<?xpacket end=\"w\"?>";

XmpObject::XmpObject(const std::string& packet)
{
    if (KivXmpParse(packet.data(), packet.size(), &object_) != kKivXmpOk) {
        throw std::runtime_error(KivXmpLastErrorText());
    }
}

XmpObject::~XmpObject()
{
    KivXmpRelease(object_);
}

std::string XmpObject::Bytes() const
{
    void* bytes = nullptr;
    std::size_t size = 0;
    if (KivXmpSerialize(object_, 0, &bytes, &size) != kKivXmpOk) {
        throw std::runtime_error(KivXmpLastErrorText());
    }
    std::string text(static_cast<const char*>(bytes), size);
    KivXmpFree(bytes);
    return text;
}

std::string XmpObject::Text(const char* path) const
{
    char* value = nullptr;
    if (KivXmpGetText(object_, path, &value) != kKivXmpOk) {
        return "(none)";
    }
    std::string text = value;
    KivXmpFree(value);
    return text;
}

std::shared_ptr<CallbackHook> CallbackHook::Install(std::size_t number,
                                                    std::function<void()> action, When when)
{
    auto hook = std::make_shared<CallbackHook>(number, std::move(action), when);
    kivcore::config::SetErrorManager(hook);
    return hook;
}

CallbackHook::CallbackHook(std::size_t number, std::function<void()> action, When when)
    : number_(number), action_(std::move(action)), when_(when)
{
}

CallbackHook::~CallbackHook() = default;

int CallbackHook::RunAndContain(std::function<int()> function) noexcept
{
    const bool isIt = ++seen_ == number_;
    if (isIt && when_ == When::kBefore) {
        RunAction();
    }
    const int result = ErrorManager::RunAndContain(std::move(function));
    if (isIt && when_ == When::kAfter) {
        RunAction();
    }
    return result;
}

void CallbackHook::RunAction()
{
    hasRun_ = true;
    action_();
}

DialogFixture::DialogFixture() = default;
DialogFixture::~DialogFixture() = default;

void DialogFixture::Start(const MetadataAPIInitParams& record)
{
    ASSERT_TRUE(api.initialize(&record)) << LastFailure();
}

bool DialogFixture::Run(const XmpObject& object, DialogDriver script,
                        const MetadataDialogRequest& request)
{
    DialogDriver::Register(std::move(script));
    return api.doDialog(object.Get(), &request);
}

bool DialogFixture::RunRound(const XmpObject& object, DialogDriver script,
                             const MetadataDialogRequest& request)
{
    Start();
    const bool isConfirmed = Run(object, std::move(script), request);
    const std::string failure = LastFailure();
    api.terminate();
    EXPECT_EQ(failure, "");
    return isConfirmed;
}

}  // namespace kivtests
