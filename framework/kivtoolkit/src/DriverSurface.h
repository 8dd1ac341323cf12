// The dialog's window as a driver's script uses it: by clicks and keys.

#pragma once

#include "framework/kivmetadataui/src/ToolkitModule.h"
#include "framework/kivtoolkit/src/FieldView.h"

#include <string>

namespace kivtoolkit {

class DialogWindow;

class DriverSurface : public kivmetadataui::DialogSurface {
public:
    explicit DriverSurface(DialogWindow& window) : window_(window) {}

    void ChooseView(std::size_t view) override;
    void TypeInto(kivmetadataui::Field& field, const kivmetadataui::FieldPart& part,
                  const kivcore::UString& text) override;
    void RemoveItem(kivmetadataui::Field& field, std::size_t index) override;
    void Choose(kivmetadataui::Field& field, std::optional<std::size_t> index) override;
    void TypeText(const kivcore::UString& text) override;
    void PressKey(const kivmetadataui::DriverKeyPress& press) override;
    void Screenshot(const std::string& path) override;
    void PressButton(kivmetadataui::DialogButton button) override;

private:
    FieldView& Find(kivmetadataui::Field& field);
    void Press(kivmetadataui::DriverKey key);
    void PressCharacter(char32_t character);
    void TypeCharacters(const kivcore::UString& text, bool hasLines);
    void PickFromPopup(std::size_t index);
    [[noreturn]] static void Refuse(const kivmetadataui::Field& field);

    DialogWindow& window_;
};

}  // namespace kivtoolkit
