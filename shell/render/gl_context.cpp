#include "shell/render/gl_context.hpp"

#include "shell/base/error.hpp"

#include <algorithm>
#include <array>
#include <dlfcn.h>
#include <epoxy/egl.h>
#include <epoxy/gl.h>
#include <fmt/core.h>
#include <string_view>
#include <utility>
#include <vector>

namespace korl {

namespace {

constexpr const char* packages_that_help = "On Debian the packages libegl1, libopengl0, libegl-mesa0 and "
                                           "libgl1-mesa-dri give one that needs no GPU.";

std::string eglErrorName(EGLint error) {
    constexpr std::array<std::pair<EGLint, const char*>, 15> names{{
        {EGL_SUCCESS, "EGL_SUCCESS"},
        {EGL_NOT_INITIALIZED, "EGL_NOT_INITIALIZED"},
        {EGL_BAD_ACCESS, "EGL_BAD_ACCESS"},
        {EGL_BAD_ALLOC, "EGL_BAD_ALLOC"},
        {EGL_BAD_ATTRIBUTE, "EGL_BAD_ATTRIBUTE"},
        {EGL_BAD_CONFIG, "EGL_BAD_CONFIG"},
        {EGL_BAD_CONTEXT, "EGL_BAD_CONTEXT"},
        {EGL_BAD_CURRENT_SURFACE, "EGL_BAD_CURRENT_SURFACE"},
        {EGL_BAD_DISPLAY, "EGL_BAD_DISPLAY"},
        {EGL_BAD_MATCH, "EGL_BAD_MATCH"},
        {EGL_BAD_NATIVE_PIXMAP, "EGL_BAD_NATIVE_PIXMAP"},
        {EGL_BAD_NATIVE_WINDOW, "EGL_BAD_NATIVE_WINDOW"},
        {EGL_BAD_PARAMETER, "EGL_BAD_PARAMETER"},
        {EGL_BAD_SURFACE, "EGL_BAD_SURFACE"},
        {EGL_CONTEXT_LOST, "EGL_CONTEXT_LOST"},
    }};
    const auto found =
        std::find_if(names.begin(), names.end(), [&](const auto& name) { return name.first == error; });
    return found == names.end() ? fmt::format("EGL error {}", error) : found->second;
}

/// One way to a context did not lead there; the text says where it ended.
Error eglFailure(const std::string& call) {
    return Error(fmt::format("{}: {}", call, eglErrorName(eglGetError())));
}

/// words: separated by blanks; may be null.
bool hasWord(const char* words, std::string_view word) {
    std::string_view rest = words == nullptr ? "" : words;
    while (!rest.empty()) {
        const std::string_view first = rest.substr(0, rest.find(' '));
        if (first == word)
            return true;
        rest.remove_prefix(std::min(rest.size(), first.size() + 1));
    }
    return false;
}

std::string glText(GLenum name) {
    const auto* text = reinterpret_cast<const char*>(glGetString(name));
    return text == nullptr ? "unknown" : text;
}

/// The function loader ends the process where it misses one of these, so they are looked for beforehand.
void requireLibraries() {
    const auto canLoad = [](const char* name) {
        void* library = dlopen(name, RTLD_LAZY | RTLD_LOCAL);
        if (library != nullptr)
            dlclose(library);
        return library != nullptr;
    };
    if (!canLoad("libEGL.so.1")) {
        throw Error(fmt::format("no OpenGL context: the library libEGL.so.1 can't be loaded.\n{}",
                                packages_that_help));
    }
    if (!canLoad("libOpenGL.so.0") && !canLoad("libGL.so.1")) {
        throw Error(fmt::format("no OpenGL context: neither libOpenGL.so.0 nor libGL.so.1 can be loaded.\n{}",
                                packages_that_help));
    }
}

template <typename Function>
Function eglFunction(const char* name) {
    return reinterpret_cast<Function>(eglGetProcAddress(name));
}

/// A way to an EGL display, not yet initialised.
struct Candidate {
    std::string how;
    EGLenum platform;
    void* native_display;
};

std::vector<Candidate> deviceCandidates(const char* client_extensions, std::vector<std::string>& tried) {
    const auto query_devices = eglFunction<PFNEGLQUERYDEVICESEXTPROC>("eglQueryDevicesEXT");
    const auto query_string = eglFunction<PFNEGLQUERYDEVICESTRINGEXTPROC>("eglQueryDeviceStringEXT");
    const bool can_enumerate = hasWord(client_extensions, "EGL_EXT_device_base") ||
                               (hasWord(client_extensions, "EGL_EXT_device_enumeration") &&
                                hasWord(client_extensions, "EGL_EXT_device_query"));
    if (!can_enumerate || query_devices == nullptr || query_string == nullptr) {
        tried.emplace_back("EGL devices: EGL_EXT_device_enumeration is not there");
        return {};
    }
    EGLint count = 0;
    if (query_devices(0, nullptr, &count) != EGL_TRUE) {
        tried.push_back(fmt::format("EGL devices: {}", eglFailure("eglQueryDevicesEXT").what()));
        return {};
    }
    std::vector<EGLDeviceEXT> devices(static_cast<std::size_t>(count));
    if (devices.empty() || query_devices(count, devices.data(), &count) != EGL_TRUE || count == 0) {
        tried.emplace_back("EGL devices: there is none");
        return {};
    }
    devices.resize(static_cast<std::size_t>(count));

    std::vector<Candidate> hardware;
    std::vector<Candidate> software;
    for (std::size_t i = 0; i < devices.size(); ++i) {
        const bool is_software =
            hasWord(query_string(devices[i], EGL_EXTENSIONS), "EGL_MESA_device_software");
        const std::string how = fmt::format("EGL device {}{}", i, is_software ? " (software)" : "");
        (is_software ? software : hardware).push_back({how, EGL_PLATFORM_DEVICE_EXT, devices[i]});
    }
    hardware.insert(hardware.end(), software.begin(), software.end());
    return hardware;
}

std::vector<Candidate> candidates(bool devices_only, std::vector<std::string>& tried) {
    const char* client_extensions = eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS);
    std::vector<Candidate> all;
    if (!devices_only && hasWord(client_extensions, "EGL_MESA_platform_surfaceless"))
        all.push_back({"EGL surfaceless platform", EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY});
    else if (!devices_only)
        tried.emplace_back("EGL surfaceless platform: EGL_MESA_platform_surfaceless is not there");
    const std::vector<Candidate> devices = deviceCandidates(client_extensions, tried);
    all.insert(all.end(), devices.begin(), devices.end());
    return all;
}

/// EGL hands out one display per device to the whole process, without counting its users: ending it here
/// would take it from every other context, so displays stay until the process ends.
EGLDisplay openDisplay(const Candidate& candidate) {
    const auto get_display = eglFunction<PFNEGLGETPLATFORMDISPLAYEXTPROC>("eglGetPlatformDisplayEXT");
    if (get_display == nullptr)
        throw Error("EGL_EXT_platform_base is not there");
    const EGLDisplay display = get_display(candidate.platform, candidate.native_display, nullptr);
    if (display == EGL_NO_DISPLAY)
        throw eglFailure("eglGetPlatformDisplayEXT");
    if (eglInitialize(display, nullptr, nullptr) != EGL_TRUE)
        throw eglFailure("eglInitialize");
    return display;
}

EGLConfig choosePbufferConfig(EGLDisplay display) {
    constexpr std::array<EGLint, 5> wanted{EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE,
                                           EGL_OPENGL_BIT, EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    if (eglChooseConfig(display, wanted.data(), &config, 1, &count) != EGL_TRUE)
        throw eglFailure("eglChooseConfig");
    if (count == 0)
        throw Error("no EGL configuration has both OpenGL and pbuffers");
    return config;
}

EGLContext createContext(EGLDisplay display, EGLConfig config, bool debug) {
    std::vector<EGLint> attributes;
    if (debug && epoxy_egl_version(display) >= 15)
        attributes = {EGL_CONTEXT_OPENGL_DEBUG, EGL_TRUE};
    else if (debug)
        attributes = {EGL_CONTEXT_FLAGS_KHR, EGL_CONTEXT_OPENGL_DEBUG_BIT_KHR};
    std::vector<EGLint> with_profile = attributes;
    with_profile.insert(with_profile.end(), {EGL_CONTEXT_MAJOR_VERSION, 3, EGL_CONTEXT_MINOR_VERSION, 2,
                                             EGL_CONTEXT_OPENGL_PROFILE_MASK,
                                             EGL_CONTEXT_OPENGL_COMPATIBILITY_PROFILE_BIT, EGL_NONE});
    attributes.push_back(EGL_NONE);
    // Profiles exist from 3.2 on. A driver that knows none may still have an older OpenGL, complete in
    // itself.
    EGLContext context = eglCreateContext(display, config, EGL_NO_CONTEXT, with_profile.data());
    if (context == EGL_NO_CONTEXT)
        context = eglCreateContext(display, config, EGL_NO_CONTEXT, attributes.data());
    if (context == EGL_NO_CONTEXT)
        throw eglFailure("eglCreateContext");
    return context;
}

/// Of the current context.
void requireCapabilities() {
    const int version = epoxy_gl_version();
    const bool has_framebuffers = version >= 30 || epoxy_has_gl_extension("GL_ARB_framebuffer_object");
    if (version < 30 || !has_framebuffers) {
        throw Error(fmt::format("OpenGL {} of {} is too old, 3.0 with framebuffer objects is needed",
                                glText(GL_VERSION), glText(GL_RENDERER)));
    }
    GLint profile = GL_CONTEXT_COMPATIBILITY_PROFILE_BIT;
    if (version >= 32)
        glGetIntegerv(GL_CONTEXT_PROFILE_MASK, &profile);
    const bool lost_fixed_functions = version == 31 && !epoxy_has_gl_extension("GL_ARB_compatibility");
    if ((profile & GL_CONTEXT_COMPATIBILITY_PROFILE_BIT) == 0 || lost_fixed_functions) {
        throw Error(fmt::format("OpenGL {} of {} lacks the compatibility profile", glText(GL_VERSION),
                                glText(GL_RENDERER)));
    }
}

} // namespace

struct GLContext::Handles {
    EGLDisplay display = EGL_NO_DISPLAY;
    EGLContext context = EGL_NO_CONTEXT;
    EGLSurface surface = EGL_NO_SURFACE;

