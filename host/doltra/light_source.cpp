#include <doltra/light_source.hpp>

#include <sorvik/action_notifier.hpp>
#include <tessan/living.hpp>
#include <tessan/speak_ptr.hpp>

#include <atomic>
#include <map>
#include <string>
#include <typeinfo>
#include <vector>

namespace Qelt::RenderNamespace {

namespace {

/// Shared by all light types of all modules; it lives here so that no number repeats after a module was
/// reloaded.
std::atomic<std::uint64_t> next_serial_number{1};

using LivingLightSources = Tessan::Living<LightSource>;

/// Reports the light sources of a module's classes that are held longer than the module can be. A module may
/// go only while no other thread renders or makes light sources.
struct LeftoverReporter final : VActionNotifier {
    void creatorsGone(const Tessan::Library& library) override {
        std::vector<LightSource*> of_library;
        std::map<std::uint64_t, std::string> held; // types by serial number
        LivingLightSources::objects().visitAll([&](LightSource& source) {
            const std::type_info& type = typeid(source);
            if (Tessan::libraryOf(type) != library)
                return;
            of_library.push_back(&source);
            if (source.controlBlock().strongCount() > 0)
                held.emplace(source.serialNumber(), Tessan::Typename(type));
        });
        // They are never asked again: those that are not let go of in time outlive their code.
        for (LightSource* const source : of_library)
            LivingLightSources::objects().leave(*source);
        for (const auto& [serial_number, type] : held)
            Tessan::SpeakPtr::theSpeaker().printRS(
                "light source " + std::to_string(serial_number) + " of type " + type +
                    " is still held, but its module goes: it must be let go of before the module is unloaded",
                "LightSource");
    }
};

/// Never destroyed: modules go as late as after `main`.
[[maybe_unused]] const auto& leftover_reporter = *new LeftoverReporter;

} // namespace

LightSource::LightSource() : my_serial_number(next_serial_number.fetch_add(1, std::memory_order_relaxed)) {
    LivingLightSources::objects().enter(*this);
}

LightSource::~LightSource() {
    LivingLightSources::objects().leave(*this); // it may have left before, when the creators went
}

} // namespace Qelt::RenderNamespace
