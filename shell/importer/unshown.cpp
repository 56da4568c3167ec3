#include "shell/importer/unshown.hpp"

#include <algorithm>
#include <assimp/scene.h>
#include <cstddef>
#include <fmt/core.h>
#include <set>
#include <span>

namespace korl {

namespace {

/// How many images the materials name. Those of one name count once, whatever they are used for.
std::size_t countTextures(const aiScene& scene) {
    std::set<std::string> images;
    for (const aiMaterial* const material : std::span(scene.mMaterials, scene.mNumMaterials))
        for (const aiMaterialProperty* const property :
             std::span(material->mProperties, material->mNumProperties)) {
            aiString image;
            if (std::string(property->mKey.C_Str()) == _AI_MATKEY_TEXTURE_BASE &&
                material->Get(property->mKey.C_Str(), property->mSemantic, property->mIndex, image) ==
                    aiReturn_SUCCESS)
                images.insert(image.C_Str());
        }
    return images.size();
}

bool isTransparent(const aiMaterial* material) {
    float opacity = 1;
    return material->Get(AI_MATKEY_OPACITY, opacity) == aiReturn_SUCCESS && opacity < 1;
}

bool hasPointsOrLines(const aiMesh* mesh) {
    return (mesh->mPrimitiveTypes & (aiPrimitiveType_POINT | aiPrimitiveType_LINE)) != 0;
}

} // namespace

std::string unshownContent(const aiScene& scene) {
    const std::span materials(scene.mMaterials, scene.mNumMaterials);
    const std::span meshes(scene.mMeshes, scene.mNumMeshes);
    std::string list;
    const auto add = [&](bool is_there, const std::string& what) {
        if (is_there)
            list += (list.empty() ? "" : ", ") + what;
    };
    const auto addCount = [&](std::size_t count, const std::string& what) {
        add(count > 0, fmt::format("{} {}{}", count, what, count == 1 ? "" : "s"));
    };
    addCount(countTextures(scene), "texture");
    add(std::any_of(materials.begin(), materials.end(), isTransparent), "transparency");
    addCount(scene.mNumAnimations, "animation");
    add(std::any_of(meshes.begin(), meshes.end(), [](const aiMesh* mesh) { return mesh->HasBones(); }),
        "skeletons");
    add(std::any_of(meshes.begin(), meshes.end(),
                    [](const aiMesh* mesh) { return mesh->mNumAnimMeshes > 0; }),
        "morph targets");
    addCount(scene.mNumLights, "light");
    addCount(scene.mNumCameras, "camera");
    add(std::any_of(meshes.begin(), meshes.end(), hasPointsOrLines), "points and lines");
    return list.empty() ? "" : "some of it is not shown: " + list;
}

} // namespace korl
