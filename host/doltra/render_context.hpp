#pragma once

#include <doltra/export.hpp>
#include <doltra/light_source.hpp>
#include <sorvik/value_pool.hpp>
#include <tessan/strong_ptr.hpp>

#include <vector>

namespace Qelt {

/// What lights are told of the rendering that they take part in: the context's values, the OpenGL light that
/// is next, and where to hand in their light sources.
class DOLTRA_EXPORT VRenderContext {
public:
    using LightSources = std::vector<Tessan::StrongPtr<RenderNamespace::LightSource>>;

    /// @param pool the values of this context; a context keeps its pool for its whole life.
    explicit VRenderContext(Tessan::StrongPtr<ValuePool> pool);
    VRenderContext(const VRenderContext&) = delete;
    VRenderContext& operator=(const VRenderContext&) = delete;
    virtual ~VRenderContext();

    ValuePool& pool() const noexcept { return *my_pool; }

    /// The number of the OpenGL light that is next to be set up, from 1: it stands for `GL_LIGHT0` + number
    /// − 1.
    int lightNumber() const noexcept { return my_light_number; }
    void setLightNumber(int number) noexcept { my_light_number = number; }

    /// Adds a light source to the lights of the current rendering.
    void enableLightSource(const Tessan::StrongPtr<RenderNamespace::LightSource>& source) const;

    /// The light sources enabled since the rendering began, in that order.
    const LightSources& enabledLightSources() const noexcept { return my_enabled; }

    /// Begins a new rendering: no light source is enabled, and the light number is 1.
    void beginRendering() noexcept;

    /// Has every living context let go of the light sources that it has enabled: objects went, and with them
    /// may go the code of their light sources. They are enabled anew in each rendering.
    static void dropLightSources();

private:
    Tessan::StrongPtr<ValuePool> my_pool;
    int my_light_number = 1;
    /// Lights see the context as constant, except for handing in their sources.
    mutable LightSources my_enabled;
};

} // namespace Qelt
