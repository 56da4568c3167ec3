#pragma once

#include <doltra/export.hpp>
#include <orvid/physical_space.hpp>
#include <sorvik/object.hpp>

#include <string>

namespace Qelt {

class VRenderContext;

/// What a user can touch on an object in a picture.
class DOLTRA_EXPORT VSensorInfo {
public:
    VSensorInfo();
    virtual ~VSensorInfo();
};

/// An object that takes part in a rendering. The base takes part in everything by doing nothing.
class DOLTRA_EXPORT RenderAble : public VObject {
public:
    using VObject::VObject;
    ~RenderAble() override;

    /// Draws the object with the OpenGL context that is current. @returns whether something was drawn: the
    /// base draws nothing.
    virtual bool render(VRenderContext& context);

    /// `render`, timed; an exception that leaves it is reported with `Vprintf` at verbosity 0 and counts as
    /// nothing drawn.
    virtual bool safe_render(VRenderContext& context);

    /// Switches the object's lights on in a render context. The base has none.
    virtual void illuminate(const VRenderContext& context) const;

    /// Sets up what surrounds the drawing, such as a fixed-function light, with the OpenGL context that is
    /// current.
    /// @returns whether it succeeded. The base has nothing to set up.
    virtual bool environment_render(VRenderContext& context) const;

    /// The same for a rendering that covers the time from `begin` to `end`, in seconds. The base sets up the
    /// same at any time.
    virtual bool environment_render(VRenderContext& context, double begin, double end) const;

    /// The ball around what the object draws, in scene space. @returns false, and leaves `ball` alone, where
    /// it draws nothing.
    virtual bool getBoundingBall(Orvid::Ball& ball) const;

    /// The ball around what a user can touch of the object. The base answers with the bounding ball.
    virtual bool getTouchableBoundingBall(Orvid::Ball& ball) const;

    /// What a user can touch, or null: the base has nothing of the kind.
    virtual const VSensorInfo* getSensorInfo() const;

    /// How long the latest `safe_render` took, in seconds; 0 before the first one.
    double getLastRenderTime() const noexcept { return my_last_render_time; }

private:
    double my_last_render_time = 0;
};

/// An object that sets up the surroundings of a rendering and draws nothing.
class DOLTRA_EXPORT VEnvironmentRenderObject : public RenderAble {
public:
    using RenderAble::RenderAble;
    ~VEnvironmentRenderObject() override;
};

} // namespace Qelt
