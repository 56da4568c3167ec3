#pragma once

#include <doltra/render_context.hpp>
#include <doltra/renderable.hpp>
#include <doltra/shader_light_source.hpp>
#include <sorvik/value_pool.hpp>
#include <tessan/strong_ptr.hpp>

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace korl {

class Scene;

/// One look at a scene: a render context with values of its own, and the lights of its current frame.
class View {
public:
    /// An object that takes part in the frame, and which of the frame's light sources are its own.
    struct Member {
        Qelt::RenderAble* object;
        const Qelt::ShaderLightSource* shader_light; ///< the same object, where it is one
        std::size_t first_source;
        std::size_t source_count;
    };

    /// @param pool the values of the view's own; a new pool, which has none, unless one is given.
    explicit View(Tessan::StrongPtr<Qelt::ValuePool> pool = Tessan::makeStrong<Qelt::ValuePool>());

    Qelt::VRenderContext& context() noexcept { return my_context; }
    const Qelt::VRenderContext& context() const noexcept { return my_context; }
    Qelt::ValuePool& pool() const noexcept { return my_context.pool(); }

    /// Begins a frame (see Frame): brings the scene's objects up to date and has the lights hand in their
    /// light sources, in the order of their priority, then of their creation. Objects that are muted take no
    /// part.
    void beginFrame(const Scene& scene, double time);

    /// Has the shader lights fill their uniforms. Comes after `environment_render`, where the other lights
    /// may fill theirs.
    void fillUniforms();

    /// Lets go of the frame's objects and light sources.
    void endFrame() noexcept;

    /// The objects of the frame, until it ends.
    std::span<const Member> members() const noexcept { return my_members; }

    /// The light sources of the frame, until it ends.
    std::span<const Tessan::StrongPtr<Qelt::RenderNamespace::LightSource>> sources() const noexcept {
        return my_context.enabledLightSources();
    }

    /// The light that handed in a light source of the frame.
    const Qelt::RenderAble& ownerOf(std::size_t source) const;

private:
    void gatherMembers(const Scene& scene);

    Tessan::StrongPtr<Qelt::ValuePool> my_pool;
    Qelt::VRequest my_request;
    Qelt::VRenderContext my_context;
    std::vector<Member> my_members;
    const Scene* my_scene = nullptr;
    std::optional<unsigned long> my_scene_revision; ///< that of the scene when the members were gathered
};

/// A frame of a view, from its beginning to its end, however it ends: no light source is held longer.
class Frame {
public:
    /// @param time in seconds. Throws Error if an object could not be brought up to date.
    Frame(View& view, const Scene& scene, double time);
    ~Frame() { my_view.endFrame(); }
    Frame(const Frame&) = delete;
    Frame& operator=(const Frame&) = delete;

private:
    View& my_view;
};

} // namespace korl
