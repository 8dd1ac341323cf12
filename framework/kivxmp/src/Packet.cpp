#include "framework/kivxmp/src/Packet.h"

namespace kivxmp {

const std::string* Scope::Find(std::string_view prefix) const noexcept
{
    for (const Scope* scope = this; scope != nullptr; scope = scope->parent) {
        for (const auto& [bound, uri] : scope->bindings) {
            if (bound == prefix) {
                return &uri;
            }
        }
    }
    return nullptr;
}

}  // namespace kivxmp
