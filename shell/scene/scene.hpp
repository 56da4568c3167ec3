#pragma once

#include "shell/mesh/mesh.hpp"
#include "shell/scene/camera.hpp"
#include "shell/scene/unresolved_objects.hpp"

#include <doltra/renderable.hpp>
#include <orvid/rgba_float.hpp>
#include <sorvik/object.hpp>
#include <sorvik/value_pool.hpp>
#include <tessan/strong_ptr.hpp>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace korl {

/// Through so many others at most a parameter follows another one: reading a value goes up the chain, step by
/// step, and so does each connection.
inline constexpr int max_chain_length = 100;

/// What is said of a parameter that would follow others through more.
std::string tooLongChainText();

/// What is to be seen and what lights it: objects by name, meshes, a camera, a background, and views that may
/// have values of their own.
///
/// The scene owns its objects. An object that is deleted by others, as happens when its module is unloaded,
/// leaves the scene by itself. All operations belong to the thread that renders.
class Scene {
public:
    Scene();
    ~Scene();
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;

    /// Creates an object through the first creator of the type's name in the catalogue.
    /// @param name the object's name; empty for the type's, numbered where that is taken ("Torch", "Torch2").
    /// Throws Error for an unknown type, and for a name that is taken, by an object that is only kept
    /// included.
    Qelt::VObject& create(const std::string& type, const std::string& name = {});

    /// The object of this name, or null.
    Qelt::VObject* find(const std::string& name) const;

    /// The object of this name. Throws Error if there is none.
    Qelt::VObject& object(const std::string& name) const;

    /// Whether an object has this name, one that is only kept for its module included.
    bool isTaken(const std::string& name) const { return find(name) || my_unresolved.contains(name); }

    /// Deletes an object. Throws Error if there is none of this name.
    void remove(std::string name);

    /// Sets the global value of an object's parameter.
    /// Throws Error for an unknown object or parameter, a value of another type than the parameter's, and
    /// numbers that are not finite; nothing is changed then.
    /// @param view where not empty, the value holds in that view alone; throws Error if there is none of the
    /// name.
    void setParameter(const std::string& object, const std::string& parameter, const Qelt::VValueBase& value,
                      const std::string& view = {});

    /// The same from a text form, for values that users write. Throws Error for a malformed text, too.
    void setParameterText(const std::string& object, const std::string& parameter, const std::string& text,
                          const std::string& view = {});

    /// Brings the global value back to the parameter's default or, with a view, takes that view's own value
    /// away. Throws Error for an unknown object, parameter or view.
    void resetParameter(const std::string& object, const std::string& parameter,
                        const std::string& view = {});

    /// Makes a parameter follow another object's, in every view.
    /// Throws Error for an unknown object or parameter, for parameters of different types, for one that would
    /// come to follow itself, and where any would come to follow another one through more than
    /// max_chain_length others; nothing is changed then.
    void connect(const std::string& object, const std::string& parameter, const std::string& source_object,
                 const std::string& source_parameter);

    /// Ends that a parameter follows another one. Throws Error for an unknown object or parameter.
    void disconnect(const std::string& object, const std::string& parameter);

    /// The parameter of an object. Throws Error, which lists the near names, for an unknown one.
    Qelt::VParameter& parameter(const std::string& object, const std::string& parameter) const;

    /// Mutes an object, which then takes no part in any picture, or brings it back. Throws Error for an
    /// unknown object.
    void setMuted(const std::string& object, bool muted);
    bool isMuted(const Qelt::VObject& object) const;

    /// Lets one light alone shine, whatever is muted; the empty name ends that. It ends too when the light is
    /// deleted. Throws Error for an unknown object, and for one that is not a light.
    void solo(const std::string& light);
    /// The light that shines alone, or null.
    Qelt::VObject* soloLight() const;

    /// Whether an object takes part in pictures: it is not muted, and no other light shines alone.
    bool isEnabled(const Qelt::VObject& object) const;

    using NamedView = std::pair<std::string, Tessan::StrongPtr<Qelt::ValuePool>>;

    /// Adds a view of this name, without values of its own. Throws Error for an empty name and one that is
    /// taken.
    Qelt::ValuePool& addView(const std::string& name);

    /// The values of a view's own. Throws Error, which lists the near names, for an unknown view.
    const Tessan::StrongPtr<Qelt::ValuePool>& view(const std::string& name) const;

    /// The views, in the order of their making.
    const std::vector<NamedView>& views() const noexcept { return my_views; }

    /// Takes away a view and its values. Throws Error for an unknown view.
    void removeView(const std::string& name);

    /// What the scene keeps for modules that are not loaded.
    UnresolvedObjects& unresolved() noexcept { return my_unresolved; }
    const UnresolvedObjects& unresolved() const noexcept { return my_unresolved; }

    /// The living objects, in the order of their creation.
    const std::vector<Tessan::StrongPtr<Qelt::VObject>>& objects() const;

    /// Whether any object is a light.
    bool hasLight() const;

    /// A number that changes whenever an object comes, goes, is muted or shines alone, and that no other
    /// scene has.
    unsigned long revision() const;

    void addMesh(Mesh mesh);
    const std::vector<std::shared_ptr<const Mesh>>& meshes() const noexcept { return my_meshes; }

    /// The ball around all meshes and all objects that draw something; nothing if there is none of either.
    std::optional<Ball> boundingBall() const;

    /// Where to look from; nothing to fit the whole scene into the picture.
    std::optional<Camera> camera;

    Orvid::rgba_float_t background{0.13f, 0.14f, 0.16f, 1};

private:
    void dropTheGone() const;
    /// Throws Error that says what a parameter takes, what was found and what it keeps.
    [[noreturn]] void refuseValue(const std::string& object, const Qelt::VParameter& parameter,
                                  const std::string& view, const std::string& expected,
                                  const std::string& found) const;
    /// Why a connection would make a chain too long, the follower's own or that of one below it; empty where
    /// it would not.
    std::string tooLongChain(const Qelt::VParameter& follower, const Qelt::VParameter& source) const;

    mutable std::vector<Tessan::StrongPtr<Qelt::VObject>> my_objects;
    mutable std::unordered_map<std::string, Tessan::StrongPtr<Qelt::VObject>> my_objects_by_name;
    std::unordered_map<std::string, unsigned long>
        my_numbers; ///< how far unnamed objects were counted, by type
    mutable unsigned long my_revision;
    std::unordered_set<std::uint64_t> my_muted; ///< by the numbers of the objects
    std::string my_solo;                        ///< the name of the light that shines alone, or empty
    std::uint64_t my_solo_number = 0;           ///< and its number
    std::vector<NamedView> my_views;
    UnresolvedObjects my_unresolved;
    std::vector<std::shared_ptr<const Mesh>> my_meshes;
    std::optional<Ball> my_meshes_ball;
};

} // namespace korl