    Handles(const Candidate& candidate, const Options& options) : display(openDisplay(candidate)) {
        if (eglBindAPI(EGL_OPENGL_API) != EGL_TRUE)
            throw eglFailure("eglBindAPI(EGL_OPENGL_API)");
        const char* extensions = eglQueryString(display, EGL_EXTENSIONS);
        const bool needs_surface = options.pbuffer || !hasWord(extensions, "EGL_KHR_surfaceless_context");
        const bool needs_config = needs_surface || !hasWord(extensions, "EGL_KHR_no_config_context");
        const EGLConfig config = needs_config ? choosePbufferConfig(display) : EGL_NO_CONFIG_KHR;
        if (needs_surface) {
            constexpr std::array<EGLint, 5> size{EGL_WIDTH, 16, EGL_HEIGHT, 16, EGL_NONE};
            surface = eglCreatePbufferSurface(display, config, size.data());
            if (surface == EGL_NO_SURFACE)
                throw eglFailure("eglCreatePbufferSurface");
        }
        try {
            context = createContext(display, config, options.debug);
            makeCurrent();
            requireCapabilities();
        } catch (...) {
            destroy();
            throw;
        }
    }

    ~Handles() { destroy(); }
    Handles(const Handles&) = delete;
    Handles& operator=(const Handles&) = delete;

