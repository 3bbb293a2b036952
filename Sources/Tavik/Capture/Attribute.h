#pragma once

#include <exception>
#include <functional>
#include <utility>

namespace tavik {

/// What `target`, some pointer to a port or an element, answers to `method`; nothing when there is
/// no target or it fails.
template<typename Target, typename Result, typename Class, typename... Parameters,
         typename... Arguments>
Result attribute(const Target& target, Result (Class::*method)(Parameters...),
                 Arguments&&... arguments) {
    if (target == nullptr) return Result();
    try {
        return std::invoke(method, *target, std::forward<Arguments>(arguments)...);
    } catch (const std::exception&) {
        return Result();
    }
}

} // namespace tavik
