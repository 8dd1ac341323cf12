#include "framework/kivtoolkit/tests/GuestHost.h"

#include <utility>

#include <kivcore/Config.h>
#include <kivcore/LastFailure.h>
#include <kivcore/Xml.h>
#include <kivmetadata/Provider.h>
#include <kivmetadataui/MetadataDialog.h>
#include <kivui/Theme.h>

namespace kivtoolkit::tests {

namespace {

constexpr char kPacket[] =
    "<x:xmpmeta xmlns:x='adobe:ns:meta/'>"
    "<rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'>"
    "<rdf:Description rdf:about='' xmlns:photoshop='http://ns.adobe.com/photoshop/1.0/'>"
    "<photoshop:Headline>old</photoshop:Headline>"
    "</rdf:Description></rdf:RDF></x:xmpmeta>";

class Provider : public kivmetadata::TypicalProviderImpl {
public:
    Provider(__XMPMeta__* meta, const std::function<void()>& whileOpen)
        : TypicalProviderImpl(meta), whileOpen_(whileOpen)
    {
    }
    void DoWriteChanges(const __XMPMeta__& changed) override
    {
        if (whileOpen_) {
            whileOpen_();
        }
        TypicalProviderImpl::DoWriteChanges(changed);
    }

private:
    const std::function<void()>& whileOpen_;
};

}  // namespace

GuestHost::GuestHost()
{
    kivcore::config::Initialize({});
    kivcore::xml::SetParserFactory(std::make_unique<kivcore::xml::MSXMLParserFactory>());
    kivui::ui::Theme::Initialize(new kivui::ui::KeyframeThemeEditor(385, 16, 1));
    manager_ = std::make_unique<NodeManager>();
    kivui::ui::UI_NodeManager::Set(manager_.get());
    kivmetadataui::Initialize();
    meta_ = __XMPMeta__::Parse(kPacket);
}

GuestHost::~GuestHost()
{
    End();
}

void GuestHost::End() noexcept
{
    if (!std::exchange(isUp_, false)) {
        return;
    }
    kivmetadataui::Terminate();
    kivmetadataui::DialogDriver::Unregister();
    manager_.reset();
    kivui::ui::Theme::Terminate();
    kivcore::xml::ResetParserFactory();
    kivcore::config::Terminate(nullptr);
}

bool GuestHost::ShowDialog(kivmetadataui::DialogDriver driver, HWND parent)
{
    kivmetadataui::DialogDriver::Register(std::move(driver));
    kivmetadataui::MetadataDialogParameters parameters;
    parameters.title = u"sea.jpg";
    return kivmetadataui::DoMetadataDialog(std::make_shared<Provider>(meta_.get(), whileOpen),
                                           parent, parameters);
}

std::string GuestHost::Title() const
{
    const auto* node = meta_->Find("photoshop:Headline");
    return node == nullptr ? std::string() : std::string(node->Value());
}

std::string GuestHost::Failure()
{
    return KivLastFailureText();
}

kivmetadataui::DialogDriver TypeTitle(const std::string& title)
{
    return kivmetadataui::DialogDriver().TypeValue("photoshop:Headline", title).PressOk();
}

}  // namespace kivtoolkit::tests
