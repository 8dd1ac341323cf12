// Schema and view definitions: which properties there are, how they are called and of which type,
// and which of them a view shows. Built-in ones lie under "Required"; custom ones in folders of a
// manifest, schemas, views and translations.

#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <kivcore/UString.h>
#include <kivmetadata/Export.h>

namespace kivmetadata {

/// The type of a property's value, and so the field that edits it.
enum class ValueType {
    kText,
    kLongText,
    kLanguageAlternative,
    kBag,       ///< unordered list of texts
    kSequence,  ///< ordered list of texts
    kChoice,    ///< one of a list, which may be open to others
    kDate,
    kInteger,
    kNumber,
    kRational,
    kBoolean,
    kRating,
    kUri,            ///< written as a URI; most standards' addresses are plain texts
    kStructure,      ///< members are properties of their own
    kStructureList,  ///< list of structures
};

/// One value of a choice.
struct ChoiceDefinition {
    std::string value;
    kivcore::UString label;  ///< in the application's language
};

/// One property of a schema.
struct PropertyDefinition {
    std::string name;              ///< without prefix: "title"
    kivcore::UString label;        ///< in the application's language
    kivcore::UString description;  ///< shown as a hint; may be empty
    kivcore::UString placeholder;  ///< shown in the empty field; may be empty
    bool isReadOnly = false;
    ValueType type = ValueType::kText;
    std::vector<ChoiceDefinition> choices;
    bool isClosedChoice = false;  ///< no other values than `choices`
    double minimum = 0;           ///< of numbers; no limit where both are 0
    double maximum = 0;
    kivcore::UString unit;  ///< shown behind a number; may be empty
    std::vector<std::shared_ptr<const PropertyDefinition>> members;  ///< of structures
    std::string membersNamespace;                                    ///< their namespace URI
};

/// The properties of one namespace.
struct SchemaDefinition {
    std::string namespaceUri;
    std::string prefix;  ///< preferred prefix, without ":"
    kivcore::UString label;
    std::vector<std::shared_ptr<const PropertyDefinition>> properties;
};

/// One item of a view: which property it shows.
struct ViewItem {
    std::string namespaceUri;
    std::string propertyName;
    bool sharesRowWithNext = false;
};

/// Items under one heading.
struct ViewGroup {
    kivcore::UString heading;  ///< may be empty
    std::size_t firstItem = 0;
    std::size_t itemCount = 0;
};

/// One view of the dialog.
struct ViewDefinition {
    std::string owner;       ///< a domain name turned round; "com.orvan.xmp" for built-in views
    std::string name;        ///< tells views of one owner apart; kept in preferences
    kivcore::UString label;  ///< in the application's language
    std::string icon;        ///< name of the artwork; may be empty
    bool isCamera = false;   ///< left out of a plain dialog
    std::vector<std::shared_ptr<const ViewItem>> items;
    /// Cover the items in order; empty for one group without heading.
    std::vector<ViewGroup> groups;
};

/// Walks schemas in their order. Valid as long as the definitions it was taken from.
class KIVMETADATA_API SchemaIterator {
public:
    bool AtEnd() const noexcept { return position_ == end_; }
    void Next() noexcept { ++position_; }
    const SchemaDefinition& Current() const noexcept { return **position_; }

private:
    friend class SchemaDefinitions;
    using Position = const std::shared_ptr<const SchemaDefinition>*;
    SchemaIterator(Position position, Position end) : position_(position), end_(end) {}
    Position position_;
    Position end_;
};

class KIVMETADATA_API SchemaDefinitions {
public:
    explicit SchemaDefinitions(std::vector<std::shared_ptr<const SchemaDefinition>> schemas)
        : schemas_(std::move(schemas))
    {
    }
    SchemaIterator Begin() const noexcept
    {
        return {schemas_.data(), schemas_.data() + schemas_.size()};
    }

private:
    std::vector<std::shared_ptr<const SchemaDefinition>> schemas_;
};

using ViewDefinitions = std::vector<std::shared_ptr<const ViewDefinition>>;

/// Loads the built-in and the custom definitions, in place of what was loaded before: built-in ones
/// first, then the folders under "Required/Definitions", then those under "Definitions" in the
/// preferences folder, each sorted by name; KIV_DEFINITIONS_DIR takes the place of the last two. A
/// broken file is left out, and so is a view whose owner and name are there already; the reason is
/// traced on "kivmetadata". Labels are in the application's language. Throws only std::bad_alloc.
KIVMETADATA_API void LoadAllViewDefinitions();

/// Drops what was loaded; what is still held stays valid.
KIVMETADATA_API void UnloadViewDefinitions() noexcept;

/// What is loaded now; empty before LoadAllViewDefinitions.
KIVMETADATA_API std::shared_ptr<const ViewDefinitions> CommonViewDefinitions();
KIVMETADATA_API std::shared_ptr<const SchemaDefinitions> CommonSchemaDefinitions();

}  // namespace kivmetadata
