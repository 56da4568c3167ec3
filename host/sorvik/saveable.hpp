#pragma once

#include <sorvik/export.hpp>

namespace Qelt {

/// What is saved with a scene.
class SORVIK_EXPORT VSaveable {
public:
    VSaveable();
    VSaveable(const VSaveable&) = delete;
    VSaveable& operator=(const VSaveable&) = delete;
    virtual ~VSaveable();
};

} // namespace Qelt
