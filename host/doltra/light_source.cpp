#include <doltra/light_source.hpp>

#include <atomic>

namespace Qelt::RenderNamespace {

namespace {

/// Shared by all light types of all modules; it lives here so that no number repeats after a module was
/// reloaded.
std::atomic<std::uint64_t> next_serial_number{1};

} // namespace

LightSource::LightSource() : my_serial_number(next_serial_number.fetch_add(1, std::memory_order_relaxed)) {}

LightSource::~LightSource() = default;

} // namespace Qelt::RenderNamespace
