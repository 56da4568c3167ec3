#pragma once

namespace Qelt {

class RenderAble;
class ShaderLightSource;
class VEnvironmentRenderObject;
class VLightSource;
class VRenderContext;
class VSensorInfo;

namespace RenderNamespace {
class LightSource;
}

} // namespace Qelt
