#include "framework/kivtoolkit/tests/ScriptedDialog.h"

#include <stdexcept>

#include "framework/kivtoolkit/src/Texts.h"

#include <kivcore/Config.h>
#include <kivcore/StringConversion.h>
#include <kivui/Theme.h>

namespace kivtoolkit::tests {

using kivmetadata::PropertyDefinition;
using kivmetadata::SchemaDefinition;
using kivmetadata::ValueType;
using kivmetadata::ViewDefinition;
using kivmetadata::ViewItem;
using kivmetadataui::DialogResult;

namespace {

constexpr char kNamespace[] = "http://example.org/t/";

struct PropertyRow {
    const char* name;
    ValueType type;
    bool isReadOnly;
};

constexpr PropertyRow kPropertyRows[] = {
    {"text", ValueType::kText, false},
    {"long", ValueType::kLongText, false},
    {"alt", ValueType::kLanguageAlternative, false},
    {"rights", ValueType::kLanguageAlternative, false},
    {"list", ValueType::kBag, false},
    {"order", ValueType::kSequence, false},
    {"closed", ValueType::kChoice, false},
    {"open", ValueType::kChoice, false},
    {"date", ValueType::kDate, false},
    {"number", ValueType::kInteger, false},
    {"rating", ValueType::kRating, false},
    {"flag", ValueType::kBoolean, false},
    {"fixed", ValueType::kText, true},
    {"other", ValueType::kText, false},
};

std::shared_ptr<const SchemaDefinition> Schema()
{
    auto schema = std::make_shared<SchemaDefinition>();
    schema->prefix = "t";
    schema->namespaceUri = kNamespace;
    for (const PropertyRow& row : kPropertyRows) {
        auto property = std::make_shared<PropertyDefinition>();
        property->name = row.name;
        property->label = kivcore::string::UTF8to16(row.name);
        property->type = row.type;
        property->isReadOnly = row.isReadOnly;
        if (row.type == ValueType::kChoice) {
            property->choices = {{"1", u"High"}, {"5", u"Normal"}, {"8", u"Low"}};
            property->isClosedChoice = property->name == "closed";
        }
        schema->properties.push_back(std::move(property));
    }
    return schema;
}

std::shared_ptr<const ViewDefinition> View(const char* name, const std::vector<std::string>& items)
{
    auto view = std::make_shared<ViewDefinition>();
    view->owner = "com.orvan.xmp";
    view->name = name;
    view->label = kivcore::string::UTF8to16(name);
    for (const std::string& property : items) {
        auto item = std::make_shared<ViewItem>();
        item->namespaceUri = kNamespace;
        item->propertyName = property;
        view->items.push_back(std::move(item));
    }
    return view;
}

}  // namespace

std::string ScriptedDialog::Packet(std::string_view properties)
{
    return "<x:xmpmeta xmlns:x='adobe:ns:meta/'>"
           "<rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'>"
           "<rdf:Description rdf:about='' xmlns:t='" +
           std::string(kNamespace) + "'>" + std::string(properties) +
           "</rdf:Description></rdf:RDF></x:xmpmeta>";
}

ScriptedDialog::ScriptedDialog(std::string_view properties, kivmetadataui::DialogOptions options)
    : ScriptedDialog(__XMPMeta__::Parse(Packet(properties)), std::move(options))
{
}

ScriptedDialog::ScriptedDialog(std::unique_ptr<__XMPMeta__> meta,
                               kivmetadataui::DialogOptions options)
    : meta_(std::move(meta)),
      views_({View("first", {"text", "long", "alt", "rights", "list", "order", "closed", "open",
                             "date", "number", "rating", "flag", "fixed"}),
              View("second", {"text", "other"})}),
      schemas_({Schema()})
{
    if (options.title.empty()) {
        options.title = u"sea.jpg";
    }
    model_ =
        std::make_unique<kivmetadataui::DialogModel>(*meta_, views_, schemas_, std::move(options));
}

ScriptedDialog::~ScriptedDialog() = default;

DialogResult ScriptedDialog::Show(HWND parent)
{
    next_ = 0;
    return KivToolkitOpen(kivmetadataui::kToolkitVersion)->RunDialog(*this, parent);
}

bool ScriptedDialog::Run(const std::function<void()>& callback) noexcept
{
    try {
        callback();
        return true;
    } catch (const std::exception& error) {
        failures.emplace_back(error.what());
        model_->SetMessage(kivcore::string::UTF8to16(error.what()));
    }
    return false;
}

bool ScriptedDialog::Confirm() noexcept
{
    model_->EndEdits();
    if (refuses || model_->ErrorCount() > 0) {
        model_->SetMessage(u"refused");
        return false;
    }
    return true;
}

bool ScriptedDialog::RunScriptStep(kivmetadataui::DialogSurface& surface) noexcept
{
    if (next_ >= steps_.size()) {
        return false;
    }
    const Step& step = steps_[next_++];
    Run([&] { step(*this, surface); });
    return true;
}

DialogWindow& ScriptedDialog::Window()
{
    for (wxWindow* window : wxTopLevelWindows) {
        if (auto* dialog = dynamic_cast<DialogWindow*>(window); dialog != nullptr) {
            return *dialog;
        }
    }
    throw std::runtime_error("no dialog is open");
}

kivmetadataui::Field& ScriptedDialog::FieldAt(const char* path)
{
    kivmetadataui::Field* field = model_->FindField(path);
    if (field == nullptr) {
        throw std::runtime_error(std::string("no field ") + path);
    }
    return *field;
}

std::string ScriptedDialog::Content(const char* path)
{
    std::string text;
    for (const kivmetadataui::FieldItem& item : FieldAt(path).Items()) {
        text += text.empty() ? "" : "|";
        text += item.language.empty() ? "" : item.language + "=";
        text += kivcore::string::UTF16to8(item.text);
    }
    return text;
}

void ToolkitTest::SetUp()
{
    kivcore::config::Initialize({});
    kivui::ui::Theme::Initialize(new kivui::ui::KeyframeThemeEditor(385, 16, 1));
    manager_ = std::make_unique<NodeManager>();
    kivui::ui::UI_NodeManager::Set(manager_.get());
    SetScale(1);
    SetBrightness(0.5F);
    KivToolkitOpen(kivmetadataui::kToolkitVersion)->Start();
}

void ToolkitTest::TearDown()
{
    KivToolkitOpen(kivmetadataui::kToolkitVersion)->Stop();
    manager_.reset();
    kivui::ui::Theme::Terminate();
    kivcore::config::Terminate(nullptr);
}

void ToolkitTest::SetScale(float scale)
{
    manager_->SetDPISelectionType(kivui::ui::DPISelectionType::kRecommended);
    manager_->SetRecommendedScaleFactorFunction(
        [scale](float, kivui::ui::DPISelectionType) { return scale; });
}

void ToolkitTest::SetBrightness(float brightness)
{
    kivui::ui::Theme::Get().SetBrightness(brightness);
}

}  // namespace kivtoolkit::tests
