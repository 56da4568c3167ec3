#pragma once

#include "shell/render/gl_objects.hpp"

#include <cstdint>
#include <optional>
#include <span>

namespace korl {

/// A framebuffer to draw a picture into and read it back. Throws Error for a size that is not positive or
/// beyond the driver's limits, and where the driver can't draw into the format.
class OffscreenTarget {
public:
    enum class Format {
        RGBA8,  ///< Eight bits a channel, values clamped to 0..1.
        RGBA32F ///< Single-precision floats, as the shader wrote them.
    };

    /// width, height: pixels. samples: per pixel, as many of them as the driver can (1: no multisampling); a
    /// float target has one. Has 24 bits of depth. Nothing is cleared.
    OffscreenTarget(int width, int height, int samples = 4, Format format = Format::RGBA8);

    /// Draws into this target from now on, with the viewport over the whole of it.
    void bind() const;

    /// The picture, four channels a pixel, the rows from top to bottom, left to right; exactly width x height
    /// x 4 values, of the type of the format. Afterwards the target is bound for drawing again, and the
    /// scissor test is off.
    void read(std::span<std::uint8_t> pixels) const;
    void read(std::span<float> pixels) const;

    int width() const { return my_width; }
    int height() const { return my_height; }

    /// Per pixel; 1 where the driver has no multisampling.
    int samples() const { return my_samples; }

private:
    /// A framebuffer with a colour attachment, and a depth attachment where it is drawn into.
    struct Surface {
        Renderbuffer color;
        Renderbuffer depth;
        Framebuffer framebuffer;
    };

    void allocate(Surface& surface, int samples, bool has_depth) const;
    void bindForReading() const;
    void requireReadable(std::size_t value_count, Format format) const;

    int my_width;
    int my_height;
    int my_samples;
    Format my_format;
    Surface my_drawing;
    std::optional<Surface> my_resolved; ///< What multisampled drawing is resolved into to be read.
};

} // namespace korl
