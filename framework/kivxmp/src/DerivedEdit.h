// Changes at or below a derived property: all of it comes into the packet first, and leaves it
// again where nothing of it was changed.

#pragma once

#include <cstddef>

#include "framework/kivxmp/src/ObjectState.h"

namespace kivxmp {

/// One change of an object at a path.
class DerivedEdit {
public:
    DerivedEdit(ObjectState& object, const Path& path);

    /// Runs `edit`. If it throws, the object is as it was.
    template <class Edit>
    void Run(const Edit& edit)
    {
        CopyIn();
        try {
            edit();
        } catch (...) {
            TakeOut(/*onlyEqual=*/false);
            throw;
        }
        TakeOut(/*onlyEqual=*/true);
    }

    /// Removes what is at the path. False where nothing is, and where the derived property goes
    /// whole, for it is not in the packet.
    bool Remove();

private:
    Slot* OwnSlot() const;
    /// Copies the derived property into the packet if the packet lacks it.
    void CopyIn();
    /// Takes the copy out of the packet. With `onlyEqual` also what was copied by earlier changes,
    /// but only where it equals the derived property.
    void TakeOut(bool onlyEqual) noexcept;

    ObjectState& object_;
    const Path& path_;
    const Node* derived_ = nullptr;  // null unless the property derives and was not read
    bool isCopied_ = false;
};

}  // namespace kivxmp
