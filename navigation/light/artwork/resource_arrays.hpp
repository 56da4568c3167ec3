#pragma once

namespace tovek {

/// The Qt resource ":/light/Torch.png" in Qt's format version 3: the tree, the names and the data. The build
/// writes them, with write_resource, from the picture.
extern const unsigned char resource_tree[], resource_names[], resource_data[];

} // namespace tovek
