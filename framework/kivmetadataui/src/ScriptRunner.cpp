#include "framework/kivmetadataui/src/ScriptRunner.h"

#include <optional>
#include <stdexcept>
#include <utility>

#include "framework/kivmetadataui/src/JsonTexts.h"
#include "framework/kivmetadataui/src/LanguageNames.h"
#include "framework/kivmetadataui/src/Texts.h"

namespace kivmetadataui {

namespace {

[[noreturn]] void Fail(const kivcore::UString& text)
{
    throw std::runtime_error(Narrow(text));
}

/// A step's path taken apart: the property that has a field, and what is meant of it.
struct Target {
    Field* field = nullptr;
    std::string language;  // empty for none
    std::size_t item = 0;  // from 1; 0 for none
};

// The path as it stands, then without its last "[...]".
Target FindTarget(const DialogModel& model, const std::string& path)
{
    Target target;
    target.field = model.FindField(path);
    const std::size_t bracket = path.rfind('[');
    if (target.field != nullptr || bracket == std::string::npos || !path.ends_with(']')) {
        return target;
    }
    const std::string inner = path.substr(bracket + 1, path.size() - bracket - 2);
    Field* const field = model.FindField(path.substr(0, bracket));
    if (field == nullptr) {
        return target;
    }
    if (field->Kind() == FieldKind::kLanguageAlternative && inner.starts_with('@') &&
        IsLanguageTag(std::string_view(inner).substr(1))) {
        target.field = field;
        target.language = inner.substr(1);
    } else if (field->Kind() == FieldKind::kList && !inner.empty() && inner.size() <= 6 &&
               inner.find_first_not_of("0123456789") == std::string::npos) {
        target.item = std::stoul(inner);
        target.field = target.item != 0 ? field : nullptr;
    }
    return target;
}

}  // namespace

ScriptRunner::ScriptRunner(DialogModel& model, std::vector<DriverStep> steps)
    : model_(model), steps_(std::move(steps))
{
}

bool ScriptRunner::RunStep(DialogSurface& surface)
{
    if (IsOver()) {
        return false;
    }
    const DriverStep& step = steps_[next_];
    switch (step.kind) {
        case DriverStepKind::kTypeValue:
            if (!TypeValue(step, surface)) {
                return true;
            }
            break;
        case DriverStepKind::kTypeText:
            surface.TypeText(Widen(step.text));
            break;
        case DriverStepKind::kPressKey:
            surface.PressKey(step.press);
            break;
        case DriverStepKind::kChooseView: {
            const std::optional<std::size_t> view = model_.FindView(step.name);
            if (!view) {
                Fail(DialogText("$$$/Kiv/Dialog/Script/NoView=There is no view “^0”.",
                                {Widen(step.name)}));
            }
            surface.ChooseView(*view);
            break;
        }
        case DriverStepKind::kWaitUntilPainted:
            break;  // steps run when everything is painted
        case DriverStepKind::kScreenshot:
            surface.Screenshot(step.name);
            break;
        case DriverStepKind::kPressOk:
            hasPressedOk_ = true;
            surface.PressButton(DialogButton::kOk);
            break;
        case DriverStepKind::kPressCancel:
            surface.PressButton(DialogButton::kCancel);
            break;
    }
    ++next_;
    hasOpenedView_ = false;
    return true;
}

bool ScriptRunner::TypeValue(const DriverStep& step, DialogSurface& surface)
{
    const Target target = FindTarget(model_, step.name);
    const std::optional<std::size_t> view =
        target.field == nullptr ? std::nullopt : model_.ViewOf(*target.field);
    if (!view) {
        Fail(DialogText("$$$/Kiv/Dialog/Script/NoField=There is no field for “^0”.",
                        {Widen(step.name)}));
    }
    Field& field = *target.field;
    if (field.IsReadOnly()) {
        Fail(DialogText("$$$/Kiv/Dialog/Script/ReadOnly=The field for “^0” cannot be edited.",
                        {Widen(step.name)}));
    }
    if (*view != model_.CurrentView()) {
        if (hasOpenedView_) {
            Fail(DialogText("$$$/Kiv/Dialog/Script/ViewStays=The view of “^0” does not open.",
                            {Widen(step.name)}));
        }
        surface.ChooseView(*view);
        hasOpenedView_ = true;
        return false;
    }
    switch (field.Kind()) {
        case FieldKind::kLanguageAlternative: {
            FieldPart part{FieldPart::Kind::kLanguage, target.language, 0};
            if (part.language.empty()) {
                part.language = kDefaultLanguage;
            }
            surface.TypeInto(field, part, Widen(step.text));
            break;
        }
        case FieldKind::kList:
            TypeList(step, static_cast<ListField&>(field), target.item, surface);
            break;
        case FieldKind::kChoice:
            TypeChoice(step, static_cast<ChoiceField&>(field), surface);
            break;
        case FieldKind::kYesNo:
            TypeYesNo(step, static_cast<YesNoField&>(field), surface);
            break;
        case FieldKind::kRating:
            TypeRating(step, static_cast<RatingField&>(field), surface);
            break;
        default:
            surface.TypeInto(field, {}, Widen(step.text));
            break;
    }
    return true;
}

void ScriptRunner::TypeList(const DriverStep& step, ListField& field, std::size_t item,
                            DialogSurface& surface)
{
    if (item == 0) {
        TypeWholeList(step, field, surface);
    } else if (item <= field.Count()) {
        if (step.text.empty()) {
            surface.RemoveItem(field, item - 1);
        } else {
            surface.TypeInto(field, {FieldPart::Kind::kItem, {}, item - 1}, Widen(step.text));
        }
    } else if (item == field.Count() + 1) {
        surface.TypeInto(field, {FieldPart::Kind::kNewItem, {}, 0}, Widen(step.text));
    } else {
        Fail(
            DialogText("$$$/Kiv/Dialog/Script/NoItem=There is no entry “^0”.", {Widen(step.name)}));
    }
}

void ScriptRunner::TypeWholeList(const DriverStep& step, ListField& field, DialogSurface& surface)
{
    std::vector<std::string> texts;
    if (!step.text.empty() && !ReadJsonTexts(step.text, texts)) {
        Fail(DialogText(
            "$$$/Kiv/Dialog/Script/NoArray=The value of “^0” has to be a JSON array of texts.",
            {Widen(step.name)}));
    }
    // What both begin with stays; the rest goes, from the end, and the new entries follow.
    std::size_t same = 0;
    while (same < texts.size() && same < field.Count() &&
           field.Items()[same].text == Widen(texts[same])) {
        ++same;
    }
    for (std::size_t i = field.Count(); i > same; --i) {
        surface.RemoveItem(field, i - 1);
    }
    for (std::size_t i = same; i < texts.size(); ++i) {
        surface.TypeInto(field, {FieldPart::Kind::kNewItem, {}, 0}, Widen(texts[i]));
    }
}

void ScriptRunner::TypeChoice(const DriverStep& step, ChoiceField& field, DialogSurface& surface)
{
    const kivcore::UString text = Widen(step.text);
    for (std::size_t i = 0; i < field.Choices().size(); ++i) {
        if (field.Choices()[i].value == step.text || field.Choices()[i].label == text) {
            surface.Choose(field, i);
            return;
        }
    }
    if (step.text.empty()) {
        surface.Choose(field, std::nullopt);
    } else if (field.IsClosed()) {
        Fail(DialogText("$$$/Kiv/Dialog/Script/NoChoice=“^1” is no choice of “^0”.",
                        {Widen(step.name), text}));
    } else {
        surface.TypeInto(field, {}, text);
    }
}

void ScriptRunner::TypeYesNo(const DriverStep& step, YesNoField& field, DialogSurface& surface)
{
    if (step.text.empty()) {
        surface.Choose(field, std::nullopt);
    } else if (EqualsIgnoringCase(step.text, "true")) {
        surface.Choose(field, 1);
    } else if (EqualsIgnoringCase(step.text, "false")) {
        surface.Choose(field, 0);
    } else {
        Fail(DialogText("$$$/Kiv/Dialog/Script/NotYesNo=“^0” takes true, false or nothing.",
                        {Widen(step.name)}));
    }
}

void ScriptRunner::TypeRating(const DriverStep& step, RatingField& field, DialogSurface& surface)
{
    if (step.text.empty()) {
        surface.Choose(field, std::nullopt);
    } else if (step.text.size() == 1 && step.text[0] >= '0' &&
               step.text[0] <= '0' + RatingField::kMostStars) {
        surface.Choose(field, static_cast<std::size_t>(step.text[0] - '0'));
    } else {
        Fail(DialogText("$$$/Kiv/Dialog/Script/NotRating=“^0” takes 0 to 5 or nothing.",
                        {Widen(step.name)}));
    }
}

}  // namespace kivmetadataui
