#include "shell/render/offscreen_target.hpp"

#include "shell/base/error.hpp"
#include "shell/render/gl_state.hpp"

#include <algorithm>
#include <fmt/core.h>

namespace korl {

namespace {

GLint limitOf(GLenum name) {
    GLint value = 0;
    glGetIntegerv(name, &value);
    return value;
}

/// OpenGL's first row is the lowest of the picture; turned over in place.
template <typename Value>
void turnUpsideDown(std::span<Value> pixels, int height) {
    const std::size_t row = pixels.size() / static_cast<std::size_t>(height);
    for (std::size_t top = 0, bottom = pixels.size() - row; top < bottom; top += row, bottom -= row) {
        std::swap_ranges(pixels.begin() + static_cast<std::ptrdiff_t>(top),
                         pixels.begin() + static_cast<std::ptrdiff_t>(top + row),
                         pixels.begin() + static_cast<std::ptrdiff_t>(bottom));
    }
}

void requireSize(int width, int height) {
    if (width < 1 || height < 1) {
        throw Error(fmt::format("a picture of {} x {} pixels was asked for.\n"
                                "Width and height must be 1 or more.",
                                width, height));
    }
    std::array<GLint, 2> viewport{};
    glGetIntegerv(GL_MAX_VIEWPORT_DIMS, viewport.data());
    const GLint renderbuffer = limitOf(GL_MAX_RENDERBUFFER_SIZE);
    const int max_width = std::min(renderbuffer, viewport[0]);
    const int max_height = std::min(renderbuffer, viewport[1]);
    if (width > max_width || height > max_height) {
        throw Error(fmt::format("a picture of {} x {} pixels was asked for, but this driver draws at most "
                                "{} x {}.\nAsk for a smaller one.",
                                width, height, max_width, max_height));
    }
}

} // namespace

OffscreenTarget::OffscreenTarget(int width, int height, int samples, Format format)
    : my_width(width), my_height(height),
      my_samples(format == Format::RGBA32F ? 1
                                           : std::clamp(samples, 1, std::max(1, limitOf(GL_MAX_SAMPLES)))),
      my_format(format) {
    requireSize(width, height);
    allocate(my_drawing, my_samples, true);
    if (my_samples > 1) {
        // A driver may give more samples than were asked for.
        glBindRenderbuffer(GL_RENDERBUFFER, my_drawing.color.name());
        glGetRenderbufferParameteriv(GL_RENDERBUFFER, GL_RENDERBUFFER_SAMPLES, &my_samples);
        my_samples = std::max(1, my_samples);
        my_resolved.emplace();
        allocate(*my_resolved, 1, false);
    }
    bind();
}

void OffscreenTarget::allocate(Surface& surface, int samples, bool has_depth) const {
    const GLsizei storage_samples = samples > 1 ? samples : 0;
    const GLenum color_format = my_format == Format::RGBA8 ? GL_RGBA8 : GL_RGBA32F;
    glBindFramebuffer(GL_FRAMEBUFFER, surface.framebuffer.name());
    const auto attach = [&](const Renderbuffer& buffer, GLenum format, GLenum attachment) {
        glBindRenderbuffer(GL_RENDERBUFFER, buffer.name());
        glRenderbufferStorageMultisample(GL_RENDERBUFFER, storage_samples, format, my_width, my_height);
        glFramebufferRenderbuffer(GL_FRAMEBUFFER, attachment, GL_RENDERBUFFER, buffer.name());
    };
    attach(surface.color, color_format, GL_COLOR_ATTACHMENT0);
    if (has_depth)
        attach(surface.depth, GL_DEPTH_COMPONENT24, GL_DEPTH_ATTACHMENT);
    const GLenum status = glCheckFramebufferStatus(GL_FRAMEBUFFER);
    if (status != GL_FRAMEBUFFER_COMPLETE) {
        throw Error(fmt::format("the driver can't draw into a picture of {} x {} pixels with {} samples "
                                "(framebuffer status {}).\nAsk for a smaller one.",
                                my_width, my_height, samples, status));
    }
}

void OffscreenTarget::bind() const {
    glBindFramebuffer(GL_FRAMEBUFFER, my_drawing.framebuffer.name());
    glDrawBuffer(GL_COLOR_ATTACHMENT0); // whoever drew before may have changed that
    glViewport(0, 0, my_width, my_height);
}

void OffscreenTarget::bindForReading() const {
    glBindFramebuffer(GL_READ_FRAMEBUFFER, my_drawing.framebuffer.name());
    setReadingState();
    if (!my_resolved)
        return;
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, my_resolved->framebuffer.name());
    glBlitFramebuffer(0, 0, my_width, my_height, 0, 0, my_width, my_height, GL_COLOR_BUFFER_BIT, GL_NEAREST);
    glBindFramebuffer(GL_READ_FRAMEBUFFER, my_resolved->framebuffer.name());
}

void OffscreenTarget::requireReadable(std::size_t value_count, Format format) const {
    const auto expected = static_cast<std::size_t>(my_width) * static_cast<std::size_t>(my_height) * 4;
    if (value_count != expected || format != my_format) {
        throw Error(fmt::format("a picture of {} x {} pixels has {} {} values, but the buffer holds {} {} "
                                "values.",
                                my_width, my_height, expected, my_format == Format::RGBA8 ? "byte" : "float",
                                value_count, format == Format::RGBA8 ? "byte" : "float"));
    }
}

void OffscreenTarget::read(std::span<std::uint8_t> pixels) const {
    requireReadable(pixels.size(), Format::RGBA8);
    bindForReading();
    glReadPixels(0, 0, my_width, my_height, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    bind();
    turnUpsideDown(pixels, my_height);
}

void OffscreenTarget::read(std::span<float> pixels) const {
    requireReadable(pixels.size(), Format::RGBA32F);
    bindForReading();
    glReadPixels(0, 0, my_width, my_height, GL_RGBA, GL_FLOAT, pixels.data());
    bind();
    turnUpsideDown(pixels, my_height);
}

} // namespace korl
