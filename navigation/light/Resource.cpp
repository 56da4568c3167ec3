// The module's own files in Qt's resource system: the torch's icon, ":/light/Torch.png", as long as the
// module is loaded.

#include "artwork/resource_arrays.hpp"
#include "unit.hpp"

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

constexpr int format_version = 3; ///< since Qt 5.13

void registerData() {
    QT_PREPEND_NAMESPACE(qRegisterResourceData)(format_version, resource_tree, resource_names, resource_data);
}

void unregisterData() {
    QT_PREPEND_NAMESPACE(qUnregisterResourceData)
    (format_version, resource_tree, resource_names, resource_data);
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
