#pragma once

#include "Ports/Accessibility.h"

#include <optional>
#include <string>

namespace tavik {

/// The address of the page or document in which `element` stands; never empty.
std::optional<std::string> documentURL(const ElementRef& element);

} // namespace tavik
