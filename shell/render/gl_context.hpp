#pragma once

#include <memory>
#include <string>

namespace korl {

/// A headless OpenGL context of the compatibility profile, 3.0 or later with framebuffer objects. It has no
/// window and no default framebuffer to speak of: what is drawn goes into framebuffer objects.
///
/// Tried in this order: the surfaceless EGL platform, then the EGL devices in turn, hardware before software.
/// Without a surface where the driver can, with a pbuffer of 16 x 16 pixels where it can't. Throws Error
/// where none of that gives a context; the text lists what was tried, with EGL's errors, and the Debian
/// packages that help.
///
/// A context is current on one thread at a time; all GL calls of that thread then go to it.
class GLContext {
public:
    struct Options {
        bool debug = false; ///< A debug context, whose KHR_debug messages are complete.
        /// Goes straight to the EGL devices. Where Mesa's surfaceless platform has only its software
        /// rasteriser, the devices can still have the GPU.
        bool devices_only = false;
        bool pbuffer = false; ///< Takes the pbuffer even where the driver says that it needs no surface.
    };

    struct Info {
        std::string renderer; ///< As the driver gives them: GL_RENDERER,
        std::string version;  ///< GL_VERSION.
        std::string how;      ///< The way that led to the context, such as "EGL surfaceless platform".
    };

    /// Makes the context, and makes it current on this thread.
    GLContext() : GLContext(Options()) {}
    explicit GLContext(const Options& options);
    ~GLContext();
    GLContext(const GLContext&) = delete;
    GLContext& operator=(const GLContext&) = delete;

    /// Makes the context current on this thread. Throws Error where EGL refuses, as it does while another
    /// thread has it.
    void makeCurrent();

    /// Leaves this thread without a context, where this one is its current one; another thread can then take
    /// it.
    void release();

    const Info& info() const { return my_info; }

private:
    struct Handles;
    std::unique_ptr<Handles> my_handles;
    Info my_info;
};

} // namespace korl
