// Changes to the tree of one object, at one path.

#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "framework/kivxmp/src/ObjectState.h"

namespace kivxmp {

inline bool IsArrayForm(NodeForm form) noexcept
{
    return form == NodeForm::kBag || form == NodeForm::kSeq || form == NodeForm::kAlt;
}

/// Everything is checked before anything changes. Throws XMP_Error.
class TreeEditor {
public:
    TreeEditor(ObjectState& object, const Path& path);

    void SetText(NodeForm form, std::string_view value);
    void SetList(NodeForm form, std::span<const std::string> items);
    void SetLanguages(std::span<const LanguageText> items);
    void Ensure(NodeForm form);
    void SetCopy(const Node& source);
    void InsertItem(std::size_t index, NodeForm form, std::string_view value);
    void MoveItem(std::size_t from, std::size_t to);
    bool Remove();

private:
    void CheckNames() const;
    void CheckSlot() const;
    /// The first of a name counts, and a changed attribute is written as an element, behind what
    /// stays an attribute of the same one.
    void CheckTwins(const NameKey* key) const;
    /// Checks that the path can be followed, or made, and has room for so many elements inside.
    void CheckWay(std::size_t inside) const;
    void CheckStep(const Node* node, const PathStep& step) const;
    void CheckNodeCount(std::size_t added) const;
    void CheckText(std::string_view value) const;
    void CheckIsNoLanguage() const;
    const Node& CheckList() const;

    /// Follows the first `steps` steps, making what is missing.
    Node& Reach(std::size_t steps);
    Node& ReachSlot();
    Node& ReachStep(Node& node, std::size_t number);
    NodeForm FormAhead(std::size_t number) const noexcept;
    Node& Writable(Slot& slot);

    Node MakeItem(std::string_view language);
    Node MakeText(const QName* name, std::string_view value);
    void SetLanguage(Node& item, std::string_view language);
    const QName* NameOf(const PathStep& step);
    /// Makes a copied node one of this object's.
    void Adopt(Node& node) const;
    void RemoveProperty(const NameKey* key);
    void RemovePart(std::size_t last);
    void Finish(Node& node, std::size_t countBefore);

    [[noreturn]] void Fail(KivXmpCode code, const std::string& reason) const;

    ObjectState& object_;
    const Path& path_;
    const RdfTerms& terms_;
};

}  // namespace kivxmp
