// A weak entry point gives way to any other definition of its name.

class VInitialization;

extern "C" __attribute__((visibility("default"), weak)) bool KORL_API_2026_JAN_22__meek(VInitialization*) {
    return true;
}
