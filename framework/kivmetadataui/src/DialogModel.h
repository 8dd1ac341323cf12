// The dialog without its windows: views with their fields, search, summary, first focus and what is
// remembered from one dialog to the next. The toolkit module shows it and hands edits to it.

#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "framework/kivmetadataui/src/DerivedText.h"
#include "framework/kivmetadataui/src/Fields.h"
#include "framework/kivmetadataui/src/PropertyBinding.h"

#include <kivcore/PropList.h>
#include <kivcore/UString.h>
#include <kivmetadata/Definitions.h>
#include <kivmetadataui/Export.h>
#include <kivxmp/XMPMeta.h>
#include <kivxmp/XMPPath.h>

namespace kivmetadataui {

/// A field's place in a view. Views share fields: one property has one field.
struct FieldPlacement {
    Field* field = nullptr;  ///< owned by the model, never null
    bool sharesRowWithNext = false;
};

struct FieldGroup {
    kivcore::UString heading;  ///< may be empty
    std::vector<FieldPlacement> fields;
};

/// One row of the list of all properties.
struct PropertyRow {
    std::string path;
    kivcore::UString value;
    FieldSource source;  ///< as of a field
};

enum class ViewKind { kFields, kAllProperties };

struct DialogView {
    ViewKind kind = ViewKind::kFields;
    std::string name;        ///< "com.orvan.xmp/iptc": owner and name
    kivcore::UString label;  ///< what the list of views shows
    std::string icon;        ///< name of the artwork; may be empty
    std::vector<FieldGroup> groups;
    std::vector<PropertyRow> rows;  ///< of kAllProperties
    /// What stands in place of fields or rows where there are none; empty otherwise.
    kivcore::UString emptyText;

    KIVMETADATAUI_API bool HasChanges() const noexcept;
    KIVMETADATAUI_API bool HasErrors() const noexcept;
};

/// A place in the dialog: a field or a row of a view.
struct SearchHit {
    std::size_t view = 0;
    Field* field = nullptr;  ///< null for a row
    std::size_t row = 0;     ///< of kAllProperties
};

/// Where the window was. The position is in pixels of the screen, sizes are in design units.
struct WindowPlace {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    bool isMaximized = false;
    bool operator==(const WindowPlace&) const = default;
};

/// Told of everything that may look different; see FieldObserver.
class DialogModelObserver : public FieldObserver {
public:
    /// Title, summary, message, current view or a view's dot moved.
    virtual void ModelChanged() = 0;
};

struct DialogOptions {
    kivcore::UString title;
    kivcore::UString confirmLabel;  ///< empty for "OK"
    bool isReadOnly = false;
    bool isPlain = false;         ///< no camera view, no list of all properties
    kivcore::UString clientName;  ///< whose window place is remembered
    /// Asked once for each property, by path; may be empty.
    std::function<bool(const std::string& path)> isPathReadOnly;
    kivcore::proplist::PropList* preferences = nullptr;  ///< not owned; may be null
};

class KIVMETADATAUI_API DialogModel : private FieldObserver {
public:
    /// Reads all fields from `meta`, which is only looked at, here and nowhere else.
    DialogModel(const __XMPMeta__& meta, const kivmetadata::ViewDefinitions& views,
                const kivmetadata::SchemaDefinitions& schemas, DialogOptions options);
    DialogModel(const DialogModel&) = delete;
    DialogModel& operator=(const DialogModel&) = delete;
    ~DialogModel() override;

    /// The window's title: the caller's text, with a bullet in front while there are changes.
    kivcore::UString WindowTitle() const;
    kivcore::UString ConfirmLabel() const;
    kivcore::UString CancelLabel() const;
    bool IsReadOnly() const noexcept { return options_.isReadOnly; }

    const std::vector<DialogView>& Views() const noexcept { return views_; }
    /// Index into Views(); at first the view used last. 0 where there are no views.
    std::size_t CurrentView() const noexcept { return currentView_; }
    void SetCurrentView(std::size_t index);

    /// Fields and rows that contain every word of `text` in their label, path or value, in the
    /// order of the views; case does not count. An empty text finds nothing.
    std::vector<SearchHit> Search(kivcore::UStringView text) const;
    /// The first empty editable field of the current view; none where the search field comes first.
    Field* FirstFocus() const;

    /// "", "1 change", "3 changes", "2 errors".
    kivcore::UString SummaryText() const;
    /// What lies beside the photo and what it adds; mostly empty.
    const PhotoNote& Note() const noexcept { return note_; }
    std::size_t ChangeCount() const noexcept;
    std::size_t ErrorCount() const noexcept;
    /// Ends the typing in all fields, so that all errors show; before confirming.
    void EndEdits();
    /// The first field with an error, in the order of the views from the current one on.
    std::optional<SearchHit> FirstError() const;
    /// OK is off in a read-only dialog.
    bool CanConfirm() const noexcept { return !options_.isReadOnly; }

    /// A failure to show in the dialog's bottom bar; empty for none.
    const kivcore::UString& Message() const noexcept { return message_; }
    void SetMessage(kivcore::UString message);

    /// The field that shows the property; null where no view does. "dc:title" without an index.
    Field* FindField(std::string_view path) const;
    /// A view that shows `field`: the current one if it does, else the first.
    std::optional<std::size_t> ViewOf(const Field& field) const;
    /// By name, the part behind its "/", or label.
    std::optional<std::size_t> FindView(std::string_view name) const;

    /// Writes all changed fields into `target`, a copy of the object that was read; what did not
    /// change stays as it is there. Throws XMP_Error.
    void Apply(__XMPMeta__& target) const;

    /// What is remembered. Values that make no sense count as not there.
    std::optional<WindowPlace> RememberedPlace() const;
    void RememberPlace(const WindowPlace& place);
    /// Width of the list of views in design units, kept within 160 and 320.
    int NavigationWidth() const;
    void SetNavigationWidth(int width);
    /// A size of the view's own ("heightOf/dc:description"), 1 to 10,000; `otherwise` if there is
    /// none.
    int RememberedSize(const std::string& name, int otherwise) const;
    void RememberSize(const std::string& name, int size);

    /// At most one; null takes it away. Not owned.
    void SetObserver(DialogModelObserver* observer) noexcept { observer_ = observer; }

private:
    void FieldChanged(Field& field) override;
    void FindDerivedStructures(const __XMPMeta__& meta);
    void CheckParts(const std::vector<Field*>& parts, const Field& changed);
    void NotifyModel();
    std::size_t RememberedView() const;
    void RememberView();
    Field* FindField(const kivxmp::Path& path) const;

    DialogOptions options_;
    std::vector<PropertyBinding> bindings_;  // in the order of the views
    std::vector<DialogView> views_;
    std::vector<std::vector<Field*>> derivedStructures_;          // shown whole: the parts of each
    std::map<std::string, std::string, std::less<>> namespaces_;  // by prefix
    std::size_t currentView_ = 0;
    PhotoNote note_;
    kivcore::UString message_;
    DialogModelObserver* observer_ = nullptr;
};

}  // namespace kivmetadataui
