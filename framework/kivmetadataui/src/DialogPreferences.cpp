// What the model remembers from one dialog to the next, in the caller's property list. The file
// behind it may hold anything: every value is looked at before it counts.

#include <algorithm>
#include <cstdint>
#include <limits>

#include "framework/kivmetadataui/src/DialogModel.h"
#include "framework/kivmetadataui/src/Texts.h"

namespace kivmetadataui {

using kivcore::proplist::PropList;
using kivcore::proplist::PropValue;

namespace {

constexpr char kWindows[] = "Windows";
constexpr char kLastView[] = "LastView";
constexpr char kNavigationWidth[] = "NavigationWidth";
constexpr char kSizes[] = "Sizes";

constexpr int kLeastNavigationWidth = 160;
constexpr int kUsualNavigationWidth = 200;
constexpr int kMostNavigationWidth = 320;
constexpr int kFarthestPixel = 100'000;
constexpr int kLeastWindowUnits = 100;
constexpr int kMostUnits = 10'000;

// Lists of names that grew over the years must not grow without end.
constexpr std::size_t kMostNames = 200;

bool IsWithin(std::int64_t value, int least, int most)
{
    return value >= least && value <= most;
}

std::int64_t IntOf(const PropList& list, std::string_view name)
{
    return list.GetInt(name, std::numeric_limits<std::int64_t>::min());
}

void SetNamed(PropList& preferences, const char* group, const std::string& name, PropValue value)
{
    PropList list = preferences.GetList(group);
    if (list.Values().size() >= kMostNames && list.Find(name) == nullptr) {
        list.Clear();
    }
    list.Set(name, std::move(value));
    preferences.Set(group, PropValue(list));
}

}  // namespace

std::size_t DialogModel::RememberedView() const
{
    if (options_.preferences == nullptr) {
        return 0;
    }
    const std::string name = Narrow(options_.preferences->GetText(kLastView, {}));
    const auto view = std::find_if(views_.begin(), views_.end(),
                                   [&name](const DialogView& each) { return each.name == name; });
    return view == views_.end() ? 0 : static_cast<std::size_t>(view - views_.begin());
}

void DialogModel::RememberView()
{
    if (options_.preferences != nullptr) {
        options_.preferences->Set(kLastView, PropValue(Widen(views_[currentView_].name)));
    }
}

std::optional<WindowPlace> DialogModel::RememberedPlace() const
{
    if (options_.preferences == nullptr) {
        return std::nullopt;
    }
    const PropList place =
        options_.preferences->GetList(kWindows).GetList(Narrow(options_.clientName));
    const std::int64_t x = IntOf(place, "X");
    const std::int64_t y = IntOf(place, "Y");
    const std::int64_t width = IntOf(place, "Width");
    const std::int64_t height = IntOf(place, "Height");
    if (!IsWithin(x, -kFarthestPixel, kFarthestPixel) ||
        !IsWithin(y, -kFarthestPixel, kFarthestPixel) ||
        !IsWithin(width, kLeastWindowUnits, kMostUnits) ||
        !IsWithin(height, kLeastWindowUnits, kMostUnits)) {
        return std::nullopt;
    }
    return WindowPlace{static_cast<int>(x), static_cast<int>(y), static_cast<int>(width),
                       static_cast<int>(height), place.GetBool("Maximized", false)};
}

void DialogModel::RememberPlace(const WindowPlace& place)
{
    if (options_.preferences == nullptr) {
        return;
    }
    PropList list;
    list.Set("X", PropValue(place.x));
    list.Set("Y", PropValue(place.y));
    list.Set("Width", PropValue(place.width));
    list.Set("Height", PropValue(place.height));
    list.Set("Maximized", PropValue(place.isMaximized));
    SetNamed(*options_.preferences, kWindows, Narrow(options_.clientName), PropValue(list));
}

int DialogModel::NavigationWidth() const
{
    const std::int64_t width =
        options_.preferences == nullptr
            ? kUsualNavigationWidth
            : options_.preferences->GetInt(kNavigationWidth, kUsualNavigationWidth);
    return IsWithin(width, kLeastNavigationWidth, kMostNavigationWidth) ? static_cast<int>(width)
                                                                        : kUsualNavigationWidth;
}

void DialogModel::SetNavigationWidth(int width)
{
    if (options_.preferences != nullptr) {
        options_.preferences->Set(
            kNavigationWidth,
            PropValue(std::clamp(width, kLeastNavigationWidth, kMostNavigationWidth)));
    }
}

int DialogModel::RememberedSize(const std::string& name, int otherwise) const
{
    if (options_.preferences == nullptr) {
        return otherwise;
    }
    const std::int64_t size = IntOf(options_.preferences->GetList(kSizes), name);
    return IsWithin(size, 1, kMostUnits) ? static_cast<int>(size) : otherwise;
}

void DialogModel::RememberSize(const std::string& name, int size)
{
    if (options_.preferences != nullptr && IsWithin(size, 1, kMostUnits)) {
        SetNamed(*options_.preferences, kSizes, name, PropValue(size));
    }
}

}  // namespace kivmetadataui
