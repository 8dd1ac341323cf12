// A toolkit without windows: it writes down what it is asked for, and does to the model what its
// controls would.

#pragma once

#include <functional>
#include <optional>
#include <stdexcept>
#include <string>

#include "framework/kivmetadataui/src/Fields.h"
#include "framework/kivmetadataui/src/Texts.h"
#include "framework/kivmetadataui/src/ToolkitModule.h"
#include "framework/kivmetadataui/tests/Samples.h"

namespace kivmetadataui {

class FakeSurface : public DialogSurface {
public:
    FakeSurface(DialogModel& model, std::string& log) : model_(model), log_(log) {}

    void ChooseView(std::size_t view) override
    {
        log_ += "view " + std::to_string(view) + "\n";
        model_.SetCurrentView(view);
    }
    void TypeInto(Field& field, const FieldPart& part, const kivcore::UString& text) override
    {
        log_ += "type " + field.Path();
        switch (part.kind) {
            case FieldPart::Kind::kWhole:
                samples::TypeInto(field, text);
                break;
            case FieldPart::Kind::kLanguage:
                log_ += " @" + part.language;
                static_cast<LanguageField&>(field).SetTextOf(part.language, text);
                break;
            case FieldPart::Kind::kItem:
                log_ += " item " + std::to_string(part.index);
                static_cast<ListField&>(field).Replace(part.index, text);
                break;
            case FieldPart::Kind::kNewItem:
                log_ += " new";
                static_cast<ListField&>(field).Add(text);
                break;
        }
        log_ += ": " + Narrow(text) + "\n";
    }
    void RemoveItem(Field& field, std::size_t index) override
    {
        log_ += "remove " + field.Path() + " " + std::to_string(index) + "\n";
        static_cast<ListField&>(field).Remove(index);
    }
    void Choose(Field& field, std::optional<std::size_t> index) override
    {
        log_ += "choose " + field.Path() + " " + (index ? std::to_string(*index) : "none") + "\n";
    }
    void TypeText(const kivcore::UString& text) override { log_ += "keys " + Narrow(text) + "\n"; }
    void PressKey(const DriverKeyPress& press) override
    {
        log_ += "key " + std::to_string(static_cast<int>(press.key)) +
                (press.control ? " control" : "") + "\n";
    }
    void Screenshot(const std::string& path) override
    {
        log_ += "screenshot " + path + "\n";
        if (path.empty()) {
            throw std::runtime_error("no file name");
        }
    }
    void PressButton(DialogButton button) override
    {
        log_ += button == DialogButton::kOk ? "press ok\n" : "press cancel\n";
        if (onPress) {
            onPress(button);
        }
    }

    std::function<void(DialogButton)> onPress;

private:
    DialogModel& model_;
    std::string& log_;
};

class FakeToolkit : public ToolkitModule {
public:
    void Start() override
    {
        log += "start\n";
        if (!startFailure.empty()) {
            throw std::runtime_error(startFailure);
        }
    }
    DialogResult RunDialog(ShownDialog& dialog, HWND parent) override
    {
        log += "run\n";
        lastParent = parent;
        isCancelled = false;
        const DialogResult result = onRun ? onRun(dialog) : DialogResult::kCancelled;
        log += "ran\n";
        return result;
    }
    void CancelDialog() noexcept override
    {
        log += "cancel\n";
        isCancelled = true;
    }
    void Stop() noexcept override { log += "stop\n"; }

    std::function<DialogResult(ShownDialog&)> onRun;
    std::string startFailure;
    std::string log;
    bool isCancelled = false;
    HWND lastParent = nullptr;
};

}  // namespace kivmetadataui
