#pragma once

#include <epoxy/gl.h>

#include <vector>

namespace korl {

/// The OpenGL state that drawing relies on. What lights and objects of modules leave behind in the context
/// must not show in the next frame, so every frame begins with all of it.
///
/// What a frame sets by itself is not part of it: framebuffer and viewport, matrices, OpenGL's lights and
/// light model, material, program, and the vertex arrays, which are the meshes' own.
class DrawingState {
public:
    /// For the current context, which says what there is to be set.
    DrawingState();

    /// Multisampling and the depth test are on, everything else that changes fragments, geometry or what is
    /// kept of them is off or has OpenGL's default; no program or vertex array is bound.
    void set() const;

private:
    int my_version; ///< of OpenGL, 33 for 3.3
    std::vector<GLenum> my_switches;
    GLenum my_texture_units; ///< of the fixed-function pipeline, which applies textures by these switches:
    std::vector<GLenum> my_texture_switches;
};

/// The OpenGL state that reading pixels back relies on: rows of the picture's own width without gaps, values
/// as they were drawn, no buffer in between.
void setReadingState();

} // namespace korl
