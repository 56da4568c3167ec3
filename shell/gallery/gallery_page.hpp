#pragma once

#include "shell/gallery/type_sheet.hpp"

#include <string>
#include <vector>

namespace korl {

/// An HTML page of types, in UTF-8, in light or dark colours as the reader's system has them.
std::string galleryPage(const std::vector<TypeSheet>& sheets);

} // namespace korl
