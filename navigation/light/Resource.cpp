// The module's own file in Qt's resource system: the torch's icon, ":/light/Torch.png", as long as the module
// is loaded.
//
// Qt's own resource compiler does not serve: what it writes registers by itself, outside the module's order,
// and its time stamp follows the environment.

#include "unit.hpp"

#include <memory>
#include <QtCore/qglobal.h>

// Qt exports these for the code that its resource compiler writes, and declares them in no public header.
QT_BEGIN_NAMESPACE
Q_CORE_EXPORT bool qRegisterResourceData(int version, const unsigned char* tree, const unsigned char* names,
                                         const unsigned char* data);
Q_CORE_EXPORT bool qUnregisterResourceData(int version, const unsigned char* tree, const unsigned char* names,
                                           const unsigned char* data);
QT_END_NAMESPACE

namespace tovek {

namespace {

constexpr int format_version = 3; ///< since Qt 5.13; all numbers are big-endian

/// 22 bytes a node: its name's place in `names`, its kind, what the kind has, and the time of its last change
/// in milliseconds since 1970.
constexpr unsigned char tree[] = {
    0, 0, 0,    0,                            // node 0, the root, whose name nobody reads
    0, 2,                                     // a folder
    0, 0, 0,    1,    0,    0,    0,    1,    // with one child, from node 1 on
    0, 0, 0,    0,    0,    0,    0,    0,    // a folder has no time
    0, 0, 0,    0,                            // node 1, "light"
    0, 2,                                     // a folder
    0, 0, 0,    1,    0,    0,    0,    2,    // with one child, from node 2 on
    0, 0, 0,    0,    0,    0,    0,    0,    // no time
    0, 0, 0,    16,                           // node 2, "Torch.png"
    0, 0,                                     // a file that is not compressed
    0, 0, 0,    1,                            // for any country and the language C
    0, 0, 0,    0,                            // its place in `data`
    0, 0, 0x01, 0x9a, 0xba, 0xde, 0x68, 0x50, // 1764071729232
};

/// Each name's length, its hash, and its characters in UTF-16.
constexpr unsigned char names[] = {
    0, 5, 0x00, 0x72, 0xfd, 0xf4, 0, 'l', 0, 'i', 0, 'g', 0, 'h', 0, 't', //
    0, 9, 0x08, 0x9b, 0xe1, 0x87, 0, 'T', 0, 'o', 0, 'r', 0, 'c', 0, 'h', 0, '.', 0, 'p', 0, 'n', 0, 'g',
};

/// The file's length and its bytes, which the build writes as numbers.
constexpr unsigned char data[] = {
    0, 0, 0xaf, 0xdf, // 45023
#include "torch_png.inc"
};
static_assert(sizeof data == 4 + 45023, "the length is not that of light/Torch.png");

void registerData() {
    QT_PREPEND_NAMESPACE(qRegisterResourceData)(format_version, tree, names, data);
}

void unregisterData() {
    QT_PREPEND_NAMESPACE(qUnregisterResourceData)
    (format_version, tree, names, data);
}

class ResourceUnit final : public Unit {
public:
    ResourceUnit() { registerData(); }
    /// An exception on the way out ends the process.
    ~ResourceUnit() noexcept override { unregisterData(); }
};

} // namespace

std::unique_ptr<Unit> registerResource() {
    return std::make_unique<ResourceUnit>();
}

} // namespace tovek

// The two functions with which Q_INIT_RESOURCE(tovek_light) and Q_CLEANUP_RESOURCE(tovek_light) register and
// withdraw a library's resource once more: in the global namespace, where the macros look for them. Nothing
// in the module calls them, and its optimiser must not take them away.

[[gnu::used]] int qInitResources_tovek_light() {
    tovek::registerData();
    return 1;
}

[[gnu::used]] int qCleanupResources_tovek_light() {
    tovek::unregisterData();
    return 1;
}
