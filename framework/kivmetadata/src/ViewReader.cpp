#include "framework/kivmetadata/src/ViewReader.h"

namespace kivmetadata {

namespace {

class ViewReader {
public:
    ViewReader(const std::string& sourceName, const TextSource& texts)
        : reader_(sourceName), texts_(texts)
    {
    }

    std::shared_ptr<const ViewDefinition> Read(std::string_view text, const std::string& owner)
    {
        const Element root = reader_.Parse(text, "view");
        reader_.Expect(root, {"name", "label", "label-id", "icon", "camera"}, {"item", "group"});
        auto view = std::make_shared<ViewDefinition>();
        view->owner = owner;
        view->name = reader_.Required(root, "name");
        reader_.Required(root, "label");
        view->label = texts_.Text(root, "label");
        view->icon = root.Get("icon");
        view->isCamera = reader_.YesNo(root, "camera", false);
        for (const Element& child : root.children) {
            if (child.name == "group") {
                ReadGroup(child, *view);
            } else {
                ReadUngrouped(child, *view);
            }
        }
        return view;
    }

private:
    void ReadGroup(const Element& element, ViewDefinition& view)
    {
        reader_.Expect(element, {"heading", "heading-id"}, {"item"});
        ViewGroup group;
        group.heading = texts_.Text(element, "heading");
        group.firstItem = view.items.size();
        for (const Element& child : element.children) {
            view.items.push_back(ReadItem(child));
        }
        group.itemCount = element.children.size();
        view.groups.push_back(group);
        lastIsUngrouped_ = false;
    }

    // Items that stand by themselves form a group without a heading.
    void ReadUngrouped(const Element& element, ViewDefinition& view)
    {
        if (!lastIsUngrouped_) {
            ViewGroup group;
            group.firstItem = view.items.size();
            view.groups.push_back(group);
            lastIsUngrouped_ = true;
        }
        view.items.push_back(ReadItem(element));
        ++view.groups.back().itemCount;
    }

    std::shared_ptr<const ViewItem> ReadItem(const Element& element) const
    {
        reader_.Expect(element, {"namespace", "property", "shares-row"}, {});
        auto item = std::make_shared<ViewItem>();
        item->namespaceUri = reader_.Required(element, "namespace");
        item->propertyName = reader_.Required(element, "property");
        item->sharesRowWithNext = reader_.YesNo(element, "shares-row", false);
        return item;
    }

    ElementReader reader_;
    const TextSource& texts_;
    bool lastIsUngrouped_ = false;
};

}  // namespace

std::shared_ptr<const ViewDefinition> ReadView(std::string_view text, const std::string& sourceName,
                                               const std::string& owner, const TextSource& texts)
{
    return ViewReader(sourceName, texts).Read(text, owner);
}

}  // namespace kivmetadata
