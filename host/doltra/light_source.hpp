#pragma once

#include <doltra/export.hpp>
#include <doltra/uniform_map.hpp>
#include <tessan/ageable.hpp>
#include <tessan/counted.hpp>

#include <cstdint>
#include <string>

namespace Qelt::RenderNamespace {

/// A light as the renderer sees it in a render context: a GLSL snippet and the values of its uniforms.
class DOLTRA_EXPORT LightSource : public Tessan::Counted, public Tessan::Ageable {
public:
    /// Takes the next serial number of the process, starting with 1, and the current time as its age.
    LightSource();
    LightSource(const LightSource&) = delete;
    LightSource& operator=(const LightSource&) = delete;
    ~LightSource() override;

    /// The GLSL text that declares the light's uniforms and defines `getLight_$$`, "$$" included, as a fresh
    /// copy.
    virtual std::string snippet() const = 0;

    UniformMap& uniforms() noexcept { return my_uniforms; }
    const UniformMap& uniforms() const noexcept { return my_uniforms; }

    /// A number that no other light source of the process has.
    std::uint64_t serialNumber() const noexcept { return my_serial_number; }

private:
    UniformMap my_uniforms;
    std::uint64_t my_serial_number;
};

} // namespace Qelt::RenderNamespace