    void makeCurrent() const {
        if (eglBindAPI(EGL_OPENGL_API) != EGL_TRUE ||
            eglMakeCurrent(display, surface, surface, context) != EGL_TRUE)
            throw eglFailure("eglMakeCurrent");
    }

    void releaseCurrent() const {
        if (eglGetCurrentContext() == context)
            eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    }

    void destroy() const {
        if (context != EGL_NO_CONTEXT) {
            releaseCurrent();
            eglDestroyContext(display, context);
        }
        if (surface != EGL_NO_SURFACE)
            eglDestroySurface(display, surface);
    }
};

GLContext::GLContext(const Options& options) {
    requireLibraries();
    std::vector<std::string> tried;
    for (const Candidate& candidate : candidates(options.devices_only, tried)) {
        try {
            my_handles = std::make_unique<Handles>(candidate, options);
            const bool has_surface = my_handles->surface != EGL_NO_SURFACE;
            my_info = {glText(GL_RENDERER), glText(GL_VERSION),
                       candidate.how + (has_surface ? ", pbuffer" : "")};
            return;
        } catch (const Error& error) {
            tried.push_back(fmt::format("{}: {}", candidate.how, error.what()));
        }
    }
    std::string attempts;
    for (const std::string& attempt : tried)
        attempts += fmt::format("  {}\n", attempt);
    throw Error(
        fmt::format("no OpenGL context could be made (3.0 or later, compatibility profile). Tried:\n{}{}",
                    attempts, packages_that_help));
}

GLContext::~GLContext() = default;

void GLContext::makeCurrent() {
    try {
        my_handles->makeCurrent();
    } catch (const Error& error) {
        throw Error(fmt::format("the OpenGL context of {} can't be made current: {}\n"
                                "It can be current on one thread only; release it there first.",
                                my_info.renderer, error.what()));
    }
}

void GLContext::release() {
    my_handles->releaseCurrent();
}

} // namespace korl
